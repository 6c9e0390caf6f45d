"""What players of the distribution play is counted."""
import os
import signal
import socket
import subprocess
import time

from watch_test_base import WatchTest

MPD_CONFIGURATION = """music_directory "{0}/music"
db_file "{0}/mpd.database"
state_file "{0}/mpd.state"
bind_to_address "{0}/mpd.socket"
audio_output {{
  type "null"
  name "null"
}}
"""


class Players(WatchTest):
    def run_quietly(self, *words):
        return self.run_beside(*words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def tell_mpd(self, command):
        with socket.socket(socket.AF_UNIX) as connection:
            connection.connect(self.env["MPD_HOST"])
            with connection.makefile("rw") as stream:
                stream.readline()
                print(command, file=stream, flush=True)
                reply = [stream.readline()]
                while not reply[-1].startswith(("OK", "ACK")):
                    reply.append(stream.readline())
                self.assertEqual(reply[-1], "OK\n", command)
                return "".join(reply)

    def start_mpd(self):
        daemon = self.run_quietly("mpd", "--no-daemon", self.folder / "mpd.conf")
        self.wait_for(reason="MPD is heard.")
        return daemon

    def test_mpv_repeats_a_file(self):
        self.start_bus()
        self.watch("--only", "mpv", "--only", "LAST")
        self.wait_for(reason="MPRIS is heard.")
        player = self.run_quietly("mpv", "--no-config", "--no-video", "--ao=null", "--script=/usr/lib/mpv-mpris/mpris.so",
                                  "--loop-file=1", self.file("low"), self.file("umbrella"))
        self.assertEqual(player.wait(timeout=60), 0)
        self.let_play()
        self.assertEqual(self.end(), {("mpv", "low water"): 2, ("mpv", "the other umbrella"): 1})

    def test_vlc_comes_to_the_bus_twice(self):
        self.start_bus()
        self.watch()
        self.wait_for(reason="MPRIS is heard.")
        # It refuses to run as root.
        other_user = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"] if os.getuid() == 0 else []
        self.env["HOME"] = str(self.folder / "home")
        # Without a device it ends a track as early as it has read ahead.
        player = self.run_quietly(*other_user, "vlc", "-I", "dummy", "--control=dbus", "--no-video", "--aout=adummy",
                                  "--file-caching=100", "--play-and-exit", self.file("trois"), self.file("gulls"))
        self.assertEqual(player.wait(timeout=60), 0)
        self.let_play()
        counted = [name for _, name in self.end().elements()]
        self.assertEqual(sorted(counted), ["gulls over the roof", "trois cuillères"])

    def test_mpd_repeats_a_song_and_is_restarted_while_there_is_no_session_bus(self):
        (self.folder / "mpd.conf").write_text(MPD_CONFIGURATION.format(self.folder))
        self.watch()
        daemon = self.start_mpd()
        self.tell_mpd("update")
        while "updating_db" in self.tell_mpd("status"):
            time.sleep(0.1)
        for command in ('findadd "(title == \'Low Water\')"', 'findadd "(title == \'Gulls over the Roof\')"', "repeat 1",
                        "single 1", "play 0"):
            self.tell_mpd(command)
        self.wait_for(event="counted")
        self.tell_mpd("single 0")
        self.wait_for(event="counted")
        self.wait_for(event="playing")
        daemon.send_signal(signal.SIGTERM)
        daemon.wait()
        self.start_mpd()
        self.wait_for(event="counted")
        self.tell_mpd("stop")
        self.assertIn("Players on the session bus are not heard: No such file or directory.",
                      [line["reason"] for line in self.lines])
        self.assertEqual(self.end(), {("mpd", "low water"): 2, ("mpd", "gulls over the roof"): 1})

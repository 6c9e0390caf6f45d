"""The desktop sees and controls what plays."""
import re
import subprocess
import time

from watch_test_base import WatchTest


class Desktop(WatchTest):
    def playerctl(self, *words):
        return subprocess.run(["playerctl", *words], env=self.env, capture_output=True, text=True, check=False).stdout.strip()

    def until(self, query, expected):
        for _ in range(300):
            if re.fullmatch(expected, shown := self.playerctl(*query.split("|"))):
                return
            time.sleep(0.1)
        self.fail(f"{query}: {shown}, not {expected}")

    def test_playerctl_drives_the_player(self):
        long = self.music / "a b\u00fc%.flac"
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "sine=440:duration=60", "-metadata", "title=Long",
                        "-metadata", "artist=X", "-metadata", "track=3/9", long], check=True)
        self.run_player("library", "rescan")
        self.run_player("rate", "4", long)
        self.start_bus()
        monitor = self.run_beside("dbus-monitor", "--session", "member='Seeked'", stdout=subprocess.PIPE, text=True)
        player = self.start("play", "--audio", "null", long, *self.files()[1:])
        self.addCleanup(lambda: (player.kill(), player.communicate()))
        self.until("status", "Playing")
        tags = "metadata|-f|{{artist}} {{title}} {{xesam:trackNumber}} {{xesam:userRating}} {{xesam:useCount}} {{mpris:length}} "
        self.until(tags + "{{xesam:url}}", f"X Long 3 0.8\\d* 0 60000000 file://{self.music}/a%20b%C3%BC%25.flac")
        self.until("-l", "ostrevan")
        for command, query, expected in (
                ("position|30", "position", r"3\d\.\d+"), ("volume|0.4", "volume", "0.40+"), ("loop|Track", "loop", "Track"),
                ("loop|None", "loop", "None"), ("shuffle|On", "shuffle", "On"), ("shuffle|Off", "shuffle", "Off"),
                ("pause", "status", "Paused"), ("position|9-", "position", r"2\d\.\d+"), ("play-pause", "status", "Playing"),
                ("pause", "status", "Paused"), ("play", "status", "Playing"), ("next", "metadata|title", "Opening Hour"),
                ("pause", "status", "Paused"), ("previous", "metadata|title", "Long"), ("position|90+", "metadata|title", "Opening.*")):
            self.playerctl(*command.split("|"))
            self.until(query, expected)
        self.playerctl("stop")
        self.assertEqual(player.wait(timeout=30), 0)
        self.assertEqual(self.playerctl("-l"), "")
        self.assertEqual(self.track(long)["skip_count"], 2)
        monitor.terminate()
        self.assertEqual(len(re.findall(r"int64 (?:30|2\d)\d{6}\n", monitor.communicate()[0])), 2)

"""A watcher of other players, on a bus of the test's own."""
import collections
import json
import os
import pathlib
import signal
import subprocess
import threading

from player import PlayerTest

HERE = os.path.dirname(os.path.abspath(__file__))
# For which the distribution installs its library of the bus.
PYTHON = "/usr/bin/python3"
BUS = """<busconfig><type>session</type><listen>unix:path={}</listen><auth>EXTERNAL</auth><policy context="default">
<allow user="*"/><allow own="*"/><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/></policy></busconfig>"""


def metadata(path, length, kind="x", **more):
    return {"xesam:url": ("s", str(path)), "mpris:length": (kind, length * 10**6 if kind != "d" else length * 1e6),
            "mpris:trackid": ("o", "/t/1"), **{"xesam:" + name: value for name, value in more.items()}}


def plays(path, length, *steps, end, kind="x", **more):
    """Steps of a player that begins a track at once and is at its end after some seconds."""
    first = {"Metadata": metadata(path, length, kind, **more), "PlaybackStatus": "Playing", "Rate": 1.0}
    return [(0, first), *steps, (end, {"PlaybackStatus": "Stopped"}), (end + 0.2, {})]


class WatchTest(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.folder.chmod(0o755)
        self.env.update(DBUS_SESSION_BUS_ADDRESS=f"unix:path={self.folder}/bus", MPD_HOST=f"{self.folder}/mpd.socket")
        self.lines = []

    def run_beside(self, *words, **options):
        child = subprocess.Popen([str(word) for word in words], env=self.env, stdin=subprocess.DEVNULL, **options)
        self.addCleanup(lambda: (child.kill(), child.wait()))
        return child

    def file(self, word):
        return next(self.music.rglob(f"*{word}*"))

    def start_bus(self):
        (self.folder / "bus.conf").write_text(BUS.format(self.folder / "bus"))
        daemon = self.run_beside("dbus-daemon", "--nofork", "--print-address", "--config-file", self.folder / "bus.conf",
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        daemon.stdout.readline()
        daemon.stdout.close()
        return daemon

    def watch(self, *words):
        self.watcher = self.start("watch", "--json", *words)
        watchdog = threading.Timer(90, self.watcher.kill)
        watchdog.start()
        self.addCleanup(lambda: (watchdog.cancel(), self.watcher.kill(), self.watcher.communicate()))

    def wait_for(self, **wanted):
        """Reads what the watcher prints until a line has these values."""
        while line := self.watcher.stdout.readline():
            self.lines.append(json.loads(line))
            if wanted.items() <= self.lines[-1].items():
                return
        self.fail(f"{wanted} did not come: {self.watcher.communicate()} {self.lines}")

    def begin_players(self, scripts, **options):
        return [self.run_beside(PYTHON, "-B", os.path.join(HERE, "scripted_player.py"), names, json.dumps(script), **options)
                for names, script in scripts]

    def let_play(self, *scripts):
        """Lets all players play at the same time, until the watcher has heard everything."""
        for player in self.begin_players(scripts):
            self.assertEqual(player.wait(timeout=60), 0)
        self.begin_players([("last", plays("http://x/last", 100, end=9))])
        self.wait_for(player="last")

    def end(self):
        """Ends the watcher once it has heard everything; gives how often each player and track was counted."""
        self.watcher.send_signal(signal.SIGINT)
        self.assertEqual(self.watcher.wait(timeout=30), 130)
        counted = collections.Counter((line["player"], pathlib.Path(line["path"]).stem[3:])
                                      for line in self.lines if line["event"] == "counted")
        total = collections.Counter()
        for (_, name), count in counted.items():
            total[name] += count
        self.assertEqual(total, {pathlib.Path(each["path"]).stem[3:]: each["play_count"]
                                 for each in self.tracks("%play_count% GREATER 0")})
        return counted

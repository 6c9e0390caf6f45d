"""Runs the real player on profiles of its own, for the end-to-end tests beside this file.

Environment: OSTREVAN is the program, MUSIC a folder of tagged files in five formats, AUDIO one file of every format that can
be tagged, FIXTURES the scripts of tests/fixtures, ASKING a folder with a component that asks questions.
"""
import fcntl
import json
import os
import pathlib
import pty
import re
import select
import shutil
import struct
import subprocess
import tempfile
import termios
import unittest

MENU = "Library/Playback Statistics/"
MAPPING = "C653739F-14B3-4EF2-819B-A3E2883230AE"
FIELDS = ("Count", "FirstPlayed", "LastPlayed", "Added", "Rating")
PROGRAM = os.environ["OSTREVAN"]
MUSIC = pathlib.Path(os.environ["MUSIC"])
AUDIO = pathlib.Path(os.environ["AUDIO"])
FIXTURES = pathlib.Path(os.environ["FIXTURES"])
ASKING = pathlib.Path(os.environ["ASKING"])


class PlayerTest(unittest.TestCase):
    """A folder of its own for each test: a profile, a copy of the music, a clipboard."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="ostrevan-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.open_ends = set()
        self.profile = self.folder / "profile"
        self.music = self.folder / "music"
        (self.folder / "run").mkdir(mode=0o700)
        self.env = dict(os.environ, XDG_RUNTIME_DIR=str(self.folder / "run"),
                        XDG_CONFIG_HOME=str(self.folder / "config"), TZ="UTC", LC_ALL="C.UTF-8")

    def command(self, *words, profile=None):
        return [PROGRAM, "--profile", str(profile or self.profile), *map(str, words)]

    def start(self, *words, **options):
        return subprocess.Popen(self.command(*words), env=self.env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True, **options)

    def run_player(self, *words, status=0, profile=None, text=None):
        """Runs one command and checks its exit status; gives what it printed."""
        done = subprocess.run(self.command(*words, profile=profile), env=self.env, input=text or "", capture_output=True,
                              text=True, timeout=110)
        if status is not None:
            self.assertEqual(done.returncode, status, f"{words}\n{done.stdout}\n{done.stderr}")
        return done

    def start_on_terminal(self, *words, kind="xterm", columns=80, by=()):
        """Starts a command on a terminal of its own; gives the process and both ends of the terminal."""
        master, end = pty.openpty()
        fcntl.ioctl(end, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        player = subprocess.Popen([*by, *self.command(*words)], env=dict(self.env, TERM=kind), stdin=end, stdout=end, stderr=end,
                                  start_new_session=True, preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        self.addCleanup(lambda: (player.kill(), player.wait(), os.close(master)))
        self.addCleanup(lambda: end in self.open_ends and os.close(end))
        self.open_ends.add(end)
        return player, master, end

    def type_keys(self, terminal, *steps):
        """Waits for what is said, and then types, in turn."""
        said = ""
        for expected, keys in steps:
            while not (found := re.search(expected, said, re.S)):
                self.assertTrue(select.select([terminal], [], [], 60)[0], f"{expected} did not come: {said}")
                said += os.read(terminal, 65536).decode(errors="replace")
            said = said[found.end():]
            os.write(terminal, keys.encode())

    @staticmethod
    def reads_lines(end):
        return bool(termios.tcgetattr(end)[3] & termios.ICANON)

    def on_terminal(self, *words, **options):
        """What a command writes to a terminal."""
        player, master, end = self.start_on_terminal(*words, **options)
        os.close(end)
        self.open_ends.remove(end)
        text = b""
        try:
            while block := os.read(master, 65536):
                text += block
        except OSError:  # the other end is closed
            pass
        player.wait(timeout=100)
        return text.decode()

    def copy_music(self):
        shutil.copytree(MUSIC, self.music)
        self.run_player("library", "add", self.music)

    def tracks(self, query="", profile=None):
        return json.loads(self.run_player("list", "--json", query, profile=profile).stdout)

    def track(self, path, profile=None):
        found = [t for t in self.tracks(profile=profile) if t["path"] == str(path)]
        self.assertEqual(len(found), 1, path)
        return found[0]

    def play_count(self, path):
        return self.track(path)["play_count"] or 0

    def play(self, *paths, **options):
        return self.run_player("play", "--audio", "null", "--fast", *paths, **options)

    def records(self, profile=None):
        """Every record of the statistics as it is stored: count, first, last, added and rating by key."""
        dump = self.run_player("index", "dump", "{" + MAPPING + "}", profile=profile).stdout
        return {key: struct.unpack("<QQQQI4x", bytes.fromhex(data)) for _, key, data in map(str.split, dump.splitlines())}

    def files(self, suffix=""):
        return sorted(p for p in self.music.rglob("*" + suffix) if p.is_file())


def tags_of(*paths):
    """What an independent reader sees in the files, by path."""
    # The system's own Python, for which the reader's package is installed.
    out = subprocess.run(["/usr/bin/python3", FIXTURES / "show_tags.py", *map(str, paths)], capture_output=True, text=True,
                         check=True)
    return json.loads(out.stdout)


def samples_of(path):
    """A digest of the decoded audio."""
    if str(path).endswith(".ape"):
        # Made by a script, of frames that no decoder accepts: what stands before the tag is compared instead.
        return pathlib.Path(path).read_bytes().split(b"APETAGEX")[0]
    done = subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-i", str(path), "-map", "0:a", "-f", "md5", "-"],
                          capture_output=True, text=True, check=False)
    return done.stdout

"""Conversations with the player: in transcripts/, the lines after `$ ` are given to a shell, and the others are what came of them.

Each file is a conversation of its own, on a library of the sample music, in the folder of the music. What is printed on standard
error follows what is on standard output, after `! `; last comes an exit status other than 0. Times, keys and the paths of
this run are shown as TIME, KEY, FOLDER. `update` in the environment writes down what was said instead of comparing it.
"""
import difflib
import os
import pathlib
import re
import subprocess

from player import PlayerTest

SHELL = r"""
player() { "$OSTREVAN" --profile "${P:-../profile}" "$@"; }
play() { player play --audio null --fast "$@"; }
retag() { ffmpeg -v error -i "$1" -c copy -metadata title=Elsewhere ../retagged.flac && mv ../retagged.flac "$1"; }
statistics_in() { ffprobe -v error -show_entries format_tags:stream_tags "$1" | grep -ioE '(play_count|rating|\w+_timestamp)=[0-9]'; }
sql() { python3 -c 'import sqlite3, sys
with sqlite3.connect("../profile/" + sys.argv[1] + ".sqlite") as database: list(map(database.execute, sys.argv[2:]))' "$@"; }
"""


class Transcripts(PlayerTest):
    def said(self, line):
        done = subprocess.run(["bash", "-c", SHELL + line], env=self.env, cwd=self.music, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=100, check=False)
        text = "".join(done.stdout.splitlines(True) + ["! " + said for said in done.stderr.splitlines(True)])
        for pattern, shown in ((re.escape(str(self.folder)), "FOLDER"), (r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d", "TIME"),
                               (r"\b[0-9a-f]{16}\b", "KEY"), (r"[ \t]+$", "")):
            text = re.sub(pattern, shown, text, flags=re.M)
        return text + (f"= {done.returncode}\n" if done.returncode else "")

    def hold(self, path):
        self.copy_music()
        written = path.read_text()
        heard = ""
        for step in re.findall(r"^\$ .*\n(?:> .*\n)*|^#.*\n|^\n", written, re.M):
            heard += step + (self.said(re.sub("^[$>] ", "", step, flags=re.M)) if step[0] == "$" else "")
        if "update" in os.environ:
            path.write_text(heard)
        self.assertEqual(heard, written, "\n" + "".join(difflib.unified_diff(
            written.splitlines(True), heard.splitlines(True), "expected", "said")))


for each in sorted((pathlib.Path(__file__).parent / "transcripts").glob("*.txt")):
    setattr(Transcripts, "test_" + each.stem, lambda self, path=each: self.hold(path))

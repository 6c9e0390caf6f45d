"""Files that are made to do harm: no signal, no hang, bounded memory; the bad one is named, the good one beside it works."""
import resource
import shutil
import subprocess

import hostile_files
from player import AUDIO, PlayerTest

MEMORY = 1500 << 20
SECONDS = 40  # of the processor


def limit():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CPU, (SECONDS, SECONDS))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class HostileFiles(PlayerTest):
    def setUp(self):
        super().setUp()
        self.music.mkdir()
        self.good = self.music / "good.flac"
        shutil.copy(AUDIO / "flac.flac", self.good)

    def limited(self, *words):
        """Runs a command; whatever it makes of the files, it ends by itself."""
        process = self.start(*words, preexec_fn=limit)
        try:
            out, errors = process.communicate(timeout=100)
        except subprocess.TimeoutExpired:
            process.kill()
            raise
        self.assertIn(process.returncode, (0, 1), f"{words[:3]}\n{out[-2000:]}\n{errors[-2000:]}")
        self.assertNotIn("std::", errors)
        return process.returncode, out, errors

    def test_each_is_refused_by_name_or_used_and_the_good_one_is_added(self):
        expected = hostile_files.make(self.music, AUDIO)
        status, _, errors = self.limited("library", "add", self.music)
        self.assertEqual(status, 1)
        paths = {track["path"] for track in self.tracks()}
        self.assertIn(str(self.good), paths)
        for path, refused in expected.items():
            with self.subTest(path=path):
                named = any(str(path) + ": " in line and line.split(": ")[-1] for line in errors.splitlines())
                self.assertNotEqual(named, str(path) in paths)
                if refused is not None:
                    self.assertEqual(named, refused)
        used = [path for path in expected if str(path) in paths]
        self.limited("format", "%title%", *used)
        self.assertIn("Counted", self.limited("play", "--audio", "null", "--fast", *used, self.good)[1])

        for path in expected:
            with self.subTest(edited=path):
                content = path.read_bytes()
                status, _, errors = self.limited("edit", "--set", "play_count=3", path)
                self.assertEqual(status == 0, path.read_bytes() != content)
                if path not in used or path.name == "table.m4a":
                    self.assertEqual(status, 1)
                    self.assertIn(f"{path}: ", errors)
                    self.limited("play", "--audio", "null", "--fast", path)
        self.assertEqual({path.name for path in self.files()}, {path.name for path in (*expected, self.good)})

        twice, short = self.music / "twice.wma", self.music / "short.mp3"
        size = twice.stat().st_size
        self.assertEqual(self.limited("edit", "--set", "play_count=4", twice, short)[0], 0)
        self.assertLess(twice.stat().st_size, size + 100)

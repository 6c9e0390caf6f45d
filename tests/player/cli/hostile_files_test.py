"""Files that are made to do harm: no signal, no hang, bounded memory; the bad one is named, the good one beside it works."""
import os
import pty
import resource
import shutil
import socket
import subprocess
import unittest

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

    def test_a_script_named_as_music_reaches_nothing(self):
        listener = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(listener.close)
        listener.setblocking(False)
        address = "http://127.0.0.1:%d/x.mp3" % listener.getsockname()[1]
        pipe = self.folder / "pipe.flac"  # opening it would wait for ever
        os.mkfifo(pipe)
        sound = (AUDIO / "id3v24.mp3").read_bytes()[-20000:]  # or the reader of tags would refuse them first
        scripts = []
        for number, target in enumerate((address, str(pipe))):
            for name, text in (("edl", "# mpv EDL v0\n%s,0,5\n"), ("m3u", "#EXTM3U\n#EXTINF:5,x\n%s\n"),
                               ("hls", "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\n%s\n#EXT-X-ENDLIST\n"),
                               ("concat", "ffconcat version 1.0\nfile '%s'\n"), ("pls", "[playlist]\nFile1=%s\n")):
                scripts.append(self.music / f"{name}{number}.mp3")
                scripts[-1].write_bytes((text % target).encode() + sound)
        out = self.limited("play", "--audio", "null", "--fast", *scripts, self.good)[1]
        self.assertIn("Number flac", out)  # the last one is reached
        with self.assertRaises(BlockingIOError):
            listener.accept()

    def test_a_sheet_is_not_multiplied(self):
        text = "x" * 400000
        sheet = f'TITLE "{text}"\nREM GENRE "{text}"\n' + 'FILE "good.flac" WAVE\n' + "".join(
            f"  TRACK {n:02} AUDIO\n    INDEX 01 00:{n // 75:02}:{n % 75:02}\n" for n in range(1, 100))
        (self.music / "sheet.cue").write_text(sheet)
        status = self.limited("library", "add", self.music)[0]
        self.assertEqual(len(self.tracks()), 1 if status else 99)
        self.assertLess(sum(each.stat().st_size for each in self.profile.iterdir()), 20 << 20)

    def test_names_and_tags_do_not_reach_the_terminal_as_commands(self):
        bad = [path for path in hostile_files.make(self.music, AUDIO) if "owned" in path.name or path.name == "says.flac"]
        self.limited("library", "add", self.music)
        for words in (("play", "--audio", "null", "--fast"), ("format", "%title%"), ("list", "--format", "%title%"), ("list",)):
            reader, terminal = pty.openpty()
            process = subprocess.Popen(self.command(*words, *(bad if words[0] in ("play", "format") else [])), env=self.env,
                                       stdin=subprocess.DEVNULL, stdout=terminal, stderr=terminal)
            os.close(terminal)
            shown = b""
            try:
                while part := os.read(reader, 65536):
                    shown += part
            except OSError:
                pass  # the end of a terminal
            os.close(reader)
            process.wait(110)
            with self.subTest(words=words):
                self.assertIn(b"owned", shown)
                for command in (b"\x1b]", b"\x07", b"\xc2\x9b", b"\xe2\x80\xae"):
                    self.assertNotIn(command, shown)


if __name__ == "__main__":
    unittest.main()

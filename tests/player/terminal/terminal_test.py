"""What a terminal shows and asks: names and tags, progress, dialogs, and names of files."""
import os
import pty
import subprocess

from player import MENU, PlayerTest

EVIL = "E\x1b[31mvil\u009b\u202ex"
EXPORT = MENU + "Export statistics..."


class Terminal(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.first = self.files()[0]
        self.file = self.folder / "stats.xml"

    def test_names_and_tags_are_shown_on_a_terminal_and_passed_on_elsewhere(self):
        self.run_player("edit", self.first, "--set", "title=" + EVIL)
        no_audio = self.music / (EVIL + ".mp3")
        no_audio.write_text("no sound")
        for words in (("format", "%title%", self.first), ("list",), ("play", "--audio", "null", "--fast", self.first, no_audio),
                      ("playlist", "create", EVIL, self.first), ("library", "rescan")):
            text = self.on_terminal(*words, kind="dumb")
            self.assertIn("E<U+001B>[31", text)
            for command in "\x1b\x9b\u202e":
                self.assertNotIn(command, text)
        self.assertEqual(self.run_player("format", "%title%", self.first).stdout, EVIL + "\n")
        self.assertTrue(all(len(line) <= 80 for line in self.on_terminal("list").splitlines()))

    def type_into(self, *words, typed, status, profile=None):
        """Runs a command on a terminal on which these lines have been typed; gives what it says."""
        terminal, end = pty.openpty()
        os.write(terminal, typed.encode())
        done = subprocess.run(self.command(*words, profile=profile), env=self.env, stdin=end, capture_output=True, text=True,
                              timeout=110, check=False)
        os.close(terminal)
        os.close(end)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stderr

    def test_typed_answers_change_the_dialog_and_name_the_file(self):
        said = self.type_into("menu", EXPORT, typed=f"2 4\n99\n6 7\n\n{self.folder}/stats\n", status=0)
        self.assertIn("     1 (*) Statistics of current Media Library content only\n     2 ( ) Full backup\n", said)
        self.assertIn("     1 ( ) Statistics of current Media Library content only\n     2 (*) Full backup\n", said)
        self.assertIn("4 [ ] First played time", said)
        self.assertIn('"99" is none of these', said)
        entry = self.file.read_text().splitlines()[1]
        self.assertIn('Count="0"', entry)
        self.assertNotIn("Added", entry)
        said = self.type_into("menu", EXPORT, typed="1\nc\n", status=3, profile=self.folder / "empty")
        self.assertIn("content only (greyed)\n     2 (*) Full backup\n", said)
        self.assertIn('"1" is none of these', said)

    def test_what_is_declined_leaves_everything_as_it_is(self):
        self.file.write_text("precious")
        for typed in ("c\n", "\x04", "o\n\nc\n", f"o\n{self.file}\nn\nc\n"):
            with self.subTest(typed=typed):
                self.type_into("menu", EXPORT, typed=typed, status=3)
        self.assertEqual(self.file.read_text(), "precious")
        said = self.type_into("menu", EXPORT, typed=f"o\n{self.file}\nn\no\n{self.file}\ny\n", status=0)
        self.assertIn(f"{self.file} is there already. Replace it?", said)
        self.assertIn("</PlaybackStatistics>", self.file.read_text())

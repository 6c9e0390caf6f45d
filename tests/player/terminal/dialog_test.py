"""Dialogs and names of files: asked on a terminal, answered on the command line, or declined by nobody."""
import os
import pty
import signal
import subprocess

from player import PlayerTest

EXPORT = "Library/Playback Statistics/Export statistics..."


class Dialogs(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.file = self.folder / "stats.xml"

    def type_into(self, *words, typed, status, profile=None):
        """Runs a command on a terminal on which these lines have been typed; gives what it says."""
        terminal, end = pty.openpty()
        os.write(terminal, typed.encode())
        done = subprocess.run(self.command(*words, profile=profile), env=self.env, stdin=end, capture_output=True, text=True, timeout=110,
                              check=False)
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

    def test_what_is_declined_leaves_everything_as_it_is(self):
        self.file.write_text("precious")
        for typed in ("c\n", "\x04", "o\n\nc\n", f"o\n{self.file}\nn\nc\n"):
            with self.subTest(typed=typed):
                self.type_into("menu", EXPORT, typed=typed, status=3)
        self.type_into("--no", "menu", EXPORT, typed="", status=3)
        self.assertEqual(self.file.read_text(), "precious")
        said = self.type_into("menu", EXPORT, typed=f"o\n{self.file}\nn\no\n{self.file}\ny\n", status=0)
        self.assertIn(f"{self.file} is there already. Replace it?", said)
        self.assertIn("</PlaybackStatistics>", self.file.read_text())

    def test_an_interrupt_cancels(self):
        terminal, end = pty.openpty()
        player = subprocess.Popen(self.command("menu", EXPORT), env=self.env, stdin=end, stderr=subprocess.PIPE, text=True)
        while "Rating" not in player.stderr.readline():
            pass
        player.send_signal(signal.SIGINT)
        player.communicate(timeout=100)
        self.assertEqual(player.returncode, 130)
        os.close(terminal)
        os.close(end)

    def test_labels_on_the_command_line_fill_the_dialog(self):
        fields = ["--uncheck", "times", "--uncheck", "first", "--uncheck", "last played time", "--uncheck", "added", "--uncheck",
                  "RATING"]
        cases = [
            (0, "", ["--yes", "--check", "full b", "--uncheck", "rating"]),
            (1, "does not take OK as it stands", ["--yes", *fields]),
            (2, 'no label fits "nosuch". There is: Statistics of current', ["--yes", "--check", "nosuch"]),
            (2, 'more than one label fits "time"', ["--yes", "--uncheck", "time"]),
            (2, '"Full backup" is one of several', ["--yes", "--uncheck", "full backup"]),
            (3, "Nobody is there to answer", []),
            (3, "", ["--no"]),
        ]
        for status, reason, words in cases:
            with self.subTest(words=words):
                self.file.unlink(missing_ok=True)
                said = self.run_player("--file", self.file, *words, "menu", EXPORT, status=status).stderr
                self.assertIn(reason, said)
                self.assertEqual(self.file.exists(), status == 0)
        self.assertIn("use --file PATH", self.run_player("--yes", "menu", EXPORT, status=3).stderr)

    def test_a_greyed_control_cannot_be_chosen(self):
        empty = self.folder / "empty"
        library = "Statistics of current Media Library content only"
        said = self.type_into("menu", EXPORT, typed="1\nc\n", status=3, profile=empty)
        self.assertIn(f"1 ( ) {library} (greyed)\n     2 (*) Full backup\n", said)
        self.assertIn('"1" is none of these', said)
        self.assertIn("is greyed", self.run_player("--yes", "--check", library, "menu", EXPORT, status=2, profile=empty).stderr)

    def test_answers_that_nothing_asks_for_are_not_passed_over(self):
        self.run_player("--check", "Rating", "list", status=2)
        self.run_player("--file", self.file, "menu", status=2)
        said = self.run_player("--file", self.file, "--check", "Rating", "menu", "Library/Playback Statistics/Show recently added")
        self.assertIn("--check and --uncheck were not used", said.stderr)
        self.assertIn("--file was not used", said.stderr)

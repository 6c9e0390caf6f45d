"""What reaches the terminal, a pipe, and whoever looks at the exit status."""
import os
import subprocess
import wave

from player import PlayerTest

EVIL = "E\x1b[31mvil\u009b\u202ex"


class Terminal(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.first = self.files()[0]

    def test_names_and_tags_are_shown_on_a_terminal_and_passed_on_elsewhere(self):
        said = self.run_player("edit", self.first, "--set", "title=" + EVIL).stderr
        self.assertIn("1 file edited", said)
        shown = "E<U+001B>[31mvil<U+009B><U+202E>x"
        for words in (("format", "%title%"), ("list",), ("play", "--audio", "null", "--fast"), ("playlist", "create", EVIL)):
            text = self.on_terminal(*words, *([] if words == ("list",) else [self.first]), kind="dumb")
            self.assertIn(shown[:12], text)
            self.assertNotIn("\x1b", text)
        self.assertEqual(self.run_player("format", "%title%", self.first).stdout, EVIL + "\n")
        self.assertTrue(all(len(line) <= 80 for line in self.on_terminal("list").splitlines()))

    def test_progress_takes_one_row_and_is_erased(self):
        self.run_player("edit", self.first, "--set", "title=" + "long " * 30)
        pieces = self.on_terminal("play", "--audio", "null", "--fast", self.first, self.first).split("\r\x1b[K")
        self.assertGreater(len(pieces), 2)
        for piece in pieces[1:]:
            self.assertTrue("\n" in piece or len(piece) < 80, piece)
        self.assertNotRegex(pieces[-1], r"\d of \d+ s")

    def test_what_cannot_be_written_is_a_failure(self):
        for words in (("list",), ("list", "--json"), ("--version",), ("list", "--help")):
            with open("/dev/full", "wb") as full:
                done = subprocess.run(self.command(*words), env=self.env, stdout=full, stderr=subprocess.PIPE, check=False)
            self.assertEqual((done.returncode, b"No space left" in done.stderr), (1, True), words)
        reader, writer = os.pipe()
        os.close(reader)
        done = subprocess.run(self.command("list"), env=self.env, stdout=writer, stderr=subprocess.PIPE, check=False)
        os.close(writer)
        self.assertEqual((done.returncode, done.stderr), (1, b""))

    def test_words_that_fit_nothing_are_named_with_what_is_near(self):
        cases = [
            ('no command "lst". Did you mean "list"?', "lst"), ('no command "nosuch"', "nosuch", "--help"),
            ('no option "--jsn". Did you mean "--json"?', "list", "--jsn"), ("a word too many", "components", "foo"),
            ('Did you mean "artist"?', "list", "%artst% IS x"), ("no track has a field %mood%", "list", "SORT BY mood"),
            ('Did you mean "Export statistics..."?', "menu", "Exprt"), ("More than one command", "menu", "recently"),
            ("cannot be switched", "menu", "export", "on"), ("<not set>, 1, 2", "rate", "7", self.first),
        ]
        for said, *words in cases:
            with self.subTest(words=words):
                self.assertIn(said, self.run_player(*words, status=2).stderr)

    def test_short_ways_do_what_they_say(self):
        self.assertIn("Rating/4 is done for 1 track", self.run_player("rate", "4", self.first).stderr)
        self.run_player("context", "rating/+", self.first)
        track = self.track(self.first)
        self.assertEqual((track["rating"], track["length"], track["track"], track["disc"]), (5, 4.0, 1, None))
        self.run_player("rate", "none", self.first)
        self.assertIsNone(self.track(self.first)["rating"])
        for word in ("off", "off", "on"):
            self.assertEqual(self.run_player("menu", "monitor", word).stdout, f"Monitor playing tracks: {word}\n")
        self.assertEqual(len(self.tracks("SORT BY title LIMIT 3")), 3)
        self.assertEqual([t["title"] for t in self.tracks("sort by title limit 1")], ["First Ferry"])

    def test_lengths_are_rounded_and_a_folder_is_not_the_one_that_begins_like_it(self):
        for name, frames in (("A/short.wav", 11_200), ("Alpha/long.wav", 12_800)):
            path = self.folder / "new" / name
            path.parent.mkdir(parents=True)
            with wave.open(str(path), "wb") as file:
                file.setparams((1, 2, 8000, 0, "NONE", ""))
                file.writeframes(bytes(2 * frames))
        self.run_player("library", "add", self.folder / "new")
        self.assertEqual(self.run_player("format", "%title% %length%", self.folder / "new" / "A").stdout, "short 0:01\n")
        self.assertEqual(self.run_player("format", "%title% %length%", self.folder / "new" / "Alpha").stdout, "long 0:02\n")

    def test_many_edits_and_a_removed_playlist_ask_first(self):
        for number in range(100):
            os.link(self.first, self.music / f"{number}{self.first.suffix}")
        self.run_player("library", "rescan")
        self.assertIn("You're about to edit", self.run_player("edit", "--where", "ALL", "--set", "a=b", status=3).stderr)
        self.run_player("edit", "--where", "ALL LIMIT 2", "--set", "a=b")
        self.assertEqual(len(self.tracks("a is b")), 2)

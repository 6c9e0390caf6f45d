"""Each wrong input gets a message that names it, the right exit status, and changes nothing."""
import os
import shutil

from player import PlayerTest

NO_GUID = "{00000000-0000-0000-0000-000000000000}"


class WrongInput(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.first = self.files()[0]

    def test_each_is_named_with_its_exit_status(self):
        text = self.folder / "notes.mp3"
        text.write_text("this is no audio at all")
        absent = self.folder / "absent.flac"
        cases = [
            (1, "absent.flac", "play", absent), (1, "notes.mp3", "play", text),
            (1, "absent", "library", "add", self.folder / "absent"), (1, "notes.mp3", "library", "add", text),
            (1, "already", "library", "add", self.music), (1, "absent", "library", "remove", self.folder / "absent"),
            (1, str(self.folder / "run"), "play", self.folder / "run"), (2, "^", "list", "%title% IS"),
            (2, "^", "list", "--format", "$nosuch(%title%)"), (2, "Play Count", "list", "--column", "Nosuch"),
            (2, "Play Count", "list", "--sort", "Nosuch"),
            (2, "FIELD=VALUE", "edit", self.first, "--set", "title"), (2, "--set", "edit", self.first),
            (2, "at least one track", "play"), (2, "GUID", "index", "dump", "xyz"), (2, "no setting", "settings", "nosuch"),
            (2, "neither on nor off", "settings", "Automatically", "perhaps"),
            (2, "Rating", "context", "Playback Statistics/Nosuch", self.first),
            (2, "submenu", "context", "Playback Statistics/Rating", self.first), (2, "needs a command", ),
            *((2, names, "menu", path) for names, path in (("Playback Statistics", "Library/Nosuch"), ("submenu", "Library"),
                                                           ("no command", NO_GUID), ("Library", ""))),
            (1, "nosuch", "playlist", "show", "nosuch"),
        ]
        before = self.tracks()
        for status, names, *words in cases:
            with self.subTest(words=words):
                done = self.run_player(*words, status=status)
                self.assertIn(names, done.stderr + done.stdout)
        self.assertEqual(self.tracks(), before)

    def test_a_file_that_is_no_audio_does_not_stop_the_scan_or_the_list(self):
        (self.music / "garbage.flac").write_bytes(b"fLaC" + bytes(100))
        (self.music / "empty.mp3").touch()
        os.mkfifo(self.music / "pipe.mp3")
        scanned = self.run_player("library", "rescan", status=1)
        self.assertIn("garbage.flac", scanned.stderr)
        self.assertIn("empty.mp3", scanned.stderr)
        self.assertNotIn("garbage", self.run_player("list").stdout)
        cover = self.music / "cover.jpg"
        cover.touch()
        played = self.play(cover, self.music / "garbage.flac", self.first, status=1)
        self.assertEqual(played.stdout.count("Counted"), 1)
        self.assertIn("cover.jpg is no audio file", played.stderr)
        self.run_player("edit", self.first, self.music / "garbage.flac", "--set", "title=x", status=1)
        self.assertEqual(self.run_player("format", "%title%", cover, self.first).stdout, "Opening Hour\n")

    def test_a_renamed_component_is_reported(self):
        folder = self.folder / "renamed"
        folder.mkdir()
        source = os.path.join(os.path.dirname(os.environ["OSTREVAN"]), "components", "quorvel.dll")
        shutil.copy(source, folder / "other.dll")
        self.assertIn("quorvel.dll", self.run_player("--components", folder, "list", status=1).stderr)

"""Ratings, copy and paste, the menu as a user sees it."""

from player import PlayerTest

RATING = "Playback Statistics/Rating/"
COPY = "Playback Statistics/Copy statistics"
PASTE = "Playback Statistics/Paste statistics"


class ContextMenu(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.one, self.two, self.three = self.files()[:3]

    def rate(self, which, *tracks):
        self.run_player("context", RATING + which, *tracks)

    def ratings(self, *paths):
        return [self.track(path)["rating"] for path in paths]

    def test_ratings_by_name_by_step_and_by_identifier(self):
        self.rate("3", self.one, self.two)
        self.rate("+", self.one)
        self.assertEqual(self.ratings(self.one, self.two, self.three), [4, 3, None])
        self.rate("-", self.three)
        self.assertEqual(self.ratings(self.three), [2])
        menu = self.run_player("context", self.two).stdout
        self.assertIn("    3 (*)\n", menu)
        self.assertNotIn("(*)", self.run_player("context", self.one, self.two).stdout)
        self.run_player("context", "{9E15E290-2529-40C9-B6F2-F71778871855}", self.one)
        self.run_player("context", "{1E33065E-B6BC-4970-8035-D760695C3F90}", self.two)
        self.assertEqual(self.ratings(self.one, self.two), [5, None])
        self.run_player("context", "{00000000-0000-0000-0000-000000000000}", self.one, status=2)

    def test_properties_and_columns_show_the_rating(self):
        self.play(self.one, self.one)
        self.rate("4", self.one)
        section = self.run_player("properties", self.one).stdout
        self.assertIn("Playback Statistics\n  Played        2 times\n", section)
        self.assertIn("★★★★☆", section)
        self.assertIn("nothing recorded", self.run_player("properties", "--where", "%title% IS none").stdout)
        rows = self.run_player("list", "%rating% PRESENT", "--column", "Rating").stdout.splitlines()
        self.assertEqual(rows[2:], ["★★★★☆"])

    def test_copy_and_paste_between_profiles(self):
        self.play(self.one)
        self.rate("5", self.one)
        self.assertIn("Paste statistics (greyed)", self.run_player("context", self.one).stdout)
        self.run_player("context", COPY, self.one, self.two)
        other = self.folder / "other"
        self.run_player("library", "add", self.music, profile=other)
        mismatch = self.run_player("--yes", "context", PASTE, self.three, profile=other, status=1)
        self.assertIn("Clipboard contains information for 2 tracks.", mismatch.stderr)
        self.run_player("--no", "context", PASTE, self.two, self.three, profile=other, status=3)
        self.assertIsNone(self.track(self.two, profile=other)["rating"])
        self.run_player("--yes", "context", PASTE, self.two, self.three, profile=other)
        pasted, copied = self.track(self.two, profile=other), self.track(self.one)
        for field in ("play_count", "first_played", "last_played", "added", "rating"):
            self.assertEqual(pasted[field], copied[field])

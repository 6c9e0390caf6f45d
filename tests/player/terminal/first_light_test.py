"""A played file becomes a number, and stays with its track."""

from player import PlayerTest


class FirstLight(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.flac = next(path for path in self.files() if path.stem == "01 first ferry")

    def test_plays_of_every_format_are_counted_and_files_stay_as_they_are(self):
        before = {path: path.read_bytes() for path in self.files()}
        done = self.play(*before, self.flac)
        self.assertEqual(done.stdout.count("Counted: "), len(before) + 1)
        for track in self.tracks():
            twice = track["path"] == str(self.flac)
            self.assertEqual(track["play_count"], 2 if twice else 1)
            self.assertLessEqual(track["added"], track["first_played"])
            self.assertLessEqual(track["first_played"], track["last_played"])
            self.assertEqual(len(track["key"]), 16)
        self.assertEqual({path: path.read_bytes() for path in self.files()}, before)
        table = self.run_player("list", "--column", "title", "--column", "Play Count").stdout
        self.assertRegex(table, r"First Ferry +2\n")

    def test_statistics_survive_a_move_and_a_rescan_notices_removed_files(self):
        self.play(self.flac)
        target = self.music / "elsewhere" / "another name.flac"
        target.parent.mkdir()
        self.flac.rename(target)
        self.run_player("library", "rescan")
        self.assertEqual(self.play_count(target), 1)
        target.unlink()
        count = len(self.tracks())
        self.run_player("library", "rescan")
        self.assertEqual(len(self.tracks()), count - 1)

    def test_statistics_follow_an_edit_of_the_title_and_back(self):
        self.play(self.flac)
        key, title = self.track(self.flac)["key"], self.track(self.flac)["title"]
        self.run_player("edit", self.flac, "--set", "title=New Name")
        self.assertNotEqual(self.track(self.flac)["key"], key)
        self.assertEqual(self.track(self.flac)["title"], "New Name")
        self.assertEqual(self.play_count(self.flac), 1)
        self.play(self.flac)
        self.run_player("edit", self.flac, "--set", f"title={title}")
        self.assertEqual(self.track(self.flac)["key"], key)
        self.assertEqual(self.play_count(self.flac), 2)

    def test_statistics_follow_a_retag_by_another_program(self):
        self.play(self.flac)
        self.retag(self.flac)
        self.run_player("library", "rescan")
        self.assertEqual(self.track(self.flac)["title"], "Elsewhere")
        self.assertEqual(self.play_count(self.flac), 1)

    def test_a_cue_sheet_gives_subsongs_with_statistics_of_their_own(self):
        cue = self.flac.with_suffix(".cue")
        cue.write_text(f'PERFORMER "P"\nTITLE "A"\nFILE "{self.flac.name}" WAVE\n'
                       '  TRACK 01 AUDIO\n    TITLE "One"\n    INDEX 01 00:00:00\n'
                       '  TRACK 02 AUDIO\n    TITLE "Two"\n    INDEX 01 00:02:00\n')
        self.run_player("library", "rescan")
        self.play(f"{cue}|2")
        counts = {t["title"]: t["play_count"] for t in self.tracks() if t["path"] == str(cue)}
        self.assertEqual(counts, {"One": None, "Two": 1})
        refused = self.run_player("edit", f"{cue}|1", "--set", "title=x", status=1)
        self.assertIn("CUE sheet", refused.stderr)

    def test_queries_formats_and_playlists(self):
        self.play(self.flac)
        self.assertEqual([t["path"] for t in self.tracks("%last_played% DURING LAST 1 WEEK SORT DESCENDING BY %last_played%")],
                         [str(self.flac)])
        self.assertEqual(len(self.tracks("NOT %play_count% GREATER 0")), len(self.files()) - 1)
        line = self.run_player("format", "%title%[ (%play_count%)][ %rating%]", self.flac).stdout
        self.assertEqual(line, "First Ferry (1)\n")
        self.run_player("playlist", "create", "Played", "--where", "%play_count% GREATER 0")
        self.assertIn("First Ferry", self.run_player("playlist", "show", "Played").stdout)
        self.run_player("playlist", "remove", "Played", status=3)
        self.run_player("--yes", "playlist", "remove", "Played")
        self.assertNotIn("Played", self.run_player("playlist", "list").stdout)

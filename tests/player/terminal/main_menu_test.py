"""The main menu: its marks, the switch, the searches for what is recent."""
import time

from player import MENU, PlayerTest, moment

PLAYED = MENU + "Show recently played"
ADDED = MENU + "Show recently added"
MONITOR = MENU + "Monitor playing tracks"
HOUR, DAY, WEEK = 3600, 24 * 3600, 7 * 24 * 3600


class MainMenu(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.keys = {t["title"]: t["key"] for t in self.tracks()}

    def titles(self, command):
        lines = self.run_player("menu", command).stdout.splitlines()[2:]
        return [title for line in lines for title in self.keys if title in line]

    def set_times(self, field, seconds_ago):
        now = time.time()
        self.import_records({self.keys[title]: {"Count": 1, field: moment(now - ago)} for title, ago in seconds_ago.items()})

    def test_the_menu_shows_marks_and_greys_what_needs_a_library(self):
        text = ("Library/\n  Playback Statistics/\n    Show recently played{0}\n    Show recently added{0}\n"
                "    Monitor playing tracks [x]\n    Export statistics...\n    Import statistics...\n")
        self.assertEqual(self.run_player("menu").stdout, text.format(""))
        empty = self.folder / "empty"
        self.assertEqual(self.run_player("menu", profile=empty).stdout, text.format(" (greyed)"))
        self.assertIn("is greyed", self.run_player("menu", PLAYED, status=1, profile=empty).stderr)
        self.assertIn("is greyed", self.run_player("menu", "{143BCCD5-28BE-47A6-BEE0-DFF823907BB0}", status=1,
                                                   profile=empty).stderr)

    def test_the_switch_and_its_mark_outlast_the_process(self):
        first = self.files()[0]
        self.run_player("menu", MONITOR)
        self.assertIn("    Monitor playing tracks\n", self.run_player("menu").stdout)
        self.play(first)
        self.assertEqual(self.play_count(first), 0)
        self.run_player("menu", "{764E7F3A-7643-4126-9FA2-2C3AC3671589}")
        self.assertIn("    Monitor playing tracks [x]\n", self.run_player("menu").stdout)
        self.play(first)
        self.assertEqual(self.play_count(first), 1)

    def test_recent_tracks_are_those_of_one_week_the_latest_first(self):
        ages = {"First Ferry": 60, "Low Water": 3 * DAY, "Last Tram": 5, "Opening Hour": WEEK - HOUR // 2,
                "Home before Rain": WEEK + HOUR // 2, "Trois cuillères": 8 * DAY}
        recent = ["Last Tram", "First Ferry", "Low Water", "Opening Hour"]
        others = {title: 30 * DAY for title in self.keys if title not in ages}
        # Three days ago the clocks were set forward; or back.
        day = time.gmtime(time.time() - 3 * DAY).tm_yday - 1
        elsewhen = (day + 100) % 365
        for zone in ("UTC", f"AAA0BBB-1,{day}/0,{elsewhen}/0", f"AAA0BBB-1,{elsewhen}/0,{day}/0"):
            with self.subTest(zone=zone):
                self.env["TZ"] = zone
                self.set_times("LastPlayed", ages)
                self.assertEqual(self.titles(PLAYED), recent)
                self.set_times("Added", {**ages, **others})
                self.assertEqual(self.titles(ADDED), recent)

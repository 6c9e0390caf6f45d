"""Statistics leave as an XML file and come back, seen by an independent reader; whatever goes wrong, nothing is lost."""
import os
import select
import signal
import sqlite3
import struct
import time
import xml.etree.ElementTree

from player import FIELDS, MAPPING, MENU, PlayerTest

EXPORT = MENU + "Export statistics..."
IMPORT = MENU + "Import statistics..."
NOT_RATED = 0xFFFFFFFF
DAY = 24 * 3600


def records_in(path):
    """The records of a file: the numbers of their fields by key, absent ones as they are stored."""
    root = xml.etree.ElementTree.parse(path).getroot()
    assert (root.tag, root.attrib) == ("PlaybackStatistics", {"Version": "3.0", "Mapping": MAPPING})
    return {entry.get("ID"): tuple(int(entry.get(name, NOT_RATED if name == "Rating" else 0)) for name in FIELDS)
            for entry in root}


def items_in(path):
    return {entry.get("ID"): [item.get("Path") + "|" + item.get("Subsong", "0") for item in entry]
            for entry in xml.etree.ElementTree.parse(path).getroot()}


class StatisticsFile(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.first, self.second = self.files()[:2]
        self.play(self.first, self.first, self.second)
        self.run_player("context", "Playback Statistics/Rating/4", self.second)
        self.file = self.folder / "stats.xml"
        self.other = self.folder / "other"

    def export(self, *words, path=None, **options):
        return self.run_player("--yes", "--file", path or self.file, *words, "menu", EXPORT, **options)

    def load(self, *words, path=None, **options):
        return self.run_player("--yes", "--file", path or self.file, *words, "menu", IMPORT, **options)

    def test_a_backup_holds_every_record_and_restores_it_in_another_profile(self):
        self.run_player("edit", self.first, "--set", 'title=Fish & "Chips" <été>')
        (self.music / "gone.flac").write_bytes(self.second.read_bytes())
        self.run_player("library", "rescan")
        self.second.unlink()
        self.run_player("library", "rescan")
        self.export("--check", "Full backup")
        stored = self.records()
        self.assertEqual(records_in(self.file), stored)
        items = {}
        for track in self.tracks():
            items.setdefault(track["key"], []).append(f"{track['path']}|{track['subsong']}")
        self.assertEqual({key: paths for key, paths in items_in(self.file).items() if paths}, items)

        self.run_player("library", "add", self.music, profile=self.other)
        for _ in range(2):
            self.load(profile=self.other)
            self.assertEqual(self.records(profile=self.other), stored)
            again = self.folder / "again.xml"
            self.export("--check", "Full backup", path=again, profile=self.other)
            self.assertEqual(again.read_bytes(), self.file.read_bytes())

    def test_recent_tracks_are_those_of_one_week_the_latest_first(self):
        ages = {"First Ferry": 60, "Low Water": 3 * DAY, "Last Tram": 5, "Opening Hour": 7 * DAY - 1800,
                "Home before Rain": 7 * DAY + 1800, "Trois cuillères": 8 * DAY, "The Other Umbrella": 30 * DAY}
        keys = {track["title"]: track["key"] for track in self.tracks()}
        # Three days ago the clocks were set forward; or back.
        day = time.gmtime(time.time() - 3 * DAY).tm_yday - 1
        elsewhen = (day + 100) % 365
        for zone in ("UTC", f"AAA0BBB-1,{day}/0,{elsewhen}/0", f"AAA0BBB-1,{elsewhen}/0,{day}/0"):
            self.env["TZ"] = zone
            now = (time.time() * 10_000_000) + 116_444_736_000_000_000
            entries = "".join(f'<Entry ID="{keys[title]}" LastPlayed="{int(now - ago * 10_000_000)}"/>' for title, ago in ages.items())
            self.file.write_text(f'<PlaybackStatistics Version="3.0" Mapping="{MAPPING}">{entries}</PlaybackStatistics>')
            self.load()
            rows = self.run_player("menu", MENU + "Show recently played").stdout.splitlines()[2:]
            self.assertEqual([next(title for title in keys if title in row) for row in rows],
                             ["Last Tram", "First Ferry", "Low Water", "Opening Hour"], zone)

    def test_an_interrupted_export_stops_and_harms_nothing(self):
        before = self.records()
        database = sqlite3.connect(self.profile / "index.sqlite")
        with database:
            row = database.execute("SELECT index_id, last_seen FROM records").fetchone()
            blob = struct.pack("<QQQQI4x", 1, 2, 3, 4, 5)
            database.executemany("INSERT INTO records VALUES (?, ?, ?, ?)", ((row[0], key, row[1], blob) for key in range(50000)))
        database.close()
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        with open(os.open(pipe, os.O_RDONLY | os.O_NONBLOCK), "rb", buffering=0) as reader:
            player = self.start("--yes", "--file", pipe, "--check", "Full backup", "menu", EXPORT)
            select.select([reader], [], [])
            # It has begun, and cannot end before the pipe is read, which holds far less than the export.
            player.send_signal(signal.SIGINT)
            os.set_blocking(reader.fileno(), True)
            received = reader.read()
        _, said = player.communicate(timeout=100)
        self.assertEqual(player.returncode, 130, said)
        self.assertIn("Interrupted", said)
        self.assertFalse(received.endswith(b"</PlaybackStatistics>"))
        self.assertLessEqual(before.items(), self.records().items())

"""Statistics leave as an XML file and come back, seen by an independent reader; whatever goes wrong, nothing is lost."""
import os
import select
import signal
import sqlite3
import struct
import xml.etree.ElementTree

from player import FIELDS, MAPPING, MENU, PlayerTest

EXPORT = MENU + "Export statistics..."
IMPORT = MENU + "Import statistics..."
NOT_RATED = 0xFFFFFFFF


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

    def test_a_file_cut_short_gives_what_it_still_holds(self):
        self.export()
        whole = self.file.read_bytes()
        records = records_in(self.file)
        self.file.write_bytes(whole[:len(whole) // 2])
        self.assertIn("Playback statistics import failure: XML error", self.load(status=1, profile=self.other).stderr)
        taken = self.records(profile=self.other)
        self.assertEqual(taken, {key: records[key] for key in taken})
        self.assertIn(len(taken), range(1, len(records)))

    def test_a_file_of_paths_reaches_tracks_in_and_outside_the_library(self):
        away = self.folder / "away"
        away.mkdir()
        file = self.files(".flac")[0].rename(away / "song.flac")
        sheet = away / "sheet.cue"
        sheet.write_text('FILE "song.flac" WAVE\n TRACK 01 AUDIO\n TITLE "One"\n INDEX 01 00:00:00\n'
                         ' TRACK 02 AUDIO\n TITLE "Two"\n INDEX 01 00:01:00\n')
        places = [(f'file://{self.first}', 7), (f"{self.music}/../away/song.flac", 8), (f'{sheet}" Subsong="2', 9),
                  (f'{sheet}" Subsong="3', 1), (away / "nosuch.flac", 1), ("http://host/song.mp3", 1), (away, 1)]
        items = "".join(f'<Item Path="{path}" Count="{count}"/>' for path, count in places)
        self.file.write_text(f'<PlaybackStatistics Version="4.0">{items}</PlaybackStatistics>')
        self.load()
        line = self.run_player("format", "%title% %play_count%", self.first, file, f"{sheet}|1", f"{sheet}|2").stdout
        self.assertEqual([text.rsplit(" ")[-1] for text in line.splitlines()], ["7", "8", "0", "9"])

    def test_a_file_of_an_older_mapping_reaches_tracks_of_playlists(self):
        # Without a track number the older rule makes the same key.
        self.run_player("edit", self.second, "--remove", "tracknumber")
        key = self.track(self.second)["key"]
        self.run_player("playlist", "create", "List", self.second, profile=self.other)
        self.import_records({key: {"Count": 5}}, mapping="163FC58C-E2D5-4D3D-BFA4-45AF2C28AC1C", profile=self.other)
        self.assertEqual(self.records(profile=self.other)[key][0], 5)

    def test_what_is_no_statistics_file_changes_nothing(self):
        before = self.records()
        cases = [(b"", 0, "records read: 0"), (b"<svg><g/></svg>", 0, "records read: 0"), (b"<\0", 1, "XML error"),
                 (b'<PlaybackStatistics Version="2.0"/>', 1, "Unsupported format or corrupted file")]
        for content, status, reason in cases:
            with self.subTest(content=content[:50]):
                self.file.write_bytes(content)
                self.assertIn(reason, self.load(status=status).stderr)
                self.assertEqual(self.records(), before)
        os.mkfifo(self.folder / "pipe")
        for path, reason in ((self.folder / "nosuch.xml", "No such file"), (self.music, "length is not known"),
                             (self.folder / "pipe", "length is not known"), ("http://host/stats.xml", "over the network")):
            with self.subTest(path=path):
                refused = self.load(path=path, status=1).stderr
                self.assertIn(f"import failure: {path}", refused)
                self.assertIn(reason, refused)
        self.assertEqual(self.records(), before)

    def test_places_that_cannot_be_written_are_named(self):
        os.mkfifo(self.folder / "pipe")
        for path, reason in (("/dev/full", "No space left"), (self.music, "Is a directory"), ("/sys/stats.xml", ""),
                             (self.folder / "nosuch" / "stats.xml", "No such file"), (self.folder / "pipe", "nobody reads"),
                             ("http://host/stats.xml", "over the network")):
            with self.subTest(path=path):
                refused = self.export(path=path, status=1).stderr
                self.assertIn(f"Playback statistics export failure: {path}", refused)
                self.assertIn(reason, refused)

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

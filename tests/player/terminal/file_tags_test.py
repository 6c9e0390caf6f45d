"""Statistics written into files and read back, seen by an independent reader; what must not change, does not."""
import os
import pathlib
import re
import shutil

from player import AUDIO, PlayerTest, samples_of, tags_of

WRITE = "Playback Statistics/Write statistics to file tags"
IMPORT = "Playback Statistics/Import statistics from file tags"
RESET = "Playback Statistics/Reset statistics"
SYNC = "Automatically synchronize"
STATISTICS = {"last_played_timestamp", "first_played_timestamp", "added_timestamp", "play_count", "rating"}


def plain_name(key):
    """The field's name without what a container puts before it: TXXX:, ----:com.apple.iTunes:, WM/."""
    return key.lower().split(":")[-1].removeprefix("wm/")


def entries_in(file):
    """Tag container, key and text of every field; a file can have several containers."""
    return [(tag, key, text) for tag, content in file.items() if isinstance(content, list) for key, text in
            [pair for pair in content if isinstance(pair, list)]]


def statistics_in(file):
    """The statistics fields of one file, as numbers."""
    return {plain_name(key): int(re.findall(r"\d+", text)[-1]) for _, key, text in entries_in(file)
            if plain_name(key) in STATISTICS}


def foreign_in(file):
    """Everything else in it: the other fields, pictures, other tags beside the main one."""
    kept = {tag: content for tag, content in file.items() if tag not in ("main", "version", "APEv2")}
    return kept, sorted(entry for entry in entries_in(file) if plain_name(entry[1]) not in STATISTICS)


class FileTags(PlayerTest):
    def setUp(self):
        super().setUp()
        shutil.copytree(AUDIO, self.music)
        # Titles differ, or tracks with equal tags would share their statistics.
        self.run_player("library", "add", self.music, status=None)

    def paths(self):
        return [t["path"] for t in self.tracks() if t["subsong"] == 0]

    def context(self, command, *tracks, **options):
        return self.run_player("--yes", "context", command, *tracks, **options)

    def test_every_format_round_trips_and_nothing_else_changes(self):
        paths = self.paths()
        self.assertGreaterEqual(len(paths), 12)
        playable = [p for p in paths if samples_of(p)]
        self.play(*playable)
        self.context("Playback Statistics/Rating/4", *playable)
        before = {p: (samples_of(p), os.stat(p).st_mode) for p in playable}
        foreign = {p: foreign_in(tags) for p, tags in tags_of(*playable).items()}
        self.context(WRITE, *playable)

        for path, tags in tags_of(*playable).items():
            with self.subTest(path=path):
                self.assertEqual(set(statistics_in(tags)), STATISTICS)
                kept, fields = foreign_in(tags)
                self.assertEqual(kept, foreign[path][0])
                # A first tag in front of an older one repeats its fields, or other programs would no longer see them.
                if any(tag == "main" for tag, _, _ in foreign[path][1]):
                    self.assertEqual(fields, foreign[path][1])
                self.assertEqual((samples_of(path), os.stat(path).st_mode), before[path])

        written = {p: (os.stat(p).st_ino, os.stat(p).st_mtime_ns) for p in playable}
        self.context(WRITE, *playable)
        self.assertEqual({p: (os.stat(p).st_ino, os.stat(p).st_mtime_ns) for p in playable}, written)

        fresh = self.folder / "fresh"
        wanted = {t["path"]: t for t in self.tracks()}
        self.run_player("library", "add", self.music, profile=fresh, status=0)
        self.context(IMPORT, *playable, profile=fresh)
        for track in self.tracks(profile=fresh):
            if track["path"] in playable:
                self.assertEqual(track, wanted[track["path"]])

    def test_reset_clears_the_files_only_when_synchronisation_is_on(self):
        path = next(p for p in self.paths() if p.endswith(".flac"))
        self.play(path)
        self.context(WRITE, path)
        self.context(RESET, path)
        self.assertIn("play_count", statistics_in(tags_of(path)[path]))
        self.assertIsNone(self.track(path)["play_count"])

        self.context(IMPORT, path)
        self.assertEqual(self.play_count(path), 1)
        self.run_player("settings", SYNC, "on")
        self.run_player("--no", "context", RESET, path, status=3)
        self.assertEqual(self.play_count(path), 1)
        self.context(RESET, path)
        self.assertEqual(statistics_in(tags_of(path)[path]), {})

    def test_a_file_that_cannot_be_written_is_named_and_stays(self):
        path = next(p for p in self.paths() if p.endswith(".flac"))
        self.play(path)
        content = pathlib.Path(path).read_bytes()
        shutil.copy(path, self.folder / "other.flac")
        os.chmod(path, 0o444)
        refused = self.context(WRITE, path, status=1)
        self.assertIn(path, refused.stderr)
        self.assertEqual(pathlib.Path(path).read_bytes(), content)
        os.chmod(path, 0o644)
        hard_link = self.folder / "link.flac"
        os.link(path, hard_link)
        self.assertIn(f"{path}: it had other names (hard links)", self.context(WRITE, path).stderr)
        self.assertEqual(hard_link.read_bytes(), content)

    def test_an_import_that_cannot_read_a_file_takes_over_nothing_and_says_so(self):
        path, gone = [p for p in self.paths() if samples_of(p)][:2]
        self.play(path)
        self.context(WRITE, path)
        self.context(RESET, path)
        os.remove(gone)
        failed = self.context(IMPORT, path, gone, status=1).stderr
        self.assertIn(gone, failed)
        self.assertIn("1 of 2 tracks could not be read", failed)
        self.assertIsNone(self.track(path)["play_count"])

    def test_an_import_notices_a_retag_and_the_statistics_follow(self):
        path = next(p for p in self.paths() if p.endswith(".flac"))
        self.play(path)
        key = self.track(path)["key"]
        self.retag(path)
        self.context(IMPORT, path)
        self.assertNotEqual(self.track(path)["key"], key)
        self.assertEqual(self.play_count(path), 1)

    def test_a_file_that_is_playing_may_be_written(self):
        path = next(p for p in self.paths() if p.endswith(".ogg"))
        unsynchronised = pathlib.Path(path).read_bytes()
        self.context("Playback Statistics/Rating/5", path)
        self.assertEqual(pathlib.Path(path).read_bytes(), unsynchronised)
        self.run_player("settings", SYNC, "on")
        done = self.play(*[path] * 4)
        self.assertEqual(statistics_in(tags_of(path)[path])["rating"], 5)
        self.assertEqual(done.stdout.count("Counted"), 4)
        self.assertEqual(statistics_in(tags_of(path)[path])["play_count"], 4)
        self.assertEqual(self.play_count(path), 4)

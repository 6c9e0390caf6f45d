"""Statistics written into files and read back, seen by an independent reader; what must not change, does not."""
import os
import re
import shutil

from player import AUDIO, PlayerTest, samples_of, tags_of

WRITE = "Playback Statistics/Write statistics to file tags"
IMPORT = "Playback Statistics/Import statistics from file tags"
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

    def context(self, command, *tracks, **options):
        return self.run_player("--yes", "context", command, *tracks, **options)

    def test_every_format_round_trips_and_nothing_else_changes(self):
        paths = [t["path"] for t in self.tracks() if t["subsong"] == 0]
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

"""Rewriting tags in the files, and statistics following a change of the tags."""
import subprocess

from sandbox import MUSIC, require
from work import Work

WRITE_TAGS = ["--yes", "context", "Playback Statistics/Write statistics to file tags", "--where", "ALL"]


def samples_of(path):
    """A digest of the decoded audio."""
    return subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-i", path, "-map", "0:a", "-f", "md5", "-"],
                          stdout=subprocess.PIPE, check=True).stdout


class TagRewrites(Work):
    name = "tag rewrites"

    def words(self):
        return WRITE_TAGS

    def __init__(self, box):
        super().__init__(box)
        for path in self.box.music.rglob("*.*"):
            require(samples_of(path) == samples_of(MUSIC / path.relative_to(self.box.music)), f"{path} sounds differently")


class KeyChange(TagRewrites):
    name = "tag edit"

    def prepare(self):
        super().prepare()
        album = self.box.music / "harbour lights"
        self.paths = [album / "01 first ferry.flac", album / "02 low water.mp3"]
        self.counts = self.counts_now()

    def counts_now(self):
        return {t["path"]: t["play_count"] for t in self.box.tracks()}

    def words(self):
        return ["edit", *self.paths, "--set", "album=Another Name"]

    def finish(self):
        self.box.must("library", "rescan")
        require(self.counts_now() == self.counts, f"the play counts were {self.counts}")
        super().finish()


class Retagging(KeyChange):
    name = "rescan of retagged files"

    def prepare(self):
        super().prepare()
        for path in self.paths:
            changed = self.box.root / path.name
            subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-y", "-i", path, "-c", "copy",
                            "-metadata", "album=Another Name", changed], check=True)
            changed.replace(path)

    def words(self):
        return ["library", "rescan"]

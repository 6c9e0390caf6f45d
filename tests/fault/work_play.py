"""Plays, and the dates added of tracks."""
import re
import struct
import wave

from sandbox import RECORD, require
from work import Work


class Plays(Work):
    name = "plays"
    rounds = 2

    def prepare(self):
        super().prepare()
        self.before = self.box.counts()

    def words(self, rounds=rounds):
        return ["play", "--audio", "null", "--fast", *[self.box.music] * rounds]

    def after_fault(self, result):
        counted = re.findall("^Counted: .* - (.*)$", result.out, re.M)
        begun = re.findall(r"^Playing \d+ of \d+: .* - (.*)$", result.err, re.M)
        if result.status == 0:
            require(len(counted) == 8 * self.rounds, f"ended well with {len(counted)} plays counted")
        self.box.records()
        require(len(counted) <= self.box.listens <= len(begun), f"{len(counted)} counted, {self.box.listens} kept as events")
        for title, now in self.box.counts().items():
            stored = now - self.before[title]
            require(counted.count(title) <= stored <= begun.count(title),
                    f"{title}: {counted.count(title)} counted, {stored} stored, {begun.count(title)} begun")

    def finish(self):
        before = self.box.counts()
        self.box.must(*self.words(rounds=1))
        require(self.box.counts() == {title: n + 1 for title, n in before.items()}, "plays after it are missing")


class Stamping(Work):
    name = "stamping"
    files = 150

    def prepare(self):
        self.box.copy_music()
        folder = self.box.music / "many"
        folder.mkdir()
        for i in range(self.files):  # without tags, the name makes the key
            with wave.open(str(folder / f"{i}.wav"), "wb") as file:
                file.setparams((1, 2, 8000, 0, "NONE", ""))
                file.writeframes(struct.pack("<h", i) * 4000)

    def words(self):
        return ["library", "add", self.box.music]

    def after_fault(self, result):
        self.stamped = self.box.records()
        if result.status == 0:
            require(len(self.stamped) == 8 + self.files, f"ended well with {len(self.stamped)} dates")

    def finish(self):
        known = str(self.box.music) in self.box.must("library", "folders").splitlines()
        self.box.must(*["library", "rescan"] if known else self.words())
        now = self.box.records()
        require(len(now) == 8 + self.files and all(RECORD.unpack(data)[3] for data in now.values()), "dates are missing")
        require(all(now[key] == data for key, data in self.stamped.items()), "a date has moved")
        require(all(t["added"] for t in self.box.tracks()) and len(self.box.tracks()) == 8 + self.files, "tracks are missing")

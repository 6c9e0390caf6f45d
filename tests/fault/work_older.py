"""Statistics of earlier releases: under older keys, and in a file of their own."""
import pathlib
import struct
import sys
import uuid

from sandbox import NO_RATING, RECORD, STATISTICS, require
from work import TIME, Work, record

sys.path.append(str(pathlib.Path(__file__).parent.parent / "quorvel" / "store"))
import key_vectors  # noqa: E402

OLDER_MAPPINGS = {"163FC58C-E2D5-4D3D-BFA4-45AF2C28AC1C": key_vectors.LEGACY,
                  "6370B286-BE93-4A7C-AA3B-281FEC61B182": key_vectors.REPEATED}


class Migration(Work):
    name = "migration"
    tags = "%artist%|%album artist%|%album%|%date%|%tracknumber%|%title%"

    def prepare(self):
        super().prepare()
        names = self.tags.replace("%", "").split("|")
        older = {guid: {} for guid in OLDER_MAPPINGS}
        for i, line in enumerate(self.box.must("format", self.tags, "--where", "ALL").splitlines()):
            track = key_vectors.Track([(name, [value]) for name, value in zip(names, line.split("|"))])
            require(key_vectors.key(track, key_vectors.TITLE) in self.box.records(), f"the key of {line} is wrong")
            for number, (guid, mapping) in enumerate(OLDER_MAPPINGS.items()):
                if i % 3 in (number, 2):  # in one of them, in the other, in both
                    older[guid][key_vectors.key(track, mapping)] = record(20 + 5 * i + number)
        self.box.edit_index("DELETE FROM records WHERE ?", [(1,)])
        for guid, records in older.items():
            self.box.put_records(guid, records)

    def words(self):
        return ["list"]

    def state(self):
        # The tag files do not change, and dates added on the way do not matter here.
        return {guid: self.box.records(guid) for guid in (STATISTICS, *OLDER_MAPPINGS)}

    def after_fault(self, result):
        """A failure does not fail the command: it is reported, and the next start tries again."""
        self.between()
        failures = "Track information database save failure: ", "records under older keys could not be taken over: "
        if result.status == 0 and not any(failure in result.err for failure in failures):
            self.complete()

    def __init__(self, box):
        super().__init__(box)
        counts = sorted(RECORD.unpack(data)[0] for data in self.goal[STATISTICS].values())
        require(counts == [20 + 5 * i + (i % 3 > 0) for i in range(8)], f"migrated {counts}")


class LegacyImport(Work):
    name = "legacy import"
    twice = "added twice"  # allowed by the order of saving and removing
    added = 5

    def prepare(self):
        super().prepare()
        tracks = [t["path"].encode() for t in self.box.tracks()]
        rows = [struct.pack("<I", len(path)) + path + struct.pack("<IQQQQI", 0, self.added, TIME, TIME, TIME, NO_RATING)
                for path in tracks]
        self.file = self.box.profile / "PlaybackStatistics.dat"
        version_2 = uuid.UUID("F67999FE-CA4D-4384-9BE8-43C1A39F1D3A").bytes_le
        self.file.write_bytes(version_2 + struct.pack("<I", len(rows)) + b"".join(rows))

    def words(self):
        return ["list"]

    def finish(self):
        is_merged_with_file = self.file.exists() and self.state() == self.goal
        self.box.must(*self.words())
        require(not self.file.exists(), "the file is still there")
        if not is_merged_with_file:
            return self.complete()
        was = {key: RECORD.unpack(data)[0] for key, data in self.goal["records"].items()}
        now = {key: RECORD.unpack(data)[0] for key, data in self.box.records().items()}
        require(now == {key: count + self.added for key, count in was.items()}, f"{now} after {was}")
        return self.twice

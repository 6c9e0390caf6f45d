"""A separate place to run and break the player: a profile, music, and tools to inspect them from outside."""
import collections
import contextlib
import json
import mmap
import os
import pathlib
import shutil
import sqlite3
import struct
import subprocess
import time

from journal import disagreement

PROGRAM, MUSIC, FAILING_CALLS = (os.environ[name] for name in ("OSTREVAN", "MUSIC", "FAILING_CALLS"))

STATISTICS = "C653739F-14B3-4EF2-819B-A3E2883230AE"
RECORD = struct.Struct("<QQQQII")  # play count, first played, last played, added, rating, unused
NO_RATING = 0xFFFFFFFF
TIME_LIMIT = 60  # seconds after which a run counts as hanging

Result = collections.namedtuple("Result", "status out err")  # status: as subprocess gives it, or HUNG
HUNG = "hung"


class Control:
    """Memory shared with the preloaded library."""
    FORMAT = struct.Struct("<6q512s")
    FIELDS = {name: at for at, name in enumerate(("clock_offset", "calls", "chosen", "error", "mode", "failed"))}

    def __init__(self, path):
        self.path = path
        path.write_bytes(bytes(self.FORMAT.size))
        with open(path, "r+b") as file:
            self.map = mmap.mmap(file.fileno(), 0)

    def set(self, **values):
        """Resets everything to these values."""
        self.map[:] = self.FORMAT.pack(*(values.get(name, 0) for name in self.FIELDS), b"")

    def put(self, field, value):
        struct.pack_into("<q", self.map, 8 * self.FIELDS[field], value)

    def get(self, field):
        return self.FORMAT.unpack(self.map[:])[self.FIELDS[field]]

    def first_failed(self):
        return self.FORMAT.unpack(self.map[:])[-1].rstrip(b"\0").decode(errors="replace")


class Sandbox:
    def __init__(self, root):
        self.root = pathlib.Path(root).resolve()
        self.root.mkdir(parents=True)
        self.place = self.root / "place"  # everything that a fault may hit, restored between cases
        self.profile = self.place / "profile"
        self.music = self.place / "music"
        self.control = Control(self.root / "control")
        (self.root / "run").mkdir(mode=0o700)
        self.env = dict(os.environ, XDG_RUNTIME_DIR=str(self.root / "run"), XDG_CONFIG_HOME=str(self.root), TZ="UTC", LC_ALL="C.UTF-8")
        self.clear()

    # The state of the place.

    def clear(self):
        shutil.rmtree(self.place, ignore_errors=True)
        self.place.mkdir()

    def copy_music(self):
        shutil.copytree(MUSIC, self.music)

    def save(self, name):
        shutil.copytree(self.place, self.root / "saved" / name)

    def restore(self, name):
        shutil.rmtree(self.place)
        shutil.copytree(self.root / "saved" / name, self.place)  # keeps file times, so that a rescan finds no change

    def files(self, folder="music"):
        """Path below the place, and content."""
        return {str(p.relative_to(self.place)): p.read_bytes() for p in (self.place / folder).rglob("*") if p.is_file()}

    # The player.

    def start(self, *words, preload=False, zone=None, prefix=()):
        env = dict(self.env)
        if preload:
            env.update(LD_PRELOAD=FAILING_CALLS, FAULT_FOLDER=str(self.place), FAULT_CONTROL=str(self.control.path))
        if zone is not None:
            env["TZ"] = zone
        return subprocess.Popen([*prefix, PROGRAM, "--profile", str(self.profile), *map(str, words)], env=env, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, errors="replace")

    @staticmethod
    def finish(player, kill_after=None):
        """Waits for the end, or kills the player after a time."""
        try:
            out, err = player.communicate(timeout=kill_after or TIME_LIMIT)
            return Result(player.returncode, out, err)
        except subprocess.TimeoutExpired:
            player.kill()
            out, err = player.communicate()
            return Result(HUNG if kill_after is None else player.returncode, out, err)

    def run(self, *words, kill_after=None, **options):
        return self.finish(self.start(*words, **options), kill_after)

    def must(self, *words, **options):
        """Runs a command that must succeed; returns its output."""
        done = self.run(*words, **options)
        require(done.status == 0, f"without a fault, {words} ended with {done.status}: {done.err.strip()}")
        return done.out

    def tracks(self, **options):
        return json.loads(self.must("list", "--json", **options))

    def counts(self):
        """Play count by title."""
        return {t["title"]: int(t["play_count"] or 0) for t in self.tracks()}

    # The database, read without the player.

    def edit_index(self, sql, rows):
        with contextlib.closing(sqlite3.connect(self.profile / "index.sqlite")) as database, database:
            database.executemany(sql, rows)

    def put_records(self, guid, records):
        """Stores records by key, as a component would in its own index."""
        self.edit_index("INSERT OR IGNORE INTO indexes (guid) VALUES (?)", [(guid,)])
        self.edit_index("DELETE FROM changes WHERE ?", [(True,)])  # the journal knows nothing of these
        self.edit_index("INSERT OR REPLACE INTO records SELECT id, ?, ?, ? FROM indexes WHERE guid = ?",
                        [(key - (key >> 63 << 64), int(time.time()), data, guid) for key, data in records.items()])

    def records(self, guid=STATISTICS):
        """Every stored record by key. Reads a copy, to keep the place as the player left it."""
        copy = self.root / "copy"
        shutil.rmtree(copy, ignore_errors=True)
        copy.mkdir()
        for part in self.profile.glob("index.sqlit*[!m]"):  # but not the "-shm"
            shutil.copy(part, copy)
        with contextlib.closing(sqlite3.connect(copy / "index.sqlite")) as database:
            if not database.execute("SELECT 1 FROM sqlite_schema").fetchall():
                return {}
            require(database.execute("PRAGMA integrity_check").fetchall() == [("ok",)], "index.sqlite is damaged")
            wrong = disagreement(database)
            require(wrong is None, f"the journal: {wrong}")
            self.listens = database.execute("SELECT count(*) FROM listens WHERE counted").fetchone()[0]
            return {key & (1 << 64) - 1: data for key, data in database.execute(
                "SELECT key, data FROM records JOIN indexes ON id = index_id WHERE guid = ?", (guid,))}


class Violation(Exception):
    """Something was lost, wrong, or not reported."""


def require(holds, text):
    if not holds:
        raise Violation(text)

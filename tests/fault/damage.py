"""Databases that are damaged, truncated or exchanged; damaged logs and settings."""
import contextlib
import json
import shutil
import sqlite3

from sandbox import require
from work_play import Plays

PAGE = 4096


def flip(data, random):
    for _ in range(random.choice([1, 1, 4, 64])):
        data[random.randrange(len(data))] ^= 1 << random.randrange(8)


def cut(data, random):
    del data[random.choice([random.randrange(len(data)), random.randrange(len(data) // 512 + 1) * 512, 0]):]


def blank(data, random):
    """A page that was never written, or was overwritten by another program."""
    at = random.randrange(len(data) // 512 + 1) * 512
    data[at:at + PAGE] = random.choice([bytes(PAGE), random.randbytes(PAGE)])[:len(data) - at]


def grow(data, random):
    data += random.randbytes(random.randrange(1, 3 * PAGE))


class Damage:
    name = "damage"

    def cases(self, job):
        return 400

    @staticmethod
    def prepare(job):
        """A profile after a regular end, and one left by a killed player: with a log."""
        work = job.ready(Plays)
        box = job.box
        wanted = {}
        for name in ("closed", "killed"):
            if name == "killed":
                player = box.start(*work.words())
                player.stdout.readline()
                box.finish(player, kill_after=0.1)
                require((box.profile / "index.sqlite-wal").stat().st_size > 0, "the kill left no log")
            box.save(name)
            wanted[name] = box.tracks()
        return wanted

    def run(self, job, index, random):
        box = job.box
        if not hasattr(job, "damaged_templates"):
            job.damaged_templates = self.prepare(job)
        template = random.choice(("closed", "killed"))
        box.restore(template)
        targets = [p for p in sorted(box.profile.iterdir()) if p.name != "lock" and p.is_file() and p.stat().st_size]
        target, change = random.choice(targets), random.choice([flip, flip, cut, blank, grow])
        data = bytearray(target.read_bytes())
        change(data, random)
        target.write_bytes(data)
        job.fault = f"{template}, {target.name}: {change.__name__}"
        before = box.root / "before"
        shutil.rmtree(before, ignore_errors=True)
        shutil.copytree(box.profile, before)

        result = box.run("list", "--json")
        right = result.status == 0 and json.loads(result.out) == job.damaged_templates[template]
        job.judge(result, "right data" if right else f"wrong data of {target.name}, SQLite notices nothing")
        database = box.profile / target.name.removesuffix("-wal").removesuffix("-shm")
        if result.status:
            require(str(database) in result.err, f"the file is not named: {result.err}")
            require(database.read_bytes() == (before / database.name).read_bytes(), f"{database.name} was changed")
        elif right:
            self.check_next_play(job)
        else:
            require(passes_for_whole(before / database.name), "wrong data without a word, although SQLite notices the damage")

    @staticmethod
    def check_next_play(job):
        """Damage not met in reading may be met in writing."""
        before = job.box.counts()
        result = job.box.run("play", "--audio", "null", "--fast", job.box.music)
        require(result.status in (0, 1), f"a play then ended with {result.status}: {result.err}")
        if result.status == 0:
            require(job.box.counts() == {title: n + 1 for title, n in before.items()}, "a play then was not counted")


def passes_for_whole(path):
    """Lets SQLite look for all damage that it can find, in a fresh copy."""
    with contextlib.closing(sqlite3.connect(path)) as database, contextlib.suppress(sqlite3.DatabaseError):
        return database.execute("PRAGMA integrity_check").fetchall() == [("ok",)]
    return False

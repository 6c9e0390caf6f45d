"""The base of all works: each prepares a place, runs a command, and checks what must hold after any fault and after a further
run without one."""
import time

from sandbox import NO_RATING, RECORD, STATISTICS, require

TIME = 133_500_000_000_000_000  # a moment in January 2024, in 100 ns since 1601


def record(count, rating=NO_RATING, shift=0):
    return RECORD.pack(count, TIME + shift, TIME + 10 + shift, TIME - 10 + shift, rating, 0)


def is_only_dated(data):
    count, first, last, added, rating, _ = RECORD.unpack(data)
    return added != 0 and (count, first, last, rating) == (0, 0, 0, NO_RATING)


class Work:
    """`start` and `goal` are the states before and after an undisturbed run."""
    def __init__(self, box):
        self.box = box
        box.clear()
        self.prepare()
        box.save(self.name)
        self.start = self.state()
        box.control.set()
        began = time.monotonic()
        box.must(*self.words(), preload=True)
        self.seconds = time.monotonic() - began
        self.calls = box.control.get("calls")
        self.goal = self.state()

    def prepare(self):
        """A library whose tracks all have statistics."""
        self.box.copy_music()
        self.box.must("library", "add", self.box.music)
        keys = sorted(self.box.records())
        require(len(keys) == 8, "the sample music makes eight records")
        self.box.put_records(STATISTICS, {key: record(3 + i, 63 + 20 * i, i) for i, key in enumerate(keys)})

    def state(self):
        return {"records": self.box.records(), "files": self.box.files()}

    def between(self):
        """Every record and file is the old or the new one, and there is nothing else except unfinished copies."""
        now = self.state()
        for part, content in now.items():
            for name in {*self.start[part], *self.goal[part], *content}:
                if part == "files" and "/.ostrevan-" in name:
                    continue
                allowed = [self.start[part].get(name), self.goal[part].get(name)]
                if part == "records" and name in content and allowed[0] is None and allowed[1] and is_only_dated(content[name]):
                    continue  # stamped under its new key; the statistics have not followed yet
                require(content.get(name) in allowed, f"{part}: {name} is neither what it was nor what it was to become")
        return now

    def complete(self):
        now = self.state()
        for part in now:
            require(now[part] == self.goal[part], f"{part}: not what a run without a fault makes of them")

    def after_fault(self, result):
        """Before any restart. `result` is the output and exit status of the player."""
        self.between()
        if result.status == 0:
            self.complete()

    def finish(self):
        """The player starts again without the fault and finishes the work."""
        self.box.must(*self.words())
        self.complete()

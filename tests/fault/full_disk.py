"""A disk that is full from the start, with an existing and with a new profile."""
import errno

from sandbox import require
from works import WORKS


class FullDisk:
    name = "full disk"

    def cases(self, job):
        return len(WORKS)

    def run(self, job, index, random):
        work = job.ready(WORKS[index])
        box, job.fault = job.box, work.name
        before = box.files(".")
        box.control.set(chosen=1, error=errno.ENOSPC, mode=1)
        result = box.run(*work.words(), preload=True)
        job.judge(result)
        for name, content in box.files(".").items():
            require(name.endswith(("-shm", "-wal", "/lock")) or before.get(name) == content, f"{name} has changed")
        work.after_fault(result)
        work.finish()

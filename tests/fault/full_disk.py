"""A disk that is full before anything is begun, for a profile that exists and for one that does not yet."""
import errno

from sandbox import require
from work_play import Stamping
from works import WORKS


class FullDisk:
    name = "full disk"
    checks = "a message that names the place; nothing changed; done once there is room"
    is_by_chance = False
    works = [work for work in WORKS if work is not Stamping]

    def cases(self, job):
        return len(self.works) + 1

    def run(self, job, index, random):
        work = job.ready((self.works + [Stamping])[index])
        box = job.box
        job.fault = work.name
        before = box.files(".")
        box.control.set(chosen=1, error=errno.ENOSPC, mode=1)
        result = box.run(*work.words(), preload=True)
        require(result.status in (0, 1), f"it ended with {result.status}: {result.err}")
        job.count("refused" if result.status else "worked")
        job.say(result.err)
        if result.status:
            require(str(box.root) in result.err, f"the message does not say where: {result.err}")
        now = {name: content for name, content in box.files(".").items() if not name.endswith(("-shm", "-wal", "/lock"))}
        require(all(before.get(name) == content for name, content in now.items()), "files have changed")
        work.after_fault(result)
        work.finish()

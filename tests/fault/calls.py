"""Each call that changes a file fails in turn: once, or that one and all after it, as on a full disk."""
import errno

from kills import check_restart
from sandbox import require

WAYS = [(error, mode) for mode in (0, 1) for error in (errno.ENOSPC, errno.EIO, errno.EACCES)]

# Where older records may be added a second time at the next start: they are saved and their file cannot be removed; or the disk
# fails for good when it is asked for the last of what was written, which SQLite finds whole in its log afterwards.
SAVED_ALL_THE_SAME = [("unlinkat", "PlaybackStatistics.dat"), ("from then on", "fdatasync", "index.sqlite-wal")]


class FailingCalls:
    is_by_chance = False

    def __init__(self, work):
        self.name = f"calls/{work.name}"
        self.work = work
        self.checks = work.checks + "; a message"

    def cases(self, job):
        return job.known(self.work).calls * len(WAYS)

    def run(self, job, index, random):
        work = job.ready(self.work)
        # Every call is reached before the next way to fail comes, and each call meets another way at first.
        way, call = divmod(index, work.calls)
        error, lasting = WAYS[(way + call) % len(WAYS)]
        job.box.control.set(chosen=call + 1, error=error, mode=lasting)
        result = job.box.run(*work.words(), preload=True)
        failed = job.box.control.get("failed")
        job.fault = f"{errno.errorcode[error]} from then on" if lasting else errno.errorcode[error]
        job.fault += " at " + job.box.control.first_failed()
        job.count("failed" if result.status else "harmless" if failed else "not reached")
        require(result.status in (0, 1), f"it ended with {result.status}: {result.err}")
        if failed:
            job.say(result.err)
        if result.status:
            require(str(job.box.root) in result.err, f"the message does not say where: {result.err}")
        outcome = check_restart(job, work, result)
        require(outcome is None or any(all(word in job.fault for word in words) for words in SAVED_ALL_THE_SAME), outcome)

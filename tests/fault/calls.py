"""One work, broken: killed at a random moment, cut off after a call that changes a file, or with a failing call."""
import errno

from sandbox import require

KILLED = -9
KILL = -1  # in place of an errno

# Each call fails once, or that one and all after it, as on a full disk.
WAYS = [(error, mode) for mode in (0, 1) for error in (errno.ENOSPC, errno.EIO, errno.EACCES)]

# Where older records may be added a second time at the next start: they are saved and their file cannot be removed; or the disk
# fails for good when it is asked for the last of what was written, which SQLite finds whole in its log afterwards.
SAVED_ALL_THE_SAME = [("unlinkat", "PlaybackStatistics.dat"), ("from then on", "fdatasync", "index.sqlite-wal")]


def restart(job, work, result):
    """Gives what is worth counting apart, if anything is."""
    work.after_fault(result)
    if outcome := work.finish():
        job.count(outcome)
    return outcome


class OfWork:
    def __init__(self, work):
        self.name, self.work = f"{self.kind}/{work.name}", work

    def cases(self, job):
        return job.known(self.work).calls

    @staticmethod
    def restart_killed(job, work, result):
        job.count("killed" if result.status == KILLED else "ended before the kill")
        require(result.status in (KILLED, 0), f"it ended with {result.status}: {result.err}")
        restart(job, work, result)


class RandomKills(OfWork):
    """Spread over the time that the work takes."""
    kind = "kill"
    cases = None

    def run(self, job, index, random):
        work = job.ready(self.work)
        result = job.box.run(*work.words(), kill_after=random.uniform(0.02, work.seconds))
        work.seconds *= 1.05 if result.status == KILLED else 0.8  # the machine is now faster, now slower
        self.restart_killed(job, work, result)


class KillsAtCalls(OfWork):
    """After each call in turn. Always at the same place, which a random moment is not."""
    kind = "cut"

    def run(self, job, index, random):
        work = job.ready(self.work)
        job.box.control.set(chosen=index + 1, error=KILL)
        result = job.box.run(*work.words(), preload=True)
        job.fault = job.box.control.first_failed()
        self.restart_killed(job, work, result)


class FailingCalls(OfWork):
    kind = "calls"

    def cases(self, job):
        return super().cases(job) * len(WAYS)

    def run(self, job, index, random):
        work = job.ready(self.work)
        # Every call is reached before the next way to fail comes, and each call meets another way at first.
        way, call = divmod(index, work.calls)
        error, lasting = WAYS[(way + call) % len(WAYS)]
        job.box.control.set(chosen=call + 1, error=error, mode=lasting)
        result = job.box.run(*work.words(), preload=True)
        job.fault = f"{errno.errorcode[error]}{' from then on' * lasting} at {job.box.control.first_failed()}"
        job.judge(result, "harmless" if job.box.control.get("failed") else "not reached")
        outcome = restart(job, work, result)
        require(outcome is None or any(all(word in job.fault for word in words) for words in SAVED_ALL_THE_SAME), outcome)

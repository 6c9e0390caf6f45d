"""Breaks one work: a kill at a random moment, a kill after a call that changes a file, or a failing call."""
import errno

from sandbox import require

KILLED = -9
KILL = -1  # instead of an errno

# One call fails, or it and all later ones, as on a full disk.
WAYS = [(error, mode) for mode in (0, 1) for error in (errno.ENOSPC, errno.EIO, errno.EACCES)]

# When older records may be added a second time at the next start: they are saved and their file cannot be removed; or the disk
# fails for good at the last sync, and SQLite finds the commit complete in its log afterwards.
SAVED_ALL_THE_SAME = [("unlinkat", "PlaybackStatistics.dat"), ("from then on", "fdatasync", "index.sqlite-wal")]


def restart(job, work, result):
    """Returns what to count separately, if anything."""
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
    """Spread over the duration of the work."""
    kind = "kill"
    cases = None

    def run(self, job, index, random):
        work = job.ready(self.work)
        result = job.box.run(*work.words(), kill_after=random.uniform(0.02, work.seconds))
        work.seconds *= 1.05 if result.status == KILLED else 0.8  # the speed of the machine varies
        self.restart_killed(job, work, result)


class KillsAtCalls(OfWork):
    """After each call in turn: reproducible, unlike a random moment."""
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
        # Tries every call before the next way to fail, starting with a different way for each call.
        way, call = divmod(index, work.calls)
        error, lasting = WAYS[(way + call) % len(WAYS)]
        job.box.control.set(chosen=call + 1, error=error, mode=lasting)
        result = job.box.run(*work.words(), preload=True)
        job.fault = f"{errno.errorcode[error]}{' from then on' * lasting} at {job.box.control.first_failed()}"
        job.judge(result, "harmless" if job.box.control.get("failed") else "not reached")
        outcome = restart(job, work, result)
        require(outcome is None or any(all(word in job.fault for word in words) for words in SAVED_ALL_THE_SAME), outcome)

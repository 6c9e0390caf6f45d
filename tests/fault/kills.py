"""SIGKILL: at a random moment of a work, or exactly after the n-th call that changes a file."""
from sandbox import HUNG, require

KILLED = -9
KILL = -1  # in place of an errno


def check_restart(job, work, result):
    """Gives what is worth counting apart, if anything is."""
    require(result.status != HUNG, "it hung")
    work.after_fault(result)
    outcome = work.finish()
    if outcome:
        job.count(outcome)
    return outcome


class RandomKills:
    """Spread over the time that the work takes."""
    is_by_chance = True

    def __init__(self, work):
        self.name = f"kill/{work.name}"
        self.work = work
        self.checks = work.checks

    def run(self, job, index, random):
        work = job.ready(self.work)
        result = job.box.run(*work.words(), kill_after=random.uniform(0.02, work.seconds))
        work.seconds *= 1.05 if result.status == KILLED else 0.8  # the machine is now faster, now slower
        job.count("killed" if result.status == KILLED else "ended before the kill")
        require(result.status in (KILLED, 0), f"it ended with {result.status}: {result.err}")
        check_restart(job, work, result)


class KillsAtCalls:
    """Cut off after each call in turn. Always at the same place, which a random moment is not."""
    is_by_chance = False

    def __init__(self, work):
        self.name = f"cut/{work.name}"
        self.work = work
        self.checks = work.checks

    def cases(self, job):
        return job.known(self.work).calls

    def run(self, job, index, random):
        work = job.ready(self.work)
        job.box.control.set(chosen=index + 1, error=KILL)
        result = job.box.run(*work.words(), preload=True)
        job.count("killed" if result.status == KILLED else "ended before the kill")
        job.fault = job.box.control.first_failed()
        require(result.status in (KILLED, 0), f"it ended with {result.status}: {result.err}")
        check_restart(job, work, result)

"""Two to six players on one profile at once, some of them killed."""
import re

from sandbox import require
from work_play import Plays
from work_tags import WRITE_TAGS

HELD = r"The profile .* is in use by process \d+|The process that carried out this command has ended"
OTHERS = (["list"], ["library", "rescan"], ["index", "dump"], WRITE_TAGS)


class Crowd:
    name = "crowd"

    def cases(self, job):
        return 40

    def run(self, job, index, random):
        work, box = job.ready(Plays), job.box
        number = random.randint(2, 6)
        commands = [work.words() if random.random() < 0.7 else random.choice(OTHERS) for _ in range(number)]
        players = [box.start(*words) for words in commands]
        victim = random.randrange(number) if random.random() < 0.4 else None
        results = [box.finish(player, kill_after=random.uniform(0.05, work.seconds) if i == victim else None)
                   for i, player in enumerate(players)]
        most, least = dict(work.before), dict(work.before)
        for words, result in zip(commands, results):
            require(result.status in (0, 1, -9), f"{words} ended with {result.status}: {result.err}")
            require(result.status != 1 or re.search(HELD, result.err), f"{words}: not said why: {result.err}")
            job.count({0: "worked", 1: "held off", -9: "killed"}[result.status])
            for title in re.findall("^Counted: .* - (.*)$", result.out, re.M):
                least[title] += 1
            for title in re.findall(r"^Playing \d+ of \d+: .* - (.*)$", result.err, re.M):
                most[title] += 1
        require(any(result.status != 1 for result in results), "all of them were held off")
        for title, count in box.counts().items():
            allowed = range(least[title], (most if victim is not None else least)[title] + 1)
            require(count in allowed, f"{title}: {count} stored, {allowed} allowed")

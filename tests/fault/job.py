"""One sandbox, the works prepared in it, and the observations. Used by one thread at a time."""
import collections
import re

from sandbox import Sandbox, require


class Job:
    def __init__(self, root):
        self.box = Sandbox(root)
        self.works = {}
        self.outcomes = collections.defaultdict(collections.Counter)
        self.messages = collections.Counter()

    def begin(self, fault):
        self.name = fault.name
        self.fault = ""  # the exact fault, for a report

    def known(self, work):
        if work not in self.works:
            self.works[work] = work(self.box)
        return self.works[work]

    def ready(self, work):
        """The work, with its place freshly prepared."""
        known = self.known(work)
        self.box.restore(work.name)
        return known

    def count(self, outcome):
        self.outcomes[self.name][outcome] += 1

    def judge(self, result, well="worked"):
        """Under any fault the player must end by itself, and a failure must name the place."""
        require(result.status in (0, 1), f"it ended with {result.status}: {result.err}")
        self.count("failed" if result.status else well)
        self.say(result.err)
        require(result.status == 0 or str(self.box.root) in result.err, f"the message does not say where: {result.err}")

    def say(self, text):
        """Collects the player's messages without the parts that differ between cases."""
        for line in text.splitlines():
            if not line.startswith("Playing "):
                line = line.replace(str(self.box.place), "<place>")
                line = re.sub(r"/music/.*?\.(\w{3,4})\b", r"/music/TRACK.\1", line)
                self.messages[re.sub(r"\d+", "N", line)] += 1

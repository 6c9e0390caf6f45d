#!/usr/bin/env python3
"""Runs the real player, breaks it, and checks that nothing is lost."""
import argparse
import collections
import itertools
import math
import pathlib
import random
import shutil
import signal
import sys
import tempfile
import time
import traceback

from calls import FailingCalls, KillsAtCalls, RandomKills
from clock import Clock
from crowd import Crowd
from damage import Damage
from full_disk import FullDisk
from job import Job
from permissions import ReadOnly
from sandbox import Violation
from small_disk import SmallDisk
from works import WORKS

FAULTS = [kind(work) for kind in (RandomKills, KillsAtCalls, FailingCalls) for work in WORKS]
FAULTS += [FullDisk(), SmallDisk(), ReadOnly(), Crowd(), Clock(), Damage()]


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, epilog="Examples and the environment: docs/fault-tests.md.")
    parser.add_argument("--seconds", type=float, default=math.inf, help="begin nothing new after this time")
    parser.add_argument("--kills", type=int, default=240, help="kills at random moments, spread over the works (240)")
    parser.add_argument("--share", type=float, default=1, help="how much of the other cases to try, chosen at random (1)")
    parser.add_argument("--only", action="append", metavar="NAME", help="faults whose names begin so; may be repeated")
    parser.add_argument("--case", type=int, help="only the case with this number")
    parser.add_argument("--seed", type=int, default=1, help="of all that is random (1)")
    parser.add_argument("--folder", type=pathlib.Path, help="a new folder to work in; what failed stays there (in /tmp)")
    return parser.parse_args()


class Harness:
    def __init__(self, wishes):
        self.wishes = wishes
        self.root = wishes.folder or pathlib.Path(tempfile.mkdtemp(prefix="ostrevan-fault-"))
        self.faults = [f for f in FAULTS if not wishes.only or f.name.startswith(tuple(wishes.only))]
        if not self.faults:
            sys.exit("harness: no fault is named so. There are: " + ", ".join(f.name for f in FAULTS))
        self.kills_each = -(-wishes.kills // max(1, sum(f.cases is None for f in self.faults)))
        self.deadline = time.monotonic() + wishes.seconds
        self.tried, self.violations = collections.Counter(), collections.Counter()
        self.job = Job(self.root / "job")

    def chosen(self, fault):
        """The numbers of the cases to try."""
        if self.wishes.case is not None:
            return [self.wishes.case]
        if fault.cases is None:
            return range(self.kills_each)
        try:
            total = fault.cases(self.job)
        except Violation as failure:
            self.report(fault, 0, failure)
            return []
        chance = random.Random(f"{self.wishes.seed}/{fault.name}")
        share = self.wishes.share
        return range(total) if share >= 1 else chance.sample(range(total), math.ceil(total * share))

    def run(self):
        # The faults take turns, so that a short run tries a bit of everything.
        turns = itertools.zip_longest(*([(fault, index) for index in self.chosen(fault)] for fault in self.faults))
        waiting = collections.deque(case for turn in turns for case in turn if case is not None)
        signal.signal(signal.SIGTERM, signal.default_int_handler)
        try:
            while waiting and time.monotonic() < self.deadline:
                self.try_case(*waiting.popleft())
        except KeyboardInterrupt:
            print("\nharness: interrupted", flush=True)

    def try_case(self, fault, index):
        self.job.begin(fault)
        try:
            fault.run(self.job, index, random.Random(f"{self.wishes.seed}/{fault.name}/{index}"))
        except Exception as failure:  # even a mistake of the harness must not end the run or count as success
            self.report(fault, index, failure)
        self.tried[fault.name] += 1

    def report(self, fault, index, failure):
        self.violations[fault.name] += 1
        kept = self.root / "failed" / f"{fault.name.replace('/', '-')}-{index}"
        shutil.copytree(self.job.box.place, kept, symlinks=True, dirs_exist_ok=True)
        reason = str(failure) if isinstance(failure, Violation) else traceback.format_exc()
        print(f"\nVIOLATION {fault.name} {index} ({self.job.fault}): {reason}\n  kept: {kept}\n  again: {sys.argv[0]} "
              f"--only '{fault.name}' --case {index} --seed {self.wishes.seed}", flush=True)

    def print_table(self):
        print(f"\n{'fault':30}  tried  violations  what came of it")
        for name in [fault.name for fault in self.faults]:
            outcomes = ", ".join(f"{number} {what}" for what, number in sorted(self.job.outcomes[name].items()))
            print(f"{name:30}{self.tried[name]:7}{self.violations[name]:12}  {outcomes}")
        print(f"{'all':30}{self.tried.total():7}{self.violations.total():12}")
        print("\nmessages of the player, as often as they came:")
        for text, number in self.job.messages.most_common():
            print(f"{number:6}  {text}")


def main():
    wishes = arguments()
    harness = Harness(wishes)
    harness.run()
    harness.print_table()
    if harness.violations:
        sys.exit(1)
    if not harness.tried:
        sys.exit("harness: nothing was tried")
    shutil.rmtree(harness.root, ignore_errors=True)


if __name__ == "__main__":
    main()

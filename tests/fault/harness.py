#!/usr/bin/env python3
"""Runs the real player, breaks it, and looks whether anything is lost."""
import argparse
import collections
import itertools
import math
import os
import pathlib
import random
import shutil
import signal
import sys
import tempfile
import time
import traceback

import faults
from job import Job
from sandbox import Violation

def arguments():
    parser = argparse.ArgumentParser(description=__doc__, epilog="Examples and the environment: docs/fault-tests.md.")
    parser.add_argument("--seconds", type=float, default=float("inf"),
                        help="begin nothing new after this time, as after Ctrl-C")
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
        self.faults = [f for f in faults.ALL if not wishes.only or f.name.startswith(tuple(wishes.only))]
        if not self.faults:
            sys.exit("harness: no fault is named so. There are: " + ", ".join(f.name for f in faults.ALL))
        self.kills_each = -(-wishes.kills // max(1, sum(f.is_by_chance for f in self.faults)))
        self.deadline = time.monotonic() + wishes.seconds
        self.tried = collections.Counter()
        self.violations = collections.Counter()
        self.job = Job(self.root / "job")

    def chosen(self, fault):
        """The numbers of the cases to try."""
        if self.wishes.case is not None:
            return [self.wishes.case]
        if fault.is_by_chance:
            return range(self.kills_each)
        try:
            total = fault.cases(self.job)
        except Violation as failure:
            self.report(fault, 0, failure)
            return []
        if self.wishes.share >= 1:
            return range(total)
        chance = random.Random(f"{self.wishes.seed}/{fault.name}")
        return chance.sample(range(total), math.ceil(total * self.wishes.share))

    def run(self):
        # The faults take turns, so that a run that ends early has tried a bit of everything.
        turns = itertools.zip_longest(*([(fault, index) for index in self.chosen(fault)] for fault in self.faults))
        waiting = collections.deque(case for turn in turns for case in turn if case is not None)
        signal.signal(signal.SIGTERM, signal.default_int_handler)
        try:
            while waiting and time.monotonic() < self.deadline:
                self.try_case(*waiting.popleft())
                if self.tried.total() % 100 == 0:
                    print(f"{self.tried.total()} tried, {len(waiting)} wait", file=sys.stderr, flush=True)
        except KeyboardInterrupt:
            print("\nharness: interrupted", flush=True)

    def try_case(self, fault, index):
        self.job.begin(fault)
        try:
            fault.run(self.job, index, random.Random(f"{self.wishes.seed}/{fault.name}/{index}"))
        except Exception as failure:  # also a mistake of the harness must not end it, or pass for success
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
        rows = [("fault", "tried", "violations", "what came of it", "checked")]
        for fault in self.faults:
            outcomes = self.job.outcomes[fault.name]
            rows.append((fault.name, str(self.tried[fault.name]), str(self.violations[fault.name]),
                         ", ".join(f"{number} {what}" for what, number in sorted(outcomes.items())), fault.checks))
        rows.append(("all", str(self.tried.total()), str(self.violations.total()), "", ""))
        widths = [max(len(row[column]) for row in rows) for column in range(5)]
        print()
        for row in rows:
            print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())
        print("\nmessages of the player, as often as they came:")
        for text, number in self.job.messages.most_common():
            print(f"{number:6}  {text}")


def main():
    wishes = arguments()
    if missing := [name for name in ("OSTREVAN", "MUSIC", "FAILING_CALLS") if name not in os.environ]:
        sys.exit(f"harness: {', '.join(missing)} must be set in the environment; docs/fault-tests.md says to what")
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

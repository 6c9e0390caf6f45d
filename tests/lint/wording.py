"""The tree explains itself: nothing in it points at papers or places that its readers do not have."""

import re

from tracked import lines, report, tracked

ELSEWHERE = [
    (re.compile(r"\bspec(ification)?s?\b", re.I), "say the rule itself"),
    (re.compile(r"\bPart \d+\.\d+"), "say the rule itself"),
    (re.compile(r"(?<![\w.~}/])/(root|work|workspace|builds)/"), "a path of one machine"),
]


def main():
    complaints = []
    files = [n for n in tracked() if n != "tests/lint/wording.py"]
    for name in files:
        for number, line in [(0, name)] + lines(name):
            complaints += [f"{name}:{number}: {line.strip()[:160]}: {why}" for rule, why in ELSEWHERE if rule.search(line)]
    report(len(files), complaints)


main()

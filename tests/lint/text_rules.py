"""Forbidden words: names of systems outside `platform`, and references to papers or places that readers lack."""

import re

from tracked import lines, report, tracked

EXPORT_MACRO = "sdk/include/ostrevan/component.h"
PLATFORM = "quorvel/platform/"
PLATFORM_FILE = re.compile(r"_(win32|posix)\.(h|cpp)$")
PRODUCT = ("sdk/", "quorvel/", "player/")
# Tests may skip what a system cannot do; the product may not.
WINDOWS = re.compile(r"\b(_WIN32|_WIN64)\b")
ANY_SYSTEM = re.compile(r"\b(_WIN32|_WIN64|WIN32|__linux__|__unix__|__MINGW\w+__|_MSC_VER)\b")
ELSEWHERE = [
    (re.compile(r"\bspec(ification)?s?\b", re.I), "say the rule itself"),
    (re.compile(r"\bPart \d+\.\d+"), "say the rule itself"),
    (re.compile(r"(?<![\w.~}/])/(root|work|workspace|builds)/"), "a path of one machine"),
]


def rules_for(name):
    if not name.endswith((".h", ".cpp")) or name == EXPORT_MACRO:
        return ELSEWHERE
    return ELSEWHERE + [(ANY_SYSTEM if name.startswith(PRODUCT) else WINDOWS, f"give {PLATFORM} a function for it")]


complaints = []
files = [n for n in tracked() if n != "tests/lint/text_rules.py"]
for name in files:
    if PLATFORM_FILE.search(name) and name.startswith(("sdk/", "quorvel/")) and not name.startswith(PLATFORM):
        complaints.append(f"{name}: files of one system belong into {PLATFORM}")
    for number, line in [(0, name)] + lines(name):
        complaints += [f"{name}:{number}: {line.strip()[:160]}: {why}" for rule, why in rules_for(name) if rule.search(line)]
report(len(files), complaints)

"""Differences between systems stay in one folder, chosen by the build and not by the preprocessor."""

import re

from tracked import lines, report, tracked

EXPORT_MACRO = "sdk/include/ostrevan/component.h"
PLATFORM = "quorvel/platform/"
PLATFORM_FILE = re.compile(r"_(win32|posix)\.(h|cpp)$")
WINDOWS = re.compile(r"\b(_WIN32|_WIN64)\b")
# A test may leave out what a system cannot do; the product may not.
ANY_SYSTEM = re.compile(r"\b(_WIN32|_WIN64|WIN32|__linux__|__unix__|__MINGW\w+__|_MSC_VER)\b")


def main():
    complaints = []
    sources = tracked(".h", ".cpp")
    for name in sources:
        if PLATFORM_FILE.search(name) and name.startswith(("sdk/", "quorvel/")) and not name.startswith(PLATFORM):
            complaints.append(f"{name}: files of one system belong into {PLATFORM}")
        if name == EXPORT_MACRO:
            continue
        macro = ANY_SYSTEM if name.startswith(("sdk/", "quorvel/", "player/")) else WINDOWS
        for number, line in lines(name):
            if macro.search(line):
                complaints.append(f"{name}:{number}: {line.strip()}: give {PLATFORM} a function for it")
    report(len(sources), complaints)


main()

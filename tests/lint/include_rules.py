"""Which folder may include which: keeps the folders in line with the architecture."""

import re

from tracked import lines, report, tracked

# The folders that each folder may include besides itself; the longest match for a file decides.
SDK = ["sdk", "nuv", "ostrevan"]
DOMAINS = ["sqlite", "index", "history", "library", "tags", "titleformat", "query", "summary", "playback"]
GROUND = {
    "sdk": SDK,
    "sdk/test_player": SDK + ["ostrevan_test"],
    "player/system": SDK,
    "player/sqlite": SDK + ["player/system"],
    "player/titleformat": SDK + ["player/system"],
    "player/playback": SDK,
    "player/bus": SDK,
    "player/watch": SDK + ["player/" + room for room in ("system", "bus", "library", "playback", "titleformat")],
    "player/core": SDK + ["player/system"],
    "player/tags": SDK + ["player/system"],
    "player/query": SDK + ["player/system", "player/titleformat"],
    "player/summary": SDK + ["player/" + room for room in ("system", "sqlite", "index", "titleformat", "query")],
    "player/index": SDK + ["player/system", "player/sqlite"],
    "player/history": SDK + ["player/system", "player/sqlite", "player/index"],
    "player/library": SDK + ["player/system", "player/sqlite", "player/tags"],
    "player/view": SDK + ["player/system", "player/core", "player/library", "player/query", "player/titleformat"],
    "player/services": SDK + ["player/" + room for room in DOMAINS] + ["player/system", "player/core", "player/view"],
    "player/app": SDK + ["player/" + room for room in DOMAINS + ["watch"]] + ["player/system", "player/core", "player/view", "player/services"],
    "player/remote": SDK + ["player/system"],
    "player/mpris": SDK + ["player/" + room for room in ("system", "bus", "playback", "titleformat", "app")],
    "player/terminal": SDK + ["player"],
    "player/desktop": SDK + ["player"],
    "quorvel/common": SDK,
    "quorvel/xml": SDK,
    "quorvel/platform": SDK + ["quorvel/common"],
    "quorvel/store": SDK + ["quorvel/common", "quorvel/xml", "quorvel/platform"],
    "quorvel/interchange": SDK + ["quorvel/common", "quorvel/xml", "quorvel/platform", "quorvel/store"],
    "quorvel/host": SDK + ["quorvel"],
}
# These use only the standard library, whose headers have neither folder nor suffix; system headers are for `platform`.
STANDARD_ONLY = ("sdk/", "quorvel/")
SYSTEM_TOO = ("quorvel/platform/",)

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def folder_of(name):
    fitting = [folder for folder in GROUND if name.startswith(folder + "/")]
    return max(fitting, key=len, default=None)


def complaint(name, kind, target):
    if kind == "<":
        if name.startswith(STANDARD_ONLY) and not name.startswith(SYSTEM_TOO) and re.search(r"[/.]", target):
            return "the component and its contract use the standard library only; the system belongs into quorvel/platform"
        return None
    folder = folder_of(name)
    if folder is None:
        return "the folder has no rule in tests/lint/include_rules.py; add one"
    if not any(target.startswith(allowed + "/") for allowed in GROUND[folder] + [folder]):
        return f"{folder} may include itself and {', '.join(GROUND[folder])}, by paths from the top of the tree"
    return None


def main():
    complaints = []
    sources = [n for n in tracked(".h", ".cpp") if n.split("/")[0] in ("sdk", "quorvel", "player")]
    for name in sources:
        for number, line in lines(name):
            found = INCLUDE.match(line)
            wrong = found and complaint(name, *found.groups())
            if wrong:
                complaints.append(f"{name}:{number}: {line.strip()}: {wrong}")
    report(len(sources), complaints)


main()

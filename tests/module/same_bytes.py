"""The same work on two systems leaves the same bytes: same_bytes.py NATIVE... -- FOREIGN...

Both commands start statistics_files; each imports the same statistics and writes its index, its clipboard and its export."""

import sys
import tempfile
from pathlib import Path

from script_player import ScriptPlayer

STATISTICS = Path(__file__).with_name("statistics.xml")
FILES = ("index", "clipboard", "export")


def files_of(command, zone, folder):
    player = ScriptPlayer(command, TZ=zone)
    player.run(f"import {STATISTICS}")
    player.run("copy")
    for name in FILES:
        player.run(f"{name} {folder}/{name}")
    player.close()
    return {name: Path(folder, name).read_bytes() for name in FILES}


def main():
    cut = sys.argv.index("--")
    native, foreign = sys.argv[1:cut], sys.argv[cut + 1:]
    exports = set()
    for zone in ("America/Los_Angeles", "Australia/Sydney", "Europe/Berlin", "Asia/Kolkata"):
        with tempfile.TemporaryDirectory() as here, tempfile.TemporaryDirectory() as there:
            ours, theirs = files_of(native, zone, here), files_of(foreign, zone, there)
        for name in FILES:
            if not ours[name]:
                raise SystemExit(f"{zone}: {name} is empty")
            if ours[name] != theirs[name]:
                at = next((i for i, pair in enumerate(zip(ours[name], theirs[name])) if pair[0] != pair[1]), "the end")
                raise SystemExit(f"{zone}: {name} differs at {at}\n{ours[name]!r}\n{theirs[name]!r}")
        exports.add(ours["export"])
    if len(exports) != 4:
        raise SystemExit("the zones made no difference to the times in the exports")


main()

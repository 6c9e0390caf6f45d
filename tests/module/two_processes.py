"""Two Windows programs exchange statistics through the system's clipboard: two_processes.py COMMAND..."""

import sys
import tempfile
from pathlib import Path

from script_player import ScriptPlayer

STATISTICS = Path(__file__).with_name("statistics.xml")


def expect(found, wanted, what):
    if found != wanted:
        raise SystemExit(f"{what}: {found!r} instead of {wanted!r}")


def main():
    command = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        giver, taker = ScriptPlayer(command), ScriptPlayer(command)
        expect(taker.run("can-paste"), ["no"], "with nothing on the clipboard")
        giver.run(f"import {STATISTICS}")
        giver.run(f"index {folder}/given")
        giver.run("copy")
        expect(taker.run("can-paste"), ["yes"], "after another program has copied")
        taker.run("paste")
        taker.run("clipboard " + folder + "/block")
        # What was copied stays when the program has ended.
        giver.close()
        expect(taker.run("can-paste"), ["yes"], "after that program has ended")
        taker.run(f"index {folder}/taken")
        taker.close()
        given, taken = Path(folder, "given").read_bytes(), Path(folder, "taken").read_bytes()
        if len(given) != 5 * 48:
            raise SystemExit(f"the import gave {len(given)} bytes of records instead of five records")
        expect(taken, given, "pasted records")
        expect(Path(folder, "block").stat().st_size, 4 + 5 * 36, "size of the block")


main()

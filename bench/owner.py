#!/usr/bin/env python3
"""Times commands carried out by the process that serves the profile against the same by themselves: owner.py [--bin FOLDER]

The library has as many tracks as `--tracks` says, without files. Prints seconds, the best of some rounds."""

import argparse
import contextlib
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from machine import ROOT
from make_library import make_library, ostrevan

COMMANDS = {
    "list of everything": ["list"],
    "list of a search": ["list", "low water ferry 7"],
    "rating": ["context", "Playback Statistics/Rating/5", "--where", "%tracknumber% IS 1 LIMIT 1"],
    "status": ["status", "--json"],
}


def seconds(command):
    began = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return time.perf_counter() - began


@contextlib.contextmanager
def served(binaries, profile):
    owner = subprocess.Popen([each for each in ostrevan(binaries, profile, "serve") if each != "--quiet"], stderr=subprocess.PIPE)
    try:
        owner.stderr.readline()
        yield
    finally:
        owner.terminate()
        if owner.wait() != 0:
            sys.exit("owner: it did not end well")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=Path, default=ROOT / "build/bench/bin", help="folder with ostrevan")
    parser.add_argument("--tracks", type=int, default=100_000)
    parser.add_argument("--rounds", type=int, default=5)
    wanted = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="owner-") as folder:
        profile = Path(folder) / "profile"
        make_library(wanted.bin, profile, wanted.tracks)
        print(f"{'':20}{'alone':>10}{'owner':>10}{'ratio':>8}")
        for name, words in COMMANDS.items():
            command = ostrevan(wanted.bin, profile, *words)
            alone = min(seconds(command) for _ in range(wanted.rounds))
            with served(wanted.bin, profile):
                through = min(seconds(command) for _ in range(wanted.rounds))
            print(f"{name:20}{alone:10.3f}{through:10.3f}{through / alone:8.2f}", flush=True)


if __name__ == "__main__":
    main()

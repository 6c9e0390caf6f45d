#!/usr/bin/env python3
"""Times the player's first answer with a million records in the index against ten thousand: startup.py [--bin FOLDER]

Both profiles have the same small library. The two starts alternate. Prints a table, or JSON in the form of the other
benches."""

import argparse
import json
import os
import random
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
STATISTICS_INDEX = "C653739F-14B3-4EF2-819B-A3E2883230AE"
GOAL = 1.5


def ostrevan(binaries, profile, *arguments):
    return [str(binaries / "ostrevan"), "--profile", str(profile), "--components", str(binaries / "components"),
            "--quiet", *arguments]


def make_profile(binaries, profile, music, records):
    """A profile with this music in its library, played, and records of so many other tracks."""
    subprocess.run(ostrevan(binaries, profile, "library", "add", str(music)), check=True, stdout=subprocess.DEVNULL)
    subprocess.run(ostrevan(binaries, profile, "play", "--fast", "--audio", "null", "--where", "ALL"), check=True,
                   stdout=subprocess.DEVNULL)
    database = sqlite3.connect(profile / "index.sqlite")
    [(index,)] = database.execute("SELECT id FROM indexes WHERE trim(guid, '{}') = ? COLLATE NOCASE", (STATISTICS_INDEX,))
    numbers = random.Random(records)
    keys = sorted({numbers.randrange(-2**63, 2**63) for _ in range(records)})
    now = int(time.time())
    data = (1).to_bytes(8, "little") + bytes(28) + b"\xff" * 4
    with database:
        database.executemany("INSERT OR IGNORE INTO records (index_id, key, last_seen, data) VALUES (?, ?, ?, ?)",
                             ((index, key, now, data) for key in keys))
    database.close()


def seconds_to_answer(binaries, profile, tracks):
    """Seconds to the first line and to the end."""
    command = ostrevan(binaries, profile, "list", "%play_count% GREATER 0", "--format", "%title%")
    began = time.perf_counter()
    with subprocess.Popen(command, stdout=subprocess.PIPE) as player:
        first = player.stdout.readline()
        answered = time.perf_counter() - began
        rest = player.stdout.read()
    if player.returncode != 0 or len((first + rest).splitlines()) != tracks:
        sys.exit(f"startup: the player did not list its {tracks} played tracks: {(first + rest).decode()}")
    return answered, time.perf_counter() - began


def measure(binaries, rounds, repetitions):
    """A ratio for each repetition; the profiles are made once."""
    with tempfile.TemporaryDirectory(prefix="startup_bench_", dir=Path.cwd()) as name:
        folder = Path(name)
        music = folder / "music"
        subprocess.run(["bash", ROOT / "scripts/make-music.sh", music], check=True)
        tracks = sum(1 for file in music.rglob("*") if file.is_file())
        small, large = folder / "ten_thousand", folder / "million"
        make_profile(binaries, small, music, 10_000)
        make_profile(binaries, large, music, 1_000_000)
        for profile in (small, large):  # the first start reads the files from the disk
            seconds_to_answer(binaries, profile, tracks)
        return [ratio_of(binaries, small, large, tracks, rounds) for _ in range(repetitions)]


def ratio_of(binaries, small, large, tracks, rounds):
    times = {small: [], large: []}
    for _ in range(rounds):
        for profile, measured in times.items():
            measured.append(seconds_to_answer(binaries, profile, tracks))
    answer, whole = (
        [statistics.median(seconds[which] for seconds in times[profile]) for profile in (small, large)] for which in (0, 1))
    return {"name": "first_answer_with_a_million_records", "label": "the same with ten thousand",
            "ratio": answer[1] / answer[0], "goal": GOAL,
            "milliseconds": answer[1] * 1000, "floor_milliseconds": answer[0] * 1000,
            "whole_run_ratio": whole[1] / whole[0]}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=Path, default=ROOT / "build/bench/bin", help="folder of ostrevan and its components")
    parser.add_argument("--rounds", type=int, default=7, help="starts of each kind in a repetition (default 7)")
    parser.add_argument("--repetitions", type=int, default=1, help="ratios to measure (default 1)")
    parser.add_argument("--json", action="store_true", help="print JSON")
    options = parser.parse_args()
    os.environ.pop("XDG_DATA_HOME", None)
    results = measure(options.bin.resolve(), options.rounds, options.repetitions)
    if options.json:
        print(json.dumps({"benchmarks": results}, indent=1))
        return
    for result in results:
        for key, value in result.items():
            print(f"{key:22}{value:.2f}" if isinstance(value, float) else f"{key:22}{value}")


if __name__ == "__main__":
    main()

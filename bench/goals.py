"""The goals of a large library, and whether the figures of bench/growth meet them."""

import json
import subprocess

START, LIST, TABLE = "start, nothing to do", "first list, a line a track", "first list, as a table"
RATING, KEYS = "rating of everything", "start, every key has changed"
STEPS = {START, LIST, TABLE, RATING, KEYS}
SIZES = [100_000, 1_000_000]
WAIT = "main_thread_while_rating"
# Tracks, step, figure, most, unit.
GOALS = [
    (1_000_000, START, "seconds", 3, "s"),
    (1_000_000, START, "of_floor", 1.5, "floors"),
    (1_000_000, LIST, "first_line", 2, "s"),
    (1_000_000, TABLE, "seconds", 7, "s"),
    (1_000_000, KEYS, "seconds", 9, "s"),
    (1_000_000, RATING, "longest_wait", 0.7, "s"),
    (100_000, START, "seconds", 0.35, "s"),
    (1_000_000, START, "megabytes", 600, "MB"),
    (1_000_000, TABLE, "megabytes", 1000, "MB"),
    (1_000_000, KEYS, "megabytes", 1200, "MB"),
]


def longest_wait(binaries, repetitions):
    """Median seconds for which the main thread is busy while a million tracks are rated."""
    done = subprocess.run([binaries / "component_bench", f"--benchmark_filter=^{WAIT}/", "--benchmark_format=json",
                           f"--benchmark_repetitions={repetitions}", "--benchmark_report_aggregates_only"],
                          cwd=binaries.parent, check=True, capture_output=True, text=True)
    medians = [run for run in json.loads(done.stdout)["benchmarks"] if run.get("aggregate_name") == "median"]
    return medians[0]["longest_ms"] / 1000


def compare(sizes, wait):
    """Each goal with its figure."""
    figures = {}
    for size in sizes:
        for row in size["rows"]:
            for name in ("seconds", "first_line", "megabytes"):
                figures[size["tracks"], row["what"], name] = row[name]
        start = figures[size["tracks"], START, "seconds"]
        figures[size["tracks"], START, "of_floor"] = start / size["floor_of_start"]
    figures[1_000_000, RATING, "longest_wait"] = wait
    return [{"tracks": tracks, "what": what, "figure": figure, "value": figures[tracks, what, figure], "goal": most,
             "unit": unit, "met": figures[tracks, what, figure] <= most} for tracks, what, figure, most, unit in GOALS]


def print_goals(results):
    print(f"\n{'goals':52}{'measured':>12}{'goal':>9}")
    for each in results:
        what = f"{each['what']}, {each['figure'].replace('_', ' ')}"
        print(f"{each['tracks']:9,}  {what:41}{each['value']:12.2f}{each['goal']:9} {each['unit']:7}"
              + ("met" if each["met"] else "missed"))

"""Runs one outside tool over the tree: run_tool.py format | shell | tidy BUILD_FOLDER"""

import concurrent.futures
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

from tracked import ROOT, lines, tracked

SKIPPED = 77  # ctest shows the test as skipped
LLVM = "14"  # other versions wrap lines elsewhere and warn of other things


def skip(why):
    print(f"skipped: {why}")
    sys.exit(SKIPPED)


def llvm(tool):
    for name in (f"{tool}-{LLVM}", tool):
        path = shutil.which(name)
        if path and re.search(rf"version {LLVM}\.", subprocess.run([path, "--version"], capture_output=True, text=True).stdout):
            return path
    return skip(f"there is no {tool} {LLVM}; install the package {tool}-{LLVM}")


def run(command, names):
    if not names:
        sys.exit("nothing to look at")
    print(f"{len(names)} files")
    sys.exit(subprocess.run(command + names, cwd=ROOT).returncode)


def check_format():
    run([llvm("clang-format"), "--dry-run", "-Werror"], tracked(".h", ".cpp"))


def check_shell():
    shellcheck = shutil.which("shellcheck") or skip("shellcheck is not installed")
    run([shellcheck], [n for n in tracked() if n.endswith(".sh") or lines(n)[:1] and "bash" in lines(n)[0][1][:24]])


def product_units(build):
    """How the build compiles the product, as clang can read it: without headers that another compiler has read before."""
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = [entry for entry in json.load(file) if re.search(r" -o (sdk|quorvel|player)/CMakeFiles/", entry["command"])]
    entries = [entry for entry in entries if "cmake_pch" not in entry["file"]]
    for entry in entries:
        entry["command"] = re.sub(r"-Winvalid-pch -include \S+ ", "", entry["command"])
    return entries


def check_tidy(build):
    """The product, in the units that the build compiles; headers come with the sources that include them."""
    tidy = llvm("clang-tidy")
    complaints, unread = set(), []
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        units = product_units(build)
        with open(os.path.join(folder, "compile_commands.json"), "w", encoding="utf-8") as file:
            json.dump(units, file)
        command = [tidy, "--quiet", "--use-color=0", "-p", folder, "--extra-arg=-Wno-unknown-warning-option",
                   "--extra-arg=-Wno-shadow",  # constants of one file are seen in the next of its unit
                   "--checks=-bugprone-suspicious-include", f"--header-filter=^{re.escape(ROOT)}/(sdk|quorvel|player)/"]
        finish = pool.map(lambda unit: subprocess.run(command + [unit["file"]], cwd=ROOT, capture_output=True, text=True), units)
        for unit, result in zip(units, finish):
            found = re.findall(r"^(\S+:\d+:\d+: (?:error|warning): .*\[([\w.,-]+)\])$", result.stdout, re.M)
            new = {text for text, check in found if not check.startswith("clang-diagnostic-error")} - complaints
            print("".join(text + "\n" for text in sorted(new)), end="", flush=True)
            complaints |= new
            # This clang cannot parse some of the ranges in libstdc++. Such a unit is named, and many of them are a failure.
            if result.returncode != 0 and all(check.startswith("clang-diagnostic-error") for _, check in found):
                unread.append(unit["file"])
    print(f"{len(units)} units, {len(complaints)} complaints; not read to the end: {', '.join(unread) or 'none'}")
    sys.exit(1 if complaints or len(unread) * 4 >= len(units) else 0)


if len(sys.argv) == 3 and sys.argv[1] == "tidy":
    check_tidy(sys.argv[2])
elif sys.argv[1:] in (["format"], ["shell"]):
    {"format": check_format, "shell": check_shell}[sys.argv[1]]()
else:
    sys.exit(__doc__)

"""Runs one outside tool over the tree: run_tool.py format | shell | tidy BUILD_FOLDER"""

import json
import os
import re
import shutil
import subprocess
import sys

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


def check_tidy(build):
    """Sources of the product; headers come with the files that include them."""
    tidy = llvm("clang-tidy")
    runner = shutil.which(f"run-clang-tidy-{LLVM}") or shutil.which("run-clang-tidy") or skip("run-clang-tidy is missing")
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        built = {os.path.realpath(os.path.join(entry["directory"], entry["file"])) for entry in json.load(file)}
    sources = [n for n in tracked(".cpp") if n.startswith(("sdk/", "quorvel/", "player/"))]
    names = [n for n in sources if os.path.realpath(os.path.join(ROOT, n)) in built]
    header = f"^{re.escape(ROOT)}/(sdk|quorvel|player)/"
    command = [runner, "-quiet", "-clang-tidy-binary", tidy, "-p", build, "-j", "2", "-header-filter", header]
    run(command, [f"^{re.escape(os.path.join(ROOT, n))}$" for n in names])


if len(sys.argv) == 3 and sys.argv[1] == "tidy":
    check_tidy(sys.argv[2])
elif sys.argv[1:] in (["format"], ["shell"]):
    {"format": check_format, "shell": check_shell}[sys.argv[1]]()
else:
    sys.exit(__doc__)

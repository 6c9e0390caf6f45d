"""Runs one outside tool over the tree: run_tool.py format | shell | tidy BUILD_FOLDER"""

import concurrent.futures
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
    """The sources of the product that the build compiles; headers come with the files that include them."""
    tidy = llvm("clang-tidy")
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        built = {os.path.realpath(os.path.join(entry["directory"], entry["file"])) for entry in json.load(file)}
    sources = [n for n in tracked(".cpp") if n.startswith(("sdk/", "quorvel/", "player/"))]
    names = [n for n in sources if os.path.realpath(os.path.join(ROOT, n)) in built]
    header = f"^{re.escape(ROOT)}/(sdk|quorvel|player)/"
    command = [tidy, "--quiet", "--use-color=0", "-p", build, f"--header-filter={header}"]
    complaints, unread = [], []
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        finish = pool.map(lambda n: subprocess.run(command + [n], cwd=ROOT, capture_output=True, text=True), names)
        for name, result in zip(names, finish):
            found = re.findall(r"^(\S+:\d+:\d+: (?:error|warning): .*\[([\w.,-]+)\])$", result.stdout, re.M)
            for text, check in found:
                if not check.startswith("clang-diagnostic-error") and text not in complaints:
                    complaints.append(text)
                    print(text, flush=True)
            # This clang cannot parse some of the ranges in libstdc++. Such a file is named, and many of them are a failure.
            if result.returncode != 0 and not any(not check.startswith("clang-diagnostic-error") for _, check in found):
                unread.append(name)
    print(f"{len(names)} files, {len(complaints)} complaints; not read to the end: {', '.join(unread) or 'none'}")
    sys.exit(1 if complaints or len(unread) * 4 >= len(names) else 0)


if len(sys.argv) == 3 and sys.argv[1] == "tidy":
    check_tidy(sys.argv[2])
elif sys.argv[1:] in (["format"], ["shell"]):
    {"format": check_format, "shell": check_shell}[sys.argv[1]]()
else:
    sys.exit(__doc__)

"""The files under version control, for the checks of this folder."""

import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def tracked(*suffixes):
    """Paths from the top of the tree that end with one of the suffixes (all without any) and still exist."""
    # A container that mounts somebody's checkout runs as another user, which git refuses unless told.
    command = ["git", "-c", "safe.directory=*", "-C", ROOT, "ls-files", "-z"]
    names = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout.decode().split("\0")
    return [n for n in names if n and n.endswith(suffixes or ("",)) and os.path.isfile(os.path.join(ROOT, n))]


def lines(name):
    """Numbered lines of a text file; none for a file that is not text."""
    with open(os.path.join(ROOT, name), "rb") as file:
        content = file.read()
    if b"\0" in content:
        return []
    return list(enumerate(content.decode("utf-8", "replace").splitlines(), 1))


def report(checked, complaints):
    """Prints the complaints and ends the process; a check without any files has failed too."""
    print("\n".join(complaints))
    print(f"{checked} files looked at, {len(complaints)} complaints")
    sys.exit(1 if complaints or checked == 0 else 0)

"""A real file system that fills up during the work, with short writes and mapped pages without room, which failing calls cannot
produce. Mounting one requires an administrator; other users skip this."""
import os
import shutil
import subprocess

from calls import restart
from sandbox import require
from works import WORKS

PAGE = 4096


def mount(path, size):
    options = f"mode=755,size={size}"
    return subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", path], capture_output=True).returncode == 0


def used(folder):
    """At most; every file and folder takes at least a page."""
    return sum(PAGE + -(-path.stat().st_size // PAGE) * PAGE for path in [folder, *folder.rglob("*")])


class SmallDisk:
    name = "small disk"

    def cases(self, job):
        folder = job.box.root / "disk"
        folder.mkdir(exist_ok=True)
        if os.getuid() != 0 or not mount(folder, PAGE):
            return 0
        subprocess.run(["umount", folder], check=True)
        return 40 * len(WORKS)

    def run(self, job, index, random):
        work, box = job.ready(WORKS[index % len(WORKS)]), job.box
        folder = random.choice([box.profile, box.music])
        room = random.choice([random.randrange(4), random.randrange(64)]) * PAGE
        job.fault = f"{work.name}, {room} bytes free in {folder.name}"
        with Filling(folder, box.root / "aside", room):
            result = box.run(*work.words())
        job.judge(result)
        restart(job, work, result)


class Filling:
    """Puts the folder onto a separate disk with limited room, and back at the end."""

    def __init__(self, folder, aside, room):
        self.folder, self.aside, self.room = folder, aside, room

    def move(self):
        shutil.rmtree(self.aside, ignore_errors=True)
        shutil.copytree(self.folder, self.aside)

    def __enter__(self):
        self.folder.mkdir(exist_ok=True)
        self.move()
        require(mount(self.folder, used(self.folder) + self.room), "cannot mount")
        shutil.copytree(self.aside, self.folder, dirs_exist_ok=True)

    def __exit__(self, *failure):
        self.move()
        subprocess.run(["umount", self.folder], check=True)
        shutil.rmtree(self.folder)
        shutil.copytree(self.aside, self.folder)

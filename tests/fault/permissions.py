"""Missing permissions: an ordinary user on a profile or music that is read-only in part or as a whole."""
import os

from sandbox import require
from work_play import Plays
from work_tags import WRITE_TAGS as WRITE

NOBODY = 65534
PLAY = ["play", "--audio", "null", "--fast"]

# The rights withdrawn, and the commands to try.
CASES = [
    (["profile"], PLAY), (["profile", "profile/*"], PLAY), (["profile", "profile/*"], ["list"]), (["profile/*"], PLAY),
    (["profile/index.sqlite"], PLAY), (["profile/library.sqlite"], ["library", "rescan"]), (["profile/lock"], PLAY),
    (["profile/configuration.json"], ["settings", "Automatically synchronize", "on"]), (["."], PLAY), (["music/*"], WRITE),
    (["music/*/*"], WRITE), (["music/*", "music/*/*"], WRITE),
]


class ReadOnly:
    name = "read-only"

    def cases(self, job):
        return 2 * len(CASES)

    def run(self, job, index, random):
        """Every case twice: modes without the right to write, and without any right."""
        work, box = job.ready(Plays), job.box
        patterns, words = CASES[index % len(CASES)]
        taken = 0o222 if index < len(CASES) else 0o777
        job.fault = f"{patterns} without {taken:o}: {words}"
        places = [path for pattern in patterns for path in ([box.place] if pattern == "." else box.place.glob(pattern))]
        prefix = self.give_to_nobody(box)
        before = box.files()
        modes = {path: path.stat().st_mode for path in places}
        for path, mode in modes.items():
            path.chmod(mode & ~taken)
        result = box.run(*words, *([box.music] if words is PLAY else []), prefix=prefix)
        for path, mode in modes.items():
            path.chmod(mode)
        job.judge(result)
        require(result.status == 0 or box.files() == before or words is WRITE, "files have changed")
        counted = result.out.count("Counted: ")
        require(sum(box.counts().values()) == sum(work.before.values()) + counted, "counts are wrong")
        require(result.status == 1 or words is not PLAY or counted == len(work.before), "it ended well without counting all")

    @staticmethod
    def give_to_nobody(box):
        """Modes do not bind root, so the player then runs as another user."""
        if os.getuid() != 0:
            return ()
        for path in [box.place, *box.place.rglob("*")]:
            os.chown(path, NOBODY, NOBODY)
        for folder in (box.root, box.root.parent):
            folder.chmod(0o755)
        return ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups")

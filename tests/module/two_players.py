"""Two players, each a process of the program statistics_files that takes commands, on this system or under Wine.

two_players.py clipboard COMMAND...             exchange statistics through the system's clipboard
two_players.py bytes NATIVE... -- FOREIGN...    leave the same bytes: index, clipboard and export after the same import
"""
import os
import subprocess
import sys
import tempfile
from pathlib import Path

STATISTICS = Path(__file__).with_name("statistics.xml")


class Player:
    def __init__(self, command, **environment):
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                        env={**os.environ, **environment})

    def run(self, command):
        """The lines that the command prints."""
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        lines = []
        for line in self.process.stdout:
            if line.strip() == "done":
                return lines
            lines.append(line.strip())
        raise SystemExit(f"'{command}' ended the player with status {self.process.wait()}")

    def file(self, name, folder):
        self.run(f"{name} {folder}/{name}")
        return Path(folder, name).read_bytes()

    def close(self):
        self.process.stdin.close()
        expect(self.process.wait(), 0, "status of the player")


def expect(found, wanted, what):
    if found != wanted:
        raise SystemExit(f"{what}: {found!r} instead of {wanted!r}")


def clipboard(folder, *command):
    giver, taker = Player(command), Player(command)
    expect(taker.run("can-paste"), ["no"], "with nothing on the clipboard")
    giver.run(f"import {STATISTICS}")
    given = giver.file("index", folder)
    giver.run("copy")
    giver.close()  # what was copied stays
    expect(taker.run("can-paste"), ["yes"], "after another program has copied and ended")
    taker.run("paste")
    expect(len(given), 5 * 48, "bytes of imported records")
    expect(taker.file("index", folder), given, "pasted records")
    expect(len(taker.file("clipboard", folder)), 4 + 5 * 36, "size of the block")
    taker.close()


def files_of(command, zone, folder):
    player = Player(command, TZ=zone)
    player.run(f"import {STATISTICS}")
    player.run("copy")
    files = [player.file(name, folder) for name in ("index", "clipboard", "export")]
    player.close()
    return files


def bytes_of_systems(folder, *commands):
    native, foreign = commands[:commands.index("--")], commands[commands.index("--") + 1:]
    exports = set()
    for zone in ("America/Los_Angeles", "Australia/Sydney", "Europe/Berlin", "Asia/Kolkata"):
        ours = files_of(native, zone, folder)
        expect(files_of(foreign, zone, folder), ours, f"files in {zone}")
        exports.add(ours[2])
    expect(len(exports), 4, "exports that differ by their zones")


with tempfile.TemporaryDirectory() as work:
    {"clipboard": clipboard, "bytes": bytes_of_systems}[sys.argv[1]](work, *sys.argv[2:])

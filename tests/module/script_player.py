"""A player that takes commands: the program statistics_files in a process of its own, on this system or under Wine."""

import os
import subprocess


class ScriptPlayer:
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

    def close(self):
        self.process.stdin.close()
        if self.process.wait() != 0:
            raise SystemExit(f"the player ended with status {self.process.returncode}")

"""The command line itself: completion in each shell, manual pages, the configuration file."""
import os
import pathlib
import subprocess
import unittest

from player import MUSIC, PROGRAM, PlayerTest

SCRIPTS = pathlib.Path(__file__).parents[3] / "scripts" / "completions"
# A line before the tab key, and what it must have become or offered.
LINES = [
    ("ostrevan playl", "playlist"),
    ("ostrevan list --colu", "--column"),
    ("ostrevan list --column pl", "Play Count"),
    ("ostrevan play --playlist My", "My Best One"),
    ("ostrevan play --shuffle=al", "--shuffle=albums"),
    ("ostrevan rate n", "none"),
    ("ostrevan menu library/playback\\ statistics/mon", "Library/Playback Statistics/Monitor playing tracks"),
    ("ostrevan format %play_c", "%play_count%"),
    ("ostrevan library add mu", "music"),
]
BASH = """
source "$1"
COMP_WORDS=() word=
for ((i = 0; i < ${#2}; ++i)); do  # as the shell breaks a line into words
    letter=${2:i:1}
    if [[ $letter == ' ' && $word != *\\\\ ]]; then COMP_WORDS+=("$word") word=
    elif [[ $letter == '=' ]]; then COMP_WORDS+=("$word" =) word=
    else word+=$letter; fi
done
COMP_WORDS+=("$word") COMP_CWORD=${#COMP_WORDS[@]}-1
_ostrevan ostrevan
printf '%s\\n' "${COMPREPLY[@]}"
"""
# The key after the tab key says what has become of the line.
ZSH = """
zmodload zsh/zpty
zpty z zsh -f -i
zpty -w z "fpath=(${1:h} $fpath); autoload -U compinit; compinit -u -D; bindkey '^I' complete-word; zle -N say; bindkey '^X' say"
zpty -w z 'say() { print -rn -- "<<$BUFFER>>" }; print -n read''y'
zpty -r -m z out '*ready*'
zpty -w -n z "$2"$'\\t\\x18'
zpty -r -m z out '*<<*>>*'
print -r -- ${${out%%>>*}##*<<}
"""
FISH = "set -p fish_complete_path (dirname $argv[1]); complete -C $argv[2]"


class ShellsTest(PlayerTest):
    def setUp(self):
        super().setUp()
        (self.folder / "ostrevan").symlink_to(self.profile)
        (self.folder / "music").mkdir()
        (self.folder / "bin").mkdir()
        (self.folder / "bin/ostrevan").symlink_to(PROGRAM)
        self.env.update(XDG_DATA_HOME=str(self.folder), HOME=str(self.folder), TERM="dumb",
                        PATH=f"{self.folder}/bin:{os.environ['PATH']}")
        self.run_player("library", "add", MUSIC)
        self.run_player("playlist", "create", "My Best One", MUSIC)

    def shell(self, *words):
        return subprocess.run(words, cwd=self.folder, env=self.env, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=60).stdout

    def test_each_shell_completes(self):
        for line, wanted in LINES:
            with self.subTest(shell="bash", line=line):
                lines = self.shell("bash", "-c", BASH, "bash", SCRIPTS / "ostrevan.bash", line).splitlines()
                self.assertEqual([wanted.removeprefix("--shuffle=")], lines)
            with self.subTest(shell="fish", line=line):
                out = self.shell("fish", "-c", FISH, SCRIPTS / "ostrevan.fish", line).splitlines()
                self.assertEqual([wanted], [each.split("\t")[0].rstrip("/") for each in out])
        for line, wanted in LINES[:5:2]:
            with self.subTest(shell="zsh", line=line):
                wanted = line.rsplit(" ", 1)[0] + " " + wanted.replace(" ", "\\ ")
                self.assertEqual(wanted, self.shell("zsh", "-c", ZSH, "zsh", SCRIPTS / "_ostrevan", line).strip())

    def test_manual_pages_are_well_formed(self):
        pages = [self.run_player("manual").stdout]
        names = [line.split()[1].replace("\\-", "-") for line in pages[0].splitlines() if line.startswith(".BR ostrevan\\-")]
        commands = [name.removeprefix("ostrevan-") for name in names if "(7)" not in name]
        self.assertIn("playlist", commands)
        for name in commands:
            if name not in ("query", "title-formatting"): pages.append(self.run_player("manual", name).stdout)
        for page in pages:
            done = subprocess.run(["groff", "-man", "-ww", "-Tutf8"], input=page, capture_output=True, text=True)
            self.assertEqual("", done.stderr)
            self.assertIn("OSTREVAN", done.stdout)

    def test_configuration_file(self):
        file = self.folder / "config/ostrevan/config"
        file.parent.mkdir(parents=True)
        by_title = "list --format '%title%' --sort Title --descending  # the last first\n\nstats --limit 1\n"
        titles = sorted(self.run_player("list", "--format", "%title%").stdout.splitlines(), key=str.casefold)
        for content, words, expected in [
                (by_title, ["list"], titles[::-1]),
                (by_title, ["list", "--sort", "Title"], titles),
                (by_title, ["list", "--sort", "Title", "--format", "%artist%: %title%", "first ferry"],
                 ["The Paper Lanterns: First Ferry"]),
                (by_title + "--quiet\n", ["list", "--column", "Title", "--", "ferry"], ["Title"]),
                ("list --sort", ["list"], "config:1: --sort needs a value."),
                ("\nlist Ferry", ["list"], "config:2: a command is followed by its options only"),
                ("play --volume 300", ["config"], "config:1: --volume"),
                ("play --volume 300", ["status"], "Nothing is playing."),
                ("list --colum x", ["list", "--help"], "List tracks"),
                ("list 'x", ["list"], "config:1: a quotation mark ' is not closed.")]:
            with self.subTest(content=content, words=words):
                file.write_text(content)
                done = self.run_player(*words, status=None)
                if isinstance(expected, str): self.assertIn(expected, done.stdout + done.stderr)
                else: self.assertEqual(expected, done.stdout.splitlines()[:len(expected)])


if __name__ == "__main__":
    unittest.main()

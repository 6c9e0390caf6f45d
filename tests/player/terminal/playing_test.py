"""Keys while tracks play on a terminal, and the terminal afterwards."""
import signal
import unicodedata

from player import ASKING, PlayerTest

PLAY = ("play", "--audio", "null")


class Playing(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()

    def test_keys_do_what_the_table_says_and_each_time_heard_counts_once(self):
        player, terminal, end = self.start_on_terminal(*PLAY, self.music, columns=120)
        self.type_keys(terminal, ("Playing 1 of 8.* / ", "?"), ("remove the rating", "n"), ("Playing 2 of 8.* / ", "\x1b[Dp"),
                       ("Playing 1 of 8.* / ", "4"), ("★★★★☆", " "), ("paused", "--"), ("volume 90", "rse"),
                       ("repeat track  shuffle  last track  volume 90", "se "), ("Counted", ""), ("Counted", ""), ("0:0", "q"))
        self.assertEqual(player.wait(timeout=100), 0)
        self.assertTrue(self.reads_lines(end))
        played = {(track["rating"], track["play_count"]) for track in self.tracks() if track["play_count"]}
        self.assertEqual(played, {(4, 2)})
        player, terminal, _ = self.start_on_terminal(*PLAY, columns=120)
        self.type_keys(terminal, ("Playing 1 of 8.*repeat track  shuffle albums  volume 90", "r"), ("Playing 2 of", "\x03"))
        self.assertEqual(player.wait(timeout=100), 130)

    def test_the_terminal_is_given_back_on_every_way_out(self):
        for way, status in ((signal.SIGINT, 130), (signal.SIGTERM, 130), (signal.SIGSEGV, -signal.SIGSEGV), (signal.SIGHUP, -1)):
            player, terminal, end = self.start_on_terminal(*PLAY, self.music)
            self.type_keys(terminal, (" / ", ""))
            self.assertFalse(self.reads_lines(end))
            player.send_signal(way)
            self.assertEqual(player.wait(timeout=100), status)
            self.assertTrue(self.reads_lines(end), way)

    def test_it_can_be_stopped_and_continued(self):
        shell = ("bash", "-mc", '"$@"; stty -a | grep -o ".icanon"; fg; stty -a | grep -o ".icanon"', "bash")
        player, terminal, _ = self.start_on_terminal(*PLAY, self.music, by=shell)
        self.type_keys(terminal, (" / ", "\x1a"), (" icanon", ""), ("/.*/ ", "q"), (" icanon", ""))
        self.assertEqual(player.wait(timeout=100), 0)

    def test_a_question_is_answered_by_a_line_while_keys_are_read(self):
        player, terminal, _ = self.start_on_terminal("--components", ASKING, *PLAY, self.music)
        self.type_keys(terminal, (" / ", "3"), (r"Are you sure\?\s+\[y\]es", "yn\x7fes\n"), (r"[\nK]Sure", "3"),
                       (r"\[n\]o", "n\n"), ("Not sure", "q"))
        self.assertEqual(player.wait(timeout=100), 3)

    def test_the_line_takes_one_row_of_any_width_and_is_erased(self):
        self.run_player("edit", self.files()[0], "--set", "title=" + "長い\ttitle " * 20)
        for columns in (1, 8, 33, 80, 200):
            pieces = self.on_terminal(*PLAY, "--fast", self.files()[0], columns=columns).split("\r\x1b[K")
            self.assertGreater(len(pieces), 1)
            self.assertNotIn(" / ", pieces[-1])
            for line in "\n".join(pieces).splitlines():
                wide = sum(unicodedata.east_asian_width(each) == "W" for each in line)
                if not line.startswith(("Playing", "Counted")):
                    self.assertLessEqual(len(line) + wide, max(columns - 1, 1), repr(line))

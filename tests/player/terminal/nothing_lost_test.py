"""Kills, interrupts, many edits, pruning, two players at once."""
import sqlite3

from player import PlayerTest


class NothingLost(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()
        self.first = self.files()[0]

    def test_a_kill_right_after_a_play_was_reported_loses_nothing(self):
        reported = 0
        for kill_after in (1, 2, 3, 5, 8):
            player = self.start("play", "--audio", "null", "--fast", *[self.first] * 12)
            for _ in range(kill_after):
                self.assertRegex(player.stdout.readline(), "^Counted: ")
            player.kill()
            reported += kill_after + player.communicate()[0].count("Counted: ")
            self.assertGreaterEqual(self.play_count(self.first), reported)

    def test_an_interrupted_play_keeps_what_was_counted(self):
        player = self.start("play", "--audio", "null", "--fast", *[self.first] * 500)
        player.stdout.readline()
        player.send_signal(2)
        out, err = player.communicate(timeout=60)
        self.assertEqual(player.returncode, 130, err)
        self.assertIn("Interrupted", err)
        self.assertEqual(self.play_count(self.first), 1 + out.count("Counted: "))

    def test_statistics_follow_more_edits_than_are_told_of_at_once(self):
        edited = self.files()[:2]
        self.play(*edited)
        database = sqlite3.connect(self.profile / "library.sqlite")
        with database:
            for path, times in zip(edited, (1500, 1)):
                title = self.track(path)["title"].encode()
                [(file, info)] = database.execute("SELECT file, info FROM tracks JOIN files ON id = file WHERE path = ?",
                                                  (str(path).encode(),))
                database.executemany("INSERT INTO edits(path, subsong, info) VALUES(?, 0, ?)", [(str(path).encode(), info)] * times)
                database.execute("UPDATE tracks SET info = ? WHERE file = ?", (info.replace(title, b"Z" + title[1:]), file))
        database.close()
        self.run_player("components")  # they follow while it starts
        self.assertEqual([self.play_count(path) for path in edited], [1, 1])

    def test_records_go_only_when_asked_after_a_question_and_never_those_of_the_library(self):
        self.play(self.first)
        key = self.track(self.first)["key"]

        def is_kept_by(*words, **options):
            database = sqlite3.connect(self.profile / "index.sqlite")
            with database:
                database.execute("UPDATE records SET last_seen = 0")
                database.execute("UPDATE indexes SET retention = 1")
            database.close()
            self.run_player(*words, **options)
            return key in self.run_player("index", "dump").stdout

        self.assertTrue(is_kept_by("--yes", "index", "prune"))
        self.first.unlink()
        for _ in range(2):
            self.assertTrue(is_kept_by("library", "rescan"))
        self.assertTrue(is_kept_by("--no", "index", "prune", status=3))
        self.assertFalse(is_kept_by("--yes", "index", "prune"))
        self.assertEqual(len(list(self.profile.glob("backup/index-*-prune.sqlite"))), 1)

    def test_players_at_the_same_time_take_turns_or_say_who_holds_the_profile(self):
        players = [self.start("play", "--audio", "null", "--fast", self.first) for _ in range(6)]
        done = 0
        for player in players:
            _, err = player.communicate(timeout=100)
            if player.returncode == 0:
                done += 1
            else:
                self.assertRegex(err, r"in use by process \d+")
        self.assertGreaterEqual(done, 1)
        self.assertEqual(self.play_count(self.first), done)

"""Kills, interrupts, and more edits than are told of at once."""
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

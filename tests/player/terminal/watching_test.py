"""What other players play is counted once each time it is heard, whatever they tell of it: scripted players."""
import subprocess

from watch_test_base import WatchTest, metadata, plays


class Watching(WatchTest):
    def test_known_failures_of_programs_that_count_what_others_play(self):
        ferry, low, gulls, home, opening, umbrella, trois, tram = map(
            self.file, ("ferry", "low", "gulls", "home", "opening", "umbrella", "trois", "tram"))
        self.start_bus()
        self.watch("--except", "unwanted")
        self.wait_for(reason="MPRIS is heard.")
        self.let_play(
            # The position alone tells of the repeats.
            ("repeats", [(0, {**plays(f"file://{low}", 3, end=0)[0][1], "Loop": 3}),
                                                                  (9.2, {"PlaybackStatus": "Stopped"}), (9.5, {})]),
            # Not encoded, and with a pause.
            ("pauses", plays(f"file://{ferry}", 4, (2, {"PlaybackStatus": "Paused"}), (3.5, {"PlaybackStatus": "Playing"}), end=5.5)),
            # The same is told again and again, and the player goes without a word.
            ("repeating.instance7", plays(f"file://{gulls}".replace(" ", "%20"), 5,
                                          *((i / 2, {"Metadata": metadata(f"file://{gulls}".replace(" ", "%20"), 5),
                                                     "PlaybackStatus": "Playing"}) for i in range(1, 10)), end=9)[:-3] + [(4.9, {})]),
            # A length that comes late, and of another type.
            ("late", [(0, {"Metadata": metadata(home, -1), "PlaybackStatus": "Playing"}),
                      (1, {"Metadata": metadata(home, 3, "d")}), (3, {"PlaybackStatus": "Stopped"}), (3.2, {})]),
            # Two names of one player, and its double on another connection.
            ("twice,twice.instance1", plays(opening, 4, end=4)),
            ("mirrored", plays(trois, 5, end=5, kind="t")), ("mirror", plays(trois, 5, end=5)),
            # Jumps, told and not.
            ("jumping", plays(tram, 3, (0.6, {"Seeked": 2.4}), end=1.2)),
            ("waking", plays(tram, 3, (0.6, {"Untold": {"Position": 2.9}}), end=1.2)),
            # Tells that something has changed, but not what.
            ("unsaid", [(0, {}), (0.2, {"Unsaid": {"Metadata": metadata(umbrella, 2), "PlaybackStatus": "Playing"}}),
                        (2.2, {"Unsaid": {"PlaybackStatus": "Stopped"}}), (2.4, {})]),
            # No position, and tags only.
            ("tagged", [(0, {}), *((at + 4, step) for at, step in
                                   plays("", 2, (0, {"Position": "error"}), end=2, title=("s", "The Other Umbrella"),
                                         artist=("as", ["Ines Vald\u00e5ker"])))]),
            # What browsers tell.
            ("browser", [(0, {"Metadata": {}, "PlaybackStatus": "Playing"}),
                         (2, {"Metadata": {"mpris:length": ("x", 2**63 - 1), "xesam:title": ("s", "")}}),
                         (4, {"Metadata": {"mpris:length": ("s", "?"), "xesam:title": ("s", "Live")}}), (6, {})]),
            ("unwanted.instance1", plays(tram, 3, end=3)), ("ostrevan.instance1", plays(tram, 3, end=3)),
            # At double speed; and a file that nobody knows, twice.
            ("stranger", [(0, {**plays("/x.flac", 4, end=0)[0][1], "Loop": 4, "Rate": 2.0}),
                          (4.1, {"PlaybackStatus": "Stopped"}), (4.3, {})]))
        counted = self.end()
        mirrors = {"mirrored", "mirror"}
        self.assertEqual(sum(counted.pop((name, "trois cuill\u00e8res"), 0) for name in mirrors), 1)
        self.assertEqual(counted, {
            ("repeats", "low water"): 3, ("pauses", "first ferry"): 1, ("repeating.instance7", "gulls over the roof"): 1,
            ("late", "home before rain"): 1, ("twice", "opening hour"): 1, ("unsaid", "the other umbrella"): 1,
            ("tagged", "the other umbrella"): 1})
        left_out = [(line["player"], line["reason"]) for line in self.lines if line["event"] == "not counted"]
        self.assertEqual(len(left_out), 2, left_out)
        self.assertIn(("stranger", "it is not in the library"), left_out)
        heard = {line["player"] for line in self.lines if line["event"] == "playing"}
        self.assertEqual({"browser", "unwanted", "ostrevan"} & {name.split(".")[0] for name in heard}, {"browser"})

    def test_the_bus_comes_late_and_is_restarted(self):
        gulls = self.file("gulls")
        self.watch()
        self.wait_for(player="MPRIS")
        daemon = self.start_bus()
        self.wait_for(reason="MPRIS is heard.")
        first, = self.begin_players([("survivor", plays(gulls, 5, end=9))], stderr=subprocess.DEVNULL)
        self.wait_for(player="survivor", event="playing")
        daemon.kill()
        daemon.wait()
        first.kill()
        self.wait_for(player="MPRIS")
        self.start_bus()
        self.wait_for(reason="MPRIS is heard.")
        rest = plays(gulls, 5, end=2)
        rest[0][1]["Position"] = 3
        self.let_play(("survivor", rest))
        self.assertEqual(self.end(), {("survivor", "gulls over the roof"): 1})

    def test_a_process_that_serves_the_profile_watches_on_request(self):
        self.start_bus()
        server = self.start("serve", "--watch")
        self.addCleanup(lambda: (server.kill(), server.communicate()))
        while "MPRIS is heard." not in server.stderr.readline():
            self.assertIsNone(server.poll())
        self.assertIn("watched already", self.run_player("watch", status=1).stderr)
        for player in self.begin_players([("served", plays(self.file("umbrella"), 2, end=2))]):
            self.assertEqual(player.wait(timeout=60), 0)
        self.assertEqual(server.stdout.readline(), "Counted: Ines Vald\u00e5ker - The Other Umbrella (served)\n")
        self.assertEqual(self.play_count(self.file("umbrella")), 1)
        self.run_player("quit")
        self.assertEqual(server.wait(timeout=30), 0)

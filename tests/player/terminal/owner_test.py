"""A process that owns a profile, and the clients whose commands it carries out: terminals, signals, and ends of either."""
import fcntl
import os
import signal
import socket
import struct
import subprocess

from player import ASKING, PROGRAM, PlayerTest

PLAY = ("play", "--audio", "null", "--repeat")


class Owner(PlayerTest):
    def setUp(self):
        super().setUp()
        self.copy_music()

    def serve(self, *options):
        owner = self.start(*options, "serve")
        self.addCleanup(lambda: (owner.kill(), owner.communicate()))
        self.assertIn("Serving", owner.stderr.readline())
        return owner

    def socket_path(self):
        status = self.profile.stat()
        return self.folder / "run" / "ostrevan" / f"{status.st_dev}-{status.st_ino}.sock"

    def until_nothing_plays(self):
        while '"stopped"' not in self.run_player("status", "--json").stdout:
            pass

    def test_a_question_is_asked_on_the_terminal_of_the_client(self):
        owner = self.serve("--components", ASKING)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.files()[0].parent)
        for answer, status in (("y", 0), ("n", 3)):
            client, terminal, _ = self.start_on_terminal("--components", ASKING, "rate", "3", self.files()[0].name)
            self.type_keys(terminal, (r"Are you sure\?\s+\[y\]es", answer + "\n"), ("ure", ""))
            self.assertEqual(client.wait(timeout=100), status)
        owner.terminate()
        self.assertEqual((owner.communicate()[1], owner.returncode), ("", 0))

    def test_a_client_ends_by_every_way_and_the_owner_goes_on(self):
        self.serve()
        for way, status in ((signal.SIGINT, 130), (signal.SIGTERM, 130), (signal.SIGKILL, -signal.SIGKILL)):
            client, terminal, end = self.start_on_terminal(*PLAY, self.music)
            self.type_keys(terminal, (" / ", " "), ("paused", ""))
            self.run_player("seek", "2")
            while "  0:02 / " not in self.run_player("status").stdout:
                self.assertIn("paused", self.run_player("status").stdout)
            self.assertFalse(self.reads_lines(end))
            client.send_signal(way)
            self.assertEqual(client.wait(timeout=100), status)
            self.until_nothing_plays()
            while not self.reads_lines(end):
                self.assertNotEqual(way, signal.SIGINT)
        with subprocess.Popen(self.command("list", "--format", "%title%" * 10000), env=self.env,
                              stdout=subprocess.PIPE) as stuck:
            stuck.stdout.read(1)
            stuck.send_signal(signal.SIGINT)
            self.assertEqual(stuck.wait(timeout=100), 130)

    def test_a_client_can_be_stopped_and_continued(self):
        self.serve()
        shell = ("bash", "-mc", '"$@"; stty -a | grep -o ".icanon"; fg; stty -a | grep -o ".icanon"', "bash")
        client, terminal, _ = self.start_on_terminal(*PLAY, self.music, by=shell)
        self.type_keys(terminal, (" / ", "\x1a"), (" icanon", ""), ("/.*/ ", " "), ("paused", "q"), (" icanon", ""))
        self.assertEqual(client.wait(timeout=100), 0)

    def test_the_end_of_the_owner_is_noticed_and_the_next_one_begins(self):
        owner = self.serve()
        client, terminal, end = self.start_on_terminal(*PLAY, self.music)
        self.type_keys(terminal, (" / ", ""))
        owner.kill()
        self.type_keys(terminal, ("has ended before it was done", ""))
        self.assertEqual(client.wait(timeout=100), 1)
        self.assertTrue(self.reads_lines(end))
        self.assertTrue(self.socket_path().exists())
        self.serve()
        self.assertEqual(len(self.tracks()), 8)

    def test_an_owner_finishes_what_it_carries_out_and_takes_others_meanwhile(self):
        owner = self.serve()
        client, terminal, _ = self.start_on_terminal(*PLAY, self.music)
        self.type_keys(terminal, (" / ", ""))
        owner.send_signal(signal.SIGINT)
        self.assertIn("still under way", owner.stderr.readline())
        self.assertIn('"playing"', self.run_player("status", "--json").stdout)
        owner.send_signal(signal.SIGINT)
        self.assertEqual(client.wait(timeout=100), 130)
        self.assertEqual(owner.wait(timeout=100), 0)
        self.assertFalse(self.socket_path().exists())

    def test_an_owner_of_another_version_or_without_a_socket_is_named(self):
        with open(self.profile / "lock", "r+") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            self.assertIn("which takes no commands", self.run_player("list", status=1).stderr)
            with socket.socket(socket.AF_UNIX) as listener:
                listener.bind(str(self.socket_path()))
                listener.listen()
                client = self.start("list")
                connection, _ = listener.accept()
                connection.recv(65536)  # and its descriptors, which are closed
                refusal = b"\xa4\x64kind\x67refusal\x67version\x630.1\x66ending\xf4\x66reason\x60"
                connection.sendall(struct.pack(">I", len(refusal)) + refusal)
                said = client.communicate(timeout=100)[1]
                connection.close()
        self.assertEqual(client.returncode, 1)
        version = subprocess.run([PROGRAM, "--version"], capture_output=True, text=True, check=True).stdout.strip()
        self.assertIn(f"version 0.1 of this program; this is {version}.", said)

    def test_a_folder_that_others_may_touch_is_not_used(self):
        self.socket_path().parent.chmod(0o755)
        self.assertIn("not a folder of this user alone", self.run_player("serve", status=1).stderr)
        player = self.start(*PLAY, self.music)
        self.addCleanup(lambda: (player.kill(), player.communicate()))
        player.stderr.readline()
        self.assertIn("not a folder of this user alone", self.run_player("list", status=1).stderr)
        player.terminate()
        self.assertEqual(player.wait(timeout=100), 130)

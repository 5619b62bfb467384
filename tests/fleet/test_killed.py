"""Tests of runs that are killed at any point. A run may also finish before it is killed."""

import fcntl
import os
import signal
import time
import unittest
from contextlib import ExitStack
from pathlib import Path

from fleet.boards import Fleet, address_of, staged_files
from fleet.engine import EFICTL, VERSION, Controller
from fleet.files import configuration_file, decode, payloads_of

NAMES = ("left", "right")
# The number of moments at which a run is killed: few for Ansible, which spends most of a run on its
# own work; more for parallel, which spends hardly any.
ANSIBLE_POINTS, PARALLEL_POINTS = 2, 8
END_SECONDS = 120
TARGETS = (2, 3)
AUDIT_LOCK = "/var/log/audit.lock"
SESSIONS = "/var/lib/session"


def processes_of(controller):
    """Returns the processes started with a controller's environment, as {pid: program}."""
    found = {}
    for entry in Path("/proc").iterdir():
        try:
            environment = (entry / "environ").read_bytes() if entry.name.isdigit() else b""
            if os.fsencode(controller.home) in environment:
                found[int(entry.name)] = Path(os.readlink(entry / "exe"))
        except OSError:
            continue
    return found


class KilledTest(unittest.TestCase):
    def setUp(self):
        # Each test has its own boards, because a board delays logins after several in a minute.
        self.boards = self.enterContext(Fleet(*NAMES)).boards
        self.controller = self.enterContext(Controller())
        self.controller.write_inventory(self.boards)
        (self.controller.folder / "boards.txt").write_text("".join(
            "%s %s\n" % (name, address_of(board)) for name, board in self.boards.items()),
            encoding="utf-8")
        self.controller.write_certificates()
        self.runs = 0

    def kill_at_every_point(self, start, kill, points, check):
        """Measures a complete run, then kills runs at points spread evenly over that time."""
        begun = time.monotonic()
        process = start()
        output = process.communicate()[0]
        self.assertEqual(process.returncode, 0, output)
        whole = time.monotonic() - begun
        for point in range(points):
            process = start()
            try:
                time.sleep(whole * (point + 0.5) / points)
            finally:
                kill()
                output = process.communicate()[0]
            with self.subTest(point=point, output=output):
                check()

    def signal_everything(self, number):
        for pid in processes_of(self.controller):
            try:
                os.kill(pid, number)
            except ProcessLookupError:
                pass

    def stop(self):
        """Ends a run as systemd does: sends SIGTERM to all processes, and SIGKILL later. efictl has
        enough time to exit in between; the engines need no cleanup."""
        self.signal_everything(signal.SIGTERM)
        end = time.monotonic() + END_SECONDS
        while EFICTL.resolve() in processes_of(self.controller).values():
            self.assertLess(time.monotonic(), end, "efictl is still running")
            time.sleep(0.02)
        self.kill()

    def kill(self):
        """Ends a run as a power cut does."""
        while processes_of(self.controller):
            self.signal_everything(signal.SIGKILL)


class KilledRestore(KilledTest):
    def next_file(self):
        self.runs += 1
        file = self.controller.folder / "golden.dat"
        payload = b"Boot mode=UEFI\nBoot timeout=%d\n" % self.runs
        file.write_bytes(configuration_file(3, VERSION, payload))
        return file

    def check(self):
        for name, board in self.boards.items():
            self.assertEqual(staged_files(board), [], name)
            held = payloads_of(board)
            self.assertEqual(held[TARGETS[0]], held[TARGETS[1]], name)

    def test_ansible_leaves_no_staged_file(self):
        self.kill_at_every_point(
            lambda: self.controller.start(
                "restore", "--extra-vars", '{"efictl_file": "%s", "efictl_targets": %s, '
                '"efictl_waves": ["100%%"]}' % (self.next_file(), list(TARGETS))),
            self.stop, ANSIBLE_POINTS, self.check)

    def start_parallel(self):
        return self.controller.start_parallel(
            "efictl restore %s --to %s --board {2} --cacert boards.pem"
            % (self.next_file(), ",".join(map(str, TARGETS))))

    def test_parallel_leaves_no_staged_file(self):
        self.kill_at_every_point(self.start_parallel, self.stop, PARALLEL_POINTS, self.check)

    def test_parallel_waits_for_the_logout(self):
        for board in self.boards.values():
            board.control("slow", 1500, "--times", 100)
        process = self.start_parallel()
        end = time.monotonic() + END_SECONDS
        while not all(map(staged_files, self.boards.values())):
            self.assertLess(time.monotonic(), end, "no file was staged")
            time.sleep(0.02)
        # While the locks are held, efictl can neither discard its file nor log out.
        with ExitStack() as locks:
            for board in self.boards.values():
                fcntl.flock(locks.enter_context(open(board.path(AUDIT_LOCK), "rb")), fcntl.LOCK_EX)
            process.terminate()
            time.sleep(1)
        output = process.communicate()[0]
        for name, board in self.boards.items():
            sessions = [path.name for path in board.path(SESSIONS).iterdir()]
            self.assertEqual(sessions + staged_files(board), [], name + "\n" + output)


class KilledBackup(KilledTest):
    def check(self):
        for path, data in self.controller.files().items():
            if path.endswith(".dat"):
                self.assertIsNotNone(decode(data), path)

    def check_next_night(self):
        """Checks that the next run succeeds and removes leftovers."""
        run = self.controller.run("nightly")
        self.assertEqual(run.status, 0, run.output)
        files = self.controller.files()
        self.assertEqual([path for path in files if not path.endswith(".dat")], [])

    def test_ansible_leaves_no_broken_file(self):
        self.kill_at_every_point(
            lambda: self.controller.start("nightly", "--extra-vars", "efictl_if_changed=false"),
            self.kill, ANSIBLE_POINTS, self.check)
        self.check_next_night()

    def test_parallel_leaves_no_broken_file(self):
        self.controller.backups.mkdir()
        self.kill_at_every_point(
            lambda: self.controller.start_parallel(
                "efictl backup --all --board {2} --cacert boards.pem --out backups/{1}"),
            self.kill, PARALLEL_POINTS, self.check)
        self.check_next_night()


if __name__ == "__main__":
    unittest.main()

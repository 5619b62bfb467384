"""Runs that are killed at any point. Later than its end a run cannot be killed: that is a point, too."""

import os
import signal
import time
import unittest
from pathlib import Path

from fleet.boards import Fleet, staged_files
from fleet.engine import EFICTL, VERSION, Controller
from fleet.files import configuration_file, decode, payloads_of

NAMES = ("left", "right")
POINTS = 20
END_SECONDS = 120
TARGETS = (2, 3)


def clients_in(folder):
    """The processes of efictl that were started for a controller's folder."""
    found = []
    for entry in Path("/proc").iterdir():
        if not entry.name.isdigit():
            continue
        try:
            if (Path(os.readlink(entry / "exe")) == EFICTL.resolve()
                    and str(folder).encode() in (entry / "environ").read_bytes()):
                found.append(int(entry.name))
        except OSError:
            continue
    return found


class Killed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.boards = cls.enterClassContext(Fleet(*NAMES)).boards

    def setUp(self):
        self.controller = self.enterContext(Controller())
        self.controller.write_inventory(self.boards)

    def wait_for_clients(self):
        end = time.monotonic() + END_SECONDS
        while clients_in(self.controller.folder):
            self.assertLess(time.monotonic(), end, "efictl goes on")
            time.sleep(0.05)

    def kill_at_every_point(self, start, kill, points, check):
        """Measures a whole run, then kills runs at points that are spread over that time."""
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
                kill(process)
                process.communicate()
            self.wait_for_clients()
            with self.subTest(point=point):
                check()

    def kill_engine(self, process):
        """Ends the run as systemd does it: everything in it is asked to end."""
        self._signal_group(process, signal.SIGTERM)
        self._end(process)

    @staticmethod
    def _signal_group(process, number):
        try:
            os.killpg(process.pid, number)
        except ProcessLookupError:
            pass

    def _end(self, process):
        # The clients end in their own time; what is left of the engine has nothing to tidy up.
        self.wait_for_clients()
        self._signal_group(process, signal.SIGKILL)

    def start_restore(self):
        self.count = getattr(self, "count", 0) + 1
        self.payload = b"Boot mode=UEFI\nBoot timeout=%d\n" % self.count
        file = self.controller.folder / "golden.dat"
        file.write_bytes(configuration_file(3, VERSION, self.payload))
        return self.controller.start(
            "restore", "--extra-vars", '{"efictl_file": "%s", "efictl_targets": %s, '
            '"efictl_waves": ["100%%"]}' % (file, list(TARGETS)))

    def check_boards(self):
        for name, board in self.boards.items():
            self.assertEqual(staged_files(board), [], name)
            held = payloads_of(board)
            self.assertEqual(held[TARGETS[0]], held[TARGETS[1]], name)

    def test_a_killed_restore_leaves_no_staged_file(self):
        self.kill_at_every_point(self.start_restore, self.kill_engine, POINTS // 2,
                                 self.check_boards)

    def check_backups(self):
        for path, data in self.controller.files().items():
            if path.endswith(".dat"):
                self.assertIsNotNone(decode(data), path)

    def kill_everything(self, process):
        """Ends the run as a power cut does."""
        self._signal_group(process, signal.SIGKILL)
        for pid in clients_in(self.controller.folder):
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass

    def start_backup(self):
        return self.controller.start("nightly", "--extra-vars", "efictl_if_changed=false")

    def test_a_killed_backup_leaves_no_broken_file(self):
        self.kill_at_every_point(self.start_backup, self.kill_everything, POINTS // 2,
                                 self.check_backups)
        # Nor does it keep the next run from its work.
        run = self.controller.run("nightly")
        self.assertEqual(run.status, 0, run.output)
        leftovers = [path for path in self.controller.files() if not path.endswith(".dat")]
        self.assertEqual(leftovers, [])


if __name__ == "__main__":
    unittest.main()

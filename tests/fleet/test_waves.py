"""Tests of a restore in waves over five boards."""

import unittest

from fleet.boards import RESTORE, Fleet, staged_files
from fleet.engine import VERSION, Controller
from fleet.files import configuration_file, payloads_of

NAMES = ("first", "second", "third", "fourth", "fifth")
WAVES = "[1, 2, 2]"
STORAGE_FAILED = 1603
TARGETS = "[2, 3]"


class Waves(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.boards = cls.enterClassContext(Fleet(*NAMES)).boards

    def setUp(self):
        self.controller = self.enterContext(Controller())
        self.controller.write_inventory(self.boards)
        for board in self.boards.values():
            board.control("reset")

    def restore(self, payload, *options):
        file = self.controller.folder / "golden.dat"
        file.write_bytes(configuration_file(3, VERSION, payload))
        return self.controller.run(
            "restore", "--extra-vars", '{"efictl_file": "%s", "efictl_targets": %s, '
            '"efictl_waves": %s}' % (file, TARGETS, WAVES), *options)

    def held(self, payload):
        """Returns the boards where all targets have this payload, and those where none has it."""
        found = {name: [payloads_of(board)[number] == payload for number in (2, 3)]
                 for name, board in self.boards.items()}
        return ([name for name in NAMES if all(found[name])],
                [name for name in NAMES if not any(found[name])])

    def assert_nothing_staged(self):
        for name, board in self.boards.items():
            self.assertEqual(staged_files(board), [], name)

    def test_restores_every_wave(self):
        payload = b"Boot mode=UEFI\nBoot timeout=11\n"
        run = self.restore(payload)
        self.assertEqual(run.status, 0, run.output)
        self.assertEqual(run.counted("changed"), dict.fromkeys(NAMES, 1))
        self.assertEqual(self.held(payload), (list(NAMES), []))
        self.assert_nothing_staged()
        # A second restore finds nothing to change.
        run = self.restore(payload)
        self.assertEqual(run.status, 0, run.output)
        self.assertEqual(run.counted("changed"), dict.fromkeys(NAMES, 0), run.output)
        self.assert_nothing_staged()

    def test_stops_after_a_wave_with_a_failure(self):
        payload = b"Boot mode=UEFI\nBoot timeout=12\n"
        self.boards["third"].control("refuse", RESTORE, STORAGE_FAILED)
        run = self.restore(payload)
        self.assertEqual(run.status, 2, run.output)
        done, untouched = self.held(payload)
        self.assertEqual(done, ["first", "second"])
        self.assertEqual(untouched, ["third", "fourth", "fifth"])
        failures = self.controller.failures()
        self.assertEqual(sorted(failures), ["fifth", "fourth", "third"])
        self.assertIn("could not write the configuration", failures["third"])
        self.assertEqual(failures["fourth"], "Not tried")
        self.assertEqual(failures["fifth"], "Not tried")
        self.assert_nothing_staged()

    def test_check_mode_shows_the_settings_and_restores_nothing(self):
        payload = b"Boot mode=Legacy\nBoot timeout=13\n"
        run = self.restore(payload, "--check", "--diff")
        self.assertEqual(run.status, 0, run.output)
        self.assertEqual(run.counted("changed"), dict.fromkeys(NAMES, 1), run.output)
        self.assertRegex(run.output, r"(?m)^\+.*Boot timeout.*13")
        self.assertEqual(self.held(payload), ([], list(NAMES)))
        self.assert_nothing_staged()


if __name__ == "__main__":
    unittest.main()

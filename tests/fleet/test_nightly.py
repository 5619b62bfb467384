"""Tests of nightly runs over several boards."""

import unittest

from fleet.boards import BACKUP, Fleet, staged_files
from fleet.engine import VERSION, Controller

NAMES = ("well", "dead", "slow", "wrong", "refusing")
DONE = ("well", "slow")
FAILED = ("dead", "wrong", "refusing")
PARTITIONS = 5
STORAGE_FAILED = 1603
SECRET = "not-the-Password-4711"
MANY = 1000


class Night(unittest.TestCase):
    """One run over five boards, of which one is off, one slow, one has another password and one
    refuses backups."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.boards = cls.enterClassContext(Fleet(*NAMES)).boards
        cls.controller = cls.enterClassContext(Controller())
        cls.controller.write_inventory(cls.boards, wrong={"efictl_password": SECRET})
        cls.boards["dead"].end()
        cls.boards["slow"].control("slow", 1500, "--times", 3)
        cls.boards["refusing"].control("refuse", BACKUP, STORAGE_FAILED, "--times", MANY)
        cls.night = cls.controller.run("nightly", "-vvv", "--diff")

    def test_exits_with_the_status_of_a_failure(self):
        self.assertEqual(self.night.status, 2, self.night.output)
        self.assertEqual(sorted(self.night.recap), sorted(NAMES))
        failed = self.night.counted("failed")
        self.assertEqual([name for name in NAMES if failed[name]], list(FAILED))

    def test_counts_changes_only_for_backed_up_boards(self):
        changed = self.night.counted("changed")
        self.assertEqual([name for name in NAMES if changed[name]], list(DONE), self.night.output)

    def test_backs_up_working_boards_despite_failures(self):
        saved = self.controller.files()
        for name in NAMES:
            self.assertEqual(len([path for path in saved if path.startswith(name + "/")]),
                             PARTITIONS if name in DONE else 0, name)

    def test_report_names_each_failure(self):
        failures = self.controller.failures()
        self.assertEqual(sorted(failures), sorted(FAILED))
        self.assertIn(str(self.boards["dead"].port), failures["dead"])
        self.assertRegex(failures["wrong"], "(?i)password")
        self.assertIn("could not store the backup", failures["refusing"])
        page = (self.controller.reports / "fleet.html").read_text(encoding="utf-8")
        for name in FAILED:
            self.assertIn('<tr class="failed"><th scope="row">%s</th>' % name, page)

    def test_report_lists_the_partitions(self):
        rows = [row for row in self.controller.report() if row["board"] in DONE]
        self.assertEqual(len(rows), PARTITIONS * len(DONE))
        for row in rows:
            self.assertRegex(row["last_backup"], r"^20\d\d-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
            self.assertEqual(row["backup"], "stored")
        self.assertEqual({row["bios_version"] for row in rows if row["partition"] == "3"},
                         {VERSION})

    def test_report_escapes_names_from_boards(self):
        page = (self.controller.reports / "fleet.html").read_text(encoding="utf-8")
        self.assertIn("&lt;script&gt;alert(3)&lt;/script&gt; {{name}} &amp;amp; 100%", page)
        self.assertNotIn("<script", page)

    def test_neither_prints_nor_stores_a_password(self):
        self.assertNotIn(SECRET, self.night.output)
        self.assertEqual(self.controller.files_with(SECRET), [])
        # It was not in a temporary file either.
        self.assertIn("Pipelining is enabled", self.night.output)
        self.assertNotRegex(self.night.output, r"> PUT \S+ TO \S+/AnsiballZ_")

    def test_leaves_nothing_on_the_boards(self):
        for name, board in self.boards.items():
            self.assertEqual(staged_files(board), [], name)


class Nights(unittest.TestCase):
    """Consecutive runs over working boards."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.boards = cls.enterClassContext(Fleet("left", "right")).boards

    def setUp(self):
        self.controller = self.enterContext(Controller())
        self.controller.write_inventory(self.boards)

    def assert_run(self, changed, *options):
        """Runs the playbook, and checks that each board has `changed` changed tasks."""
        run = self.controller.run("nightly", *options)
        self.assertEqual(run.status, 0, run.output)
        self.assertEqual(run.counted("changed"), dict.fromkeys(self.boards, changed), run.output)
        return run

    def reported(self, column):
        return {row[column] for row in self.controller.report()}

    def test_second_run_changes_nothing(self):
        self.assert_run(1)
        before = self.controller.files()
        self.assert_run(0)
        self.assertEqual(self.controller.files(), before)
        self.assertEqual(self.reported("backup"), {"unchanged"})
        self.assert_run(0, "--check")

    def test_check_mode_stores_nothing(self):
        self.assert_run(1, "--check")
        self.assertFalse(self.controller.backups.exists())
        self.assertFalse(self.controller.reports.exists())

    def test_shows_and_reports_a_changed_setting(self):
        self.assert_run(1)
        for name in self.boards:
            self.controller.change_setting(name, b"Boot timeout=10", b"Boot timeout=11")
        self.addCleanup(lambda: [self.controller.change_setting(
            name, b"Boot timeout=11", b"Boot timeout=10") for name in self.boards])
        before = self.controller.files()
        for options in (["--check", "--diff"], ["--diff"]):
            output = self.assert_run(1, *options).output
            self.assertRegex(output, r"(?m)^-Boot timeout: 10$")
            self.assertRegex(output, r"(?m)^\+Boot timeout: 11$")
            if "--check" in options:
                self.assertEqual(self.controller.files(), before)
        self.assertEqual(self.reported("changed"), {"", "Boot timeout"})

    def test_reports_drift_from_a_golden_file(self):
        self.assert_run(1)
        file = self.controller.newest("left", 3)
        golden = self.controller.folder / "golden.dat"
        golden.write_bytes(self.controller.with_setting(file, b"Secure boot=Enabled",
                                                        b"Secure boot=Disabled"))
        self.assert_run(0, "--extra-vars", "efictl_golden=%s" % golden)
        self.assertEqual({row["drift"] for row in self.controller.report()
                          if row["partition"] == "3"}, {"Secure boot"})

    def test_fails_for_a_damaged_backup(self):
        self.assert_run(1)
        older = self.controller.backups / "left/partition003-20200101T000000Z.dat"
        older.write_bytes(self.controller.newest("left", 3).read_bytes()[:-1])
        run = self.controller.run("nightly")
        self.assertEqual(run.status, 2, run.output)
        self.assertEqual(list(self.controller.failures()), ["left"])
        self.assertIn(older.name, self.controller.failures()["left"])


if __name__ == "__main__":
    unittest.main()

"""A night over five boards, of which one is dead, one slow, one has another password and one refuses."""

import unittest

from fleet.boards import BACKUP, Fleet, address_of, certificate_of, staged_files
from fleet.engine import Controller

NAMES = ("well", "dead", "slow", "wrong", "refusing")
DONE = ("well", "slow")
FAILED = ("dead", "wrong", "refusing")
PARTITIONS = 5
STORAGE_FAILED = 1603
SECRET = "not-the-Password-4711"
MANY = 1000


class Nightly(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.fleet = cls.enterClassContext(Fleet(len(NAMES)))
        cls.boards = dict(zip(NAMES, cls.fleet.boards))
        cls.boards["dead"].end()

    def setUp(self):
        self.controller = self.enterContext(Controller())
        self.controller.write_inventory(
            {name: {"efictl_board": address_of(board), "efictl_cacert": certificate_of(board)}
             for name, board in self.boards.items()},
            efictl_user="admin", efictl_password="admin")
        self.set_password("wrong", SECRET)
        self.boards["slow"].control("slow", 1500, 3)
        self.boards["refusing"].control("refuse", BACKUP, STORAGE_FAILED, MANY)
        self.addCleanup(self.boards["slow"].control, "reset")

    def set_password(self, name, password):
        inventory = self.controller.folder / "inventory.ini"
        lines = inventory.read_text(encoding="utf-8").splitlines()
        lines = [line + " efictl_password=" + password if line.startswith(name + " ") else line
                 for line in lines]
        inventory.write_text("\n".join(lines) + "\n", encoding="utf-8")

    def run_night(self, *options):
        return self.controller.run("nightly", *options)

    def test_boards_that_can_be_done_are_done(self):
        run = self.run_night()
        self.assertEqual(run.status, 2, run.output)
        self.assertEqual(sorted(run.counted("failed")), sorted(NAMES))
        self.assertEqual([name for name in NAMES if run.counted("failed")[name]], list(FAILED))
        self.assertEqual([name for name in NAMES if run.counted("changed")[name]], list(DONE))
        saved = self.controller.files()
        for name in NAMES:
            self.assertEqual(len([path for path in saved if path.startswith(name + "/")]),
                             PARTITIONS if name in DONE else 0, name)

    def test_the_report_names_each_failure(self):
        self.run_night()
        failures = self.controller.failures()
        self.assertEqual(sorted(failures), sorted(FAILED))
        self.assertIn(str(self.boards["dead"].port), failures["dead"])
        self.assertRegex(failures["wrong"], "(?i)password")
        self.assertIn("could not store the backup", failures["refusing"])
        self.assertEqual(len(set(failures.values())), len(FAILED))
        page = (self.controller.reports / "fleet.html").read_text(encoding="utf-8")
        for name in FAILED:
            self.assertIn('<tr class="failed"><th scope="row">%s</th>' % name, page)
        self.assertNotIn("<script", page)
        self.assertIn("{{name}}", page)
        rows = [row for row in self.controller.report() if row["board"] in DONE]
        self.assertEqual(len(rows), PARTITIONS * len(DONE))
        for row in rows:
            self.assertRegex(row["last_backup"], r"^20\d\d-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
            self.assertEqual(row["backup"], "saved")
        self.assertEqual({row["bios_version"] for row in rows if row["partition"] == "3"}, {"1.23 B"})

    def test_a_second_run_changes_nothing(self):
        self.run_night("--limit", ",".join(DONE))
        before = self.controller.files()
        self.boards["slow"].control("slow", 1500, 3)
        run = self.run_night("--limit", ",".join(DONE))
        self.assertEqual(run.status, 0, run.output)
        self.assertEqual(run.counted("changed"), dict.fromkeys(DONE, 0), run.output)
        self.assertEqual(self.controller.files(), before)
        self.assertEqual({row["backup"] for row in self.controller.report()}, {"unchanged"})

    def test_a_dry_run_saves_nothing_and_foresees_the_change(self):
        run = self.run_night("--check", "--limit", "well")
        self.assertEqual(run.status, 0, run.output)
        self.assertEqual(run.counted("changed"), {"well": 1})
        self.assertFalse(self.controller.backups.exists())
        self.run_night("--limit", "well")
        before = self.controller.files()
        run = self.run_night("--check", "--limit", "well")
        self.assertEqual(run.counted("changed"), {"well": 0}, run.output)
        self.assertEqual(self.controller.files(), before)

    def test_no_password_is_printed_or_kept(self):
        run = self.run_night("-vvv", "--diff", "--limit", "well,wrong")
        self.assertNotIn(SECRET, run.output)
        self.assertEqual(self.controller.files_with(SECRET), [])

    def test_nothing_stays_on_the_boards(self):
        self.run_night()
        for name, board in self.boards.items():
            self.assertEqual(staged_files(board), [], name)


if __name__ == "__main__":
    unittest.main()

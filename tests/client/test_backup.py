"""Tests of efictl list and backup against a served board."""

import fcntl
import hashlib
import os
import shutil
import subprocess
import unittest

from client import (BACKUP, DIFFERENT, DONE, EFICTL, FAILED, REFUSED, USAGE, BoardTest, Run,
                    configuration_file, environment)

INSTALLED = [0, 2, 3, 5, 7]


class ListTest(BoardTest):
    def test_shows_the_installed_partitions(self):
        run = self.efictl("list", "--json")
        self.assert_ended(run, DONE)
        self.assertEqual([each["number"] for each in run.json["partitions"]], INSTALLED)
        self.assertFalse(run.json["changed"])
        self.assertEqual(run.json["board_name"], "Demo board")
        self.assertEqual(run.partition(3)["bios_version"], "1.23 B")
        self.assertTrue(run.partition(3)["home_board_known"])
        self.assertIsNone(run.partition(5)["bios_version"])
        self.assertFalse(run.partition(5)["home_board_known"])
        self.assertEqual(run.partition(7)["name"], "Web front")

    def test_shows_when_a_partition_was_last_backed_up(self):
        self.back_up(7)
        last = self.efictl("list", "--json").partition(7)["last_backup"]
        self.assertRegex(last, r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")

    def test_reads_board_in_any_language(self):
        # efictl asks the board for English, whatever the locale.
        run = self.efictl("list", "--json", LANG="ja_JP.UTF-8", LANGUAGE="ja")
        self.assertEqual(len(run.json["partitions"]), len(INSTALLED))

    def test_ends_its_session(self):
        self.efictl("list")
        self.assertEqual(self.left_on_board(), [])

    def test_text_names_version_and_partition(self):
        run = self.efictl("list")
        self.assertIn("Partition 7 (Web front): BIOS 1.40", run.output)


class BackupTest(BoardTest):
    def test_stores_every_partition(self):
        run = self.efictl("backup", "--all", "--out", self.out, "--json")
        self.assert_ended(run, DONE)
        self.assertTrue(run.json["changed"])
        self.assertEqual([each["status"] for each in run.json["partitions"]], ["stored"] * 5)
        self.assertEqual(self.backups(), sorted(each["file"] for each in run.json["partitions"]))
        for each in run.json["partitions"]:
            data = (self.out / each["file"]).read_bytes()
            self.assertEqual(each["size"], len(data))
            self.assertEqual(each["sha256"], hashlib.sha256(data).hexdigest())
        self.assertEqual(self.left_on_board(), [])

    def test_makes_backups_private(self):
        path = self.back_up(3)
        self.assertEqual(path.stat().st_mode & 0o777, 0o600)
        self.assertEqual(self.out.stat().st_mode & 0o777, 0o700)

    def test_if_changed_keeps_no_second_copy(self):
        first = self.back_up(3)
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--if-changed", "--json")
        self.assert_ended(run, DONE)
        self.assertFalse(run.json["changed"])
        self.assertEqual(run.partition(3)["status"], "unchanged")
        self.assertEqual(run.partition(3)["file"], first.name)
        self.assertEqual(self.backups(), [first.name])

    def test_exit_code_reports_that_nothing_changed(self):
        self.back_up(3)
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--if-changed",
                          "--exit-code", "--json")
        self.assert_ended(run, DIFFERENT)
        self.assertFalse(run.json["changed"])

    def test_if_changed_compares_with_the_newest_usable_backup(self):
        self.back_up(3)
        (self.out / "partition003-20991231T235959Z.dat").write_bytes(b"damaged")
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--if-changed", "--json")
        self.assertEqual(run.partition(3)["status"], "unchanged")

    def test_if_changed_stores_another_configuration(self):
        self.out.mkdir()
        (self.out / "partition003-20200101T000000Z.dat").write_bytes(configuration_file())
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--if-changed", "--json")
        self.assertEqual(run.partition(3)["status"], "stored")
        self.assertEqual(len(self.backups()), 2)

    def test_keep_removes_the_oldest(self):
        self.out.mkdir()
        for year in (2020, 2021, 2022):
            name = f"partition003-{year}0101T000000Z.dat"
            (self.out / name).write_bytes(configuration_file())
        (self.out / "partition007-20200101T000000Z.dat").write_bytes(configuration_file(7))
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--keep", 2, "--json")
        self.assertEqual(run.partition(3)["removed"], ["partition003-20210101T000000Z.dat",
                                                       "partition003-20200101T000000Z.dat"])
        self.assertEqual(self.backups(), sorted([
            "partition003-20220101T000000Z.dat", run.partition(3)["file"],
            "partition007-20200101T000000Z.dat"]))

    def test_keep_does_not_count_damaged_files(self):
        self.out.mkdir()
        good = self.out / "partition003-20200101T000000Z.dat"
        good.write_bytes(configuration_file())
        for year in (2021, 2022):
            (self.out / f"partition003-{year}0101T000000Z.dat").write_bytes(b"damaged")
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--keep", 2, "--json")
        self.assert_ended(run, DONE)
        self.assertIn(good.name, self.backups())

    def test_keep_removes_nothing_after_a_failure(self):
        self.out.mkdir()
        for year in (2020, 2021):
            name = f"partition003-{year}0101T000000Z.dat"
            (self.out / name).write_bytes(configuration_file())
        self.board.control("refuse", BACKUP, 1603)
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--keep", 1, "--json")
        self.assert_ended(run, REFUSED)
        self.assertEqual(len(self.backups()), 2)

    def test_waits_while_the_board_is_busy(self):
        self.board.control("refuse", BACKUP, 1047, "--times", 2)
        self.back_up(3)

    def test_reports_a_board_that_stays_busy(self):
        self.board.control("refuse", BACKUP, 1047, "--times", 50)
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--timeout", 4, "--json")
        self.assert_ended(run, REFUSED)
        self.assertEqual((run.json["reason"]["message"], run.json["reason"]["code"]), (250, 1047))

    def test_continues_after_a_refusal(self):
        self.board.control("refuse", BACKUP, 1603)
        run = self.efictl("backup", "--all", "--out", self.out, "--json")
        self.assert_ended(run, REFUSED)
        self.assertEqual([each["status"] for each in run.json["partitions"]],
                         ["refused"] + ["stored"] * 4)
        self.assertEqual(run.partition(0)["reason"]["code"], 1603)
        self.assertEqual(len(self.backups()), 4)

    def test_retries_after_the_back_end_died(self):
        self.board.control("die", "--back-in", 1500)
        self.assert_ended(self.efictl("list"), DONE)

    def test_reports_every_code_of_a_refused_backup(self):
        for code in (1602, 1603, 1604, 1605, 1606, 1608, 1609, 1611, 1612, 1599):
            with self.subTest(code=code):
                self.board.control("refuse", BACKUP, code)
                run = self.efictl("backup", "--partition", 3, "--out", self.out, "--json")
                self.assert_ended(run, REFUSED)
                self.assertEqual(run.json["reason"]["code"], code)
        self.assertEqual(self.backups(), [])

    def test_reports_a_back_end_that_does_not_answer(self):
        # The board itself responds: its page reports that nothing was changed.
        for code, requests in ((2001, 5), (2002, 5), (2003, 5), (2004, 1)):
            with self.subTest(code=code):
                self.board.control("refuse", BACKUP, code, "--times", requests)
                run = self.efictl("backup", "--partition", 3, "--out", self.out, "--json")
                self.assert_ended(run, REFUSED)
                self.assertEqual((run.json["reason"]["message"], run.json["reason"]["code"]),
                                 (72, code))
                self.assertEqual(run.partition(3)["status"], "refused")
                self.assertFalse(run.json["changed"])
                self.assertEqual(self.backups(), [])
                # The refusals are used up, so at least that many requests were sent.
                self.assertNotIn("refused", self.board.control("status"))
                self.back_up(3)
                shutil.rmtree(self.out)

    def test_retries_a_backup_until_the_back_end_answers(self):
        for code in (2001, 2002, 2003):
            with self.subTest(code=code):
                self.board.control("refuse", BACKUP, code, "--times", 2)
                self.back_up(3)

    def test_reports_a_login_without_back_end(self):
        self.board.control("torn", 3, "--times", 100)
        run = self.efictl("backup", "--partition", 3, "--out", self.out, "--json")
        self.assert_ended(run, REFUSED)
        self.assertEqual((run.json["reason"]["message"], run.json["reason"]["code"]), (9105, 2003))

    def test_retries_after_a_lost_response(self):
        for order in (("torn", 3), ("silent",)):
            with self.subTest(order=order[0]):
                self.board.control(*order)
                self.back_up(3)


class FolderFailureTest(BoardTest):
    def test_folder_not_writable(self):
        self.out.mkdir(mode=0o500)
        if os.access(self.out, os.W_OK):
            self.out.rmdir()
            self.out.symlink_to("/proc")  # not even root may write there
        self.assert_ended(self.efictl("backup", "--all", "--out", self.out, "--json"), FAILED, "folder")

    def test_file_instead_of_folder(self):
        self.out.write_bytes(b"")
        self.assert_ended(self.efictl("backup", "--all", "--out", self.out), FAILED,
                          "Not a directory")

    def test_disk_full(self):
        command = ["strace", "-f", "-qq", "-o", "/dev/null", "-e", "inject=fsync:error=ENOSPC",
                   EFICTL, "backup", "--partition", "3", "--out", str(self.out)]
        run = subprocess.run(command, env=environment(**self.account.variables), check=False,
                             capture_output=True)
        self.assert_ended(Run(command, run.returncode, run.stdout, run.stderr), FAILED,
                          "the disk is full")
        self.assertEqual(self.backups(), [])

    def test_folder_locked_by_another_efictl(self):
        self.out.mkdir()
        descriptor = os.open(self.out, os.O_RDONLY)
        self.addCleanup(os.close, descriptor)
        fcntl.flock(descriptor, fcntl.LOCK_EX)
        self.assert_ended(self.efictl("backup", "--all", "--out", self.out), FAILED, "Another efictl")

    def test_requires_partitions(self):
        self.assert_ended(self.efictl("backup", "--out", self.out), USAGE, "--all")

    def test_partition_not_installed(self):
        run = self.efictl("backup", "--partition", "3,4", "--out", self.out, "--json")
        self.assert_ended(run, REFUSED, "4")
        self.assertEqual(self.backups(), [])


if __name__ == "__main__":
    unittest.main()

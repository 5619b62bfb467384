"""Tests of efictl restore against a served board."""

import os
import signal
import subprocess
import time
import unittest

from client import (DONE, EFICTL, FAILED, REFUSED, RESTORE, SESSIONS, UNKNOWN, USAGE, BoardTest,
                    Run, configuration_file, environment)

# An idle session ends after this time, as docs/automation.md states.
IDLE_SECONDS = 30 * 60


class RestoreTest(BoardTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("new.dat", configuration_file(payload=b"Boot=%d\n" % time.time_ns()))

    def restore(self, *arguments, **more):
        return self.efictl("restore", self.file, *arguments, "--json", **more)

    def assert_nothing_done(self, before):
        self.assertEqual(self.state(), before)
        self.assertEqual(self.left_on_board(), [])

    def test_restores_to_the_partitions(self):
        run = self.restore("--to", "3,5")
        self.assert_ended(run, DONE)
        self.assertTrue(run.json["changed"])
        self.assertEqual([(each["number"], each["status"]) for each in run.json["partitions"]],
                         [(3, "restored"), (5, "restored")])
        for partition in (3, 5):
            self.assertIn(self.file.read_bytes()[-24:-4], self.back_up(partition).read_bytes())
        self.assertEqual(self.left_on_board(), [])

    def test_accepts_the_file_after_the_partitions(self):
        self.assert_ended(self.efictl("restore", "--to", 3, "--to", 5, self.file), DONE)

    def test_dry_run_shows_the_plan_and_changes_nothing(self):
        before, discards = self.state(), self.events("discard")
        run = self.restore("--to", 3, "--dry-run")
        self.assert_ended(run, DONE)
        self.assertFalse(run.json["changed"])
        self.assertTrue(run.json["dry_run"])
        plan = run.json["plan"]
        self.assertEqual((plan["partition"], plan["name"], plan["bios_version"]),
                         (3, "Test", "1.23 B"))
        self.assertEqual(run.partition(3)["status"], "planned")
        self.assertTrue(run.partition(3)["same_version"])
        self.assert_nothing_done(before)
        self.assertEqual(self.events("discard"), discards + 1)

    def test_requires_the_same_version(self):
        before = self.state()
        for partition, status in ((3, DONE), (2, REFUSED)):  # 2 has no version
            with self.subTest(partition=partition):
                run = self.restore("--to", partition, "--require-same-version", "--dry-run")
                self.assert_ended(run, status)
        self.write("new.dat", configuration_file(version="1.22"))
        self.assert_ended(self.restore("--to", 3, "--require-same-version"), REFUSED, "1.22")
        self.assert_nothing_done(before)

    def test_requires_the_partition_of_the_file(self):
        before = self.state()
        self.assert_ended(self.restore("--to", "3", "--require-partition", "--dry-run"), DONE)
        run = self.restore("--to", "3,5", "--require-partition")
        self.assert_ended(run, REFUSED, "Partition 5")
        self.assertEqual(run.partition(5)["status"], "refused")
        self.assert_nothing_done(before)

    def test_version_does_not_fit(self):
        before = self.state()
        run = self.restore("--to", 0)
        self.assert_ended(run, REFUSED, "10.20.30", "1.23 B")
        self.assert_nothing_done(before)

    def test_refuses_a_file_without_version_for_a_partition_with_one(self):
        before = self.state()
        self.write("new.dat", configuration_file(version=""))
        for more in (), ("--dry-run",):
            self.assert_ended(self.restore("--to", 3, *more), REFUSED, "1.23 B")
        # Partition 2 has no known version.
        self.assert_ended(self.restore("--to", 2, "--dry-run"), DONE)
        self.assert_nothing_done(before)

    def test_partition_not_installed(self):
        before = self.state()
        self.assert_ended(self.restore("--to", "3,4"), REFUSED, "installed: 4")
        self.assert_nothing_done(before)

    def test_reports_a_running_partition(self):
        before = self.state()
        self.board.control("partition", 3, "on")
        run = self.restore("--to", 3)
        self.assert_ended(run, REFUSED, "running")
        self.assertEqual((run.json["reason"]["message"], run.json["reason"]["code"]), (73, 1549))
        self.assert_nothing_done(before)

    def test_reports_every_code_of_a_refused_restore(self):
        before = self.state()
        for code in (1047, 1539, 1549, 1551, 1601, 1602, 1603, 1604, 1605, 1606, 1608, 1609, 1611,
                     1612, 1615, 1616, 2001):
            with self.subTest(code=code):
                self.board.control("refuse", RESTORE, code)
                restores = self.events("restore")
                run = self.restore("--to", 3)
                self.assert_ended(run, REFUSED)
                self.assertEqual(run.json["reason"]["code"], code)
                self.assertFalse(run.json["changed"])
                self.assertLessEqual(self.events("restore"), restores + 1)
        self.assert_nothing_done(before)

    def test_reports_an_unknown_outcome(self):
        for code in (1613, 1599, 2002, 2003, 2004):
            with self.subTest(code=code):
                self.board.control("refuse", RESTORE, code)
                run = self.restore("--to", 3)
                self.assert_ended(run, UNKNOWN, "Activity")
                self.assertEqual(run.json["reason"]["code"], code)
                self.assertTrue(run.json["changed"])
                self.assertEqual(run.partition(3)["status"], "unknown")

    def test_does_not_retry_a_restore_without_response(self):
        for code in (2001, 2002, 2003):
            with self.subTest(code=code):
                self.board.control("refuse", RESTORE, code, "--times", 2)
                self.restore("--to", 3)
                self.assertRegex(self.board.control("status"), r"refused")
                self.board.control("reset")

    def test_does_not_retry_a_restore_on_a_busy_board(self):
        self.board.control("refuse", RESTORE, 1047)
        # The board refuses once only: a retry would succeed.
        self.assert_ended(self.restore("--to", 3), REFUSED)

    def test_refuses_a_damaged_file_before_login(self):
        logins = self.events("login")
        for content, why in ((b"", "empty"), (b"x" * 100, "does not begin"),
                             (configuration_file()[:-1], "cut off"),
                             (configuration_file()[:-1] + b"?", "checksum"),
                             (b"x" * 400000, "at most 393216")):
            with self.subTest(why=why):
                self.file = self.write("new.dat", content)
                self.assert_ended(self.restore("--to", 3), FAILED, why)
        self.file = self.folder / "absent.dat"
        self.assert_ended(self.restore("--to", 3), FAILED, "No such file")
        self.assertEqual(self.events("login"), logins)

    def test_requires_targets(self):
        self.assert_ended(self.restore(), USAGE, "--to")

    def test_accepts_partition_names_of_any_characters(self):
        for name in ("<b>&amp;\"'", " spaced  out ", "tab\there", "\u202eturned", "line\nend",
                     "\u65e5\u672c", "a" * 1000):
            with self.subTest(name=name):
                self.file = self.write("new.dat", configuration_file(name=name))
                self.assert_ended(self.restore("--to", 3, "--dry-run"), DONE)


class InterruptionTest(BoardTest):
    """A signal leaves nothing on the board, whenever it comes."""

    def start(self, *arguments):
        return subprocess.Popen([EFICTL, *map(str, arguments)], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, stdin=subprocess.DEVNULL,
                                env=environment(**self.account.variables))

    def end(self, process):
        output, errors = process.communicate(timeout=60)
        return Run(process.args, process.returncode, output, errors)

    def staged_files(self):
        return [name for name in self.left_on_board() if name.startswith("restored_eficonf")]

    def wait_for(self, condition):
        end = time.monotonic() + 30
        while not condition():
            self.assertLess(time.monotonic(), end, f"left on the board: {self.left_on_board()}")
            time.sleep(0.01)

    def test_signal_ends_the_session(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number):
                self.board.control("slow", 1500, "--times", 3)
                process = self.start("backup", "--all", "--out", self.out, "--json")
                self.wait_for(lambda: [name for name in self.left_on_board()
                                       if name.startswith("efi_backup")])
                process.send_signal(number)
                run = self.end(process)
                self.assert_ended(run, FAILED, "Interrupted")
                self.assertEqual(run.json["warnings"], [])
                self.wait_for(lambda: not self.left_on_board())
                self.board.control("reset")

    def test_file_stays_after_sigkill_until_its_session_ends(self):
        file = self.write("new.dat", configuration_file(payload=b"Boot=killed\n"))
        before = self.state()
        # Slows down the page after the upload, so that the restore has not begun.
        self.board.control("slow", 1500, "--times", 100)
        process = self.start("restore", file, "--to", 3)
        self.wait_for(self.staged_files)
        process.kill()
        process.communicate()
        self.board.control("reset")
        self.assertTrue(self.staged_files())
        sessions = self.board.path(SESSIONS)
        for name in os.listdir(sessions):
            long_ago = time.time() - IDLE_SECONDS - 60
            os.utime(sessions / name, (long_ago, long_ago))
        # The next login removes expired sessions.
        self.assert_ended(self.efictl("list"), DONE)
        self.wait_for(lambda: not self.left_on_board())
        self.assertEqual(self.state(), before)

    def test_signal_waits_for_the_outcome_of_a_restore(self):
        file = self.write("new.dat", configuration_file(payload=b"Boot=signal\n"))
        before = self.state()
        process = self.start("restore", file, "--to", 3, "--json")
        self.wait_for(self.staged_files)
        # Slows down the requests of the page after the upload, and then the restore.
        self.board.control("slow", 1200, "--times", 8)
        time.sleep(0.3)
        process.send_signal(signal.SIGINT)
        run = self.end(process)
        self.board.control("reset")
        # The restore may or may not have begun. Either way the report is true and nothing is left.
        if run.status == DONE:
            self.assertNotEqual(self.state(), before)
        else:
            self.assert_ended(run, FAILED, "Interrupted")
            self.assertEqual(self.state(), before)
        self.wait_for(lambda: not self.left_on_board())


if __name__ == "__main__":
    unittest.main()

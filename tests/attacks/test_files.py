"""Tests that only the board's user can use its files, whatever the umask and the root's owner."""

import os
import stat
import subprocess
import tempfile
import unittest
from pathlib import Path

from attacker.board import Board, configuration_file, install
from attacker.browser import FORM, SCREEN, Browser
from support.board import PRESET
from support.document import PROJECT

STRANGER = 65534
IS_ROOT = os.geteuid() == 0


def mode_of(path):
    return stat.S_IMODE(path.lstat().st_mode)


class Modes(unittest.TestCase):
    """The umask is 0."""

    @classmethod
    def setUpClass(cls):
        cls.board = cls.enterClassContext(Board(umask=0))
        browser = Browser(cls.board, "admin")
        browser.upload(configuration_file())
        browser.backup()
        browser.get("/nothing")
        browser.get(SCREEN + "?functionID=7")
        browser.log_in("admin", "guess")
        cls.browser = Browser(cls.board, "admin")

    def assert_private(self, paths):
        found = {str(path.relative_to(self.board.root)): oct(mode_of(path)) for path in paths
                 if path.is_file() and not path.is_symlink()}
        self.assertNotEqual(found, {})
        self.assertEqual(found, dict.fromkeys(found, "0o600"))

    def test_descriptions_of_the_board_are_private(self):
        self.assert_private(self.board.root.rglob("*.toml"))

    def test_logs_are_private(self):
        self.assert_private(self.board.path("/var/log").iterdir())

    def test_state_is_private(self):
        for folder in ("/var/lib/board", "/var/lib/session", "/var/run"):
            with self.subTest(folder=folder):
                self.assert_private(self.board.path(folder).iterdir())

    def test_folders_are_private(self):
        for folder in ("log", "run", "tmp", "lib", "lib/session", "lib/board"):
            with self.subTest(folder=folder):
                self.assertEqual(mode_of(self.board.path("/var/" + folder)) & 0o077, 0)

    def test_programs_without_the_server_write_private_files(self):
        trace = self.board.path("/var/log/trace.log")
        trace.unlink(missing_ok=True)
        mask = os.umask(0)
        try:
            self.board.run(SCREEN[1:], query="functionID=7", cookie=self.browser.cookie_header)
            self.board.run(SCREEN[1:], "POST", kind=FORM, cookie=self.browser.cookie_header,
                           body=b"functionID=105&hidden_status=BACKUP&radio_button=3")
        finally:
            os.umask(mask)
        self.assert_private([trace])
        self.assert_private(self.board.path("/var/tmp").glob("efi_backup*"))


class Roots(unittest.TestCase):
    """Roots in which another user could change the board's files."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="attacks-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name) / "root"
        install(self.root, "--component", "program")
        install(self.root)
        self.root.chmod(0o700)
        self.description = Path(folder.name) / "board.toml"
        self.description.write_text(
            (PROJECT / "board/demo/demo.toml").read_text(encoding="utf-8"), encoding="utf-8")
        self.description.chmod(0o600)

    def run_briefly(self, *command):
        """Runs a command that must refuse to serve; ends it if it serves. Returns the result."""
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   text=True)
        line = process.stdout.readline()
        if line:
            process.terminate()
        _, errors = process.communicate()
        return line, process.returncode, errors

    def assert_refused(self):
        commands = {
            "serve": (PROJECT / "serve", "--no-build", "--preset", PRESET, "--port", "0",
                      "--root", self.root),
            "efi_backend": (self.root / "usr/local/sbin/efi_backend", "--root", self.root,
                            "--board", self.description),
        }
        for name, command in commands.items():
            with self.subTest(program=name):
                line, status, errors = self.run_briefly(*command)
                self.assertEqual(line, "", "it serves")
                self.assertEqual(status, 1)
                self.assertIn(str(self.root), errors)
                self.assertRegex(errors, r"(?i)\b(belongs|owne[rd]|group|others?|write|writable)")

    def test_root_that_others_may_write_is_refused(self):
        self.root.chmod(0o777)
        self.assert_refused()

    def test_root_that_the_group_may_write_is_refused(self):
        self.root.chmod(0o770)
        self.assert_refused()

    @unittest.skipUnless(IS_ROOT, "only root can give files away")
    def test_root_of_another_user_is_refused(self):
        os.chown(self.root, STRANGER, STRANGER)
        self.assert_refused()

    def test_own_root_is_served(self):
        line, _, errors = self.run_briefly(self.root / "usr/local/sbin/efi_backend", "--root",
                                           self.root, "--board", self.description)
        self.assertEqual(line, "ready\n", errors)


if __name__ == "__main__":
    unittest.main()

"""Tests that users without a right leave nothing on the board, and that no user can fill it."""

import os
import unittest

from attacker.board import SESSIONS, AttackTest, configuration_file
from attacker.browser import PARTS, SCREEN, Browser
from support.board import upload_body

MOST_SESSIONS = 8
FORBIDDEN = 403


class Rights(AttackTest):
    """The viewer has no rights."""

    def setUp(self):
        self.viewer = Browser(self.board, "viewer")
        self.before = self.board.temporary_files()

    def assert_nothing_left(self, *statuses):
        self.assertEqual(self.board.temporary_files(), self.before)
        self.assertEqual(statuses, (FORBIDDEN,) * len(statuses))

    def test_upload_without_right_leaves_nothing(self):
        self.assert_nothing_left(self.viewer.upload(configuration_file()).status)

    def test_backup_without_right_leaves_nothing(self):
        self.assert_nothing_left(self.viewer.backup().status)

    def test_direct_upload_without_right_leaves_nothing(self):
        body = upload_body(configuration_file(), "a.dat", [("hidden_status", "1")])
        run = self.board.run(SCREEN[1:], "POST", body=body, kind=PARTS,
                             cookie=self.viewer.cookie_header)
        self.assert_nothing_left(run.answered)

    def test_direct_backup_without_right_leaves_nothing(self):
        run = self.board.run(SCREEN[1:], "POST", cookie=self.viewer.cookie_header,
                             body=b"functionID=105&hidden_status=BACKUP&radio_button=3")
        self.assert_nothing_left(run.answered)


class Amounts(AttackTest):
    """Limits for one user."""

    users = {"often": [105, 106], "once": [105, 106]}

    def test_oldest_session_ends_when_a_user_has_too_many(self):
        oldest = Browser(self.board, "often", "admin")
        oldest.upload(configuration_file())
        self.assertTrue(oldest.is_logged_in())
        others = Browser(self.board, "once", "admin")
        sessions = [Browser(self.board, "often", "admin") for _ in range(199)]
        self.assertLessEqual(len(os.listdir(self.board.path(SESSIONS))), MOST_SESSIONS + 1)
        self.assertFalse(oldest.is_logged_in())
        self.assertEqual(oldest.restore(3).status, FORBIDDEN)
        self.assertTrue(sessions[-1].is_logged_in())
        self.assertTrue(others.is_logged_in(), "a session of another user was ended")
        self.assertEqual(self.board.temporary_files(), [])

    def test_session_has_one_staged_file_and_one_backup(self):
        browser = Browser(self.board, "once", "admin")
        for partition in (2, 3, 5):
            self.assertEqual(browser.upload(configuration_file(partition)).status, 200)
            self.assertEqual(browser.backup(partition).status, 200)
        self.assertEqual(self.board.temporary_files(), ["efi_backup" + browser.identifier,
                                                        "restored_eficonf" + browser.identifier])
        browser.post("/logout.cgi", {})
        self.assertEqual(self.board.temporary_files(), [])


if __name__ == "__main__":
    unittest.main()

"""Tests that a request still being sent when its session ends is not carried out."""

import unittest

from attacker.board import TEMPORARY, AttackTest, configuration_file
from attacker.browser import FORM, PARTS, SCREEN, Browser, Connection
from support.board import upload_body

BACKUP = b"functionID=105&hidden_status=BACKUP&radio_button=3"
RESTORE = b"functionID=106&hidden_status=2&pid3=3"
RESTORE_PARTS = upload_body(b"", "", [("hidden_status", "2"), ("pid3", "3")])


class Logout(AttackTest):
    def setUp(self):
        for name in self.board.temporary_files():
            (self.board.path(TEMPORARY) / name).unlink()
        self.browser = Browser(self.board, "admin")
        # Each test restores a different configuration.
        self.file = configuration_file(payload=f"attack={self.id()}\n".encode())
        self.upload = upload_body(self.file, "a.dat", [("hidden_status", "1")])
        self.state = self.board.state()
        self.open = 0

    def begin(self, body, kind):
        """Sends the first half of a request and waits until its program runs. Returns the
        connection and the other half."""
        connection = self.enterContext(Connection(self.board))
        connection.send_head(SCREEN, len(body), kind, self.browser.cookie_header)
        connection.send(body[:len(body) // 2])
        self.open += 1
        # No failure: a server that reads the whole body first starts the program later.
        self.board.wait_for_program(count=self.open, seconds=2)
        return connection, body[len(body) // 2:]

    def log_out(self):
        self.assertEqual(self.browser.post("/logout.cgi", {}).status, 303)

    def finish(self, begun):
        connection, rest = begun
        connection.send(rest)
        status = connection.status()
        self.open -= 1
        return status

    def assert_nothing_done(self, *statuses):
        self.assertEqual(self.board.state(), self.state, "a configuration was restored")
        self.assertEqual(self.board.temporary_files(), [])
        for status in statuses:
            self.assertGreaterEqual(status, 400)

    def test_backup_is_not_carried_out(self):
        begun = self.begin(BACKUP, FORM)
        self.log_out()
        self.assert_nothing_done(self.finish(begun))

    def test_upload_is_not_carried_out(self):
        begun = self.begin(self.upload, PARTS)
        self.log_out()
        self.assert_nothing_done(self.finish(begun))

    def restore_after_logout(self, body, kind):
        # The logout removes the staged file; a second upload is still being sent.
        self.browser.upload(self.file)
        upload = self.begin(self.upload, PARTS)
        restore = self.begin(body, kind)
        self.log_out()
        self.assert_nothing_done(self.finish(upload), self.finish(restore))

    def test_restore_is_not_carried_out(self):
        self.restore_after_logout(RESTORE, FORM)

    def test_restore_in_parts_is_not_carried_out(self):
        self.restore_after_logout(RESTORE_PARTS, PARTS)

    def test_request_of_a_replaced_session_is_not_carried_out(self):
        begun = self.begin(self.upload, PARTS)
        self.browser.log_in("admin")
        self.assert_nothing_done(self.finish(begun))

    def test_request_of_a_living_session_is_carried_out(self):
        self.assertEqual(self.finish(self.begin(self.upload, PARTS)), 200)
        self.assertEqual(self.finish(self.begin(RESTORE, FORM)), 200)
        self.assertNotEqual(self.board.state(), self.state)
        self.log_out()


if __name__ == "__main__":
    unittest.main()

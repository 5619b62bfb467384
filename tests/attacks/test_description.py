"""Tests that rights are those of the current board description, and that the back-end checks them
itself."""

import unittest

from attacker import frames
from attacker.board import TEMPORARY, AttackTest, configuration_file
from attacker.browser import SCREEN, Browser

NOBODY = "0123456789abcdef"


class Description(AttackTest):
    users = {"admin": [105, 106], "leaver": [105, 106], "mover": [105, 106], "viewer": []}

    def serve_again(self, users):
        self.board.end()
        self.board.describe(users)
        self.board.start()

    def test_rights_follow_the_current_description(self):
        leaver, mover, admin = (Browser(self.board, user, "admin")
                                for user in ("leaver", "mover", "admin"))
        for browser in (leaver, mover):
            self.assertEqual(browser.upload(configuration_file()).status, 200)
        state = self.board.state()
        self.serve_again({"admin": [105, 106], "mover": [105], "viewer": []})

        with self.subTest("a removed user has no session"):
            self.assertFalse(leaver.is_logged_in())
            self.assertEqual(leaver.get(SCREEN + "?functionID=105").status, 403)
            self.assertEqual(leaver.restore(3).status, 403)
            self.assertEqual(leaver.backup().status, 403)
            run = self.board.run(SCREEN[1:], query="functionID=105", cookie=leaver.cookie_header)
            self.assertEqual(run.answered, 403)
        with self.subTest("a removed function is refused"):
            self.assertTrue(mover.is_logged_in())
            self.assertEqual(mover.get(SCREEN + "?functionID=106").status, 403)
            self.assertEqual(mover.upload(configuration_file()).status, 403)
            self.assertEqual(mover.restore(3).status, 403)
            run = self.board.run(SCREEN[1:], query="functionID=106", cookie=mover.cookie_header)
            self.assertEqual(run.answered, 403)
        with self.subTest("the back-end itself refuses both"):
            self.assertEqual(frames.back_up(self.board, leaver.identifier), frames.NO_SESSION)
            self.assertEqual(frames.restore(self.board, leaver.identifier, 3), frames.NO_SESSION)
            self.assertEqual(frames.restore(self.board, mover.identifier, 3), frames.NOT_ALLOWED)
        with self.subTest("the remaining users keep their rights"):
            self.assertEqual(mover.get(SCREEN + "?functionID=105").status, 200)
            self.assertEqual(admin.get(SCREEN + "?functionID=106").status, 200)
        self.assertEqual(self.board.state(), state)


class BackendTest(AttackTest):
    """Changes requested directly from the back-end."""

    def setUp(self):
        for name in self.board.temporary_files():
            (self.board.path(TEMPORARY) / name).unlink()

    def test_sessions_that_do_not_exist_are_refused(self):
        for session in (NOBODY, NOBODY.upper(), "../../etc/passwd", ""):
            with self.subTest(session=session):
                self.assertEqual(frames.back_up(self.board, session), frames.NO_SESSION)
                self.assertEqual(frames.restore(self.board, session, 3), frames.NO_SESSION)
        self.assertEqual(self.board.temporary_files(), [])

    def test_staged_file_without_session_is_not_restored(self):
        state = self.board.state()
        staged = self.board.path("/var/tmp/restored_eficonf" + NOBODY)
        staged.write_bytes(configuration_file())
        staged.chmod(0o600)
        self.addCleanup(staged.unlink)
        self.assertEqual(frames.restore(self.board, NOBODY, 3), frames.NO_SESSION)
        self.assertEqual(self.board.state(), state)

    def test_sessions_without_the_right_are_refused(self):
        viewer = Browser(self.board, "viewer")
        self.assertEqual(frames.back_up(self.board, viewer.identifier), frames.NOT_ALLOWED)
        self.assertEqual(frames.restore(self.board, viewer.identifier, 3), frames.NOT_ALLOWED)
        self.assertEqual(self.board.temporary_files(), [])

    def test_ended_sessions_are_refused(self):
        admin = Browser(self.board, "admin")
        identifier = admin.identifier
        self.assertEqual(frames.back_up(self.board, identifier), 0)
        admin.post("/logout.cgi", {})
        self.assertEqual(frames.back_up(self.board, identifier), frames.NO_SESSION)
        self.assertEqual(self.board.temporary_files(), [])


if __name__ == "__main__":
    unittest.main()

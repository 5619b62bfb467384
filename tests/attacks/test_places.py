"""Tests that foreign files, links and pipes in place of the board's files are refused."""

import os
import re
import stat
import time
import unittest
from pathlib import Path

from attacker.board import SESSIONS, SLOWNESS, TEMPORARY, TRACE, AttackTest, configuration_file
from attacker.browser import SCREEN, Browser

STRANGER = 65534
IS_ROOT = os.geteuid() == 0
SECONDS = 5  # time limit of a refusal
BACKUP = b"functionID=105&hidden_status=BACKUP&radio_button=3"
RESTORE = b"functionID=106&hidden_status=2&pid3=3"


class PlacesTest(AttackTest):
    def setUp(self):
        self.browser = Browser(self.board, "admin")
        self.cookie = self.browser.cookie_header
        self.identifier = self.browser.identifier

    def place(self, name):
        return self.board.path(TEMPORARY) / (name + self.identifier)

    def trace_size(self):
        path = self.board.path(TRACE)
        return path.stat().st_size if path.exists() else 0

    def assert_refused(self, body):
        """Expects an error page in time, and a line in the trace, for a POST request: directly to
        the program and through the web server."""
        for ask in (self.ask_program, self.ask_server):
            with self.subTest(ask.__name__):
                traced = self.trace_size()
                started = time.monotonic()
                status, text = ask(body)
                self.assert_within(SECONDS, started, "the answer")
                self.assertIsNotNone(status, "no answer")
                self.assertGreaterEqual(status, 400)
                self.assertIn("</html>", text)
                self.assertGreater(self.trace_size(), traced, "nothing is traced")

    def ask_program(self, body):
        run = self.board.run(SCREEN[1:], "POST", body=body, cookie=self.cookie,
                             deadline=SECONDS * SLOWNESS)
        return run.answered, run.output.decode("utf-8", "replace")

    def ask_server(self, body):
        try:
            answer = self.browser.request(
                "POST", SCREEN, body, {"Content-Type": "application/x-www-form-urlencoded"},
                timeout=SECONDS * SLOWNESS)
        except TimeoutError:
            return None, ""
        return answer.status, answer.text


class StagedFile(PlacesTest):
    @unittest.skipUnless(IS_ROOT, "only root can give files away")
    def test_staged_file_of_another_user_is_not_restored(self):
        staged = self.place("restored_eficonf")
        staged.write_bytes(configuration_file(payload=b"attack=staged\n"))
        staged.chmod(0o600)
        os.chown(staged, STRANGER, STRANGER)
        state = self.board.state()
        self.assert_refused(RESTORE)
        self.assertEqual(self.board.state(), state, "it was restored")

    def test_staged_link_is_not_restored(self):
        target = self.board.folder / "elsewhere"
        target.write_bytes(configuration_file(payload=b"attack=link\n"))
        self.place("restored_eficonf").symlink_to(target)
        state = self.board.state()
        self.assert_refused(RESTORE)
        self.assertEqual(self.board.state(), state, "it was restored")
        self.assertTrue(target.exists())

    def test_restore_does_not_wait_for_a_staged_pipe(self):
        os.mkfifo(self.place("restored_eficonf"))
        state = self.board.state()
        self.assert_refused(RESTORE)
        self.assertEqual(self.board.state(), state)


class BackupFile(PlacesTest):
    def test_backup_does_not_follow_a_link(self):
        target = self.board.folder / "target"
        target.write_bytes(b"untouched")
        self.place("efi_backup").symlink_to(target)
        self.assert_refused(BACKUP)
        self.assertEqual(target.read_bytes(), b"untouched")

    def test_backup_does_not_follow_a_dangling_link(self):
        target = self.board.folder / "absent"
        self.place("efi_backup").symlink_to(target)
        self.assert_refused(BACKUP)
        self.assertFalse(target.exists())

    def test_backup_does_not_wait_for_a_pipe(self):
        os.mkfifo(self.place("efi_backup"))
        self.assert_refused(BACKUP)
        self.assertTrue(stat.S_ISFIFO(self.place("efi_backup").stat().st_mode))

    @unittest.skipUnless(IS_ROOT, "only root can give files away")
    def test_backup_does_not_write_to_the_file_of_another_user(self):
        place = self.place("efi_backup")
        place.write_bytes(b"untouched")
        os.chown(place, STRANGER, STRANGER)
        self.assert_refused(BACKUP)
        self.assertEqual(place.read_bytes(), b"untouched")


class SessionFile(PlacesTest):
    def session_file(self):
        return self.board.path(SESSIONS) / self.identifier

    def assert_no_session(self):
        self.assertFalse(self.browser.is_logged_in())
        for target in ("?functionID=105", "?functionID=106"):
            answer = self.browser.get(SCREEN + target)
            self.assertEqual(answer.status, 403)
            run = self.board.run(SCREEN[1:], query=target[1:], cookie=self.cookie)
            self.assertEqual(run.answered, 403)

    @unittest.skipUnless(IS_ROOT, "only root can give files away")
    def test_session_file_of_another_user_is_ignored(self):
        traced = self.trace_size()
        os.chown(self.session_file(), STRANGER, STRANGER)
        self.assert_no_session()
        self.assertGreater(self.trace_size(), traced, "nothing is traced")

    def test_session_file_readable_by_others_is_ignored(self):
        self.session_file().chmod(0o644)
        self.assert_no_session()

    def test_session_file_writable_by_others_is_ignored(self):
        self.session_file().chmod(0o620)
        self.assert_no_session()

    def test_session_last_used_in_the_future_is_ignored(self):
        later = time.time() + 3600
        os.utime(self.session_file(), (later, later))
        self.assert_no_session()

    def test_session_begun_in_the_future_is_ignored(self):
        path = self.session_file()
        later = int(time.time()) + 3600
        text, count = re.subn(rb"(?m)^created=\d+$", b"created=%d" % later, path.read_bytes())
        self.assertEqual(count, 1)
        path.write_bytes(text)
        self.assert_no_session()

    def test_session_file_that_is_a_link_is_ignored(self):
        path = self.session_file()
        elsewhere = self.board.folder / "session"
        elsewhere.write_bytes(path.read_bytes())
        elsewhere.chmod(0o600)
        path.unlink()
        path.symlink_to(elsewhere)
        self.assert_no_session()

    def test_files_do_not_contain_the_token(self):
        self.browser.upload(configuration_file())
        self.browser.backup()
        secret = self.browser.secret
        self.assertGreaterEqual(len(secret), 32)
        forms = [secret.encode(), self.browser.session.encode()]
        if re.fullmatch(r"(?:[0-9a-fA-F]{2})+", secret):
            forms.append(bytes.fromhex(secret))
        for folder, _, names in os.walk(self.board.root):
            for name in names:
                path = Path(folder, name)
                if stat.S_ISREG(path.lstat().st_mode):
                    data = path.read_bytes()
                    for form in forms:
                        self.assertNotIn(form, data, str(path.relative_to(self.board.root)))


if __name__ == "__main__":
    unittest.main()

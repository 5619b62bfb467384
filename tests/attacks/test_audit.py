"""Tests that every action leaves its line in the audit log, and that nobody can prevent it."""

import hashlib
import os
import time
import unittest

from attacker import audit, frames
from attacker.board import LONG, SESSIONS, AttackTest, configuration_file
from attacker.browser import SCREEN, Browser, download_link

ADDRESS = "127.0.7.1"
LINES_A_MINUTE = 10
TYPED = {"user": "typed-name-7f3a", "password": "typed-secret-91c2"}


def sum_of(data):
    return hashlib.sha256(data).hexdigest()


class AuditTest(AttackTest):
    def events(self, **fields):
        return audit.find(audit.read(self.board), **fields)

    def last(self, **fields):
        found = self.events(**fields)
        self.assertNotEqual(found, [], f"no line with {fields}")
        return found[-1]


class Actions(AuditTest):
    def setUp(self):
        self.payload = f"attack={self.id()}\n".encode()
        self.file = configuration_file(payload=self.payload)
        self.admin = Browser(self.board, "admin", address=ADDRESS)
        self.known = {"user": "admin", "address": ADDRESS, "session": self.admin.identifier}

    def assert_file(self, event, data):
        self.assertEqual(event["file"]["sha256"], sum_of(data))
        self.assertEqual(event["file"]["partition"], 3)
        self.assertEqual(event["file"]["version"], "1.23 B")
        self.assertRegex(event["file"]["saved"], audit.TIME)

    def test_login_and_logout(self):
        first = self.last(event="login", **self.known)
        self.admin.post("/logout.cgi", {})
        last = self.last(event="logout", **self.known)
        self.assertNotEqual(first["request"], last["request"])

    def test_failed_login_without_typed_text(self):
        before = len(self.events(event="login_failed", address="127.0.7.2"))
        stranger = Browser(self.board, address="127.0.7.2")
        stranger.post("/login.cgi", TYPED)
        stranger.post("/login.cgi", {"user": "admin", "password": TYPED["password"]})
        stranger.post("/login.cgi", {"user": TYPED["password"], "password": ""})
        failed = self.events(event="login_failed", address="127.0.7.2")
        self.assertEqual(len(failed), before + 3)
        self.assertEqual({event["code"] for event in failed}, {1607})
        logs = self.board.text_of_logs()
        for text in TYPED.values():
            self.assertNotIn(text, logs)

    def test_backup_and_download(self):
        link = download_link(self.admin.backup(3).text)
        backup = self.last(event="backup", **self.known)
        data = self.admin.get(link).body
        download = self.last(event="download", **self.known)
        self.assertEqual(backup["partitions"], [3])
        self.assertEqual(backup["result"], audit.DONE)
        self.assert_file(backup, data)
        self.assert_file(download, data)
        self.assertNotEqual(backup["request"], download["request"])

    def test_upload_and_restore(self):
        self.admin.upload(self.file)
        self.assert_file(self.last(event="upload", **self.known), self.file)
        self.admin.restore(2, 3)
        restore = self.last(event="restore", **self.known)
        self.assertEqual(restore["partitions"], [2, 3])
        self.assertEqual(restore["result"], audit.DONE)
        self.assert_file(restore, self.file)
        self.assertEqual(restore["after"], dict.fromkeys(("2", "3"), sum_of(self.payload)))
        self.assertEqual(set(restore["before"]), {"2", "3"})
        self.assertNotEqual(restore["before"], restore["after"])

    def test_refused_restore(self):
        self.admin.upload(self.file)
        self.admin.restore(3, 7)
        refused = self.last(event="restore", **self.known)
        self.assertEqual(refused["code"], 1549)
        self.assertNotEqual(refused["result"], audit.DONE)
        self.assertEqual(refused["partitions"], [3, 7])

    def test_discard(self):
        self.admin.upload(self.file)
        self.admin.discard()
        self.last(event="discard", **self.known)

    def test_refusals(self):
        viewer = Browser(self.board, "viewer", address="127.0.7.3")
        known = {"user": "viewer", "address": "127.0.7.3", "session": viewer.identifier}
        viewer.upload(self.file)
        self.last(event="refusal", reason="rights", **known)
        stranger = Browser(self.board, address="127.0.7.4")
        stranger.request("POST", SCREEN, "", {"Origin": "http://evil.example"})
        self.last(event="refusal", reason="cross_site", address="127.0.7.4")
        stranger.request("DELETE", SCREEN)
        self.last(event="refusal", reason="method", address="127.0.7.4")
        stranger.request("GET", SCREEN, headers={"Host": "evil.example"})
        self.last(event="refusal", reason="host", address="127.0.7.4")

    def test_refusals_without_the_web_server(self):
        run = self.board.run(SCREEN[1:], "POST", HTTP_ORIGIN="http://evil.example",
                             REMOTE_ADDR="127.0.7.5")
        self.assertEqual(run.answered, 403)
        self.last(event="refusal", reason="cross_site", address="127.0.7.5")

    def test_direct_request_to_the_backend_is_recorded(self):
        frames.back_up(self.board, "0123456789abcdef")
        self.last(event="backup", code=frames.NO_SESSION)

    def test_fault_order(self):
        self.board.control("partition", 7, "on")
        self.assertIn("partition 7 on", self.last(event="fault_order")["order"])
        self.board.control("reset")

    def test_expired_and_replaced_sessions(self):
        path = self.board.path(SESSIONS) / self.admin.identifier
        long_ago = time.time() - 7200
        os.utime(path, (long_ago, long_ago))
        self.assertFalse(self.admin.is_logged_in())
        self.last(event="session_expired", session=self.known["session"], user="admin")
        oldest = Browser(self.board, "viewer")
        time.sleep(1.1)  # a session's age is in seconds
        for _ in range(8):
            Browser(self.board, "viewer")
        self.last(event="session_ended", session=oldest.identifier, user="viewer")

    def test_every_line_has_all_known_fields(self):
        self.admin.upload(self.file)
        self.admin.restore(3)
        events = audit.read(self.board)
        self.assertNotEqual(events, [])
        for event in events:
            with self.subTest(event=event):
                # Requests that other tests send directly to the back-end have neither.
                if (event["event"] in ("login", "login_failed", "logout", "upload", "download",
                                       "restore", "discard", "refusal")
                        and event.get("code") != frames.NO_SESSION):
                    self.assertTrue(event.get("address"))
                    self.assertTrue(event.get("request") or event["event"] == "login_failed")
                if event["event"] == "refusal":
                    self.assertIn(event["reason"], audit.REASONS)
        self.assertNotIn(self.admin.secret, self.board.text_of_logs())


class StartAndEnd(AuditTest):
    def test_start_and_end(self):
        self.assertEqual(len(self.events(event="start")), 1)
        self.board.end()
        self.assertEqual([event["event"] for event in self.events()][-1], "end")
        self.board.start()
        self.assertEqual(len(self.events(event="start")), 2)


class Flood(AuditTest):
    REQUESTS = 500

    def test_anonymous_requests_displace_no_lines(self):
        admin = Browser(self.board, "admin", address=ADDRESS)
        evidence = self.last(event="login", session=admin.identifier)
        started = time.monotonic()
        for number in range(self.REQUESTS):
            stranger = Browser(self.board, address=f"127.0.8.{number % 20 + 1}")
            if number % 2 == 0:
                stranger.request("GET", SCREEN, headers={"Host": "evil.example"})
            else:
                stranger.request("POST", SCREEN, "", {"Origin": "http://evil.example"})
        minutes = int((time.monotonic() - started) / 60) + 1
        events = self.events()
        self.assertIn(evidence, events)
        kinds = {}
        for event in events:
            if event["event"] in ("refusal", "anonymous"):
                kind = event["event"], event.get("reason")
                kinds[kind] = kinds.get(kind, 0) + 1
        self.assertNotEqual(kinds, {})
        for kind, count in kinds.items():
            # The limit's minute need not begin with the clock's.
            self.assertLessEqual(count, (LINES_A_MINUTE + 1) * (minutes + 1), kind)
        # Later actions are still recorded.
        admin.post("/logout.cgi", {})
        self.last(event="logout", session=evidence["session"])
        if LONG:
            self.assert_counted()

    def assert_counted(self):
        """Expects that no request is lost: those without a line are counted after the minute."""
        sent = self.REQUESTS
        seen = 0
        end = time.monotonic() + 400
        while seen != sent and time.monotonic() < end:
            time.sleep(10)
            Browser(self.board).request("POST", SCREEN, "", {"Origin": "http://evil.example"})
            sent += 1
            events = self.events()
            seen = len(audit.find(events, event="refusal")) + sum(
                sum(event["counts"].values()) for event in audit.find(events, event="anonymous"))
        self.assertEqual(seen, sent)

    def test_line_cannot_be_forged(self):
        forged = '"}\n{"time":"2026-01-31T23:59:59.123Z","event":"end"}'
        stranger = Browser(self.board, address="127.0.8.200")
        stranger.log_in(forged, "x")
        self.board.run(SCREEN[1:], "POST", HTTP_ORIGIN=forged, REMOTE_ADDR=forged, HTTP_HOST=forged,
                       HTTP_X_FORWARDED_FOR=forged)
        self.assertNotEqual(self.events(), [])
        self.assertEqual(self.events(event="end"), [])


if __name__ == "__main__":
    unittest.main()

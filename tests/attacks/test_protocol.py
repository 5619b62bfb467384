"""Tests that no client can switch from HTTP/1.1 to another protocol."""

import re
import unittest

from attacker.board import AttackTest
from attacker.browser import Connection

PREFACE = b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"
EMPTY_SETTINGS = bytes.fromhex("000000040000000000")


class Protocol(AttackTest):
    def answer(self, request):
        with Connection(self.board, timeout=20) as connection:
            connection.send(request)
            try:
                return connection.answer()
            except TimeoutError:
                return connection.answered

    def upgrade(self, method="GET", more=b"", body=b""):
        return self.answer(
            b"%s /login.cgi HTTP/1.1\r\nHost: 127.0.0.1:%d\r\n"
            b"Connection: Upgrade, HTTP2-Settings, close\r\nUpgrade: h2c\r\n"
            b"HTTP2-Settings: AAMAAABkAAQAoAAAAAIAAAAA\r\n%s\r\n%s"
            % (method.encode(), self.board.port, more, body))

    def test_upgrade_is_ignored(self):
        answer = self.upgrade()
        self.assertRegex(answer, rb"^HTTP/1\.1 200 ")
        self.assertNotIn(b" 101 ", answer)

    def test_upgrade_of_a_post_is_ignored(self):
        body = b"user=nobody&password=guess"
        answer = self.upgrade("POST", b"Content-Length: %d\r\n"
                              b"Content-Type: application/x-www-form-urlencoded\r\n" % len(body),
                              body)
        self.assertRegex(answer, rb"^HTTP/1\.1 40[0-9] ")

    def test_preface_is_refused(self):
        answer = self.answer(PREFACE + EMPTY_SETTINGS)
        # An HTTP/2 server sends a SETTINGS frame first.
        self.assertFalse(re.match(rb"(?s)...\x04\x00\x00\x00\x00\x00", answer), answer[:60])
        self.assertRegex(answer, rb"^(HTTP/1\.[01] (400|501|505) |$)")


if __name__ == "__main__":
    unittest.main()

"""Tests that large, slow or unfinished requests use up no resources of the board."""

import time
import unittest

from attacker.board import SLOWNESS, AttackTest, configuration_file
from attacker.browser import FORM, PARTS, SCREEN, Browser, Connection
from support.board import upload_body

LARGEST_LOGIN = 4096
LARGE = 384 * 1024
SMALL_CHANGE = 32 * 1024  # bytes that logs and folders may grow meanwhile
SETTLED = 1  # seconds; data that the web server reads ahead may be on the disk this long
# A request must arrive within DEADLINE seconds; the board may end it NOTICED seconds later.
DEADLINE, NOTICED = 30, 5


def large_upload():
    return upload_body(b"x" * LARGE, "a.dat", [("hidden_status", "1")])


class Bodies(AttackTest):
    def assert_stores_nothing(self, target, body, kind, count):
        """Sends `count` requests without their ends. Expects that the disk space they use is soon
        released, and not used again while they are open."""
        before = self.board.disk_use()
        for _ in range(count):
            connection = self.enterContext(Connection(self.board))
            connection.send_head(target, len(body), kind)
            try:
                connection.send(body[:-100])
            except (BrokenPipeError, ConnectionResetError):
                pass  # refused while being sent, which is allowed
        end = time.monotonic() + SETTLED * SLOWNESS
        low_since = None
        used = 0
        while low_since is None or time.monotonic() - low_since < 1:
            used = self.board.disk_use() - before
            now = time.monotonic()
            low_since = None if used > SMALL_CHANGE else low_since or now
            if low_since is None and now > end:
                break
            time.sleep(0.1)
        self.assertLessEqual(used, SMALL_CHANGE)

    def test_unfinished_logins_are_not_stored(self):
        fields = b"user=admin&password=" + b"x" * LARGE
        self.assert_stores_nothing("/login.cgi", fields, FORM, 20)

    def test_unfinished_logins_in_parts_are_not_stored(self):
        self.assert_stores_nothing("/login.cgi", large_upload(), PARTS, 20)

    def test_unfinished_posts_to_other_programs_are_not_stored(self):
        for target in ("/", "/logout.cgi", "/common/download.cgi"):
            with self.subTest(target=target):
                self.assert_stores_nothing(target, large_upload(), PARTS, 5)

    def test_upload_without_session_is_not_stored(self):
        self.assert_stores_nothing(SCREEN, large_upload(), PARTS, 5)
        self.assertEqual(Browser(self.board).upload(configuration_file()).status, 403)
        self.assertEqual(self.board.temporary_files(), [])

    def test_large_login_is_refused(self):
        browser = Browser(self.board)
        head = "user=nobody&password="
        for kind in (FORM, PARTS):
            for size, statuses in ((LARGEST_LOGIN, (400, 403, 429)), (LARGEST_LOGIN + 1, (413,))):
                with self.subTest(size=size, kind=kind):
                    body = head + "x" * (size - len(head))
                    answer = browser.request("POST", "/login.cgi", body, {"Content-Type": kind})
                    self.assertIn(answer.status, statuses)
                    run = self.board.run("login.cgi", "POST", body=body.encode(), kind=kind)
                    self.assertIn(run.answered, statuses)

    def test_large_login_without_announced_length_is_refused(self):
        body = b"user=nobody&password=" + b"x" * LARGEST_LOGIN
        chunks = b"".join(b"%x\r\n%s\r\n" % (len(part), part)
                          for part in (body[:2000], body[2000:])) + b"0\r\n\r\n"
        with Connection(self.board) as connection:
            # Sent in one piece, so that the server knows the length of the body.
            connection.send(b"POST /login.cgi HTTP/1.1\r\nHost: %s\r\nConnection: close\r\n"
                            b"Content-Type: application/x-www-form-urlencoded\r\n"
                            b"Transfer-Encoding: chunked\r\n\r\n%s"
                            % (connection.host.encode(), chunks))
            self.assertIn(connection.status(), (411, 413))


class Slowness(AttackTest):
    def begin(self, target, body, cookie=None, kind=FORM):
        connection = self.enterContext(Connection(self.board))
        connection.send_head(target, len(body), kind, cookie)
        return connection, iter(body)

    def test_trickling_requests_end_and_delay_no_others(self):
        admin = Browser(self.board, "admin")
        head = (f"GET / HTTP/1.1\r\nHost: 127.0.0.1:{self.board.port}\r\nX-Slow: "
                + "x" * 4000).encode()
        trickles = {
            "headers": (self.enterContext(Connection(self.board)), iter(head)),
            "login": self.begin("/login.cgi", b"user=admin&password=" + b"x" * 4000),
            "upload": self.begin(SCREEN, large_upload(), admin.cookie_header, PARTS),
            "form": self.begin(SCREEN, b"functionID=106&hidden_status=3&x=" + b"x" * 4000,
                               admin.cookie_header),
        }
        started = time.monotonic()
        limit = DEADLINE + NOTICED * SLOWNESS
        ended = {}
        slowest = 0.0
        while len(ended) < len(trickles) and time.monotonic() - started < limit:
            for name, (connection, left) in trickles.items():
                if name in ended:
                    continue
                try:
                    connection.send(bytes([next(left)]))
                    gone = connection.has_ended()
                except (BrokenPipeError, ConnectionResetError):
                    gone = True
                if gone:
                    ended[name] = round(time.monotonic() - started, 1)
            before = time.monotonic()
            self.assertEqual(Browser(self.board).get("/login.cgi").status, 200)
            slowest = max(slowest, time.monotonic() - before)
            time.sleep(max(0.0, 1 - (time.monotonic() - before)))
        print(f"ended after {ended} s, slowest other page {slowest:.2f} s")
        self.assertEqual(set(ended), set(trickles), f"some are still open after {limit} s")
        self.assertLessEqual(slowest, SLOWNESS)
        self.assertEqual([name for name in self.board.temporary_files()
                          if name.startswith("upload_")], [])


if __name__ == "__main__":
    unittest.main()

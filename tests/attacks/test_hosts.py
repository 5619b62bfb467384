"""Tests that the board answers only to its own names and accepts forms only from its own pages."""

import unittest

from attacker.board import AttackTest
from attacker.browser import SCREEN, Browser

MISDIRECTED, FORBIDDEN = 421, 403
TARGETS = ("/", "/login.cgi", SCREEN + "?functionID=105", "/default.css", "/favicon.ico",
           "/nothing")
FOREIGN_HOSTS = ("evil.example", "evil.example:{port}", "127.0.0.1.evil.example:{port}",
                 "evil.example@127.0.0.1:{port}", "localhost.evil.example")
OWN_HOSTS = ("127.0.0.1:{port}", "localhost:{port}", "[::1]:{port}", "LOCALHOST:{port}")


class HostTest(AttackTest):
    def status(self, host, target="/login.cgi", method="GET"):
        host = host.format(port=self.board.port)
        return Browser(self.board).request(method, target, headers={"Host": host}).status

    def run_status(self, host, **more):
        host = host.format(port=self.board.port)
        return self.board.run("login.cgi", HTTP_HOST=host, **more).answered


class Hosts(HostTest):
    def test_foreign_names_are_refused(self):
        for host in FOREIGN_HOSTS:
            # An invalid host may be refused as malformed.
            refusals = (MISDIRECTED, 400) if "@" in host else (MISDIRECTED,)
            for target in TARGETS:
                with self.subTest(host=host, target=target):
                    self.assertIn(self.status(host, target), refusals)

    def test_foreign_names_are_refused_without_the_web_server(self):
        for host in FOREIGN_HOSTS:
            with self.subTest(host=host):
                self.assertEqual(self.run_status(host), MISDIRECTED)

    def test_login_under_a_foreign_name_starts_no_session(self):
        browser = Browser(self.board, headers={"Host": "evil.example"})
        self.assertEqual(browser.log_in("admin").status, MISDIRECTED)
        self.assertEqual(browser.cookies, {})

    def test_own_names_are_served(self):
        for host in OWN_HOSTS:
            with self.subTest(host=host):
                self.assertEqual(self.status(host), 200)
                self.assertEqual(self.status(host, "/default.css"), 200)
                self.assertEqual(self.run_status(host), 200)

    def test_other_name_is_refused(self):
        self.assertEqual(self.status("board.example:{port}"), MISDIRECTED)


class GivenHosts(HostTest):
    options = ("--host", "board.example", "--host", "other.example")

    def test_given_names_are_served(self):
        for host in ("board.example:{port}", "other.example:{port}", *OWN_HOSTS):
            with self.subTest(host=host):
                self.assertEqual(self.status(host), 200)
                self.assertEqual(self.status(host, "/default.css"), 200)
                self.assertEqual(self.run_status(host), 200)

    def test_given_name_without_port_is_served(self):
        # A proxy before the board uses another port.
        self.assertEqual(self.status("board.example"), 200)

    def test_foreign_names_are_refused(self):
        for host in FOREIGN_HOSTS:
            with self.subTest(host=host):
                self.assertIn(self.status(host), (MISDIRECTED, 400))

    def test_forms_of_a_given_name_are_accepted(self):
        host = f"board.example:{self.board.port}"
        browser = Browser(self.board, headers={"Host": host, "Origin": "http://" + host})
        self.assertEqual(browser.log_in("admin").status, 303)


class Origins(AttackTest):
    def statuses(self, origin):
        """Returns the statuses of a login from this origin, through the server and directly."""
        origin = origin.format(port=self.board.port, other=self.board.port ^ 1)
        browser = Browser(self.board, headers={"Origin": origin})
        run = self.board.run("login.cgi", "POST", body=b"user=viewer&password=viewer",
                             HTTP_ORIGIN=origin)
        return browser.log_in("viewer").status, run.answered

    def test_other_origins_are_refused(self):
        for origin in ("https://127.0.0.1:{port}", "http://127.0.0.1:{other}", "http://127.0.0.1",
                       "ftp://127.0.0.1:{port}", "://127.0.0.1:{port}", "127.0.0.1:{port}",
                       "http://localhost:{port}", "http://evil.example", "null"):
            with self.subTest(origin=origin):
                self.assertEqual(self.statuses(origin), (FORBIDDEN, FORBIDDEN))

    def test_own_origin_is_accepted(self):
        self.assertEqual(self.statuses("http://127.0.0.1:{port}"), (303, 303))


if __name__ == "__main__":
    unittest.main()

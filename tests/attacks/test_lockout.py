"""Tests that guessing passwords locks out neither the account's user nor other users."""

import threading
import time
import unittest

from attacker.board import SLOWNESS, AttackTest
from attacker.browser import SCREEN, Browser, keep_trying

GUESSES_A_SECOND = 4
# Seconds that the attack lasts before others log in.
HEAD_START = 12


class Attack:
    """Guesses passwords of an account in the background, four times a second, without waiting for
    answers."""

    def __init__(self, board, user, address, headers=()):
        self.board = board
        self.user = user
        self.address = address
        self.headers = headers
        self.stopped = threading.Event()
        self.thread = threading.Thread(target=self._run)

    def _run(self):
        guesses = []
        while not self.stopped.wait(1 / GUESSES_A_SECOND):
            guesses.append(threading.Thread(target=self._guess))
            guesses[-1].start()
        for each in guesses:
            each.join()

    def _guess(self):
        browser = Browser(self.board, address=self.address, headers=self.headers)
        browser.log_in(self.user, "guess")

    def __enter__(self):
        self.thread.start()
        time.sleep(HEAD_START)
        return self

    def __exit__(self, *_):
        self.stopped.set()
        self.thread.join()


class LockoutTest(AttackTest):
    def assert_gets_in(self, browser, user, seconds):
        limit = seconds * SLOWNESS
        taken = keep_trying(lambda: browser.log_in(user, "admin"), limit)
        self.assertIsNotNone(taken, f"{user} could not log in for {limit} s")
        self.assertLessEqual(taken, limit)
        print(f"{self.id()}: logged in after {taken:.1f} s, expected within {seconds} s")


class Lockout(LockoutTest):
    users = {name: [105, 106] for name in ("elsewhere", "target", "known", "colleague")}

    def test_user_gets_in_from_another_address(self):
        with Attack(self.board, "elsewhere", "127.0.1.2"):
            self.assert_gets_in(Browser(self.board, address="127.0.1.3"), "elsewhere", 2)

    def test_other_user_gets_in_from_the_same_address(self):
        with Attack(self.board, "target", "127.0.2.2"):
            self.assert_gets_in(Browser(self.board, address="127.0.2.2"), "colleague", 10)

    def test_known_browser_gets_in_from_the_same_address(self):
        browser = Browser(self.board, "known", "admin", address="127.0.3.2")
        device = {name: value for name, value in browser.cookies.items() if "device" in name}
        self.assertEqual(len(device), 1, browser.cookies)
        browser.post("/logout.cgi", {})
        self.assertEqual({**browser.cookies, **device}, browser.cookies, "taken away at logout")
        with Attack(self.board, "known", "127.0.3.2"):
            self.assert_gets_in(browser, "known", 10)

    def test_device_cookie_does_not_log_in(self):
        browser = Browser(self.board, "known", "admin", address="127.0.4.2")
        stranger = Browser(self.board, address="127.0.4.3")
        stranger.cookies = {name: value for name, value in browser.cookies.items()
                            if "device" in name}
        self.assertNotEqual(stranger.cookies, {})
        self.assertFalse(stranger.is_logged_in())
        answer = stranger.get(SCREEN + "?functionID=105")
        self.assertEqual(answer.status, 403)


class BehindProxy(LockoutTest):
    """A board that trusts only the proxy 127.0.0.9."""

    options = ("--proxy", "127.0.0.9")
    users = {"target": [105, 106], "colleague": [105], "other": []}

    def client(self, address, proxy="127.0.0.9"):
        return Browser(self.board, address=proxy, headers={"X-Forwarded-For": address})

    def test_each_address_named_by_the_proxy_counts(self):
        with Attack(self.board, "target", "127.0.0.9", {"X-Forwarded-For": "10.0.0.1"}):
            self.assert_gets_in(self.client("10.0.0.2"), "target", 2)
            self.assert_gets_in(self.client("10.0.0.2"), "colleague", 2)

    def test_log_has_the_address_named_by_the_proxy(self):
        self.client("10.1.2.3").log_in("other", "guess")
        self.assertIn("10.1.2.3", self.board.text_of_logs())

    def test_address_claimed_by_a_client_of_the_proxy_is_ignored(self):
        # The proxy added the last address; the earlier one came with the request.
        self.client("10.9.9.9, 10.1.2.4").log_in("other", "guess")
        self.assertIn("10.1.2.4", self.board.text_of_logs())
        self.assertNotIn("10.9.9.9", self.board.text_of_logs())

    def test_address_claimed_by_another_client_is_ignored(self):
        self.client("10.8.8.8", proxy="127.0.0.8").log_in("other", "guess")
        self.assertIn("127.0.0.8", self.board.text_of_logs())
        self.assertNotIn("10.8.8.8", self.board.text_of_logs())


class WithoutProxy(AttackTest):
    def test_address_claimed_by_a_client_is_ignored(self):
        headers = {"X-Forwarded-For": "10.8.8.8"}
        Browser(self.board, address="127.0.0.8", headers=headers).log_in("viewer", "guess")
        self.assertIn("127.0.0.8", self.board.text_of_logs())
        self.assertNotIn("10.8.8.8", self.board.text_of_logs())


if __name__ == "__main__":
    unittest.main()

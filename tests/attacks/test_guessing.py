"""Passwords cannot be guessed faster than 20 times in the first minute and 10 a minute from then
on, for each account. ATTACKS_LONG=1 guesses for two minutes."""

import math
import threading
import time
import unittest

from attacker.board import LONG, AttackTest
from attacker.browser import LOGGED_IN, REJECTED, TOO_SOON, Browser

ATTACK_SECONDS = 130 if LONG else 15
GUESSES_IN_FIRST_MINUTE = 20
GUESSES_A_MINUTE = 10


def allowed(seconds):
    """How many guesses may be looked at in the time."""
    later = max(0.0, seconds - 60) / 60
    return GUESSES_IN_FIRST_MINUTE + math.ceil(GUESSES_A_MINUTE * later)


class Guesses:
    """Counts the answers of guesses at one account, from several threads."""

    def __init__(self):
        self.started = time.monotonic()
        self.looked_at = 0
        self.refused_unseen = 0
        self.others = []
        self.lock = threading.Lock()

    @property
    def seconds(self):
        return time.monotonic() - self.started

    def count(self, status):
        with self.lock:
            if status == REJECTED:
                self.looked_at += 1
            elif status == TOO_SOON:
                self.refused_unseen += 1
            else:
                self.others.append(status)

    def is_clearly_too_many(self):
        return self.looked_at > 3 * GUESSES_IN_FIRST_MINUTE and not LONG


class Guessing(AttackTest):
    users = {name: [105, 106] for name in ("first", "second", "third", "fourth")} | {"viewer": []}

    def assert_slowed_down(self, guesses):
        seconds = guesses.seconds
        self.assertEqual(guesses.others, [])
        self.assertGreater(guesses.looked_at, 0)
        self.assertLessEqual(guesses.looked_at, allowed(seconds),
                             f"{guesses.looked_at} guesses looked at in {seconds:.0f} s, "
                             f"{guesses.refused_unseen} not looked at")

    def test_success_of_another_account_does_not_help(self):
        guesses = Guesses()
        browser = Browser(self.board, address="127.0.1.1")
        while guesses.seconds < ATTACK_SECONDS and not guesses.is_clearly_too_many():
            for _ in range(4):
                guesses.count(browser.log_in("first", "guess").status)
            # Whether it gets in is of no interest here.
            self.assertIn(browser.log_in("viewer", "admin").status, (LOGGED_IN, TOO_SOON))
        self.assert_slowed_down(guesses)

    def test_many_addresses_do_not_help(self):
        guesses = Guesses()

        def guess(number):
            browser = Browser(self.board, address=f"127.0.2.{number}")
            for _ in range(50):
                guesses.count(browser.log_in("second", "guess").status)

        attackers = [threading.Thread(target=guess, args=(number,)) for number in range(1, 11)]
        for each in attackers:
            each.start()
        for each in attackers:
            each.join()
        self.assertEqual(guesses.looked_at + guesses.refused_unseen, 500)
        self.assert_slowed_down(guesses)

    def test_many_addresses_do_not_help_without_the_web_server(self):
        guesses = Guesses()
        for number in range(1, 41):
            run = self.board.run("login.cgi", "POST", body=b"user=third&password=guess",
                                 REMOTE_ADDR=f"127.0.3.{number}")
            guesses.count(run.answered)
        self.assert_slowed_down(guesses)

    def test_addresses_that_a_client_claims_do_not_help(self):
        guesses = Guesses()
        for number in range(1, 41):
            browser = Browser(self.board, address="127.0.4.1",
                              headers={"X-Forwarded-For": f"10.0.0.{number}"})
            guesses.count(browser.log_in("fourth", "guess").status)
        self.assert_slowed_down(guesses)

    def test_unknown_accounts_are_slowed_down_alike(self):
        guesses = Guesses()
        for number in range(1, 41):
            browser = Browser(self.board, address=f"127.0.5.{number}")
            guesses.count(browser.log_in("nobody", "guess").status)
        self.assert_slowed_down(guesses)


if __name__ == "__main__":
    unittest.main()

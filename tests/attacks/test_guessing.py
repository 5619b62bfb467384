"""Passwords cannot be guessed faster than 20 times in the first minute and 10 a minute from then
on, for each account. ATTACKS_LONG=1 guesses for two minutes."""

import math
import threading
import time
import unittest

from attacker.board import LONG, AttackTest
from attacker.browser import LOGGED_IN, REJECTED, TOO_SOON, Browser

ATTACK_SECONDS = 130 if LONG else 6
GUESSES_OF_EACH = 1000 if LONG else 50
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

    def is_over(self):
        """Whether the attack has taken long enough, or has clearly succeeded."""
        return (self.seconds > ATTACK_SECONDS
                or self.looked_at > 5 * GUESSES_IN_FIRST_MINUTE and not LONG)


class Guessing(AttackTest):
    users = {name: [105, 106] for name in ("first", "second", "third", "fourth")} | {"viewer": []}

    def attack(self, guess, attackers):
        """Many attackers at a time each call `guess` with numbers of their own, which returns the
        status of the answer. A guess may have to wait for its answer."""
        guesses = Guesses()

        def run(first):
            for number in range(first, first + GUESSES_OF_EACH):
                if guesses.is_over():
                    return
                guesses.count(guess(number))

        threads = [threading.Thread(target=run, args=(1 + each * GUESSES_OF_EACH,))
                   for each in range(attackers)]
        for each in threads:
            each.start()
        for each in threads:
            each.join()
        seconds = guesses.seconds
        print(f"{self.id()}: {guesses.looked_at} guesses looked at in {seconds:.0f} s, "
              f"{guesses.refused_unseen} not looked at")
        self.assertEqual(guesses.others, [])
        self.assertGreater(guesses.looked_at, 0)
        self.assertLessEqual(guesses.looked_at, allowed(seconds))

    def test_success_of_another_account_does_not_help(self):
        browser = Browser(self.board, address="127.0.1.1")

        def guess(number):
            if number % 4 == 0:
                # Whether it gets in is of no interest here.
                self.assertIn(browser.log_in("viewer", "admin").status, (LOGGED_IN, TOO_SOON))
            return browser.log_in("first", "guess").status

        self.attack(guess, 1)

    def test_many_addresses_do_not_help(self):
        self.attack(lambda number: Browser(
            self.board, address=f"127.0.2.{number // GUESSES_OF_EACH + 1}"
        ).log_in("second", "guess").status, 10)

    def test_many_addresses_do_not_help_without_the_web_server(self):
        self.attack(lambda number: self.board.run(
            "login.cgi", "POST", body=b"user=third&password=guess",
            REMOTE_ADDR=f"127.0.3.{number % 250 + 1}").answered, 5)

    def test_addresses_that_a_client_claims_do_not_help(self):
        self.attack(lambda number: Browser(
            self.board, address="127.0.4.1", headers={"X-Forwarded-For": f"10.0.1.{number % 250}"}
        ).log_in("fourth", "guess").status, 2)

    def test_unknown_accounts_are_slowed_down_alike(self):
        self.attack(lambda number: Browser(
            self.board, address=f"127.0.5.{number % 250 + 1}").log_in("nobody", "guess").status, 5)


if __name__ == "__main__":
    unittest.main()

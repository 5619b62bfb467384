"""Tests that for each account, no more than 20 passwords can be guessed in the first minute and 10
in each later minute. ATTACKS_LONG=1 guesses for two minutes."""

import math
import threading
import time
import unittest

from attacker.board import LONG, AttackTest
from attacker.browser import LOGGED_IN, REJECTED, TOO_SOON, UNANSWERED, Browser

ATTACK_SECONDS = 130 if LONG else 6
GUESSES_OF_EACH = 1000 if LONG else 50
GUESSES_IN_FIRST_MINUTE = 20
GUESSES_A_MINUTE = 10


def allowed(seconds):
    """Returns how many guesses may be checked in `seconds`."""
    later = max(0.0, seconds - 60) / 60
    return GUESSES_IN_FIRST_MINUTE + math.ceil(GUESSES_A_MINUTE * later)


class Guesses:
    """Counts the answers to guesses at one account; may be used by several threads."""

    def __init__(self):
        self.started = time.monotonic()
        self.checked = 0
        self.refused_unchecked = 0
        self.others = []
        self.lock = threading.Lock()

    @property
    def seconds(self):
        return time.monotonic() - self.started

    def count(self, status):
        with self.lock:
            if status == REJECTED:
                self.checked += 1
            # On a busy machine an answer may come too late; it reveals nothing either.
            elif status in (TOO_SOON, UNANSWERED):
                self.refused_unchecked += 1
            else:
                self.others.append(status)

    def is_over(self):
        """Returns true if the attack has lasted long enough or has clearly succeeded."""
        return (self.seconds > ATTACK_SECONDS
                or self.checked > 5 * GUESSES_IN_FIRST_MINUTE and not LONG)


class Guessing(AttackTest):
    users = {name: [105, 106] for name in ("first", "second", "third", "fourth")} | {"viewer": []}

    def attack(self, guess, attackers):
        """Runs `attackers` threads. Each calls `guess` with its own range of numbers; `guess`
        returns the status of the answer and may block."""
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
        print(f"{self.id()}: {guesses.checked} guesses checked in {seconds:.0f} s, "
              f"{guesses.refused_unchecked} refused unchecked")
        self.assertEqual(guesses.others, [])
        self.assertGreater(guesses.checked, 0)
        self.assertLessEqual(guesses.checked, allowed(seconds))

    def test_login_to_another_account_does_not_help(self):
        browser = Browser(self.board, address="127.0.1.1")

        def guess(number):
            if number % 4 == 0:
                # This login may succeed or not.
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

    def test_claimed_addresses_do_not_help(self):
        self.attack(lambda number: Browser(
            self.board, address="127.0.4.1", headers={"X-Forwarded-For": f"10.0.1.{number % 250}"}
        ).log_in("fourth", "guess").status, 2)

    def test_unknown_accounts_are_slowed_down_too(self):
        self.attack(lambda number: Browser(
            self.board, address=f"127.0.5.{number % 250 + 1}").log_in("nobody", "guess").status, 5)


if __name__ == "__main__":
    unittest.main()

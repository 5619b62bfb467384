"""Tests that the audit log alone shows which configuration each partition has: after random actions
of five users, with back-ends and programs killed in between.

ATTACKS_LONG=1 makes 1,000 actions; ATTACKS_SEED repeats the actions of a run."""

import hashlib
import os
import random
import threading
import unittest

from attacker import audit
from attacker.board import LONG, SLOWNESS, AttackTest, configuration_file, read_configuration_file
from attacker.browser import SCREEN, Browser, download_link

ACTIONS = 1000 if LONG else 150
SEED = int(os.environ.get("ATTACKS_SEED", "20260131"))
INSTALLED = (0, 2, 3, 5, 7)
# Partitions that accept a file of partition 3; 0 and 7 refuse it.
FITTING = (2, 3, 5)
LONGEST_PAUSE = 0.03  # seconds before a kill; about the duration of a restore


class Reconstruction(AttackTest):
    users = {f"user{number}": [105, 106] for number in range(1, 6)}

    def setUp(self):
        self.random = random.Random(SEED)
        self.browsers = {}
        self.links = {}
        self.uploads = 0
        self.killed = {"back-end": 0, "program": 0}

    def act(self):
        user = self.random.choice(list(self.users))
        if user not in self.browsers:
            self.browsers[user] = Browser(self.board, user, "admin")
            return
        browser = self.browsers[user]
        action = self.random.choices(
            [self.upload, self.restore, self.back_up, self.download, self.discard, self.log_out,
             self.kill_program, self.kill_backend], [20, 30, 15, 10, 5, 5, 10, 5])[0]
        action(browser, user)

    def next_file(self):
        self.uploads += 1
        filling = self.random.randbytes(self.random.choice([10, 1000, 100000])).hex()
        payload = f"upload={self.uploads}\n{filling}\n".encode()
        return configuration_file(payload=payload)

    def targets(self):
        choice = FITTING if self.random.random() < 0.9 else INSTALLED
        return self.random.sample(choice, self.random.randint(1, len(choice)))

    def upload(self, browser, _):
        browser.upload(self.next_file())

    def restore(self, browser, _):
        browser.restore(*self.targets())

    def back_up(self, browser, user):
        self.links[user] = download_link(browser.backup(self.random.choice(INSTALLED)).text)

    def download(self, browser, user):
        if self.links.get(user):
            browser.get(self.links[user])

    def discard(self, browser, _):
        browser.discard()

    def log_out(self, browser, user):
        browser.post("/logout.cgi", {})
        del self.browsers[user]

    def kill_program(self, browser, _):
        body = "functionID=106&hidden_status=2" + "".join(
            f"&pid{target}={target}" for target in self.targets())
        browser.upload(self.next_file())
        self.board.run_and_kill(self.random.uniform(0, LONGEST_PAUSE), SCREEN[1:], body.encode(),
                                browser.cookie_header)
        self.killed["program"] += 1

    def kill_backend(self, browser, _):
        def restore():
            try:
                browser.restore(*FITTING)
            except (OSError, AssertionError):
                pass  # the web server ends, too

        browser.upload(self.next_file())
        request = threading.Thread(target=restore)
        request.start()
        request.join(self.random.uniform(0, LONGEST_PAUSE))
        os.kill(self.board.process_of("efi_backend"), 9)
        self.board.process.wait(30 * SLOWNESS)
        request.join()
        self.board.end()
        self.board.start()
        self.killed["back-end"] += 1

    def configurations(self):
        """Backs up every partition; returns {partition: hash of its configuration}."""
        auditor = Browser(self.board, "user1", "admin")
        found = {}
        for partition in INSTALLED:
            link = download_link(auditor.backup(partition).text)
            file = read_configuration_file(auditor.get(link).body)
            self.assertEqual(file.partition, partition)
            found[str(partition)] = hashlib.sha256(file.payload).hexdigest()
        return found

    def test_log_shows_configuration_of_each_partition(self):
        print(f"{ACTIONS} actions, ATTACKS_SEED={SEED}")
        for _ in range(ACTIONS):
            self.act()
        last = Browser(self.board, "user2", "admin")
        last.upload(self.next_file())
        last.restore(*FITTING)

        events = audit.read(self.board)
        restores = audit.find(events, event="restore", result=audit.DONE)
        print(f"killed {self.killed}, {len(restores)} restores in {len(events)} lines")
        self.assertGreater(min(self.killed.values()), 0)
        self.assertGreater(len(restores), ACTIONS // 20)
        told = audit.reconstruct(events)
        held = self.configurations()
        self.assertEqual({partition: told.get(partition) for partition in held},
                         {partition: {value} for partition, value in held.items()})
        # Without its last restore, the log gives another result.
        short = [event for event in events if event.get("request") != restores[-1]["request"]]
        self.assertNotEqual(audit.reconstruct(short), told)


def restore_line(result, before, after, partition="3"):
    return {"event": "restore", "result": result, "before": {partition: before},
            "after": {partition: after}}


def start_line(value, partition="3"):
    return {"event": "start", "after": {partition: value}}


class Auditor(unittest.TestCase):
    """Tests of reconstruct(), with made-up logs."""

    def test_finished_restore_counts(self):
        self.assertEqual(audit.reconstruct([start_line("a"), restore_line("begun", "a", "b"),
                                            restore_line("done", "a", "b")]), {"3": {"b"}})

    def test_failed_restore_changes_nothing(self):
        self.assertEqual(audit.reconstruct([start_line("a"), restore_line("begun", "a", "b"),
                                            restore_line("failed", "a", "b")]), {"3": {"a"}})

    def test_restore_without_outcome_is_open_until_the_next_start(self):
        log = [start_line("a"), restore_line("begun", "a", "b")]
        self.assertEqual(audit.reconstruct(log), {"3": {"a", "b"}})
        for value in ("a", "b"):
            self.assertEqual(audit.reconstruct([*log, start_line(value)]), {"3": {value}})

    def test_contradicting_lines_are_detected(self):
        for log in ([start_line("a"), start_line("b")],
                    [start_line("a"), restore_line("begun", "b", "c")],
                    [start_line("a"), restore_line("begun", "a", "b"), start_line("c")],
                    [start_line("a"), restore_line("done", "b", "c")]):
            with self.subTest(log=log), self.assertRaises(audit.Contradiction):
                audit.reconstruct(log)


if __name__ == "__main__":
    unittest.main()

"""Tests that a client which disconnects at any moment cannot hide an action from the audit log. The
web server then sends SIGTERM to the program."""

import json
import re
import tempfile
import unittest
from collections import Counter
from pathlib import Path

from attacker.board import TEMPORARY, AttackTest, configuration_file
from attacker.browser import PARTS, SCREEN, Browser
from faults.program import run_program
from support.board import upload_body

# The system calls that change files or end a change.
CALLS = ("openat", "write", "linkat", "rename", "unlink", "ftruncate", "fdatasync", "flock", "close")


class Disconnects(AttackTest):
    def events(self, name):
        """Returns the events of the audit log with this name."""
        lines = self.board.path("/var/log/audit.log").read_text(encoding="ascii").splitlines()
        return [event for event in map(json.loads, lines) if event["event"] == name]

    def trace(self, request, expression, **variables):
        """Runs a program under strace. Returns the log of strace."""
        host = {"HTTP_HOST": f"127.0.0.1:{self.board.port}"}
        with tempfile.NamedTemporaryFile(prefix="strace-") as log:
            run_program(self.board, request, more={**host, **variables},
                        prefix=("strace", "-qq", "-o", log.name, "-e", expression))
            return Path(log.name).read_text(encoding="utf-8", errors="replace")

    def disconnect_at_every_call(self, request, check, **variables):
        """Runs a program once for each of its calls, and sends it SIGTERM in that call."""
        trace = self.trace(request, "trace=" + ",".join(CALLS), **variables)
        calls = Counter(re.findall(r"^(\w+)\(", trace, re.M))
        self.assertGreater(calls.total(), 10)
        check()
        for call, count in calls.items():
            for number in range(1, count + 1):
                self.trace(request, f"inject={call}:signal=SIGTERM:when={number}", **variables)
                with self.subTest(call=call, number=number):
                    check()

    def test_no_upload_without_a_line(self):
        admin = Browser(self.board, "admin")
        staged = self.board.path(f"{TEMPORARY}/restored_eficonf{admin.identifier}")
        recorded = 0

        def check():
            nonlocal recorded
            before = recorded
            recorded = len(self.events("upload"))
            if staged.exists():
                self.assertEqual(recorded, before + 1)
                staged.unlink()

        body = upload_body(configuration_file(), "a.dat", [("hidden_status", "1")])
        self.disconnect_at_every_call(
            {"program": SCREEN[1:], "method": "POST", "body": body, "type": PARTS}, check,
            HTTP_COOKIE=admin.cookie_header)

    def test_counted_refusals_stay_counted(self):
        request = {"program": "index.cgi", "method": "POST", "body": b""}
        foreign = {"HTTP_ORIGIN": "http://evil.example"}
        for _ in range(12):
            self.trace(request, "trace=none", **foreign)
        known = 0

        def check():
            nonlocal known
            counts = json.loads(self.board.path("/var/log/audit.counts").read_text(encoding="utf-8"))
            # The counts are reported in a line when the period is over.
            reported = sum(event["counts"]["refusal"] for event in self.events("anonymous"))
            total = counts[""]["counts"].get("refusal", 0) + reported
            self.assertGreaterEqual(total, max(known, 2))
            known = total

        self.disconnect_at_every_call(request, check, **foreign)


if __name__ == "__main__":
    unittest.main()

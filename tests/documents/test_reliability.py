"""Checks docs/reliability.md against the fault tests and the sources. Its figures were measured once;
checks that they agree with each other and with the commands."""

import re
import subprocess
import unittest

from support.board import SCREEN, BoardDocumentTest, Client
from support.document import PROJECT, DocumentTest, codes_in
from support.source import constant, read

RUN = PROJECT / "tests/faults/run"


class Reliability(DocumentTest):
    name = "docs/reliability.md"

    def rows(self):
        return self.table("row", "what goes wrong", "runs", "violations")

    def number(self, text):
        return int(re.match(r"[\d,]+", text)[0].replace(",", ""))

    def test_times_match_the_sources(self):
        exchange, lock = self.stated(
            r"An exchange with the back-end is limited to (\d+) s and a wait for the lock to (\d+) s")
        self.assertEqual(1000 * exchange, constant("platform/host/channel/Channel.h",
                                                   "CHANNEL_DEADLINE_MILLISECONDS"))
        self.assertEqual(1000 * lock, constant("platform/host/storage/LockedFile.cpp",
                                               "WAIT_MILLISECONDS"))

    def test_logs_have_the_stated_size_limit(self):
        trace, web, count, size = self.stated(
            r"`(\w+\.log)` and `(\w+\.log)` are each limited to (\w+) files of (\d+) MiB")
        self.assertEqual(size * 1024 * 1024, constant("platform/host/storage/boundedLog.cpp",
                                                      "LARGEST_FILE"))
        self.assertEqual(count, "two")
        self.assertIn("/var/log/" + trace, read("platform/host/base/SystemPath.h"))
        self.assertRegex(read("board/web/lighttpd.conf"), r"keep_log .*/var/log/%s" % web)

    def test_lists_every_row_of_the_fault_tests(self):
        text = subprocess.run([RUN, "--help"], check=True, capture_output=True, text=True).stdout
        helped = re.findall(r"^  (\w+) +\S", text[text.index("Rows:"):], re.MULTILINE)
        self.assertEqual(sorted(codes_in(row[0])[0] for row in self.rows()), sorted(helped))

    def test_command_of_a_row_is_valid(self):
        form = self.stated(r"each row with the command `tests/faults/run (\w+) ROW`")
        self.assertIn(form, subprocess.run([RUN, "--help"], check=True, capture_output=True,
                                           text=True).stdout)
        wrong = subprocess.run([RUN, form, "nothing"], capture_output=True, text=True, check=False)
        self.assertEqual(wrong.returncode, 2)

    def test_violations_are_stored_where_stated(self):
        folder = self.stated(r"Each violation is written to a file in `([^`]+)`")
        text = subprocess.run([RUN, "--help"], check=True, capture_output=True, text=True).stdout
        self.assertIn(folder, text)
        self.stated(r"which `tests/faults/run (repeat FILE)` repeats")
        self.assertIn("tests/faults/run repeat FILE", text)
        self.assertIn(self.stated(r"takes every n-th case; `(--\w+)` chooses the first"), text)

    def test_requests_match_the_fault_tests(self):
        listed = self.stated(r"The requests: (.*?)\. ##")
        names = []
        for part in re.sub(r" \([^)]*\)", "", listed).split(", "):
            # Splits "unusable, too large and broken upload".
            names += part.split(" and ")
        names = [each + " upload" if each in ("unusable", "too large") else each for each in names]
        types = re.findall(r'^    name = "(.+)"', read("tests/faults/faults/request_types.py"),
                           re.MULTILINE)
        self.assertEqual(sorted(names), sorted(types))

    def test_no_row_had_a_violation(self):
        self.assertEqual([row[3] for row in self.rows()], ["0"] * len(self.rows()))

    def test_figures_of_a_row_agree(self):
        for row in self.rows():
            met = re.search(r"([\d,]+) cases, of which ([\d,]+) reached the call", row[1])
            if met:
                self.assertEqual(self.number(met[2]), self.number(row[2]))
                self.assertGreaterEqual(self.number(met[1]), self.number(met[2]))
        sessions, rounds = self.stated(r"(\d+) sessions with (\d+) rounds")
        whole = self.number(next(row[2] for row in self.rows() if "concurrency" in row[0]))
        self.assertGreaterEqual(whole, 4 * sessions * rounds)
        memory = self.table("memory in `soak`", "requests", "KiB")
        last = [row[1] for row in memory if row[0] == "back-end"][-1]
        self.assertEqual(self.number(last),
                         self.number(next(row[2] for row in self.rows() if "soak" in row[0])))

    def test_judge_asks_in_the_stated_rows(self):
        rows, module = self.stated(r"In the rows (.*?) one module, `tests/faults/faults/(\w+)\.py`"
                                   r", makes the same checks after")

        def asks(row):
            source = read("tests/faults/rows/%s.py" % row)
            shared = re.search(r"from rows import (.*)", source)
            return "faults." + module in source or shared is not None and any(
                asks(each) for each in shared[1].split(", "))

        self.assertEqual(codes_in(rows), [row for row in (codes_in(each[0])[0]
                                                          for each in self.rows()) if asks(row)])


class NotPromised(BoardDocumentTest):
    name = "docs/reliability.md"

    def setUp(self):
        self.client = Client(self.board, "admin")
        self.backup = self.board.path("/var/tmp/efi_backup" + self.client.identifier)

    def back_up(self, partition):
        return self.client.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP",
                                         "radio_button": partition})

    def test_empty_file_of_a_failed_backup_is_not_downloaded(self):
        self.stated(r"A backup that fails may (leave an empty file)")
        link = re.search(r'href="(/common/download[^"]+)"', self.back_up("3").text)[1]
        link = link.replace("&amp;", "&")
        self.assertEqual(self.client.get(link).body, self.backup.read_bytes())
        self.back_up("99")
        self.assertEqual(self.backup.read_bytes(), b"")
        self.stated(r"(the download refuses it)")
        self.assertEqual(self.client.get(link).status, 404)

    def test_session_without_its_file_has_ended(self):
        self.stated(r"(A session without its file has ended, and its staged file and backup are removed)")
        self.back_up("3")
        self.assertTrue(self.backup.exists())
        self.board.path("/var/lib/session/" + self.client.identifier).unlink()
        self.assertEqual(self.client.get(SCREEN + "?functionID=105").status, 403)
        Client(self.board, "admin")
        self.assertFalse(self.backup.exists())


if __name__ == "__main__":
    unittest.main()

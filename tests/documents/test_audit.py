"""Checks docs/audit.md against a served board and the sources that write the log."""

import hashlib
import json
import os
import re
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from support.board import SCREEN, Board, BoardDocumentTest, Client
from support.document import PROJECT, codes_in
from support.source import constant, read, text_constant

EVENT = "platform/host/audit/AuditEvent.cpp"
LIMITS = "platform/host/audit/AuditLimits.h"
LOG = "platform/host/audit/AuditLog.cpp"
PATHS = "platform/host/base/SystemPath.h"
SET_BACKUP = 0x020100A3
UNKNOWN_SESSION = b"0123456789abcdef"
# The fields of every line.
FIELDS = {"time", "event", "board"}


def back_up(client, partition):
    return client.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP",
                                "radio_button": str(partition)})


def restore(client, *partitions):
    return client.post(SCREEN, {"functionID": "106", "hidden_status": "2",
                                **{"pid%d" % number: number for number in partitions}})


def download(client, page):
    link = re.search(r'href="(/common/download\.cgi[^"]*)"', page.text)[1]
    return client.get(link.replace("&amp;", "&"))


class AuditDocument(BoardDocumentTest):
    name = "docs/audit.md"

    def path(self):
        return self.board.path(self.stated(r"`(/var/log/\S+)` under the board's root"))

    def lines(self, board=None):
        file = (board or self.board).path("/var/log/audit.log")
        return [json.loads(line) for line in file.read_text(encoding="ascii").splitlines()]

    def last(self, event, **fields):
        for line in reversed(self.lines()):
            if line["event"] == event and all(line.get(key) == fields[key] for key in fields):
                return line
        self.fail("no line %s %s" % (event, fields))
        return {}

    def shell(self, script, folder=None):
        return subprocess.run(["bash", "-euc", script], cwd=folder or self.path().parent,
                              check=True, capture_output=True, text=True).stdout


class Answers(AuditDocument):
    """Checks a board on which each kind of event has occurred once."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        admin = cls.admin = Client(cls.board, "admin")
        cls.file = download(admin, back_up(admin, 3)).body
        admin.upload(cls.file)
        restore(admin, 2, 3)
        restore(admin, 7)
        admin.post(SCREEN, {"functionID": "106", "hidden_status": "3"})
        admin.upload(b"no configuration")
        cls.board.control("status")
        viewer = cls.viewer = Client(cls.board, "viewer")
        viewer.upload(cls.file)
        stranger = Client(cls.board)
        stranger.post("/login.cgi", {"user": "typed-name", "password": "typed-password"})
        stranger.request("DELETE", SCREEN)
        stranger.request("POST", SCREEN, "", {"Origin": "http://evil.example"})
        stranger.request("GET", SCREEN, None, {"Host": "evil.example"})
        cls.board.ask(2, SET_BACKUP, UNKNOWN_SESSION, bytes(4))
        expired = Client(cls.board, "viewer")
        long_ago = time.time() - 7200
        os.utime(cls.board.path("/var/lib/session/" + expired.identifier), (long_ago, long_ago))
        expired.get(SCREEN)
        for _ in range(9):
            Client(cls.board, "viewer")
        viewer.post("/logout.cgi", {})
        cls.ended = Client(cls.board, "admin")
        cls.ended.post("/logout.cgi", {})

    def recipe(self, words, folder=None, **placeholders):
        script = self.document.blocks(words)[0]
        for name, value in placeholders.items():
            self.assertIn(name, script)
            script = script.replace(name, value)
        return self.shell(script, folder)

    def test_recipe_lists_restores(self):
        told = self.recipe("Who restored which file onto which")
        restores = [line for line in self.lines()
                    if line["event"] == "restore" and line["result"] == "done"]
        self.assertTrue(restores)
        self.assertEqual(told.splitlines(), [
            "%s admin 127.0.0.1 %s 2 3" % (line["time"], hashlib.sha256(self.file).hexdigest())
            for line in restores])

    def test_recipe_lists_restores_of_one_partition_and_month(self):
        more = " ".join(self.stated(r"add `(and 3 in [^`]+)` to the condition").split())
        script = self.document.blocks("Who restored which file onto which")[0]
        condition = 'event["result"] == "done"'
        self.assertIn(condition, script)
        month = time.strftime("%Y-%m", time.gmtime())
        for partition, found in (("3", True), ("7", False)):
            wanted = more.replace("2026-10", month).replace("3 in", partition + " in")
            self.assertEqual(self.shell(script.replace(condition, condition + " " + wanted)) != "",
                             found)

    def test_recipes_skip_half_a_line(self):
        with tempfile.TemporaryDirectory() as folder:
            lines = self.path().read_text(encoding="ascii").splitlines(keepends=True)
            lines.insert(len(lines) // 2, lines[0][:20] + "\n")
            Path(folder, "audit.log").write_text("".join(lines), encoding="ascii")
            for words in ("Who restored which file onto which",
                          "The current configuration of each partition"):
                self.assertEqual(self.recipe(words, folder), self.recipe(words))

    def test_recipe_follows_a_file(self):
        file = self.board.folder / "file.dat"
        file.write_bytes(self.file)
        told = [json.loads(line)["event"] for line in
                self.recipe("What happened to one file", FILE=str(file)).splitlines()]
        for event in ("backup", "download", "upload", "restore"):
            self.assertIn(event, told)

    def test_recipe_lists_the_contents_of_partitions(self):
        told = dict(line.split() for line in self.recipe("The current configuration of each partition").splitlines())
        start = self.last("start")["after"]
        self.assertEqual(set(told), set(start))
        self.assertEqual(told["2"], start["3"])
        self.assertEqual(told["7"], start["7"])

    def test_recipe_follows_a_session(self):
        told = self.recipe("What one session did", IDENTIFIER=self.admin.identifier)
        self.assertIn('"event":"discard"', told)
        for line in told.splitlines():
            self.assertEqual(json.loads(line)["user"], "admin")

    def test_recipe_counts_guesses_by_address(self):
        self.assertRegex(self.recipe("Which addresses guess passwords"),
                         r'^ +1 "address":"127\.0\.0\.1"\n$')

    def events(self):
        """Returns the table of events as {event: (further fields, results)}."""
        return {codes_in(event)[0]: (also, result) for event, _, also, result in
                self.table("event", "written by", "has also", "result")}

    def test_each_event_has_the_stated_fields_and_results(self):
        listed = self.events()
        seen = {}
        for line in self.lines():
            self.assertIn(line["event"], listed)
            seen.setdefault(line["event"], []).append(line)
        for event, (also, result) in listed.items():
            with self.subTest(event=event):
                names = set(re.findall(r"\w+", also)) & {"user", "address", "session", "request", "partitions", "file", "before",
                          "after", "counts", "reason", "order", "code"}
                if event in ("anonymous", "end", "repeated"):
                    self.assertNotIn(event, seen)
                    continue
                lines = seen.get(event, [])
                self.assertNotEqual(lines, [])
                found = set().union(*lines) - FIELDS
                results = {line.get("result", "") for line in lines} - {""}
                self.assertEqual(found - {"result"}, names)
                # A restore fails only if a disk fails.
                self.assertEqual(results | ({"failed"} if event == "restore" else set()),
                                 set(codes_in(result)))

    def test_events_match_the_sources(self):
        sources = "".join(
            path.read_text(encoding="utf-8") for folder in ("platform/host", "board")
            for path in (PROJECT / folder).rglob("*.cpp"))
        written = set(re.findall(r'(?:makeAuditEvent|recordWithResult|recordEnd|recordEvent)'
                                 r'\("(\w+)"|event\.event = "(\w+)"', sources))
        names = {one or other for one, other in written}
        names |= set(re.search(r'isBackup \? "(\w+)" : "(\w+)"', sources).groups())
        names |= set(re.findall(r'makeEvent\("(\w+)"', sources))
        names |= set(re.search(r'user\.empty\(\) \? "(\w+)" : "(\w+)"', sources).groups())
        self.assertEqual(names, set(self.events()))

    def test_fields_match_the_sources(self):
        written = set(re.findall(r'(?:put\w+\(line, |line\.put\w*\()"(\w+)"', read(EVENT)))
        listed = {name for field, _ in self.table("field", "says") for name in codes_in(field)}
        self.assertEqual(written - FIELDS - {"reason", "order", "counts"}, listed)
        for name in ("reason", "order", "counts"):
            self.assertIn(name, " ".join(also for also, _ in self.events().values()))
        file = next(says for field, says in self.table("field", "says") if field == "`file`")
        self.assertEqual(set(codes_in(file)), set(self.last("upload", result="done")["file"]))

    def test_reasons_match_the_log(self):
        for event in ("refusal", "session_ended"):
            reasons = set(codes_in(self.events()[event][0]))
            seen = {line["reason"] for line in self.lines() if line["event"] == event}
            # "user" is for a user who was removed from the description.
            self.assertEqual(reasons - {"user"}, seen)
        self.assertIn('endSessionBecause(found.session, "user")',
                      read("platform/host/web/requestSession.cpp"))

    def test_logs_an_upload_without_permission_as_a_refusal(self):
        self.stated(r"(An upload by a user without the right to restore is recorded as a `refusal`)")
        lines = [line for line in self.lines() if line.get("session") == self.viewer.identifier]
        self.assertEqual([line["event"] for line in lines if line["event"] != "session_ended"][:2],
                         ["login", "refusal"])

    def test_logs_a_restore_as_two_consecutive_lines(self):
        self.stated(r"(no other line is written between the two)")
        lines = self.lines()
        begun = [number for number, line in enumerate(lines) if line.get("result") == "begun"]
        self.assertNotEqual(begun, [])
        for number in begun:
            self.assertEqual(lines[number + 1]["result"], "done")
            self.assertEqual(lines[number + 1]["request"], lines[number]["request"])

    def test_logs_neither_typed_text_nor_tokens(self):
        self.stated(r"(Passwords and anything else typed into a login, session tokens)")
        text = self.path().read_text(encoding="ascii")
        for secret in ("typed-name", "typed-password", self.admin.value.split("-")[1]):
            self.assertNotIn(secret, text)

    def test_file_has_the_stated_mode(self):
        mode = self.stated(r"one JSON object per line, mode (0\d+)\.")
        self.assertEqual(self.path().stat().st_mode & 0o7777, int(str(mode), 8))


class Sources(AuditDocument):
    def test_sizes_match_the_sources(self):
        self.assertEqual(text_constant(PATHS, "AUDIT_LOG"), "/var/log/audit.log")
        mebibytes, files = self.stated(r"At (\d+) MiB the file is renamed .*; (\d+) rotated files")
        self.assertEqual(constant(LOG, "LARGEST_FILE"), mebibytes * 1024 * 1024)
        self.assertEqual(constant("platform/host/audit/AuditLog.h", "AUDIT_FORMER_FILES"), files)

    def test_limits_match_the_sources(self):
        self.stated(r"Each user gets at most (ten lines) of .* in a (minute); all clients that are "
                    r"not logged in get (ten) together")
        self.assertEqual(constant(LIMITS, "LINES"), 10)
        self.assertEqual(constant(LIMITS, "SHORTEST_PERIOD"), 60)
        self.stated(r"the period becomes (two minutes, then four, and so on up to a day)")
        self.assertEqual(constant(LIMITS, "LONGEST_PERIOD"), 24 * 60 * 60)

    def test_counts_further_refusals(self):
        viewer = Client(self.board, "viewer")
        for _ in range(12):
            viewer.get(SCREEN + "?functionID=105")
        lines = self.lines()
        self.assertEqual(sum(line["event"] == "refusal" for line in lines), 10)
        counts = self.board.path("/var/log/audit.counts")
        saved = json.loads(counts.read_text())
        saved["viewer"]["start"] -= 60
        counts.write_text(json.dumps(saved))
        Client(self.board, "admin")
        event = self.stated(r"preceded by one line with the counts: `(\w+)` for a user, `anon")
        self.assertEqual(self.last(event)["counts"], {"refusal": 2})
        self.assertEqual(self.lines()[-1]["event"], "login")

    def test_system_log_gets_the_stated_lines(self):
        facility, severity, name = self.stated(
            r"\(facility (\w+), severity (\w+), name `(\w+)`\)")
        self.assertEqual((facility, severity), ("authpriv", "notice"))
        self.assertIn('"<%d>%s: "' % (10 * 8 + 5, name), read("platform/host/audit/systemLog.cpp"))

    def test_next_start_logs_the_result_of_an_unfinished_restore(self):
        self.stated(r"(The next `start` shows which: its `after` has the sums)")
        before = self.last("start")["after"]
        self.board.control("die")
        self.board.wait_for_backend()
        self.assertEqual(self.last("start")["after"], before)


class WithoutTheLog(AuditDocument):
    """Checks the last table of the document, with a pipe in place of the log."""

    def setUp(self):
        self.admin = Client(self.board, "admin")
        self.file = download(self.admin, back_up(self.admin, 3)).body
        self.page = back_up(self.admin, 3)
        self.admin.upload(self.file)
        log = self.path()
        log.rename(log.with_suffix(".kept"))
        os.mkfifo(log, 0o600)
        self.addCleanup(log.with_suffix(".kept").rename, log)
        self.staged = self.board.path("/var/tmp/restored_eficonf" + self.admin.identifier)
        self.backup = self.board.path("/var/tmp/efi_backup" + self.admin.identifier)

    def rows(self):
        return {event: what for row, what in self.table("event", "what happens")
                for event in codes_in(row) or [row]}

    def assert_error_page(self, event, answer):
        code = re.search(r"error page with (\d+);", self.rows()[event])[1]
        self.assertEqual(answer.status, 500)
        self.assertIn("-%s]" % code, answer.text)

    def test_refuses_changes(self):
        code = re.search(r"refused with (\d+); nothing is changed", self.rows()["restore"])[1]
        self.assertIn("-%s]" % code, restore(self.admin, 2).text)
        self.assertIn(code, back_up(self.admin, 3).text)
        self.assertFalse(self.backup.exists())
        result = subprocess.run([self.board.path("/usr/local/bin/boardctl"), "--root",
                                 self.board.root, "status"], capture_output=True, text=True,
                                check=False)
        self.assertIn(code, result.stdout + result.stderr)

    def test_removes_an_upload(self):
        self.assert_error_page("upload", self.admin.upload(self.file))
        self.assertFalse(self.staged.exists())

    def test_refuses_a_download(self):
        self.assert_error_page("download", download(self.admin, self.page))

    def test_starts_no_session(self):
        before = set(self.board.path("/var/lib/session").iterdir())
        answer = Client(self.board).post("/login.cgi", {"user": "admin", "password": "admin"})
        self.assert_error_page("login", answer)
        self.assertEqual(set(self.board.path("/var/lib/session").iterdir()), before)

    def test_carries_out_discard_and_logout(self):
        self.assert_error_page("discard", self.admin.post(
            SCREEN, {"functionID": "106", "hidden_status": "3"}))
        self.assertFalse(self.staged.exists())
        self.assert_error_page("logout", self.admin.post("/logout.cgi", {}))
        self.assertEqual(self.admin.get(SCREEN + "?functionID=105").status, 403)

    def test_traces_the_rest(self):
        self.assertIn("`trace.log` records the failure", self.rows()["all others"])
        self.assertEqual(self.admin.request("DELETE", SCREEN).status, 405)
        trace = self.board.path("/var/log/trace.log").read_text()
        self.assertIn("A refusal cannot be written to the audit log", trace)

    def test_back_end_keeps_serving(self):
        self.assertIn("reports it on standard error and keeps serving", self.rows()["start"])
        restarted = Board()
        with restarted:
            restarted.end()
            log = restarted.path("/var/log/audit.log")
            log.unlink()
            os.mkfifo(log, 0o600)
            restarted.start()
            self.assertEqual(Client(restarted).get("/login.cgi").status, 200)
            restarted.end()
            restarted.log.seek(0)
            self.assertIn("the audit log cannot be written", restarted.log.read())


if __name__ == "__main__":
    unittest.main()

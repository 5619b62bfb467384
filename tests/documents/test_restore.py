"""Checks docs/restore.md against a served board."""

import re
import time
import unittest

from support.board import SCREEN, BoardDocumentTest, Client, upload_body
from support.document import codes_in
from support.source import constant, enumerators, read, text_constant

CONFIGURATION_LIMIT = "platform/host/web/FormLimits.h"
SET_RESTORE = "0x020100A4"

# Predicates that recognise each kind of page.
PAGES = {
    "upload form": lambda text: 'type="file"' in text and 'id="table' not in text
    and 'name="pid' not in text,
    "target selection": lambda text: 'name="pid' in text,
    "page without a form": lambda text: "<input" not in text and "<main" in text,
}


class Restore(BoardDocumentTest):
    name = "docs/restore.md"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        request = re.search(r"one request to `([^`]+)` with `functionID` (\d+)", cls.document.words)
        cls.screen, cls.function = request.groups()

    def setUp(self):
        self.client = Client(self.board, "admin")
        self.client.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP",
                                  "radio_button": "3"})
        self.backup = self.board.path("/var/tmp/efi_backup" + self.client.identifier).read_bytes()

    def staged(self, client=None):
        path = self.stated(r"one per session, `(\S+)` followed by the session identifier")
        file = self.board.path(path + (client or self.client).identifier)
        return file.read_bytes() if file.exists() else None

    def stage(self, content, client):
        path = self.board.path("/var/tmp/restored_eficonf" + client.identifier)
        path.write_bytes(content)
        path.chmod(0o600)

    def step(self, fields, client=None):
        return (client or self.client).post(self.screen, {"functionID": self.function, **fields})

    def send(self, step, request, client=None):
        """Sends the request of a row in the table of steps."""
        client = client or self.client
        if request == "GET":
            return client.get(self.screen + "?functionID=" + self.function)
        codes = codes_in(request)
        status = "4" if step == "any other value" else request.partition("`hidden_status` ")[2][:1]
        if "(multipart)" in request:
            self.assertEqual(codes[1], "filename")
            return client.upload(self.backup, fields=(("hidden_status", status),))
        if step == "no `hidden_status`":
            return self.step({}, client)
        return self.step({"hidden_status": status, "pid2": "2"} if "selected" in request
                         else {"hidden_status": status}, client)

    def steps(self):
        """Yields the rows of the table of steps, with "the same" replaced by the request."""
        upload = ""
        for step, request, page, file in self.table("step", "request", "page that follows",
                                                    "staged file"):
            upload = request if step == "upload" else upload
            yield step, upload if request == "the same" else request, page, file

    def follow(self, step, request):
        """Carries out a step with a staged file. Returns the response and the bytes staged before."""
        self.client.upload(self.backup)
        before = self.staged()
        self.assertEqual(before, self.backup)
        if step == "upload":
            self.backup = self.backup_of(2)
        if step == "upload refused or failed":
            return self.client.upload(b""), before
        if step == "file unreadable":
            return self.client.upload(b"no configuration"), before
        return self.send(step, request), before

    def backup_of(self, partition):
        self.client.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP",
                                  "radio_button": str(partition)})
        return self.board.path("/var/tmp/efi_backup" + self.client.identifier).read_bytes()

    def test_each_step_gives_its_page_and_leaves_its_file(self):
        for step, request, page, file in self.steps():
            with self.subTest(step=step):
                answer, before = self.follow(step, request)
                self.assertEqual(answer.status, 200)
                kinds = [kind for kind in PAGES if page.startswith(kind)]
                self.assertEqual(len(kinds), 1, page)
                self.assertTrue(PAGES[kinds[0]](answer.text), answer.text)
                notice = 'role="alert"' in answer.text
                self.assertEqual(notice, "reason" in page or "message" in page
                                 or "outcome" in page)
                if "message" in page:
                    self.assertIn("[%s-" % page.split()[-1], answer.text)
                expected = {"unchanged": before, "replaced by the upload": self.backup,
                            "removed": None}[file]
                self.assertEqual(self.staged(), expected)

    def test_user_without_permission_gets_the_stated_status_and_message(self):
        status, message = self.stated(
            r"every answer has the status (\d+) and .* shows message (\d+) in place of a form")
        viewer = Client(self.board, "viewer")
        for step, request, _, _ in self.steps():
            with self.subTest(step=step):
                self.stage(b"staged", viewer)
                answer = self.send(step, request, viewer)
                self.assertEqual(answer.status, status)
                self.assertFalse(PAGES["upload form"](answer.text), answer.text)
                self.assertFalse(PAGES["target selection"](answer.text), answer.text)
                self.assertEqual("[%d-" % message in answer.text, step != "no `hidden_status`")
                self.stated(r"(after a POST the session has no staged file)")
                self.assertEqual(self.staged(viewer), None if request != "GET" else b"staged")

    def test_uses_the_posted_value_and_not_the_name(self):
        self.stated(r"(`pidN`) with the value N; the value counts")
        self.client.upload(self.backup)
        self.assertIn("[73-1549]", self.step({"hidden_status": "2", "pid2": "7"}).text)
        self.assertIn("was restored", self.step({"hidden_status": "2", "pid7": "2"}).text)

    def test_select_all_includes_every_installed_partition(self):
        box = self.stated(r"select-all box posts `(\w+)`")
        self.client.upload(self.backup)
        self.assertIn('name="%s"' % box, self.client.upload(self.backup).text)
        self.board.control("reset")
        # Partition 0 has another version, so the refusal shows that it is among the targets.
        self.assertIn("[353-1551]", self.step({"hidden_status": "2", box: ""}).text)

    def test_back_end_refuses_an_empty_list(self):
        self.stated(r"(An empty list) is sent too; the back-end refuses it")
        self.client.upload(self.backup)
        self.assertIn("[71-1601]", self.step({"hidden_status": "2"}).text)

    def test_each_refusal_has_its_message(self):
        rows = self.table("refused because", "code", "message")
        for reason, code, message in rows:
            with self.subTest(reason=reason):
                number = code if code.isdigit() else "1603"
                self.board.control("refuse", SET_RESTORE, number)
                answer = self.step({"hidden_status": "2", "pid2": "2"})
                self.assertIn("[%s-%s]" % (message, number), answer.text)
        errors = enumerators("platform/host/channel/BackendError.h", "BackendError").values()
        for code in set(errors) - {int(code) for _, code, _ in rows if code.isdigit()}:
            self.board.control("refuse", SET_RESTORE, code)
            self.assertIn("[%s-%d]" % (rows[-1][2], code),
                          self.step({"hidden_status": "2", "pid2": "2"}).text)

    def test_uses_the_stated_lock(self):
        lock = self.stated(r"holds the lock `([^`]+)`")
        self.assertEqual(lock, text_constant("platform/host/base/SystemPath.h",
                                             "STAGING_LOCK_FILE"))
        self.step({"hidden_status": "3"})
        self.assertTrue(self.board.path(lock).exists())

    def test_files_have_the_stated_length_limit(self):
        limit = self.stated(r"A file may have (\d+) bytes")
        self.assertEqual(limit, constant("data/uploadLimit.h", "LARGEST_UPLOAD"))
        # The longest file is read, and found to be no configuration.
        self.assertIn("[64-1026]", self.client.upload(bytes(limit)).text)
        self.assertIn("[63-1028]", self.client.upload(bytes(limit + 1)).text)

    def test_web_server_refuses_a_body_above_its_limit(self):
        mebibytes, status = self.stated(r"above (\d+) MiB is refused by the web server itself \((\d+);")
        self.assertEqual(self.client.upload(bytes(mebibytes * 1024 * 1024 - 4096)).status, 200)
        # The header with the length is enough; the body need not be sent.
        head = ("POST %s HTTP/1.0\r\nHost: 127.0.0.1:%d\r\nContent-Length: %d\r\n\r\n"
                % (SCREEN, self.board.port, mebibytes * 1024 * 1024 + 1))
        self.assertEqual(int(self.board.raw(head.encode()).split()[1]), status)

    def test_refuses_a_form_above_a_limit(self):
        status = self.stated(r"a form beyond one of them is refused \((\d+)\)")
        value = "x" * (constant(CONFIGURATION_LIMIT, "VALUE_LENGTH") + 1)
        self.assertEqual(self.step({"message": value}).status, status)
        name = "n" * (constant(CONFIGURATION_LIMIT, "NAME_LENGTH") + 1)
        self.assertEqual(self.step({name: ""}).status, status)

    def test_body_has_the_stated_time_limit(self):
        seconds, status = self.stated(r"A body is refused if it has not arrived within (\d+) s \((\d+)\)")
        self.assertEqual(1000 * seconds,
                         constant("platform/host/web/RequestBody.h", "DEADLINE_MILLISECONDS"))
        self.assertRegex(read("platform/host/web/errorPage.cpp"),
                         r"REQUEST_TOO_SLOW\) \{\s+page.status = %d;" % status)

    def test_refuses_the_whole_of_a_malformed_body(self):
        status, message = self.stated(r"refused as a whole \((\d+); with message (\d+) for a form with")
        self.client.upload(self.backup)
        body = upload_body(b"other")
        for cut in (4, 20, len(body) // 2):
            answer = self.client.post_parts(body[:-cut])
            self.assertEqual(answer.status, status)
            self.assertIn("[%d-" % message, answer.text)
            self.assertEqual(self.staged(), self.backup)

    def test_truncated_upload_leaves_nothing(self):
        self.stated(r"(an interrupted upload leaves nothing)")
        before = set(self.board.path("/var/tmp").iterdir())
        body = upload_body(bytes(50000))
        head = ("POST %s HTTP/1.0\r\nHost: 127.0.0.1:%d\r\nCookie: %s\r\nContent-Length: %d\r\n"
                "Content-Type: multipart/form-data; boundary=----documents\r\n\r\n"
                % (SCREEN, self.board.port, self.client.cookie, len(body)))
        self.board.raw(head.encode() + body[:30000])
        # The program may end after the connection does.
        self.wait_until(lambda: not [each for each in self.board.path("/var/tmp").iterdir()
                                     if each not in before])

    def wait_until(self, condition):
        end = time.monotonic() + 60
        while not condition():
            self.assertLess(time.monotonic(), end)
            time.sleep(0.05)


if __name__ == "__main__":
    unittest.main()

"""Tests of efictl against hostile boards."""

import hashlib
import os
import ssl
import subprocess
import time
import unittest

from client import (BUILD, DONE, EFICTL, REFUSED, UNKNOWN, UNREACHABLE, Account, FolderTest,
                    configuration_file, environment, make_certificate)
from client.hostile import (SCREEN, HostileBoard, backup, endless, file, hang_up, html, menu,
                            selection, silence)

# Added to the timeout, so that a test does not fail on a busy machine.
SLACK_SECONDS = 20
PEAK_MEMORY = BUILD / "tests/client/peak_memory"
MEMORY_KIB = 16 * 1024
DOWNLOAD = "/common/download.cgi"
HEAD = b"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n"
GOOD = configuration_file(partition=0, version="1.2")
DIGEST = hashlib.sha256(GOOD).hexdigest()


class HostileTest(FolderTest):
    def run_against(self, answers, *words, timeout=6):
        """Runs efictl. Returns the run, its duration in seconds and the board's requests."""
        with HostileBoard(answers) as board:
            started = time.monotonic()
            run = Account(board.address).efictl(*words, "--json", "--timeout", timeout)
            taken = time.monotonic() - started
        self.assertLess(taken, timeout + SLACK_SECONDS)
        return run, taken, board.requests

    def back_up(self, answers, **more):
        words = ["backup", "--all", "--out", self.out]
        return self.run_against({"/": menu(), SCREEN: backup(), **answers}, *words, **more)

    def restore(self, answers, *words, **more):
        path = self.write("good.dat", GOOD)
        good = {SCREEN: html(""), SCREEN + " upload": selection(DIGEST),
                SCREEN + " discard": html("")}
        return self.run_against({**good, **answers}, "restore", path, "--to", 0, *words, **more)


class PlaceTest(HostileTest):
    """Nothing is written outside --out, whatever name the board gives a file."""

    def test_ignores_the_board_s_file_names(self):
        for name in ("../../evil", "/tmp/evil", "partition000-20260101T000000Z.dat\0.txt"):
            with self.subTest(name=name):
                answer = file(GOOD, name.replace("\0", "%00"))
                run, _, _ = self.back_up({SCREEN: backup("/common/download.cgi?functionID=5&amp;"
                                                         "filename=" + name.replace("\0", "")),
                                          DOWNLOAD: answer})
                self.assert_ended(run, DONE)
                self.assertEqual(sorted(os.listdir(self.folder)), ["out"])
                for each in self.backups():
                    self.assertRegex(each, r"^partition000-\d{8}T\d{6}Z\.dat$")

    def test_follows_only_the_board_s_own_downloads(self):
        for link in ("http://127.0.0.1:1/common/download.cgi?a", "//evil/common/download.cgi?a",
                     "/common/../logout.cgi?a", "file:///etc/passwd", "@evil/", ""):
            with self.subTest(link=link):
                run, _, requests = self.back_up({SCREEN: backup(link), DOWNLOAD: file(GOOD)})
                self.assert_ended(run, UNREACHABLE, f"POST {SCREEN} was answered", "unknown kind")
                self.assertNotIn("GET " + DOWNLOAD, requests)
        self.assertEqual(self.backups(), [])

    def test_follows_no_redirection(self):
        moved = (b"HTTP/1.1 302 Found\r\nLocation: /evil\r\nContent-Type: text/html\r\n"
                 b"Content-Length: 0\r\n\r\n")
        run, _, requests = self.run_against({"/": moved}, "list")
        self.assert_ended(run, UNREACHABLE, "302")
        self.assertNotIn("GET /evil", requests)


class FileTest(HostileTest):
    def test_rejects_wrong_downloads(self):
        damaged = GOOD[:-1] + bytes([GOOD[-1] ^ 1])
        for data, why in ((damaged, "checksum"), (GOOD[:-9], "cut off"), (b"", "empty"),
                          (configuration_file(partition=1, version="1.2"), "partition 1"),
                          (configuration_file(partition=0, version="9.9"), "9.9"),
                          (b"<html>", "does not begin"), (GOOD + b"x", "follow")):
            with self.subTest(why=why):
                run, _, _ = self.back_up({DOWNLOAD: file(data)})
                self.assert_ended(run, UNREACHABLE, why)
                self.assertFalse(run.json["changed"])
                self.assertEqual(self.backups(), [])

    def test_retries_a_truncated_download(self):
        run, _, requests = self.back_up({DOWNLOAD: file(GOOD)[:-5]}, timeout=4)
        self.assert_ended(run, UNREACHABLE)
        self.assertEqual(self.backups(), [])
        self.assertGreater(requests.count("GET " + DOWNLOAD), 1)


class RestoreTest(HostileTest):
    def test_restores_to_an_honest_board(self):
        run, _, requests = self.restore({SCREEN + " restore": html(
            '<div data-outcome="done"><p data-message="70" data-code="0">Restored</p></div>')})
        self.assert_ended(run, DONE)
        self.assertEqual(requests.count(f"POST {SCREEN} restore"), 1)

    def test_compares_the_file_with_the_board_s_page(self):
        for shown in (selection("0" * 64), selection(""), selection(DIGEST, number=1),
                      selection(DIGEST, name="Other"), selection(DIGEST, version="1.3")):
            run, _, requests = self.restore({SCREEN + " upload": shown})
            self.assert_ended(run, REFUSED, "The board shows another")
            self.assertNotIn(f"POST {SCREEN} restore", requests)
            self.assertEqual(requests[-2:], [f"POST {SCREEN} discard", "POST /logout.cgi"])

    def test_sends_a_restore_once_and_reports_its_loss(self):
        for name, answer in (("hang up", hang_up), ("silence", silence),
                             ("half", HEAD + b"Content-Length: 100\r\n\r\n<p>"),
                             ("unknown page", html("<title>?</title>")),
                             ("gateway", html("", "502 Bad Gateway")),
                             ("endless", endless(HEAD + b"\r\n", b"x" * 65536)),
                             ("not HTML", html("{}", kind="application/json")),
                             ("a lie", html('<div data-outcome="done"><p data-message="1"></div>'))):
            with self.subTest(answer=name):
                run, _, requests = self.restore({SCREEN + " restore": answer})
                self.assert_ended(run, UNKNOWN, "Activity")
                self.assertTrue(run.json["changed"])
                self.assertEqual(requests.count(f"POST {SCREEN} restore"), 1)
                self.assertEqual(requests[-1], "POST /logout.cgi")

    def test_sends_an_upload_once(self):
        for name, answer in (("hang up", hang_up), ("silence", silence)):
            with self.subTest(answer=name):
                run, _, requests = self.restore({SCREEN + " upload": answer})
                self.assert_ended(run, UNREACHABLE)
                self.assertEqual(requests.count(f"POST {SCREEN} upload"), 1)
                self.assertEqual(requests[-2:], [f"POST {SCREEN} discard", "POST /logout.cgi"])


class HeaderTest(HostileTest):
    """Headers are limited to 64 KiB. libcurl's own limits are higher."""

    LIMIT = 64 * 1024
    TOO_LARGE = "larger than any response"

    @staticmethod
    def menu_with(fields):
        start, rest = menu().split(b"\r\n", 1)
        return start + b"\r\n" + fields + rest

    def test_rejects_headers_above_the_limit(self):
        line = b"X: " + b"y" * 90 + b"\r\n"
        fields = {"many": lambda size: line * (size // len(line)),
                  "one": lambda size: b"X: " + b"y" * size + b"\r\n",
                  "interim": lambda size: b""}
        for name, make in fields.items():
            with self.subTest(lines=name):
                answer = self.menu_with(make(self.LIMIT))
                if name == "interim":
                    answer = b"HTTP/1.1 100 Continue\r\n\r\n" * (self.LIMIT // 25) + answer
                run, _, requests = self.run_against({"/": answer}, "list")
                self.assert_ended(run, UNREACHABLE, self.TOO_LARGE)
                self.assertEqual(requests.count("GET /"), 1)
                run, _, _ = self.run_against({"/": self.menu_with(make(self.LIMIT - 1024))}, "list")
                self.assert_ended(run, DONE)

    def test_aborts_endless_headers(self):
        for name, piece in (("fields", b"X: " + b"y" * 90 + b"\r\n"), ("empty fields", b"X:\r\n"),
                            ("cookies", b"Set-Cookie: a=b\r\n")):
            with self.subTest(lines=name):
                answer = endless(b"HTTP/1.1 200 OK\r\n", piece * 100)
                run, _, _ = self.run_against({"/": answer}, "list", timeout=60)
                self.assert_ended(run, UNREACHABLE, self.TOO_LARGE)

    def test_aborts_an_endless_header_line(self):
        answer = endless(b"HTTP/1.1 200 OK\r\nX: ", b"y" * 65536)
        run, _, _ = self.run_against({"/": answer}, "list", timeout=60)
        self.assert_ended(run, UNREACHABLE, "broke")


class TimeTest(HostileTest):
    """A board cannot make efictl hang: run_against() checks the time."""

    def test_endless_responses(self):
        for name, answer in (
                ("silence", silence),
                ("trickling header", endless(b"HTTP/1.1 200 OK\r\nX: ", b"x", 0.1)),
                ("trickling body", endless(HEAD + b"\r\n", b"x", 0.1)),
                ("interim answers", endless(b"", b"HTTP/1.1 100 Continue\r\n\r\n", 0.01)),
                ("half a line", endless(b"HTTP", b"", 0.1))):
            for path in ("/login.cgi", "/"):
                with self.subTest(answer=name, path=path):
                    run, _, _ = self.run_against({path: answer}, "list", timeout=3)
                    self.assert_ended(run, UNREACHABLE)

    def test_endless_logout(self):
        run, _, _ = self.run_against({"/": menu(), "/logout.cgi": silence}, "list", timeout=3)
        self.assert_ended(run, DONE)
        self.assertIn("session", run.json["warnings"][0])

    def test_logs_out_after_an_endless_discard(self):
        run, _, requests = self.restore({SCREEN + " discard": silence}, "--dry-run")
        self.assertIn("POST /logout.cgi", requests)
        self.assertIn("may stay on the board", run.json["warnings"][0])

    def test_slow_board_ends_at_the_timeout(self):
        slow = endless(HEAD + b"\r\n", b" ", 0.1)
        _, taken, _ = self.run_against({"/": slow, "/logout.cgi": slow}, "list", timeout=4)
        self.assertLess(taken, 4 + SLACK_SECONDS)


class TerminalTest(HostileTest):
    EVIL = "\x1b[2J\x07\x9b31m\u202eevil\u2066\x7f\r"

    def assert_harmless(self, run):
        for byte in run.raw:
            self.assertFalse(byte < 0x20 and byte != 0x0A or byte == 0x7F, run.raw)
        for character in "\x9b\u202e\u2066":
            self.assertNotIn(character.encode(), run.raw)
        self.assertNotIn(b"\x9b31", run.raw.replace(b"\xc2\x9b", b""))

    def test_makes_names_safe_for_the_terminal(self):
        for rows in ((("0", self.EVIL, self.EVIL),), (("0", "a\x1bb", "1"),)):
            for words in (["list"], ["list", "--json"]):
                with HostileBoard({"/": menu(rows)}) as board:
                    self.assert_harmless(Account(board.address).efictl(*words))

    def test_makes_reasons_safe_for_the_terminal(self):
        page = html(f'<title>{self.EVIL}</title><div data-outcome="refused"><p data-message="1">'
                    f"{self.EVIL}</p></div>")
        raw = html(b"<title>\x9b31m\xff\xfe</title>")
        for answer in (page, raw, html(f"<title>{self.EVIL}</title>"),
                       html("", kind=f"text/{self.EVIL[:4]}")):
            for words in (["list"], ["list", "--json"]):
                with HostileBoard({"/": answer}) as board:
                    self.assert_harmless(Account(board.address).efictl(*words))


class MemoryTest(HostileTest):
    def peak(self, address, *words):
        """Returns the peak resident set size of a call, in KiB."""
        measured = self.folder / "peak"
        subprocess.run([PEAK_MEMORY, measured, EFICTL, *map(str, words), "--timeout", "20"],
                       env=environment(**Account(address).variables), check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return int(measured.read_text(encoding="ascii"))

    def test_stays_within_16_mib(self):
        large = 448 * 1024
        tail = b"Content-Length: %d\r\nConnection: close\r\n\r\n" % large

        def page(piece):
            return HEAD + tail + (piece * large)[:large]
        answers = {
            "text": page(b"x"), "elements": page(b"<b>"), "rows": page(b"<tr><td>1</td>"),
            "attributes": page(b"<p a=b c=d>"), "nested tables": page(b"<table><td>"),
            "one tag": HEAD + tail + b"<p " + b"a" * (large - 3), "entities": page(b"&lt;"),
            "formats": HEAD + tail + b"".join(b"<b a%d>" % i for i in range(large))[:large],
            "notices": page(b'<p data-outcome=refused data-message=1>'),
            "endless": endless(HEAD + b"\r\n", b"<i>" * 20000),
            "endless header": endless(b"HTTP/1.1 200 OK\r\n", b"X: " + b"y" * 90 + b"\r\n"),
            "endless line": endless(b"HTTP/1.1 200 OK\r\nX: ", b"y" * 65536),
            "cookies": endless(b"HTTP/1.1 200 OK\r\n", b"Set-Cookie: a%d=b\r\n"),
            "chunks": endless(HEAD + b"Transfer-Encoding: chunked\r\n\r\n", b"1\r\nx\r\n" * 9000),
        }
        certificate, key = make_certificate(self.folder)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, key)
        trust = ("--cacert", certificate)
        peaks = {}
        for name, answer in answers.items():
            with HostileBoard({"/": answer}, context) as board:
                peaks[name] = self.peak(board.address, "list", *trust)
        rest = {"/": menu(), SCREEN: backup()}
        largest = configuration_file(partition=0, version="1.2", payload=b"a=1\n" * 98000)
        for name, answer in {"largest file": file(largest),
                             "endless file": endless(file(b"").replace(b"Content-Length: 0\r\n", b""),
                                                     b"x" * 65536)}.items():
            with HostileBoard({**rest, DOWNLOAD: answer}, context) as board:
                peaks[name] = self.peak(board.address, "backup", "--all", "--out", self.out,
                                        "--if-changed", *trust)
        print("peak resident set sizes in KiB:", peaks)
        self.assertLess(max(peaks.values()), MEMORY_KIB, peaks)


if __name__ == "__main__":
    unittest.main()

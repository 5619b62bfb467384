"""Tests of defences against small weaknesses."""

import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from attacker import frames
from attacker.board import AttackTest, configuration_file, install
from attacker.browser import FORM, SCREEN, Browser, Connection
from support.document import PROJECT

# "openssl passwd -1 -salt abcdefgh admin"
MD5_HASH = "$1$abcdefgh$l/LAqC8oJERu7Cmx6trtY/"

# Characters that change the direction of the text around them or hide such a change.
DIRECTIONS = [0x200E, 0x200F, *range(0x202A, 0x202F), *range(0x2066, 0x206A)]
LINE_BREAKS = [0x0A, 0x0D, 0x85, 0x2028, 0x2029]


class Requests(AttackTest):
    def test_foreign_cookie_hides_no_session(self):
        admin = Browser(self.board, "admin")
        name = admin.cookie_header.partition("=")[0]
        good = f"{name}={admin.session}"
        for former in (f"{name}=x", f"{name}=", f"{name}=" + "0" * 16 + "-" + "0" * 32):
            with self.subTest(former=former):
                cookie = f"{former}; {good}"
                stranger = Browser(self.board, headers={"Cookie": cookie})
                self.assertTrue(stranger.is_logged_in())
                run = self.board.run(SCREEN[1:], query="functionID=105", cookie=cookie)
                self.assertEqual(run.answered, 200)

    def test_password_in_the_address_is_ignored(self):
        browser = Browser(self.board)
        for query, body in (("user=admin&password=admin", ""), ("password=admin", "user=admin")):
            with self.subTest(query=query, body=body):
                answer = browser.request("POST", "/login.cgi?" + query, body,
                                         {"Content-Type": FORM})
                self.assertNotEqual(answer.status, 303)
                run = self.board.run("login.cgi", "POST", query, body=body.encode())
                self.assertNotEqual(run.answered, 303)
        self.assertFalse(browser.is_logged_in())

    def test_path_after_a_file_is_not_found(self):
        for target in ("/default.css/x", "/favicon.svg/x", "/default.css/"):
            with self.subTest(target=target):
                self.assertEqual(Browser(self.board).get(target).status, 404)

    def test_upload_cannot_change_text_direction(self):
        admin = Browser(self.board, "admin")
        for number in DIRECTIONS + LINE_BREAKS:
            with self.subTest(character=f"U+{number:04X}"):
                character = chr(number)
                name = f"before{character}after"
                file = configuration_file(name=name, version=f"1.23{character} B")
                text = admin.upload(file, "a.dat").body.decode("utf-8")
                self.assertIn("before", text)
                self.assertNotIn(name, text)
                # A character reference would have the same effect.
                self.assertNotRegex(text, rf"(?i)&#(?:{number}|x0*{number:x});")
                if number in DIRECTIONS:
                    self.assertNotIn(character, text)


class OddRequests(AttackTest):
    """Answers of the web server itself."""

    def head_of(self, request, status):
        with Connection(self.board, timeout=30) as connection:
            connection.send(request.replace(b"HOST", connection.host.encode()))
            answer = connection.answer()
        head = answer.partition(b"\r\n\r\n")[0].decode("latin-1")
        self.assertRegex(head, rf"^HTTP/1\.[01] {status} ")
        return head.lower()

    def test_odd_requests_get_security_headers(self):
        requests = {
            "malformed": (400, b"nonsense\r\n\r\n"),
            "odd host": (400, b"GET / HTTP/1.1\r\nHost: a b\r\nConnection: close\r\n\r\n"),
            "no host": (400, b"GET / HTTP/1.1\r\nConnection: close\r\n\r\n"),
            "two lengths": (400, b"POST /login.cgi HTTP/1.1\r\nHost: HOST\r\nContent-Length: 3\r\n"
                                 b"Content-Length: 4\r\nConnection: close\r\n\r\nabc"),
            "no length": (411, b"POST /login.cgi HTTP/1.0\r\nHost: HOST\r\n\r\n"),
            "large header": (431, b"GET / HTTP/1.0\r\nHost: HOST\r\nX: " + b"x" * 20000
                             + b"\r\n\r\n"),
            "unknown method": (501, b"NONSENSE / HTTP/1.0\r\nHost: HOST\r\n\r\n"),
            "unknown version": (505, b"GET / HTTP/9.9\r\nHost: HOST\r\n\r\n"),
            "connect": ("(400|403|405|501)", b"CONNECT HOST HTTP/1.1\r\nHost: HOST\r\n"
                                             b"Connection: close\r\n\r\n"),
            "large body": (413, b"POST /login.cgi HTTP/1.0\r\nHost: HOST\r\n"
                                b"Content-Length: 99999999\r\n\r\n"),
        }
        for name, (status, request) in requests.items():
            with self.subTest(name):
                head = self.head_of(request, status)
                self.assertIn("\nx-content-type-options: nosniff", head)
                self.assertIn("\ncache-control: no-store", head)


class Backend(unittest.TestCase):
    """A back-end installed and started as by a board's maker."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="attacks-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.root = self.folder / "root"
        install(self.root)
        self.root.chmod(0o700)

    def describe(self, change=lambda text: text):
        path = self.folder / "board.toml"
        text = (PROJECT / "board/demo/demo.toml").read_text(encoding="utf-8")
        path.write_text(change(text), encoding="utf-8")
        path.chmod(0o600)
        return path

    def start(self, description, *options):
        process = subprocess.Popen(
            [self.root / "usr/local/sbin/efi_backend", "--root", self.root, "--board",
             description, *options], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.terminate)
        return process, process.stdout.readline()

    def control(self, *words):
        return subprocess.run([self.root / "usr/local/bin/boardctl", "--root", self.root, *words],
                              capture_output=True, text=True, check=False)

    def test_fault_orders_are_refused_by_default(self):
        process, line = self.start(self.describe())
        self.assertEqual(line, "ready\n")
        for order in (("status",), ("silent",), ("die",), ("partition", "7", "off")):
            with self.subTest(order=order):
                answer = self.control(*order)
                self.assertNotEqual(answer.returncode, 0)
                self.assertIn(str(frames.FAULTS_NOT_ALLOWED), answer.stdout + answer.stderr)
        self.assertIsNone(process.poll())

    def test_fault_orders_are_obeyed_when_allowed(self):
        _, line = self.start(self.describe(), "--allow-faults")
        self.assertEqual(line, "ready\n")
        self.assertEqual(self.control("status").returncode, 0)

    def test_weak_password_hashes_are_refused(self):
        for name, value in {
                "MD5": MD5_HASH, "NT": "$3$$8846f7eaee8fb117ad06bdd830b7586c",
                "SunMD5": "$md5$rounds=904$iPPKEBnEkp3JV8uX$0L6m7rOFTVFn.SGqo2M9W1",
        }.items():
            with self.subTest(method=name):
                description = self.describe(lambda text, value=value: re.sub(
                    r'password_hash = "[^"]*"', lambda _: f'password_hash = "{value}"', text))
                process, line = self.start(description)
                process.terminate()
                _, errors = process.communicate()
                self.assertEqual(line, "", "the back-end starts")
                self.assertEqual(process.returncode, 1)
                self.assertRegex(errors, r"board\.toml:\d+:\d+: ")


class Installation(unittest.TestCase):
    def test_plain_installation_has_no_users(self):
        demo = (PROJECT / "board/demo/demo.toml").read_text(encoding="utf-8")
        hashes = re.findall(r'password_hash = "([^"]+)"', demo)
        self.assertNotEqual(hashes, [])
        with tempfile.TemporaryDirectory(prefix="attacks-") as folder:
            install(folder)
            files = [path for path in Path(folder).rglob("*") if path.is_file()]
            self.assertIn("efi_backend", [path.name for path in files])
            for path in files:
                data = path.read_bytes()
                with self.subTest(file=str(path.relative_to(folder))):
                    for value in hashes:
                        self.assertNotIn(value.encode(), data)
                    if path.suffix == ".toml":
                        self.assertNotRegex(data, rb"(?m)^\s*\[\[\s*user\s*\]\]")


if __name__ == "__main__":
    unittest.main()

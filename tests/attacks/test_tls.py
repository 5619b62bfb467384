"""Tests of a board served over TLS, and of certificates that it refuses."""

import re
import socket
import ssl
import stat
import subprocess
import tempfile
import unittest
from pathlib import Path

from attacker.board import AttackTest, Board
from attacker.browser import Browser
from support.board import PRESET
from support.document import PROJECT

CONFIGURATION = """[ca]
default_ca = own
[own]
database = {folder}/index
new_certs_dir = {folder}
rand_serial = yes
default_md = sha256
policy = anything
[anything]
commonName = supplied
"""


class Certificates:
    """Makes keys and certificates for a test."""

    def __init__(self, folder):
        self.folder = Path(folder)
        (self.folder / "index").touch()
        (self.folder / "ca.cnf").write_text(CONFIGURATION.format(folder=folder), encoding="utf-8")

    def openssl(self, *words):
        subprocess.run(["openssl", *map(str, words)], check=True, capture_output=True)

    def make(self, name, first="20200101000000Z", last="20990101000000Z"):
        """Makes a self-signed certificate; returns its path and its key's path."""
        key, certificate = self.folder / (name + ".key"), self.folder / (name + ".pem")
        request = self.folder / (name + ".csr")
        self.openssl("req", "-new", "-newkey", "rsa:2048", "-nodes", "-keyout", key, "-out",
                     request, "-subj", "/CN=" + name)
        self.openssl("ca", "-batch", "-config", self.folder / "ca.cnf", "-selfsign", "-keyfile",
                     key, "-in", request, "-out", certificate, "-notext", "-startdate", first,
                     "-enddate", last)
        key.chmod(0o600)
        return certificate, key


class TLS(AttackTest):
    options = ("--tls",)

    def connect(self, context):
        context.check_hostname = False
        context.verify_mode = ssl.CERT_NONE
        with socket.create_connection(("127.0.0.1", self.board.port), timeout=60) as plain:
            with context.wrap_socket(plain) as connection:
                return connection.version()

    def test_pages_are_served_over_tls(self):
        self.assertEqual(self.board.scheme, "https")
        self.assertEqual(Browser(self.board).get("/login.cgi").status, 200)

    def test_nothing_is_served_without_tls(self):
        answer = self.board.raw(b"GET /login.cgi HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n")
        self.assertNotRegex(answer, rb"^HTTP/1\.[01] 200")
        self.assertNotIn(b"<form", answer)

    def test_current_versions_are_accepted(self):
        for version, name in ((ssl.TLSVersion.TLSv1_2, "TLSv1.2"),
                              (ssl.TLSVersion.TLSv1_3, "TLSv1.3")):
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_CLIENT)
            context.minimum_version = context.maximum_version = version
            self.assertEqual(self.connect(context), name)

    def test_old_versions_are_refused(self):
        for version in (ssl.TLSVersion.TLSv1, ssl.TLSVersion.TLSv1_1):
            with self.subTest(version=version):
                context = ssl.SSLContext(ssl.PROTOCOL_TLS_CLIENT)
                context.set_ciphers("ALL:@SECLEVEL=0")
                context.minimum_version = context.maximum_version = version
                # Expects the server's alert, because a version that the client itself lacks would
                # fail too.
                with self.assertRaisesRegex(ssl.SSLError, "(?i)alert"):
                    self.connect(context)

    def test_weak_ciphers_are_refused(self):
        for ciphers in ("AES128-SHA", "AES256-GCM-SHA384", "ECDHE-RSA-AES256-SHA", "aNULL"):
            with self.subTest(ciphers=ciphers):
                context = ssl.SSLContext(ssl.PROTOCOL_TLS_CLIENT)
                context.maximum_version = ssl.TLSVersion.TLSv1_2
                context.set_ciphers(ciphers + ":@SECLEVEL=0")
                with self.assertRaisesRegex(ssl.SSLError, "(?i)alert"):
                    self.connect(context)

    def test_cookies_are_restricted_to_tls_and_this_host(self):
        browser = Browser(self.board, "admin")
        browser.post("/index.cgi", {"language": "ja"})
        names = [cookie.partition("=")[0] for cookie in browser.set_cookies]
        self.assertIn("__Host-session", names)
        self.assertIn("__Host-language", names)
        for cookie in browser.set_cookies:
            with self.subTest(cookie=cookie.partition("=")[0]):
                self.assertRegex(cookie, r"^__Host-")
                self.assertRegex(cookie, r"; Secure(;|$)")
                self.assertRegex(cookie, r"; Path=/(;|$)")
                self.assertNotRegex(cookie, r"(?i); domain=")
        self.assertTrue(browser.is_logged_in())

    def test_session_cookie_without_prefix_is_ignored(self):
        session = Browser(self.board, "admin").session
        stranger = Browser(self.board, headers={"Cookie": "session=" + session})
        self.assertFalse(stranger.is_logged_in())

    def test_origin_without_tls_is_refused(self):
        host = f"127.0.0.1:{self.board.port}"
        for origin, status in (("http://" + host, 403), ("https://" + host, 303)):
            browser = Browser(self.board, headers={"Origin": origin})
            self.assertEqual(browser.log_in("viewer").status, status)

    def test_certificate_and_key_are_private(self):
        found = [path for path in self.board.root.rglob("*") if path.is_file()
                 and not path.is_symlink()
                 and re.search(rb"-----BEGIN [A-Z ]*(PRIVATE KEY|CERTIFICATE)-----",
                               path.read_bytes())]
        self.assertNotEqual(found, [])
        for path in found:
            self.assertEqual(oct(stat.S_IMODE(path.stat().st_mode)), "0o600", path)

    def test_strict_transport_is_off_by_default(self):
        headers = Browser(self.board).get("/login.cgi").headers
        self.assertIsNone(headers["Strict-Transport-Security"])


class StrictTransport(AttackTest):
    options = ("--tls", "--hsts")

    def test_strict_transport_lasts_a_year(self):
        for target in ("/login.cgi", "/default.css", "/nothing"):
            value = Browser(self.board).get(target).headers["Strict-Transport-Security"] or ""
            match = re.match(r"max-age=(\d+)", value)
            self.assertIsNotNone(match, target)
            self.assertGreaterEqual(int(match[1]), 31536000)


class GivenCertificates(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = cls.enterClassContext(tempfile.TemporaryDirectory(prefix="attacks-"))
        cls.certificates = Certificates(cls.folder)
        cls.good = cls.certificates.make("good")

    def assert_refused(self, certificate, key, reason):
        with tempfile.TemporaryDirectory(prefix="attacks-") as root:
            command = [PROJECT / "serve", "--no-build", "--preset", PRESET, "--port", "0", "--root",
                       root, "--certificate", certificate, "--key", key]
            process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                       text=True)
            line = process.stdout.readline()
            if line:
                process.terminate()
            _, errors = process.communicate()
        self.assertEqual(line, "", "it serves")
        self.assertEqual(process.returncode, 1, errors)
        self.assertRegex(errors, reason)

    def test_given_certificate_is_served(self):
        with Board("--certificate", self.good[0], "--key", self.good[1]) as board:
            self.assertEqual(board.scheme, "https")
            served = ssl.get_server_certificate(("127.0.0.1", board.port))
            self.assertEqual(served.split(), self.good[0].read_text(encoding="ascii").split())
            copies = [path for path in board.root.rglob("*") if path.is_file()
                      and b"PRIVATE KEY-----" in path.read_bytes()]
            for path in copies:
                self.assertEqual(oct(stat.S_IMODE(path.stat().st_mode)), "0o600", path)

    def test_expired_certificate_is_refused(self):
        expired = self.certificates.make("expired", last="20210101000000Z")
        self.assert_refused(*expired, r"(?i)expired")

    def test_not_yet_valid_certificate_is_refused(self):
        early = self.certificates.make("early", first="20980101000000Z")
        self.assert_refused(*early, r"(?i)not (yet )?valid|not valid yet|begins|future")

    def test_key_of_another_certificate_is_refused(self):
        other = self.certificates.make("other")
        self.assert_refused(self.good[0], other[1], r"(?i)key")

    def test_missing_and_broken_files_are_refused(self):
        broken = Path(self.folder, "broken")
        broken.write_text("not a certificate", encoding="ascii")
        for certificate, key in ((broken, self.good[1]), (self.good[0], broken),
                                 (Path(self.folder, "absent"), self.good[1])):
            with self.subTest(certificate=certificate.name, key=key.name):
                self.assert_refused(certificate, key, r"(?i)certificate|key")


if __name__ == "__main__":
    unittest.main()

"""Checks docs/security.md against a served board and the tests that it names."""

import hashlib
import os
import re
import stat
import subprocess
import unittest

from support.board import SCREEN, BoardDocumentTest, Client, listed_tests
from support.document import PROJECT, Document, codes_in
from support.source import constant, read

SESSION = "platform/host/session/Session.h"
QUEUE = "board/backend/LoginQueue.h"


def tests_of(folder):
    """Returns the names of a folder's test suites and sources."""
    sources = list((PROJECT / "tests" / folder).glob("*.cpp"))
    text = "".join(path.read_text(encoding="utf-8") for path in sources)
    suites = re.findall(r"\b(?:TEST|TEST_F|TEST_P)\((\w+),", text)
    return {*suites, *(path.stem for path in sources)}


class Security(BoardDocumentTest):
    name = "docs/security.md"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.client = Client(cls.board, "admin")

    def test_named_tests_of_defences_exist(self):
        browser, rest = self.stated(
            r"Tests named `x\.test` are in `([^`]+)`, the others in (.*?)\. \|")
        others = [each.removeprefix("tests/") for each in codes_in(rest)]
        suites = set().union(*(tests_of(each) for each in others)) | set(others)
        tests = set(listed_tests())
        porting = next(rows for cells, rows in Document("docs/porting.md").tables()
                       if cells == ["what the board must do", "here", "held by"])
        suites |= tests_of("contract")
        for _, _, holders in self.table("threat", "what is done", "held by") + porting:
            self.assertNotEqual(codes_in(holders), [])
            for holder in codes_in(holders):
                with self.subTest(test=holder):
                    if holder.endswith(".test"):
                        self.assertTrue((PROJECT / browser / (holder + ".js")).exists())
                    else:
                        self.assertTrue(holder in suites or holder in tests)

    def test_board_duties_are_done_where_stated(self):
        sources = "".join(path.read_text(encoding="utf-8")
                          for folder in ("platform/host", "board")
                          for path in (PROJECT / folder).rglob("*.cpp"))
        rows = next(rows for cells, rows in Document("docs/porting.md").tables()
                    if cells == ["what the board must do", "here", "held by"])
        for _, here, _ in rows:
            for name in codes_in(here):
                with self.subTest(name=name):
                    if name.endswith("()"):
                        self.assertRegex(sources, r"\b%s\(" % name[:-2])
                    else:
                        self.assertTrue(any(any((PROJECT / folder).rglob(
                            name.rpartition("/")[2].replace(".cgi", ".cpp") if "." in name
                            else name + ".h")) for folder in ("platform/host", "board")))

    def test_cookie_is_as_stated(self):
        bits = self.stated(r"the cookie contains (\d+) random bits, which are compared in")
        identifier, token = self.client.value.split("-")
        self.assertEqual(4 * len(token), bits)
        self.stated(r"(it is only the first part of the cookie and does not log anybody in)")
        stranger = Client(self.board)
        for value in (identifier, identifier + "-", identifier + "-" + "0" * len(token)):
            stranger.cookie = "session=" + value
            self.assertEqual(stranger.get(SCREEN + "?functionID=105").status, 403)
        for attribute in self.stated(r"(SameSite=Strict), (HttpOnly);"):
            self.assertIn("; " + attribute, self.client.set_cookie)
        self.stated(r"The cookie is (not marked Secure)")
        self.assertNotIn("Secure", self.client.set_cookie)

    def test_sessions_end_as_stated(self):
        idle, life = self.stated(r"ends at logout, after (\d+) idle minutes and after (\d+) hours, "
                                 r"and its files are removed")
        self.assertEqual(60 * idle, constant(SESSION, "SESSION_IDLE_SECONDS"))
        self.assertEqual(3600 * life, constant(SESSION, "SESSION_LIFE_SECONDS"))
        client = Client(self.board, "admin")
        client.upload(b"no configuration, but staged until it is read")
        client.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP", "radio_button": "3"})
        files = [self.board.path("/var/lib/session/" + client.identifier),
                 self.board.path("/var/tmp/efi_backup" + client.identifier)]
        self.assertTrue(all(each.exists() for each in files))
        self.assertEqual(client.post("/logout.cgi", {}).status, 303)
        self.assertFalse(any(each.exists() for each in files))
        self.assertEqual(client.get(SCREEN + "?functionID=105").status, 403)

    def test_limits_match_the_sources(self):
        self.assertEqual(self.stated(r"a user has at most (\d+) sessions, and a further login ends the oldest"),
                         constant(SESSION, "SESSIONS_OF_A_USER"))
        form, own = self.stated(r"a form has at most (\d+) KiB, one of the login or the menu (\d+) KiB; a f")
        self.assertEqual(1024 * form, constant("platform/host/web/FormLimits.h", "BODY_LENGTH"))
        self.assertEqual(1024 * own, constant("board/web/WebProgram.cpp", "LARGEST_BODY"))
        for target in ("/login.cgi", "/"):
            self.assertEqual(self.client.post(target, {"x": "y" * 1024 * own}).status, 413, target)
        seconds, status = self.stated(r"a program waits (\d+) s for its body \((\d+)\)")
        self.assertEqual(1000 * seconds,
                         constant("platform/host/web/RequestBody.h", "DEADLINE_MILLISECONDS"))
        self.assertEqual(status, 408)

    def test_session_file_contains_only_a_hash_of_the_token(self):
        self.stated(r"the session's file has only their (SHA-256);")
        identifier, token = self.client.value.split("-")
        text = self.board.path("/var/lib/session/" + identifier).read_text()
        self.assertNotIn(token, text)
        self.assertIn(hashlib.sha256(token.encode()).hexdigest(), text)

    def test_stored_files_are_private_and_where_stated(self):
        rows = self.table("data", "class", "where, under the board's root", "until")
        self.assertEqual({row[1] for row in rows}, {"secret", "confidential", "internal"})
        paths = {path for row in rows for path in re.findall(r"`(var/[^`]+)`", row[2])}
        self.assertIn("var/log/audit.log", paths)
        for path in paths - {"var/lib/tls"}:  # only with --tls
            self.assertTrue(self.board.path("/" + path).exists(), path)
        modes = self.stated(r"belongs to the board's user alone \(files 0(\d+), folders 0(\d+)\)")
        for path in self.board.path("/var").rglob("*"):
            if not path.is_socket():
                self.assertEqual("%o" % (path.stat().st_mode & 0o7777), str(modes[path.is_dir()]),
                                 path)

    def test_algorithms_match_the_sources(self):
        rows = self.table("use", "algorithm", "from")
        self.assertEqual(len(rows), 6)
        rounds = self.stated(r"sha512crypt with (\d+) rounds or more")
        self.assertEqual(rounds, constant("board/backend/DescriptionReader.cpp",
                                          "FEWEST_SHA512_ROUNDS"))
        days = self.stated(r"ECDSA with P-256 and SHA-256, (\d+) days")
        self.assertIn("CERTIFICATE_DAYS=%d\n" % days, read("serve"))
        self.assertIn("ec_paramgen_curve:P-256", read("serve"))

    def test_back_end_checks_changes_itself(self):
        no_session, no_right = self.stated(
            r"the back-end itself checks the session's file and the user's rights \((\d+), (\d+)\)")
        viewer = Client(self.board, "viewer")
        for session, code in (("0" * 16, no_session), (viewer.identifier, no_right)):
            for number in (0x020100A3, 0x020100A4):
                self.assertEqual(self.board.ask(2, number, session.encode(), bytes(4))[0], code)

    def test_login_creates_a_new_session(self):
        self.stated(r"(a login always creates a new session and never accepts an identifier from outside)")
        client = Client(self.board)
        client.cookie = "session=" + "0" * 16 + "-" + "0" * 32
        answer = client.post("/login.cgi", {"user": "admin", "password": "admin"})
        self.assertNotIn("0" * 16, answer.headers["Set-Cookie"])

    def test_slows_guessing_down_as_stated(self):
        first, later, wait = self.stated(
            r"of the guesses at one account, (\d+) are checked in the first minute and (\d+) in "
            r"each later minute, .* other attempts wait up to (\d+) s for their turn")
        free = constant(QUEUE, "ACCOUNT_ATTEMPTS")
        in_a_minute = 60000 // constant(QUEUE, "ACCOUNT_INTERVAL")
        self.assertEqual((first, later), (free + in_a_minute, in_a_minute))
        self.assertEqual(wait, constant(QUEUE, "LONGEST_WAIT"))
        own, own_later = self.stated(
            r"a browser that has logged in before has its own allowance of (\d+), then (\d+) per minute")
        self.assertEqual(own, constant(QUEUE, "DEVICE_ATTEMPTS"))
        self.assertEqual(own_later, 60000 // constant(QUEUE, "DEVICE_INTERVAL"))
        others = self.stated(r"waiting logins leave (\d+) connections to others")
        self.assertEqual(others, constant("board/backend/ConnectionLimits.h", "connections")
                         - constant(QUEUE, "MOST_WAITING"))
        turn, delay = self.stated(r"When a turn comes, every (\d+\.\d) s, newer attempts are checked "
                                  r"first, .* other accounts, except for (\d+) s")
        self.assertEqual(float(turn) * 1000, constant(QUEUE, "ADDRESS_INTERVAL"))
        self.assertEqual(delay, constant(QUEUE, "FAILURE_DELAY"))

    def test_accepts_a_login_only_in_the_body(self):
        self.stated(r"(accepted only from the body of a POST without a query string)")
        stranger = Client(self.board)
        for fields in ({}, {"user": "admin", "password": "admin"}):
            answer = stranger.post("/login.cgi?user=admin&password=admin", fields)
            self.assertEqual((answer.status, answer.headers["Set-Cookie"]), (400, None))

    def test_user_without_permission_gets_the_stated_status(self):
        status = self.stated(r"the channel refuses to send changes, the response is (\d+)")
        viewer = Client(self.board, "viewer")
        for function in ("105", "106"):
            self.assertEqual(viewer.get(SCREEN + "?functionID=" + function).status, status)
            self.assertEqual(viewer.post(SCREEN, {"functionID": function, "hidden_status": "3"})
                             .status, status)
        for step in ("1", "2", "3"):
            answer = viewer.upload(b"x", fields=(("hidden_status", step),))
            self.assertEqual(answer.status, status)
        self.assertEqual(viewer.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP",
                                              "radio_button": "3"}).status, status)

    def test_refuses_requests_from_other_sites(self):
        self.stated(r"(Origin \(with scheme and port\) and Sec-Fetch-Site are checked on every POST)")
        own = "http://127.0.0.1:%d" % self.board.port
        for header in ({"Origin": "http://other"}, {"Sec-Fetch-Site": "cross-site"},
                       {"Origin": own.replace("http", "https")}, {"Origin": own + "1"}):
            for target in (SCREEN, "/login.cgi", "/logout.cgi", "/"):
                answer = self.client.request("POST", target, "", header)
                self.assertEqual(answer.status, 403, target)
        self.stated(r"(frame-ancestors)")
        policy = self.client.get(SCREEN + "?functionID=105").headers["Content-Security-Policy"]
        self.assertIn("frame-ancestors 'none'", policy)

    def test_only_the_pages_own_scripts_run(self):
        self.stated(r"allows only the page's own scripts, marked by a random (nonce), and no script in "
                    r"attributes")
        nonces = set()
        for _ in range(2):
            answer = self.client.get(SCREEN + "?functionID=105")
            policy = answer.headers["Content-Security-Policy"]
            nonce = re.search(r"script-src 'self' 'nonce-(\w+)'$", policy)[1]
            self.assertEqual(set(re.findall(r"<script nonce=\"(\w+)\"", answer.text)), {nonce})
            self.assertNotIn("unsafe", policy)
            nonces.add(nonce)
        self.assertEqual(len(nonces), 2)

    def test_other_methods_get_the_stated_status(self):
        status = int(next(what for threat, what, _ in
                          self.table("threat", "what is done", "held by")
                          if threat == "a method that nobody serves")[:3])
        for target in (SCREEN, "/login.cgi", "/logout.cgi", "/", "/common/download.cgi"):
            self.assertEqual(self.client.request("DELETE", target).status, status, target)
        self.assertEqual(self.client.request("POST", "/default.css", "").status, 403)

    def answers(self):
        """Yields a response of each kind to a well-formed request."""
        client, stranger = self.client, Client(self.board)
        yield from (client.get(target) for target in (
            "/", "/login.cgi", SCREEN, SCREEN + "?functionID=105", SCREEN + "?functionID=106",
            SCREEN + "?functionID=7", "/common/download.cgi", "/nothing", "/nothing.cgi",
            "/x.conf", "/login.cgi/x", "/maintenance/"))
        yield stranger.get("/")
        yield stranger.get(SCREEN + "?functionID=105")
        yield stranger.post("/login.cgi", {"user": "x", "password": "y"})
        yield stranger.request("DELETE", SCREEN)
        yield client.upload(b"x" * 500000)

    def test_responses_forbid_caching_and_sniffing(self):
        self.stated(r"(nosniff and no version in the Server header on every response, even to "
                    r"malformed requests; no-store on)")
        answers = list(self.answers())
        for answer in answers:
            self.assertEqual(answer.headers["Cache-Control"], "no-store", answer.text)
        files = [self.client.get(target) for target in (
            "/default.css", "/maintenance/efi_pages.js", "/favicon.ico", "/favicon.svg")]
        caching = self.stated(
            r"all but the style sheet, the script and the icon, which are ([\w-]+)")
        for answer in files:
            self.assertEqual((answer.status, answer.headers["Cache-Control"]), (200, caching))
        for answer in answers + files:
            self.assertEqual(answer.headers["X-Content-Type-Options"], "nosniff")
            self.assertRegex(answer.headers["Server"], r"^[^\d/]+$")

    def test_responses_to_malformed_requests_have_the_stated_headers(self):
        statuses = self.stated(r"\*\*Bad requests\*\* \((\d+), \d+, (\d+), \d+\)")
        port = str(self.board.port).encode()
        requests = (b"nonsense SECRET\r\n\r\n",
                    b"GET / HTTP/1.0\r\nHost: 127.0.0.1:" + port + b"\r\nX: SECRET" + b"x" * 20000
                    + b"\r\n\r\n")
        for status, request in zip(statuses, requests):
            head, _, body = self.board.raw(request).decode().partition("\r\n\r\n")
            self.assertEqual(int(head.split()[1]), status)
            names = [line.partition(":")[0] for line in head.splitlines()[1:]]
            for name in ("Server", "Cache-Control", "X-Content-Type-Options", "X-Frame-Options",
                         "Content-Security-Policy"):
                self.assertIn(name, names)
            self.assertRegex(head, r"Server: [^\d/]+(\r|$)")
            self.stated(r"(are answered without any text of the request)")
            self.assertNotIn("SECRET", body)

    def test_refuses_paths_outside_the_root(self):
        self.stated(r"(paths with dots, encoded slashes and trailing parts are refused)")
        for target in ("/../usr/local/etc/board.toml", "/%2e%2e/x", "/a%2Fb", "/login.cgi/x",
                       "/./default.css"):
            answer = self.client.get(target)
            self.assertIn(answer.status, (400, 403, 404), target)

    def test_logs_have_the_stated_mode(self):
        mode = self.stated(r"bounded files of mode (0\d+)")
        self.client.get("/nothing")
        self.client.get(SCREEN + "?functionID=7")
        for name in ("trace.log", "web.log"):
            file = self.board.path("/var/log/" + name)
            if name == "trace.log":
                self.assertTrue(file.exists())
            if file.exists():
                self.assertEqual("%o" % stat.S_IMODE(file.stat().st_mode), "%o" % int(str(mode), 8))
        # keep_log sets the mode itself, whatever the umask.
        folder = self.board.folder / "logs"
        folder.mkdir()
        keeper = self.board.path("/usr/local/sbin/keep_log")
        subprocess.run([keeper, folder / "log"], input=b"line\n", check=True,
                       preexec_fn=lambda: os.umask(0))
        self.assertEqual(stat.S_IMODE((folder / "log").stat().st_mode), int(str(mode), 8))

    def test_server_listens_where_stated(self):
        address = self.stated(r"The server listens on (\d+\.\d+\.\d+\.\d+)\.")
        self.assertIn('server.bind = "%s"' % address, read("board/web/lighttpd.conf"))
        inode = r"(\S+):%04X 00000000:0000 0A" % self.board.port
        listeners = re.findall(inode, read("/proc/net/tcp") + read("/proc/net/tcp6"))
        self.assertEqual(listeners, ["0100007F"])

    def test_names_and_bounds_match_the_sources(self):
        names = self.stated(r"The board answers to (\S+), (\S+) and (\S+), to the `host_names`")
        properties = self.board.path("/var/run/board_properties").read_text()
        self.assertEqual(re.findall("^host=(.*)", properties, re.MULTILINE),
                         [names[0], names[1], names[2]])
        status = self.stated(r"only requests to the board's own names are answered, all others get (\d+)")
        answer = self.client.request("GET", "/default.css", None, {"Host": "evil.example"})
        self.assertEqual(answer.status, status)
        seconds, most = self.stated(
            r"a request that is incomplete after (\d+) s is ended; at most (\d+) connections")
        arrival = re.search(r"LONGEST_ARRIVAL\((\d+)\)", read("board/web/watch_requests.cpp"))[1]
        self.assertEqual(seconds, int(arrival) + 2)  # the interval of two polls
        configuration = read("board/web/lighttpd.conf")
        self.assertIn("server.max-connections = %d\n" % most, configuration)
        pause, longest = self.stated(r"ended only after a pause of (\d+) s, so it may take (\d+) s")
        self.assertIn("server.max-read-idle = %d\n" % pause, configuration)
        self.assertEqual(longest, seconds + pause)
        days, rest = self.stated(r"is valid for (\d+) days .* replaced (\d+) days before it expires")
        self.assertIn("CERTIFICATE_DAYS=%d\nRENEWAL_DAYS=%d\n" % (days, rest), read("serve"))
        option = self.stated(r"`\./serve (--tls)` serves https there")
        self.assertIn("  %s " % option, read("serve"))


if __name__ == "__main__":
    unittest.main()

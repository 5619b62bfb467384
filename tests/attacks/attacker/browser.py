"""Clients of a served board: a browser, and raw connections."""

import http.client
import re
import socket
import ssl
import time
import urllib.parse

from support.board import BOUNDARY, SCREEN, Answer, upload_body

FORM = "application/x-www-form-urlencoded"
PARTS = "multipart/form-data; boundary=" + BOUNDARY
SESSION_COOKIES = ("session", "__Host-session")
REJECTED, TOO_SOON, UNANSWERED, LOGGED_IN = 403, 429, 503, 303


class Browser:
    """Keeps all cookies, connects from `address`, and adds `headers` to each request."""

    def __init__(self, board, user=None, password=None, address="127.0.0.1", headers=()):
        self.board = board
        self.address = address
        self.headers = dict(headers)
        self.cookies = {}
        self.set_cookies = []
        if user is not None:
            status = self.log_in(user, password).status
            if status != LOGGED_IN:
                raise AssertionError(f"{user} cannot log in: {status}")

    def request(self, method, target, body=None, headers=(), timeout=120):
        connection = self._connect(timeout)
        sent = {**self.headers, **dict(headers)}
        if self.cookies and "Cookie" not in sent:
            sent["Cookie"] = self.cookie_header
        try:
            connection.request(method, target, body, sent)
            answer = Answer(connection.getresponse())
        finally:
            connection.close()
        self._keep(answer.headers.get_all("Set-Cookie", []))
        return answer

    def _connect(self, timeout):
        where = ("127.0.0.1", self.board.port)
        if self.board.scheme == "https":
            trusting = ssl._create_unverified_context()  # pylint: disable=protected-access
            return http.client.HTTPSConnection(*where, timeout=timeout, context=trusting,
                                               source_address=(self.address, 0))
        return http.client.HTTPConnection(*where, timeout=timeout,
                                          source_address=(self.address, 0))

    def _keep(self, cookies):
        for cookie in cookies:
            self.set_cookies.append(cookie)
            name, _, value = cookie.split(";")[0].partition("=")
            if re.search(r";\s*max-age=0\s*(;|$)", cookie, re.IGNORECASE):
                self.cookies.pop(name, None)
            else:
                self.cookies[name] = value

    @property
    def cookie_header(self):
        return "; ".join(f"{name}={value}" for name, value in self.cookies.items())

    @property
    def session(self):
        """The value of the session's cookie."""
        found = [self.cookies[name] for name in SESSION_COOKIES if name in self.cookies]
        if len(found) != 1:
            raise AssertionError(f"not one session: {self.cookies}")
        return found[0]

    @property
    def identifier(self):
        return self.session.split("-")[0]

    @property
    def secret(self):
        return self.session.split("-", 1)[1]

    def get(self, target, **more):
        return self.request("GET", target, **more)

    def post(self, target, fields, headers=(), **more):
        return self.request("POST", target, urllib.parse.urlencode(fields),
                            {"Content-Type": FORM, **dict(headers)}, **more)

    def log_in(self, user, password=None):
        return self.post("/login.cgi", {"user": user, "password": password or user})

    def is_logged_in(self):
        """Returns true if the menu is shown, which needs no right."""
        return 'action="/logout.cgi"' in self.get("/").text

    def upload(self, content, name="a.dat", status="1", **more):
        return self.request("POST", SCREEN, upload_body(content, name, [("hidden_status", status)]),
                            {"Content-Type": PARTS}, **more)

    def backup(self, partition=3, **more):
        return self.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP",
                                  "radio_button": str(partition)}, **more)

    def restore(self, *partitions, **more):
        targets = {f"pid{each}": str(each) for each in partitions}
        return self.post(SCREEN, {"functionID": "106", "hidden_status": "2", **targets}, **more)

    def discard(self):
        return self.post(SCREEN, {"functionID": "106", "hidden_status": "3"})


def download_link(page):
    """Returns the download address on a page of a finished backup, or None."""
    match = re.search(r"/common/download\.cgi\?functionID=5&(?:amp;)?filename=[\w.]+", page)
    return match and match[0].replace("&amp;", "&")


class Connection:
    """A connection on which a request is sent piece by piece."""

    def __init__(self, board, address="127.0.0.1", timeout=120):
        self.socket = socket.create_connection(("127.0.0.1", board.port), timeout,
                                               (address, 0))
        self.host = "127.0.0.1:%d" % board.port
        self.answered = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()

    def send(self, data):
        self.socket.sendall(data)

    def send_head(self, target, length, kind=FORM, cookie=None, method="POST"):
        head = [f"{method} {target} HTTP/1.1", f"Host: {self.host}", f"Content-Type: {kind}",
                f"Content-Length: {length}", "Connection: close"]
        if cookie:
            head.append("Cookie: " + cookie)
        self.send(("\r\n".join(head) + "\r\n\r\n").encode())

    def answer(self):
        """Reads until the server closes the connection; returns everything received."""
        try:
            while data := self.socket.recv(65536):
                self.answered += data
        except ConnectionResetError:
            pass
        return self.answered

    def status(self):
        """Returns the status of the answer, or None without an answer."""
        match = re.match(rb"HTTP/1\.\d (\d+) ", self.answer())
        return int(match[1]) if match else None

    def has_ended(self, seconds=0.0):
        """Returns true if the server answers or closes the connection within `seconds`."""
        self.socket.settimeout(max(seconds, 0.001))
        try:
            data = self.socket.recv(65536)
        except TimeoutError:
            return False
        except ConnectionResetError:
            return True
        self.answered += data
        return True


def keep_trying(log_in, limit, pause=1.0):
    """Tries to log in until it succeeds. Returns the seconds it took, or None after `limit`."""
    started = time.monotonic()
    while True:
        if log_in().status == LOGGED_IN:
            return time.monotonic() - started
        if time.monotonic() - started > limit:
            return None
        time.sleep(pause)

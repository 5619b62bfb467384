"""A board for one test, served as an operator serves it, and clients of it."""

import http.client
import os
import re
import shutil
import socket
import struct
import subprocess
import tempfile
import time
import urllib.parse
from pathlib import Path

from support.document import PROJECT, DocumentTest

PRESET = os.environ.get("BOARD_PRESET", "release")
BUILD = PROJECT / "build" / PRESET
SCREEN = "/maintenance/efi_backup_restore.cgi"
BOUNDARY = "----documents"


def listed_tests():
    """Returns the names of the build's tests as tools/list_tests prints them."""
    return subprocess.run([PROJECT / "tools/list_tests", BUILD], check=True, capture_output=True,
                          text=True).stdout.splitlines()


class Board:
    """Serves the existing build on a free port, with its own root."""

    def __init__(self, *options, **how):
        """`options` are further options of ./serve, `how` further arguments of subprocess.Popen."""
        self.options = options
        self.how = how

    def __enter__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="documents-"))
        # The path in the documents, relative to the folder in which their commands run.
        self.root = self.folder / "var/board"
        self.root.mkdir(parents=True)
        # A file and not a pipe, because nothing reads the log while the back-end writes.
        self.log = (self.folder / "log").open("w+", encoding="utf-8")
        try:
            self.start()
        except AssertionError:
            self.__exit__()
            raise
        return self

    def start(self):
        """Starts serving the root, for the first time or again."""
        self.process = subprocess.Popen(
            [PROJECT / "serve", "--no-build", "--preset", PRESET, "--port", "0",
             "--root", self.root, *self.options],
            stdout=subprocess.PIPE, stderr=self.log, text=True, **self.how)
        line = self.process.stdout.readline()
        match = re.match(r"Serving (https?)://127\.0\.0\.1:(\d+)/$", line)
        if match is None:
            self.end()
            self.log.seek(0)
            raise AssertionError("The board did not start: %s%s" % (line, self.log.read()))
        self.scheme = match[1]
        self.port = int(match[2])

    def end(self):
        """Stops serving the root, unless already stopped. Keeps the root."""
        if not self.process.stdout.closed:
            self.process.terminate()
            self.process.communicate()

    def __exit__(self, *_):
        self.end()
        self.log.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def path(self, path):
        """Returns the path on this machine of a file of the board."""
        return self.root / path.lstrip("/")

    def control(self, *words):
        """Runs boardctl and returns its output."""
        command = [self.path("/usr/local/bin/boardctl"), "--root", self.root, *map(str, words)]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout

    def wait_for_backend(self):
        """Waits for a restarting back-end to listen. Returns its reply to a status request."""
        for _ in range(1200):
            try:
                return self.ask(4, 0, b"", b"status")
            except (OSError, IndexError):
                time.sleep(0.05)
        raise AssertionError("The back-end did not restart in time.")

    def raw(self, request):
        """Sends bytes, which need not be HTTP. Returns the whole response."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=60) as connection:
            connection.sendall(request)
            connection.shutdown(socket.SHUT_WR)
            return b"".join(iter(lambda: connection.recv(65536), b""))

    def ask(self, kind, number, session=b"", payload=b"", staged_file=b""):
        """Sends one frame to the back-end. Returns code and payload of its reply."""
        body = struct.pack(">BI", kind, number)
        for text in (session, b"", b"", staged_file):
            body += struct.pack(">H", len(text)) + text
        body += payload
        return self.exchange(body)[0]

    def exchange(self, *bodies):
        """Sends frames to the back-end over one connection. Returns code and payload of each reply."""
        replies = []
        with socket.socket(socket.AF_UNIX) as connection:
            connection.settimeout(60)
            connection.connect(str(self.path("/var/run/backend.sock")))
            stream = connection.makefile("rb")
            for body in bodies:
                try:
                    connection.sendall(struct.pack(">I", len(body)) + body)
                    head = stream.read(4)
                except (BrokenPipeError, ConnectionResetError):
                    break
                if len(head) < 4:
                    break
                reply = stream.read(struct.unpack(">I", head)[0])
                replies.append((struct.unpack(">I", reply[:4])[0], reply[4:]))
        return replies


class Answer:
    def __init__(self, response):
        self.status = response.status
        self.headers = response.headers
        self.body = response.read()
        self.text = self.body.decode("utf-8", "replace")


class Client:
    """An HTTP client that keeps the session's cookie, like a browser."""

    def __init__(self, board, user=None):
        self.board = board
        self.cookie = None
        if user is not None:
            answer = self.post("/login.cgi", {"user": user, "password": user})
            if answer.status != 303:
                raise AssertionError("%s cannot log in: %d" % (user, answer.status))
            self.set_cookie = answer.headers["Set-Cookie"]
            self.cookie = self.set_cookie.split(";")[0]

    @property
    def value(self):
        return self.cookie.partition("=")[2]

    @property
    def identifier(self):
        """The session's identifier, which is part of its file names."""
        return self.value.split("-")[0]

    def request(self, method, target, body=None, headers=()):
        connection = http.client.HTTPConnection("127.0.0.1", self.board.port, timeout=120)
        sent = dict(headers)
        if self.cookie:
            sent["Cookie"] = self.cookie
        try:
            connection.request(method, target, body, sent)
            return Answer(connection.getresponse())
        finally:
            connection.close()

    def get(self, target):
        return self.request("GET", target)

    def post(self, target, fields):
        return self.request("POST", target, urllib.parse.urlencode(fields),
                            {"Content-Type": "application/x-www-form-urlencoded"})

    def upload(self, content, name="a.dat", fields=(("hidden_status", "1"),)):
        """Posts a file to the restore screen, as its form does."""
        return self.post_parts(upload_body(content, name, fields))

    def post_parts(self, body):
        return self.request("POST", SCREEN, body,
                            {"Content-Type": "multipart/form-data; boundary=" + BOUNDARY})


def upload_body(content, name="a.dat", fields=(("hidden_status", "1"),)):
    parts = [(f'name="filename"; filename="{name}"', content)]
    parts += [(f'name="{key}"', value.encode())
              for key, value in [*fields, ("functionID", "106")]]
    body = b"".join(
        f"--{BOUNDARY}\r\nContent-Disposition: form-data; {header}\r\n\r\n".encode()
        + value + b"\r\n" for header, value in parts)
    return body + f"--{BOUNDARY}--\r\n".encode()


class BoardDocumentTest(DocumentTest):
    """A test of a document against a served board. The tests of a class share the board."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.board = cls.enterClassContext(Board())

"""A board of the bench build, served on a free port with its own root."""

import http.client
import re
import subprocess
import tempfile
import urllib.parse
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
BUILD = PROJECT / "build" / "bench"
SCREEN = "/maintenance/efi_backup_restore.cgi"


class Board:
    def __init__(self, description=None):
        self.folder = tempfile.TemporaryDirectory(prefix="bench-")
        self.root = Path(self.folder.name)
        command = [PROJECT / "serve", "--port", "0", "--root", self.root, "--no-build"]
        command += ["--preset", "bench"]
        if description is not None:
            path = self.root / "bench.toml"
            path.touch(mode=0o600)
            path.write_text(description)
            command += ["--board", path]
        self.process = subprocess.Popen(
            command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True
        )
        serving = re.match(r"Serving http://([\d.]+):(\d+)/", self.process.stdout.readline())
        if serving is None:
            raise RuntimeError(self.process.stderr.read())
        self.address = serving[1], int(serving[2])
        self.cookie = self._log_in()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        self.folder.cleanup()

    def url(self, target):
        return "http://%s:%d%s" % (*self.address, target)

    @property
    def htdocs(self):
        return self.root / "usr/local/www/htdocs"

    @property
    def program(self):
        return self.htdocs / SCREEN[1:]

    def request(self, method, target, body=None, headers=None):
        connection = http.client.HTTPConnection(*self.address)
        connection.request(method, target, body, headers or {})
        response = connection.getresponse()
        return response, response.read()

    def backup_page(self):
        """Returns the bytes of the backup page."""
        response, body = self.request(
            "GET", SCREEN + "?functionID=105", headers={"Cookie": self.cookie}
        )
        if response.status != 200:
            raise RuntimeError("the backup page has status %d" % response.status)
        return body

    def environment(self, method="GET", query="", **more):
        """Returns the CGI environment of a request to the screen."""
        return {
            "BOARD_ROOT": str(self.root),
            "REQUEST_METHOD": method,
            "QUERY_STRING": query,
            "HTTP_COOKIE": self.cookie,
            "TZ": ":/etc/localtime",
            **more,
        }

    def _log_in(self):
        response, _ = self.request(
            "POST",
            "/login.cgi",
            urllib.parse.urlencode({"user": "admin", "password": "admin"}),
            {"Content-Type": "application/x-www-form-urlencoded"},
        )
        return response.getheader("Set-Cookie").split(";")[0]


def describe_board(partitions):
    """Returns the description of a board with this number of partitions and the demo board's admin."""
    demo = (PROJECT / "board/demo/demo.toml").read_text()
    admin = next(part for part in demo.split("[[user]]")[1:] if 'name = "admin"' in part)
    rows = "".join(
        '[[partition]]\nnumber = %d\nname = "A name of an ordinary length"\n' % number
        for number in range(partitions)
    )
    return "max_partitions = %d\n%s[[user]]%s" % (partitions, rows, admin)

"""Helpers shared by the tests of efictl."""

import json
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TESTS = Path(__file__).resolve().parents[2]
sys.path += [str(TESTS / "documents"), str(TESTS / "faults")]

from faults.configuration_file import ConfigurationFile  # noqa: E402
from support.board import BUILD, PROJECT, Board  # noqa: E402

EFICTL = BUILD / "client/efictl"
DONE, DIFFERENT, USAGE, UNREACHABLE, REFUSED, UNKNOWN, FAILED = range(7)
STATUSES = ["done", "different", "usage", "unreachable", "refused", "unknown", "failed"]

BACKUP, RESTORE = 0x020100A3, 0x020100A4  # the back-end's request numbers
STATE = "/var/lib/board/configurations"
SESSIONS = "/var/lib/session"
TEMPORARY = "/var/tmp"


def configuration_file(partition=3, version="1.23 B", name="Test", payload=b"Boot=1\n"):
    return ConfigurationFile(partition, version, name, payload).encode()


def environment(**more):
    """Returns an environment without a board, a user or a netrc, plus the variables of `more`."""
    kept = {name: value for name, value in os.environ.items()
            if not name.startswith("EFICTL_") and name not in ("NETRC", "HOME")
            and not name.lower().endswith("_proxy")}
    return {**kept, **more}


class Run:
    """The exit status and the output of a finished efictl."""

    def __init__(self, arguments, status, output, errors):
        self.arguments = arguments
        self.status = status
        self.output = output.decode("utf-8", "replace")
        self.errors = errors.decode("utf-8", "replace")
        self.raw = output + errors

    @property
    def json(self):
        return json.loads(self.output)

    @property
    def reason(self):
        return self.json["reason"]["text"]

    def partition(self, number):
        return next(each for each in self.json["partitions"] if each["number"] == number)


def efictl(*arguments, deadline=120, **variables):
    """Runs efictl with `variables` in its environment, for at most `deadline` seconds."""
    command = [EFICTL, *map(str, arguments)]
    run = subprocess.run(command, env=environment(**variables), stdin=subprocess.DEVNULL,
                         capture_output=True, timeout=deadline, check=False)
    return Run(command, run.returncode, run.stdout, run.stderr)


def make_certificate(folder, *options, name="IP:127.0.0.1"):
    """Makes a self-signed certificate. Returns the paths of certificate and key, both PEM."""
    certificate, key = folder / "certificate.pem", folder / "key.pem"
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                    "ec_paramgen_curve:P-256", "-nodes", "-keyout", key, "-out", certificate,
                    "-subj", "/CN=board", "-addext", f"subjectAltName={name}", *options],
                   check=True, capture_output=True)
    key.chmod(0o600)
    return certificate, key


class Account:
    """The address of a board and the login of a user, passed to efictl in its environment."""

    def __init__(self, address, user="admin", password=None):
        self.variables = {"EFICTL_BOARD": address, "EFICTL_USER": user,
                          "EFICTL_PASSWORD": password or user}

    def efictl(self, *arguments, **more):
        return efictl(*arguments, **{**self.variables, **more})


class FolderTest(unittest.TestCase):
    """A test with its own folder."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="efictl-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.out = self.folder / "out"

    def write(self, name, content, mode=0o600):
        path = self.folder / name
        path.write_bytes(content)
        path.chmod(mode)
        return path

    def backups(self):
        """Returns the names in the folder of backups, sorted."""
        return sorted(os.listdir(self.out)) if self.out.exists() else []

    def assert_ended(self, run, status, *words):
        """Checks the exit status, that the JSON agrees with it, and that the output has `words`."""
        self.assertEqual(run.status, status, run.output + run.errors)
        if "--json" in run.arguments:
            self.assertEqual(run.json["exit"], status)
            self.assertEqual(run.json["status"], STATUSES[status])
        for word in words:
            self.assertIn(word, run.output + run.errors)


class BoardTest(FolderTest):
    """A test against a served board. The tests of a class share the board."""

    options = ()

    @classmethod
    def setUpClass(cls):
        cls.board = cls.enterClassContext(Board(*cls.options))

    def setUp(self):
        super().setUp()
        self.board.control("reset")
        self.account = Account(self.address)

    @property
    def address(self):
        return f"{self.board.scheme}://127.0.0.1:{self.board.port}"

    def efictl(self, *arguments, **more):
        return self.account.efictl(*arguments, **more)

    def state(self):
        return self.board.path(STATE).read_bytes()

    def left_on_board(self):
        """Returns the names of the sessions and of their files on the board."""
        names = os.listdir(self.board.path(SESSIONS)) + os.listdir(self.board.path(TEMPORARY))
        return sorted(set(names) - {"restored_eficonf.lock"})

    def events(self, name):
        """Returns the number of lines of the audit log with the event `name`."""
        log = self.board.path("/var/log/audit.log")
        lines = log.read_text(encoding="ascii").splitlines() if log.exists() else []
        return sum(json.loads(line)["event"] == name for line in lines)

    def back_up(self, partition):
        """Makes a backup and returns its path."""
        run = self.efictl("backup", "--partition", partition, "--out", self.out, "--json")
        self.assert_ended(run, DONE)
        return self.out / run.partition(partition)["file"]

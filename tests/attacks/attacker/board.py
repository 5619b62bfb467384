"""A served board, with access to everything that an attack may leave on it."""

import hashlib
import os
import re
import stat
import subprocess
import time
import unittest
from pathlib import Path

from faults.configuration_file import ConfigurationFile, decode_configuration_file
from faults.program import environment_for, run_program
from support import board as documents
from support.document import PROJECT

# A slow or busy machine may take this many times the time limits of a board.
SLOWNESS = 4
LONG = os.environ.get("ATTACKS_LONG") == "1"

# Paths below the root that an attack must not change.
TEMPORARY = "/var/tmp"
SESSIONS = "/var/lib/session"
STATE = "/var/lib/board/configurations"
TRACE = "/var/log/trace.log"

# The password hash of the demo board's administrator "admin", with the password "admin".
ADMIN_HASH = re.search(r'password_hash = "([^"]+)"',
                       (PROJECT / "board/demo/demo.toml").read_text(encoding="utf-8"))[1]


class Board(documents.Board):
    """`users` is {name: functions}: the board then has these users, all with the password "admin",
    and the demo board's partitions. Without it, the board is the demo board."""

    def __init__(self, *options, users=None, **how):
        super().__init__(*options, **how)
        self.users = users

    def start(self):
        if self.users is not None:
            self.describe(self.users)
        super().start()

    def describe(self, users):
        """Writes a description with these users, for the next start."""
        self.users = users
        partitions = (PROJECT / "board/demo/demo.toml").read_text(encoding="utf-8")
        description = partitions[:partitions.index("[[user]]")] + "".join(
            f'\n[[user]]\nname = "{name}"\npassword_hash = "{ADMIN_HASH}"\n'
            f"functions = {functions}\n" for name, functions in users.items())
        path = self.folder / "board.toml"
        path.write_text(description, encoding="utf-8")
        path.chmod(0o600)
        if "--board" not in self.options:
            self.options = ("--board", path, *self.options)

    @property
    def programs(self):
        """The folder of the CGI programs; the modules of tests/faults use it."""
        return self.path("/usr/local/www/htdocs")

    def run(self, program, method="GET", query="", cookie=None, body=b"",
            kind="application/x-www-form-urlencoded", deadline=30, **environment):
        """Runs a program directly. `answered` of the result is its status, or None if it was killed
        at the deadline (seconds)."""
        request = {"program": program, "method": method, "query": query, "body": body,
                   "type": kind}
        run = run_program(self, request, more=self._environment(cookie, environment),
                          deadline=deadline)
        match = re.match(rb"Status: (\d+)", run.output)
        run.answered = int(match[1]) if match else None
        return run

    def run_and_kill(self, seconds, program, body, cookie):
        """Starts a program directly with a POST request, and kills it after `seconds`."""
        request = {"program": program, "method": "POST", "body": body}
        environment = environment_for(str(self.root), request)
        environment.update(self._environment(cookie, {}))
        with subprocess.Popen([self.programs / program], env=environment, stdin=subprocess.PIPE,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
            process.stdin.write(body)
            process.stdin.flush()
            time.sleep(seconds)
            process.kill()

    def _environment(self, cookie, more):
        # Replaces the host of tests/faults, because a board answers only for its own port.
        environment = {"HTTP_HOST": "127.0.0.1:%d" % self.port, "SERVER_PORT": str(self.port),
                       "SERVER_NAME": "127.0.0.1"}
        if cookie:
            environment["HTTP_COOKIE"] = cookie
        return {**environment, **more}

    def processes(self):
        """Returns the processes of the board as {number: name}."""
        found = {}
        left = [self.process.pid]
        while left:
            pid = left.pop()
            try:
                found[pid] = Path(f"/proc/{pid}/comm").read_text(encoding="ascii").strip()
                for task in Path(f"/proc/{pid}/task").iterdir():
                    left += map(int, (task / "children").read_text(encoding="ascii").split())
            except (FileNotFoundError, ProcessLookupError):
                continue
        return found

    def process_of(self, name):
        return next(pid for pid, each in self.processes().items() if each == name)

    def wait_for_program(self, name="efi_backup_rest", count=1, seconds=10):
        """Waits until at least `count` processes of this name run. Returns False after `seconds`
        without them."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if list(self.processes().values()).count(name) >= count:
                return True
            time.sleep(0.02)
        return False

    def disk_use(self):
        """Returns the disk space of all files below the root in bytes, including open files without
        a name."""
        blocks = {}
        for folder, _, names in os.walk(self.root):
            for name in names:
                self._count(os.path.join(folder, name), blocks, follow=False)
        for pid in self.processes():
            try:
                for descriptor in Path(f"/proc/{pid}/fd").iterdir():
                    if os.readlink(descriptor).startswith(str(self.root)):
                        self._count(descriptor, blocks, follow=True)
            except OSError:
                continue
        return 512 * sum(blocks.values())

    @staticmethod
    def _count(path, blocks, follow):
        try:
            status = os.stat(path, follow_symlinks=follow)
        except OSError:
            return
        if stat.S_ISREG(status.st_mode):
            blocks[status.st_dev, status.st_ino] = status.st_blocks

    def temporary_files(self):
        """Returns the names in /var/tmp, without the lock that all sessions share."""
        return sorted(set(os.listdir(self.path(TEMPORARY))) - {"restored_eficonf.lock"})

    def state(self):
        """Returns a hash of all partitions' configurations."""
        return hashlib.sha256(self.path(STATE).read_bytes()).hexdigest()

    def text_of_logs(self):
        """Returns the contents of all logs, including the output of ./serve."""
        files = [self.folder / "log", *self.path("/var/log").iterdir()]
        return "\n".join(file.read_text(encoding="utf-8", errors="replace") for file in files)


def configuration_file(partition=3, version="1.23 B", name="Attack", payload=b"attack=1\n"):
    return ConfigurationFile(partition, version, name, payload).encode()


def read_configuration_file(data):
    return decode_configuration_file(data)


def install(folder, *options):
    """Installs the build as a board's maker would."""
    subprocess.run(["cmake", "--install", documents.BUILD, "--prefix", folder, *options],
                   check=True, stdout=subprocess.DEVNULL)


class AttackTest(unittest.TestCase):
    """A test of a served board that all tests of the class share."""

    options = ()
    users = None
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.board = cls.enterClassContext(Board(*cls.options, users=cls.users))

    def assert_within(self, seconds, started, what):
        """Expects that no more than `seconds`, times SLOWNESS, have passed since `started`."""
        taken = time.monotonic() - started
        self.assertLessEqual(taken, seconds * SLOWNESS,
                             f"{what} took {taken:.1f} s instead of {seconds} s")

"""A board's root with its own back-end."""

import copy
import os
import shutil
import signal
import subprocess
import tempfile
import threading
import time

from faults.configuration_file import ConfigurationFile
from faults.idle_threads import serves_nobody
from faults.program import run_program

START_SECONDS = 60
KEPT_FOLDERS = ("var/tmp", "var/lib/session", "var/lib/board", "var/run", "var/log")

# The demo board's administrator and its user without rights.
OPERATOR, VIEWER = "admin", "viewer"


def fast_folder():
    """Returns the folder for roots: in memory if possible, for speed."""
    return "/dev/shm" if os.access("/dev/shm", os.W_OK) else None


class Installation:
    """The files that `cmake --install` puts under a board's root, shared by all boards of a run."""

    def __init__(self, project, preset):
        self.build = os.path.join(project, "build", preset)
        self.folder = tempfile.mkdtemp(prefix="faults-")
        self.description = os.path.join(self.folder, "board.toml")
        shutil.copyfile(os.path.join(project, "board/demo/demo.toml"), self.description)
        os.chmod(self.description, 0o600)
        self.dynamic = None
        os.environ["LC_ALL"] = "C.UTF-8"
        subprocess.run(["cmake", "--install", self.build, "--prefix", self.folder], check=True,
                       stdout=subprocess.DEVNULL)

    def linked_dynamically(self):
        """Returns an installation with dynamically linked programs, for preloading; made once."""
        if self.dynamic is None:
            self.dynamic = copy.copy(self)
            self.dynamic.folder = tempfile.mkdtemp(prefix="faults-")
            shutil.copytree(self.folder, self.dynamic.folder, symlinks=True, dirs_exist_ok=True)
            shutil.copytree(os.path.join(self.build, "tests/faults/programs"),
                            os.path.join(self.dynamic.folder, "usr/local/www/htdocs"),
                            dirs_exist_ok=True)
        return self.dynamic

    def remove(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        if self.dynamic is not None:
            shutil.rmtree(self.dynamic.folder, ignore_errors=True)


class Board:
    """A board's root. The back-end runs from start() to stop()."""

    def __init__(self, installation, folder=None):
        self.installed = installation.folder
        self.description = installation.description
        self.programs = os.path.join(self.installed, "usr/local/www/htdocs")
        self.root = tempfile.mkdtemp(prefix="faults-root-", dir=folder or fast_folder())
        os.symlink(os.path.join(self.installed, "usr"), self.path("usr"))
        for folder_ in KEPT_FOLDERS:
            os.makedirs(self.path(folder_), mode=0o700)
        self.backend = None
        self.ended_by_signal = None

    def path(self, *parts):
        return os.path.join(self.root, *parts)

    def start(self, prefix=(), more=None, limits=None, must_start=True):
        """Starts the back-end. If it ends before it is ready, raises RuntimeError, or returns False
        if `must_start` is false."""
        environment = {"PATH": "/usr/bin:/bin", **(more or {})}
        self.error_file = open(self.path("backend.errors"), "wb")
        self.backend = subprocess.Popen(
            [*prefix, os.path.join(self.installed, "usr/local/sbin/efi_backend"), "--root",
             self.root, "--board", self.description, "--allow-faults"],
            env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=self.error_file, start_new_session=True, preexec_fn=limits)
        watch = threading.Timer(START_SECONDS, self.kill)
        watch.start()
        ready = self.backend.stdout.readline() == b"ready\n"
        watch.cancel()
        watch.join()  # otherwise kill() may still be closing the files of this start
        if not ready:
            self.kill()
            if must_start:
                raise RuntimeError("The back-end did not start: " + self.errors())
        return ready

    def errors(self):
        with open(self.path("backend.errors"), encoding="utf-8", errors="replace") as text:
            return text.read()

    def stop(self, deadline=30):
        """Ends the back-end as ./serve does. Returns its exit status, or None if it had to be
        killed after `deadline` seconds."""
        if self.backend is None:
            return 0
        pid = self.backend_process()
        if pid:
            os.kill(pid, signal.SIGTERM)
        try:
            status = self.backend.wait(deadline)
        except subprocess.TimeoutExpired:
            status = None
        self.kill()
        return status

    def kill(self):
        if self.backend is None:
            return
        pid = self.backend_process()
        backend, self.backend = self.backend, None
        try:
            os.killpg(backend.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        status = backend.wait()
        self.ended_by_signal = -status if status < 0 and status != -signal.SIGKILL else None
        # If another command started it, the back-end may end shortly after that command.
        while any_lives([pid] if pid else members_of(backend.pid)):
            time.sleep(0.001)
        backend.stdout.close()
        self.error_file.close()

    def backend_process(self):
        """Returns the back-end's process number, even if another command started it, or None."""
        children = f"/proc/{self.backend.pid}/task/{self.backend.pid}/children"
        try:
            with open(f"/proc/{self.backend.pid}/comm", encoding="ascii") as name:
                if name.read().strip() == "efi_backend":
                    return self.backend.pid
            with open(children, encoding="ascii") as pids:
                for pid in pids.read().split():
                    with open(f"/proc/{pid}/comm", encoding="ascii") as name:
                        if name.read().strip() == "efi_backend":
                            return int(pid)
        except (FileNotFoundError, ProcessLookupError):
            pass
        return None

    def wait_until_quiet(self, seconds=45):
        """Waits until the back-end serves no client. Returns False after `seconds`."""
        end = time.monotonic() + seconds
        while self.backend is not None and time.monotonic() < end:
            pid = self.backend_process()
            if pid is None or serves_nobody(pid):
                return True
            time.sleep(0.001)
        return False

    def log_in(self, user, password=None):
        run = run_program(self, {"program": "login.cgi", "method": "POST",
                                 "body": f"user={user}&password={password or user}".encode()})
        for line in run.output.decode().split("\r\n"):
            if line.startswith("Set-Cookie: session="):
                return line.split("=", 1)[1].split(";")[0]
        raise RuntimeError(f"{user} cannot log in: {run.output!r} {run.errors!r}")

    def read(self, *parts):
        """Returns the bytes of a file below the root, or None if there is none."""
        try:
            with open(self.path(*parts), "rb") as file:
                return file.read()
        except FileNotFoundError:
            return None

    def write(self, data, *parts):
        """Writes a file below the root, or removes it if `data` is None."""
        if data is None:
            try:
                os.remove(self.path(*parts))
            except FileNotFoundError:
                pass
            return
        with open(self.path(*parts), "wb", opener=lambda p, f: os.open(p, f, 0o600)) as file:
            file.write(data)

    def files(self, *folders):
        """Returns {path below the root: bytes} of all regular files in the folders."""
        found = {}
        for folder in folders:
            for entry in os.scandir(self.path(folder)):
                if entry.is_file(follow_symlinks=False):
                    data = self.read(folder, entry.name)
                    if data is not None:
                        found[f"{folder}/{entry.name}"] = data
        return found

    def remove(self):
        self.kill()
        shutil.rmtree(self.root, ignore_errors=True)


def identifier_of(cookie):
    return cookie.split("-")[0]


def members_of(group):
    """Returns the processes of a process group."""
    members = []
    for name in os.listdir("/proc"):
        try:
            if name.isdigit() and os.getpgid(int(name)) == group:
                members.append(int(name))
        except ProcessLookupError:
            pass
    return members


def any_lives(processes):
    return any(is_alive(process) for process in processes)


def is_alive(pid):
    """Returns true while any thread of the process is left; the first may end before the others."""
    try:
        with open(f"/proc/{pid}/stat", encoding="ascii", errors="replace") as status:
            ended = status.read().rpartition(")")[2].split()[0] == "Z"
        return not ended or len(os.listdir(f"/proc/{pid}/task")) > 1
    except (FileNotFoundError, ProcessLookupError):
        return False


def sample_payload(letter, size=120000):
    """Returns a payload that repeats `letter` throughout, so that mixed files can be detected."""
    return (letter.encode() * 61 + b"\n") * (size // (61 * len(letter) + 1))


def sample_file(letter, size=120000):
    return ConfigurationFile(3, "1.23 B", "Sample", sample_payload(letter, size)).encode()

"""A controller for one test: a folder with an inventory, and the engines that operators run."""

import csv
import os
import re
import shutil
import signal
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

from fleet.boards import address_of, certificate_of
from fleet.files import configuration_file, decode, payloads_of
from support.board import BUILD
from support.document import PROJECT

COLLECTION = PROJECT / "fleet/ansible"
EFICTL = BUILD / "client/efictl"
EFICONF = BUILD / "board/inspector/eficonf"
RUN_SECONDS = 300
# The BIOS version of partition 3 of the demo board.
VERSION = "1.23 B"


@dataclass
class Run:
    """The exit status and the output of a run of ansible-playbook."""

    status: int
    output: str

    @property
    def recap(self):
        """The counts of the recap, as {board: {"ok": 3, "changed": 1, ...}}."""
        lines = self.output.partition("PLAY RECAP")[2]
        return {name: {key: int(value) for key, value in re.findall(r"(\w+)=(\d+)", counts)}
                for name, counts in re.findall(r"^(\S+) +: (ok=.*)$", lines, re.MULTILINE)}

    def counted(self, what):
        """Returns one count of the recap, as {board: count}."""
        return {name: counts[what] for name, counts in self.recap.items()}


class Controller:
    """A folder from which a fleet is managed. Runs write nothing outside it."""

    def __enter__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="controller-"))
        self.home = self.folder / "home"
        self.home.mkdir()
        programs = self.folder / "bin"
        programs.mkdir()
        for program in (EFICTL, EFICONF):
            (programs / program.name).symlink_to(program)
        place = self.folder / "collections/ansible_collections/vesk"
        place.mkdir(parents=True)
        (place / "efictl").symlink_to(COLLECTION)
        self.environment = {
            "HOME": str(self.home), "PATH": "%s:%s" % (programs, os.environ["PATH"]),
            "LC_ALL": "C.UTF-8", "TMPDIR": str(self.folder),
            "ANSIBLE_COLLECTIONS_PATH": str(self.folder / "collections"),
            "ANSIBLE_NOCOLOR": "1", "ANSIBLE_LOCALHOST_WARNING": "0",
            "ANSIBLE_REMOTE_TMP": str(self.home / "tmp"), "PYTHONDONTWRITEBYTECODE": "1",
        }
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.folder, ignore_errors=True)

    @property
    def backups(self):
        return self.folder / "backups"

    @property
    def reports(self):
        return self.folder / "reports"

    def write_inventory(self, boards, **more):
        """Writes inventory.ini. `boards` is {name: board}; `more` has further variables, as
        {name: {variable: value}}."""
        self.boards = boards
        lines = ["[boards]"]
        for name, board in boards.items():
            variables = {"efictl_board": address_of(board), "efictl_cacert": certificate_of(board),
                         **more.get(name, {})}
            lines.append(" ".join([name, *("%s=%s" % each for each in variables.items())]))
        lines += ["[boards:vars]", "efictl_user=admin", "efictl_password=admin"]
        (self.folder / "inventory.ini").write_text("\n".join(lines) + "\n", encoding="utf-8")

    def write_certificates(self):
        """Writes the certificates of all boards to boards.pem, so that all are trusted."""
        (self.folder / "boards.pem").write_text("".join(
            certificate_of(each).read_text(encoding="ascii") for each in self.boards.values()),
            encoding="ascii")

    def start(self, playbook, *options):
        """Starts a playbook of the collection."""
        return self._start(["ansible-playbook", "--inventory", "inventory.ini",
                            "vesk.efictl." + playbook, *map(str, options)])

    def start_parallel(self, command):
        """Starts a command for each line of boards.txt, in parallel."""
        return self._start(["parallel", "--jobs", "4", "--termseq", "TERM,30000,KILL,25",
                            "--colsep", " ", command, "::::", "boards.txt"],
                           EFICTL_USER="admin", EFICTL_PASSWORD="admin")

    def _start(self, command, **environment):
        return subprocess.Popen(
            command, cwd=self.folder, env={**self.environment, **environment},
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            start_new_session=True)

    def run(self, playbook, *options):
        process = self.start(playbook, *options)
        try:
            output = process.communicate(timeout=RUN_SECONDS)[0]
        except BaseException:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            raise
        return Run(process.returncode, output)

    def shell(self, script, **environment):
        """Runs a shell script in the folder."""
        return subprocess.run(["bash", "-uc", script], cwd=self.folder, check=False,
                              env={**self.environment, **environment}, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=RUN_SECONDS)

    def efictl(self, *words, **environment):
        return subprocess.run([EFICTL, *map(str, words)], cwd=self.folder, check=False,
                              env={**self.environment, **environment}, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=RUN_SECONDS)

    def newest(self, name, partition):
        """Returns the newest backup of a partition."""
        return max((self.backups / name).glob("partition%03d-*.dat" % partition))

    @staticmethod
    def with_setting(file, former, newer):
        """Returns the bytes of a backup with one setting replaced."""
        saved = decode(file.read_bytes())
        assert former in saved.payload
        saved.payload = saved.payload.replace(former, newer)
        return saved.encode()

    def change_setting(self, name, former, newer, partition=3):
        """Changes a setting on a board, outside any run."""
        board = self.boards[name]
        payload = payloads_of(board)[partition]
        assert former in payload
        file = self.folder / "changed.dat"
        file.write_bytes(configuration_file(partition, VERSION, payload.replace(former, newer)))
        result = self.efictl("restore", file, "--to", partition, "--board", address_of(board),
                             "--cacert", certificate_of(board), EFICTL_USER="admin",
                             EFICTL_PASSWORD="admin")
        assert result.returncode == 0, result.stderr

    def report(self):
        """Returns the rows of the report's CSV."""
        with (self.reports / "fleet.csv").open(encoding="utf-8", newline="") as file:
            return list(csv.DictReader(file))

    def failures(self):
        """Returns the failures in the report, as {board: reason}."""
        return {row["board"]: row["failure"] for row in self.report() if row["failure"]}

    def files(self):
        """Returns all files below the folder of backups, as {relative path: bytes}."""
        return {str(path.relative_to(self.backups)): path.read_bytes()
                for path in sorted(self.backups.rglob("*")) if path.is_file()}

    def files_with(self, secret):
        """Returns the files of the controller that contain `secret`, except the inventory."""
        return [path for path in self.folder.rglob("*")
                if path.is_file() and not path.is_symlink() and path.name != "inventory.ini"
                and secret.encode() in path.read_bytes()]

"""Boards served at the same time over https, each with its own root."""

import re
import subprocess
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from support.process_tree import descendants, proportional_memory

PROJECT = Path(__file__).resolve().parents[2]
AT_A_TIME = 4


class FleetBoard:
    def __init__(self, name, preset):
        self.name = name
        self.preset = preset
        self.process = None

    def start(self):
        self.folder = tempfile.TemporaryDirectory(prefix="fleet-")
        self.root = Path(self.folder.name)
        self.log = (self.root / "log").open("w+", encoding="utf-8")
        self.process = subprocess.Popen(
            [PROJECT / "serve", "--no-build", "--preset", self.preset, "--tls", "--port", "0",
             "--root", self.root],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=self.log, text=True)
        line = self.process.stdout.readline()
        match = re.match(r"Serving (https://127\.0\.0\.1:\d+/)$", line)
        if match is None:
            self.log.seek(0)
            raise RuntimeError("The board did not start: %s%s" % (line, self.log.read()))
        self.address = match[1]

    def end(self):
        if self.process is not None:
            self.process.terminate()
            self.process.communicate()
            self.log.close()
            self.folder.cleanup()

    @property
    def certificate(self):
        return self.root / "var/lib/tls/certificate.pem"


class Fleet:
    def __init__(self, count, preset):
        self.boards = [FleetBoard("board%03d" % number, preset) for number in range(count)]

    def __enter__(self):
        try:
            with ThreadPoolExecutor(AT_A_TIME) as pool:
                list(pool.map(FleetBoard.start, self.boards))
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        with ThreadPoolExecutor(AT_A_TIME) as pool:
            list(pool.map(FleetBoard.end, self.boards))

    def described(self):
        """Returns name, address and certificate of each board."""
        return [(each.name, each.address, each.certificate) for each in self.boards]


def memory_of(board):
    """Returns the memory used by the processes of a board, in bytes."""
    return sum(map(proportional_memory, descendants(board.process.pid)))


def free_memory():
    """Returns the memory available to programs on this machine, in bytes."""
    for line in Path("/proc/meminfo").read_text(encoding="ascii").splitlines():
        if line.startswith("MemAvailable:"):
            return 1024 * int(line.split()[1])
    return 0

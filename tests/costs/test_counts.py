#!/usr/bin/python3
"""Counts the costs of requests: the program's instructions from main() on, and its system calls.
Other work on the machine does not change these counts.

Fails if a request takes 2 % more instructions than recorded in costs.json, or one more system call,
and names the functions that grew. `test_counts.py --renew` writes the current counts to costs.json.
"""

import json
import os
import re
import sys
import tempfile
import unittest
from pathlib import Path

TESTS = Path(__file__).resolve().parents[1]
PROJECT = TESTS.parent
sys.path += [str(TESTS / "faults"), str(PROJECT / "bench")]
sys.dont_write_bytecode = True

from faults.board import Installation  # noqa: E402
from faults.program import run_program  # noqa: E402
from faults.request_types import REQUEST_TYPES  # noqa: E402
from faults.scene import Scene  # noqa: E402
from support import programs  # noqa: E402

COSTS = Path(__file__).with_name("costs.json")
REQUESTS = ("backup page", "restore page", "backup", "upload", "restore")
TOLERANCE = 0.02
# Functions with a smaller share of a request are not recorded.
SMALLEST_SHARE = 0.005
# The C library selects functions by processor features. Disables these to get the same functions
# everywhere.
ENVIRONMENT = {"GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX2,-AVX,-ERMS,-FSRM", "TZ": ":/etc/localtime"}


class Counter:
    """A board, and the costs of requests on it."""

    def __init__(self):
        self.installation = Installation(str(PROJECT), os.environ.get("BOARD_PRESET", "release"))
        self.folder = tempfile.TemporaryDirectory(prefix="costs-")
        self.scene = Scene(self.installation)

    def close(self):
        self.scene.remove()
        self.installation.remove()
        self.folder.cleanup()

    def count(self, kind):
        return {"system calls": len(self.system_calls(kind)), **self.instructions(kind)}

    def instructions(self, kind):
        path = Path(self.folder.name, "callgrind")
        self.run(kind, "valgrind", "--tool=callgrind", "--toggle-collect=main", "--compress-strings=no",
                 "--compress-pos=no", f"--callgrind-out-file={path}")
        return read_profile(path.read_text(encoding="utf-8"))

    def system_calls(self, kind, program=None):
        """Returns the names of the program's system calls, without those of the libraries' start."""
        path = Path(self.folder.name, "strace")
        self.run(kind, "strace", "-o", path, program=program)
        calls = re.findall(r"^(\w+)\(", path.read_text(encoding="utf-8"), re.M)
        return calls[calls.index("rt_sigaction"):]

    def run(self, kind, *prefix, program=None):
        request = REQUEST_TYPES[kind]().prepare(self.scene)
        for path in self.scene.sessions:
            os.utime(self.scene.board.path(path))  # otherwise the request would do so
        if program is not None:
            request["program"] = str(program)
        # A file is read in pieces of the same size every time, a pipe is not.
        with tempfile.TemporaryFile() as body:
            body.write(request.get("body", b""))
            body.seek(0)
            run = run_program(self.scene.board, request, prefix=prefix, more=ENVIRONMENT, body=body)
        if run.exit_status != 0 or not run.output.startswith(b"Status: 200"):
            raise AssertionError(f"{kind}: {run.exit_status} {run.output!r} {run.errors!r}")
        return run.output

    def page(self):
        """Returns the bytes of the backup page."""
        return self.run("backup page").partition(b"\r\n\r\n")[2]


def read_profile(text):
    """Returns the total cost, and the cost of each large function without its callees."""
    functions = {}
    name = None
    called = False
    for line in text.splitlines():
        if line.startswith("fn="):
            name = line[3:]
        elif line.startswith("calls="):
            called = True
        elif re.match(r"[+*\d-]", line):
            # The line after "calls=" has the cost of the called function.
            if not called:
                functions[name] = functions.get(name, 0) + int(line.split()[1])
            called = False
    total = sum(functions.values())
    large = {each: cost for each, cost in sorted(functions.items(), key=lambda item: -item[1])
             if cost >= SMALLEST_SHARE * total}
    return {"instructions": total, "functions": large}


def growth_of(before, now):
    """Returns the functions that grew as lines, largest growth first."""
    grown = {name: cost - before.get(name, 0) for name, cost in now.items()}
    lines = [f"  {name}: {before.get(name, 0):,} to {now[name]:,}"
             for name, more in sorted(grown.items(), key=lambda item: -item[1]) if more > 0]
    return "\n".join(lines[:8])


class Costs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.counter = Counter()
        cls.addClassCleanup(cls.counter.close)
        cls.costs = json.loads(COSTS.read_text(encoding="utf-8"))

    def test_no_request_costs_more_than_recorded(self):
        for kind in REQUESTS:
            with self.subTest(kind):
                before, now = self.costs[kind], self.counter.count(kind)
                self.assertLessEqual(now["system calls"], before["system calls"])
                limit = before["instructions"] * (1 + TOLERANCE)
                self.assertLessEqual(
                    now["instructions"], limit,
                    "more than 2 % above costs.json:\n"
                    + growth_of(before["functions"], now["functions"]))
                if now["instructions"] < before["instructions"] * (1 - TOLERANCE):
                    print(f"{kind}: {now['instructions']:,} instructions, in costs.json "
                          f"{before['instructions']:,}: renew the file")

    def test_floor_makes_the_system_calls_of_the_backup_page(self):
        floor = programs.build(["floor"], Path(self.counter.folder.name), self.counter.page())["floor"]
        self.assertEqual(self.counter.system_calls("backup page", floor),
                         self.counter.system_calls("backup page"))


def renew():
    counter = Counter()
    try:
        costs = {kind: counter.count(kind) for kind in REQUESTS}
    finally:
        counter.close()
    COSTS.write_text(json.dumps(costs, indent=1) + "\n", encoding="utf-8")


if __name__ == "__main__":
    if sys.argv[1:] == ["--renew"]:
        renew()
    else:
        unittest.main()

"""Measures processes, and requests through the web server."""

import json
import os
import re
import resource
import shutil
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

from support.board import BUILD, SCREEN


# If other work uses more than this share of a processor, the measurement is repeated.
BUSY_SHARE = 0.25
ATTEMPTS = 3


def run_cases(cases, rounds, report_busy):
    """Measures cases, each (name, program, environment, input), in turn. See measure.cpp.

    Repeats the measurement while other work uses the machine. If all ATTEMPTS were disturbed, keeps
    the least disturbed one and calls `report_busy` with the share of a processor that others used.

    Runs copies of the programs, all made in the same way: the way a file is written determines the
    size of the pages in which the kernel maps it, and a program as written by the linker takes a
    tenth longer than its copy.
    """
    lines = []
    with tempfile.TemporaryDirectory(prefix="bench-") as folder:
        for number, (name, program, environment, body) in enumerate(cases):
            copy = shutil.copy(program, Path(folder) / ("program%d" % number))
            lines += ["case " + name, "program %s" % copy]
            lines += ["input %s" % body] if body else []
            lines += ["env %s=%s" % each for each in environment.items()]
        attempts = []
        while not attempts or (attempts[-1][0] > BUSY_SHARE and len(attempts) < ATTEMPTS):
            attempts.append(_measure("\n".join(lines) + "\n", rounds))
    share, output = min(attempts, key=lambda attempt: attempt[0])
    if share > BUSY_SHARE:
        report_busy(share)
    measured = json.loads(output)
    return {
        name: {
            "microseconds": statistics.median(values["wall"]),
            "best": values["wall"][0],
            "processor": statistics.median(values["processor"]),
            "peakKilobytes": values["peakKilobytes"],
            "systemCalls": values["systemCalls"],
        }
        for name, values in measured.items()
    }


def _measure(cases, rounds):
    """Runs measure.cpp. Returns the share of a processor that others used meanwhile, and its output."""
    before = _others_seconds(), time.monotonic()
    result = subprocess.run(
        [BUILD / "bench/measure", str(rounds)],
        input=cases,
        stdout=subprocess.PIPE,
        text=True,
        check=True,
    )
    return (_others_seconds() - before[0]) / (time.monotonic() - before[1]), result.stdout


def _others_seconds():
    """Returns the processor seconds used so far, except by ended child processes of this one."""
    fields = Path("/proc/stat").read_text(encoding="ascii").split("\n", 1)[0].split()[1:9]
    user, nice, system, _, _, interrupts, soft_interrupts, stolen = map(int, fields)
    worked = user + nice + system + interrupts + soft_interrupts + stolen
    own = resource.getrusage(resource.RUSAGE_CHILDREN)
    return worked / os.sysconf("SC_CLK_TCK") - own.ru_utime - own.ru_stime


def instructions(program, environment):
    """Returns the number of instructions of a run in user space."""
    result = subprocess.run(
        ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", program],
        env={"PATH": "/usr/bin:/bin", **environment},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.PIPE,
        text=True,
    )
    return int(re.search(r"Collected : (\d+)", result.stderr)[1])


def stripped_size(program, folder):
    """Returns the size of a program without symbols, in bytes."""
    copy = folder / "stripped"
    subprocess.run(["strip", "-o", copy, program], check=True)
    size = copy.stat().st_size
    copy.unlink()
    return size


def web_load(board, programs, clients, seconds, rounds):
    """Measures each program in turn. Returns requests per second and latencies in milliseconds."""
    folder = board.htdocs / "bench"
    folder.mkdir()
    targets = {"backup page": SCREEN + "?functionID=105"}
    for name, program in programs.items():
        copy = folder / Path(program).name
        copy.write_bytes(Path(program).read_bytes())
        copy.chmod(0o755)
        targets[name] = "/bench/" + copy.name
    measured = {name: {count: [] for count in clients} for name in targets}
    for _ in range(rounds):
        for count in clients:
            for name, target in targets.items():
                measured[name][count].append(_load(board, target, count, seconds))
    return {
        name: {
            count: {
                key: statistics.median(each[key] for each in runs) for key in runs[0]
            }
            for count, runs in counts.items()
        }
        for name, counts in measured.items()
    }


def _load(board, target, clients, seconds):
    result = subprocess.run(
        ["wrk", "-t1", "-c%d" % clients, "-d%ds" % seconds, "--latency"]
        + ["-H", "Cookie: " + board.cookie, board.url(target)],
        stdout=subprocess.PIPE,
        text=True,
        check=True,
    ).stdout
    if "Non-2xx" in result or "Socket errors" in result:
        raise RuntimeError(target + " fails under load:\n" + result)
    return {
        "requests": float(re.search(r"Requests/sec:\s*([\d.]+)", result)[1]),
        "half": _milliseconds(re.search(r"50%\s+([\d.]+\w+)", result)[1]),
        "most": _milliseconds(re.search(r"99%\s+([\d.]+\w+)", result)[1]),
    }


def _milliseconds(text):
    number, unit = re.match(r"([\d.]+)(\w+)", text).groups()
    return float(number) * {"us": 0.001, "ms": 1, "s": 1000}[unit]

"""Measures processes, and requests through the web server."""

import json
import re
import shutil
import statistics
import subprocess
import tempfile
from pathlib import Path

from support.board import BUILD, SCREEN


def run_cases(cases, rounds):
    """Measures cases, each (name, program, environment, input), in turn. See measure.cpp.

    What runs are copies, all made alike: how a file was written decides in how large pieces the
    kernel maps it, and a program as the linker leaves it takes a tenth longer than its copy.
    """
    lines = []
    with tempfile.TemporaryDirectory(prefix="bench-") as folder:
        for number, (name, program, environment, body) in enumerate(cases):
            copy = shutil.copy(program, Path(folder) / ("program%d" % number))
            lines += ["case " + name, "program %s" % copy]
            lines += ["input %s" % body] if body else []
            lines += ["env %s=%s" % each for each in environment.items()]
        result = subprocess.run(
            [BUILD / "bench/measure", str(rounds)],
            input="\n".join(lines) + "\n",
            stdout=subprocess.PIPE,
            text=True,
            check=True,
        )
    measured = json.loads(result.stdout)
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


def instructions(program, environment):
    """How many instructions a run takes in user space."""
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
    """Bytes of a program without its symbols."""
    copy = folder / "stripped"
    subprocess.run(["strip", "-o", copy, program], check=True)
    size = copy.stat().st_size
    copy.unlink()
    return size


def web_load(board, programs, clients, seconds, rounds):
    """Requests per second and latency in milliseconds, each program in turn."""
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

"""Faults in the system calls of the programs: runs a case, and lists the cases."""

import os
import tempfile

from faults import tracing
from faults.judge import Fault, Judge
from faults.program import run_program
from faults.request_types import REQUEST_TYPES
from faults.scene import Scene
from faults.worker import RequestWorker

# With EAGAIN, these are retried until their deadline: 10 s or 5 s, or 30 s in the back-end.
SLOW_CALLS = ("connect", "recvfrom", "sendto", "flock", "accept4")


def takes_long(case):
    name, error, when = case["inject"].split(":")
    return name in SLOW_CALLS and error == "error=EAGAIN" and when.endswith("+")


class CallFaultWorker(RequestWorker):
    """Runs requests with one failing system call. A case contains `request`, the name of a request
    type, and `inject`, strace's expression."""

    def run(self, case):
        self.remove_log()
        kind, request, before = self.begin(case)
        run = run_program(self.board, request, prefix=tracing.injecting(case["inject"], self.log))
        met = tracing.was_injected(self.log)
        fault = Fault(**{name: case.get(name, False) for name in ("killed", "mute", "unbegun")})
        problems = self.judge.judge(kind, before, run, fault) if met else []
        problems += self.judge.settle()
        return self.outcome(
            problems, run, met,
            environment={key: value for key, value in request.items() if key != "body"})


def list_calls(installation):
    """Returns {request type: the calls of its program}."""
    scene = Scene(installation)
    log = tempfile.mktemp(prefix="faults-log-")
    calls = {}
    try:
        for name, make in REQUEST_TYPES.items():
            request = make().prepare(scene)
            run_program(scene.board, request, prefix=tracing.listing(log))
            calls[name] = tracing.read_calls(log)
            os.remove(log)
            Judge(scene).settle()
    finally:
        scene.remove()
    return calls


def failure_cases(calls):
    """Returns a case for each call, each of its possible errors, once and lasting."""
    return without_most_long_ones([
        {"request": request, "inject": inject, "mute": call.name in ("write", "writev"),
         "unbegun": not call.in_main, "call": call.line[:160]}
        for request, made in calls.items() for call in made
        for inject in tracing.failures(call, made)])


def without_most_long_ones(cases):
    """Drops all slow cases but the first two of each request and call; the others would wait in the
    same place."""
    kept = []
    counts = {}
    for case in cases:
        if takes_long(case):
            key = case["request"], case["inject"].split(":")[0]
            counts[key] = counts.get(key, 0) + 1
            if counts[key] > 2:
                continue
        kept.append(case)
    return kept


def kill_cases(calls):
    """Returns a case for each call, with a kill just before it.

    A kill after a call equals a kill before the next one, because between two calls only the
    process's own memory changes. The last call is the end of the process.
    """
    return [{"request": request, "inject": f"{call.name}:signal=KILL:when={call.occurrence}",
             "killed": True, "call": call.line[:160]}
            for request, made in calls.items() for call in made if call.name != "execve"]

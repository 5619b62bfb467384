"""Faults in the system calls of the programs: the run of one case, and the list of cases."""

import os
import tempfile

from support import tracing
from support.judge import Fault, Judge
from support.program import runProgram
from support.requestTypes import REQUEST_TYPES
from support.scene import Scene
from support.worker import RequestWorker

# What only says "try again" is asked until the deadline of 10 s or 5 s, or 30 s in the back-end.
SLOW_CALLS = ("connect", "recvfrom", "sendto", "flock", "accept4")


def takesLong(case):
    name, error, when = case["inject"].split(":")
    return name in SLOW_CALLS and error == "error=EAGAIN" and when.endswith("+")


class CallFaultWorker(RequestWorker):
    """Runs requests with one system call going wrong. The case holds `request`, the name of a
    request type, and `inject`, strace's expression."""

    def run(self, case):
        self.removeLog()
        kind, request, before = self.begin(case)
        run = runProgram(self.board, request, prefix=tracing.injecting(case["inject"], self.log))
        met = tracing.wasInjected(self.log)
        fault = Fault(**{name: case.get(name, False) for name in ("killed", "mute", "unbegun")})
        problems = self.judge.judge(kind, before, run, fault) if met else []
        problems += self.judge.settle()
        return self.outcome(
            problems, run, met,
            environment={key: value for key, value in request.items() if key != "body"})


def listCalls(installation):
    """{request type: the calls that its program makes}."""
    scene = Scene(installation)
    log = tempfile.mktemp(prefix="faults-log-")
    calls = {}
    try:
        for name, make in REQUEST_TYPES.items():
            request = make().prepare(scene)
            runProgram(scene.board, request, prefix=tracing.listing(log))
            calls[name] = tracing.readCalls(log)
            os.remove(log)
            Judge(scene).settle()
    finally:
        scene.remove()
    return calls


def failureCases(calls):
    """A case for each call, each error that fits it, once and lasting."""
    return withoutMostLongOnes([
        {"request": request, "inject": inject, "mute": call.name in ("write", "writev"),
         "unbegun": not call.inMain, "call": call.line[:160]}
        for request, made in calls.items() for call in made
        for inject in tracing.failures(call, made)])


def withoutMostLongOnes(cases):
    """Of the cases that take long, the first two of each request and call: the others end in the
    same wait."""
    kept = []
    counts = {}
    for case in cases:
        if takesLong(case):
            key = case["request"], case["inject"].split(":")[0]
            counts[key] = counts.get(key, 0) + 1
            if counts[key] > 2:
                continue
        kept.append(case)
    return kept


def killCases(calls):
    """A case for each call: killed when it is about to be made.

    Killed behind a call is the same as killed before the next one: what lies between two calls
    changes only the process's own memory, which ends with it. Behind the last call, the end of
    the process, there is nothing to be killed.
    """
    return [{"request": request, "inject": f"{call.name}:signal=KILL:when={call.occurrence}",
             "killed": True, "call": call.line[:160]}
            for request, made in calls.items() for call in made if call.name != "execve"]

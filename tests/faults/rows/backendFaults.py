"""Faults in the system calls of the back-end, from its start to its answers."""

import os
import tempfile

from rows.programFaults import withoutMostLongOnes
from support import tracing
from support.judge import Fault, Judge
from support.program import runProgram
from support.requestTypes import BACKEND_REQUESTS, REQUEST_TYPES
from support.scene import Scene
from support.worker import RequestWorker


class BackendFaultWorker(RequestWorker):
    """Starts the back-end with one failing call, makes a request, and continues with a healthy
    back-end. strace counts the calls of each thread separately, and the threads take turns to
    accept clients, so that a fault "once" affects several connections of the request."""

    def run(self, case):
        self.removeLog()
        kind, request, before = self.begin(case)
        self.board.stop()
        problems = []
        ready = self.board.start(prefix=tracing.injecting(case["inject"], self.log),
                                 mustStart=False)
        run = runProgram(self.board, request)
        fault = Fault()
        if ready and not self.board.waitUntilQuiet():
            problems.append("the back-end still works for the request")
        met = tracing.wasInjected(self.log)
        if ready and not case.get("killed") and self.board.backendProcess() is None:
            problems.append("the back-end died")
        silenced = case.get("killed") or case["inject"].startswith("write:")
        if not ready and not silenced and case["inMain"] and not self.board.errors():
            problems.append("the back-end did not start and does not say why")
        errors = self.board.errors()
        self.board.kill()
        # The next start removes the temporary files of a killed back-end.
        self.board.start()
        problems += self.judge.judge(kind, before, run, fault)
        problems += self.judge.settle()
        return self.outcome(problems, run, met, backendErrors=errors)


def listBackendCalls(installation):
    """Returns {request type: calls} for all threads together: each name and occurrence once."""
    scene = Scene(installation)
    log = tempfile.mktemp(prefix="faults-log-")
    found = {}
    try:
        for name in BACKEND_REQUESTS:
            request = REQUEST_TYPES[name]().prepare(scene)
            scene.board.stop()
            scene.board.start(prefix=["strace", "-f", "-ff", "-qqq", "-o", log])
            runProgram(scene.board, request)
            scene.board.waitUntilQuiet()
            scene.board.stop()
            found[name] = mergeThreads(log)
            scene.board.start()
            Judge(scene).settle()
    finally:
        scene.remove()
    return found


def mergeThreads(log):
    calls = {}
    folder, start = os.path.split(log)
    for file in sorted(os.listdir(folder)):
        if file.startswith(start + "."):
            for call in tracing.readCalls(os.path.join(folder, file)):
                # Only calls of the main thread can come before the program's own code.
                known = calls.get((call.name, call.occurrence))
                if known is None:
                    calls[(call.name, call.occurrence)] = call
            os.remove(os.path.join(folder, file))
    return list(calls.values())


def backendFailureCases(found):
    return withoutMostLongOnes([
        {"request": request, "inject": inject, "inMain": call.inMain, "call": call.line[:160]}
        for request, calls in found.items() for call in calls
        for inject in tracing.failures(call, calls)])


def backendKillCases(found):
    return [{"request": request, "inject": f"{call.name}:signal=KILL:when={call.occurrence}",
             "killed": True, "inMain": call.inMain, "call": call.line[:160]}
            for request, calls in found.items() for call in calls if call.name != "execve"]

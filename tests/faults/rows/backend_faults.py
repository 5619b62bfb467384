"""Faults in the system calls of the back-end, from its start to its answers."""

import os
import tempfile

from rows.program_faults import without_most_long_ones
from faults import tracing
from faults.judge import Fault, Judge
from faults.program import run_program
from faults.request_types import BACKEND_REQUESTS, REQUEST_TYPES
from faults.scene import Scene
from faults.worker import RequestWorker


class BackendFaultWorker(RequestWorker):
    """Starts the back-end with one failing call, makes a request, and continues with a healthy
    back-end. strace counts the calls of each thread separately, and the threads take turns to
    accept clients, so that a fault "once" affects several connections of the request."""

    def run(self, case):
        self.remove_log()
        kind, request, before = self.begin(case)
        self.board.stop()
        problems = []
        ready = self.board.start(prefix=tracing.injecting(case["inject"], self.log),
                                 must_start=False)
        run = run_program(self.board, request)
        fault = Fault()
        if ready and not self.board.wait_until_quiet():
            problems.append("the back-end still works for the request")
        met = tracing.was_injected(self.log)
        if ready and not case.get("killed") and self.board.backend_process() is None:
            problems.append("the back-end died")
        silenced = case.get("killed") or case["inject"].startswith("write:")
        if not ready and not silenced and case["in_main"] and not self.board.errors():
            problems.append("the back-end did not start and does not say why")
        errors = self.board.errors()
        self.board.kill()
        # The next start removes the temporary files of a killed back-end.
        self.board.start()
        problems += self.judge.judge(kind, before, run, fault)
        problems += self.judge.settle()
        return self.outcome(problems, run, met, backend_errors=errors)


def list_backend_calls(installation):
    """Returns {request type: calls} for all threads together: each name and occurrence once."""
    scene = Scene(installation)
    log = tempfile.mktemp(prefix="faults-log-")
    found = {}
    try:
        for name in BACKEND_REQUESTS:
            request = REQUEST_TYPES[name]().prepare(scene)
            scene.board.stop()
            scene.board.start(prefix=["strace", "-f", "-ff", "-qqq", "-o", log])
            run_program(scene.board, request)
            scene.board.wait_until_quiet()
            scene.board.stop()
            found[name] = merge_threads(log)
            scene.board.start()
            Judge(scene).settle()
    finally:
        scene.remove()
    return found


def merge_threads(log):
    calls = {}
    folder, start = os.path.split(log)
    for file in sorted(os.listdir(folder)):
        if file.startswith(start + "."):
            for call in tracing.read_calls(os.path.join(folder, file)):
                # Only calls of the main thread can come before the program's own code.
                known = calls.get((call.name, call.occurrence))
                if known is None:
                    calls[(call.name, call.occurrence)] = call
            os.remove(os.path.join(folder, file))
    return list(calls.values())


def backend_failure_cases(found):
    return without_most_long_ones([
        {"request": request, "inject": inject, "in_main": call.in_main, "call": call.line[:160]}
        for request, calls in found.items() for call in calls
        for inject in tracing.failures(call, calls)])


def backend_kill_cases(found):
    return [{"request": request, "inject": f"{call.name}:signal=KILL:when={call.occurrence}",
             "killed": True, "in_main": call.in_main, "call": call.line[:160]}
            for request, calls in found.items() for call in calls if call.name != "execve"]

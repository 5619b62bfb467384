"""Makes every memory allocation of the programs and the back-end fail, once and lasting."""

import os
import tempfile

from faults.case_runs import Result, run_cases
from faults.judge import Fault, Judge
from faults.program import run_program
from faults.request_types import BACKEND_REQUESTS, REQUEST_TYPES
from faults.scene import Scene
from faults.worker import RequestWorker

HELP = "failure of each memory allocation, once and lasting"
SHORT_PROGRAM_RUNS = 120
SHORT_BACKEND_RUNS = 40

LIBRARY = "tests/faults/libfailing_allocations.so"


def failure(library, number, lasting):
    """Returns the environment in which this allocation fails, and all later ones if `lasting`."""
    variables = {"LD_PRELOAD": library, "FAIL_ALLOCATION": str(number)}
    if lasting:
        variables["FAIL_FROM_THEN_ON"] = "1"
    return variables


class Worker(RequestWorker):
    def __init__(self, installation):
        super().__init__(installation.linked_dynamically())
        self.failing_allocations = os.path.join(installation.build, LIBRARY)

    def run(self, case):
        return self.run_backend(case) if case["backend"] else self.run_request(case)

    def run_request(self, case):
        kind, request, before = self.begin(case)
        run = run_program(self.board, request,
                          more=failure(self.failing_allocations, case["number"], case["lasting"]))
        # No answer is possible before main(), and a program without memory for its main object may
        # leave the answer to the web server.
        problems = self.judge.judge(kind, before, run, Fault(mute=True, unbegun=case["unbegun"]))
        problems += self.judge.settle()
        return self.outcome(problems, run)

    def run_backend(self, case):
        kind, request, before = self.begin(case)
        board = self.board
        board.stop()
        problems = []
        ready = board.start(more=failure(self.failing_allocations, case["number"], case["lasting"]),
                            must_start=False)
        run = run_program(board, request)
        if ready:
            if not board.wait_until_quiet():
                problems.append("the back-end still works for the request")
            if board.backend_process() is None:
                problems.append("the back-end died: " + board.errors())
        board.kill()
        if not ready and board.ended_by_signal is not None and not case["unbegun"]:
            problems.append(f"the back-end died of signal {board.ended_by_signal}")
        board.start()
        problems += self.judge.judge(kind, before, run, Fault())
        problems += self.judge.settle()
        return self.outcome(problems, run)


def count_allocations(context):
    """Counts the allocations before main() and in total, of each program and of the back-end from
    its start to its stop with one request. Returns two maps from request type to both numbers."""
    library = os.path.join(context.installation.build, LIBRARY)
    path = tempfile.mktemp(prefix="faults-count-")
    count = {"LD_PRELOAD": library, "ALLOCATION_COUNT": path}
    scene = Scene(context.installation.linked_dynamically())
    judge = Judge(scene)
    programs, backend = {}, {}

    def counted():
        with open(path, encoding="ascii") as file:
            numbers = tuple(int(number) for number in file.read().split())
        os.remove(path)
        return numbers

    try:
        for name, make in REQUEST_TYPES.items():
            run_program(scene.board, make().prepare(scene), more=count)
            programs[name] = counted()
            judge.settle()
        for name in BACKEND_REQUESTS:
            request = REQUEST_TYPES[name]().prepare(scene)
            scene.board.stop()
            scene.board.start(more=count)
            run_program(scene.board, request)
            scene.board.wait_until_quiet()
            scene.board.stop()
            backend[name] = counted()
            scene.board.start()
            judge.settle()
    finally:
        scene.remove()
    return programs, backend


def make_cases(counts, backend):
    return [{"request": request, "number": number, "lasting": lasting, "backend": backend,
             "unbegun": number <= before_main}
            for request, (before_main, count) in counts.items() for number in range(1, count + 1)
            for lasting in (False, True)]


def make_worker(installation, case):
    return Worker(installation)


def run(context):
    library = os.path.join(context.installation.build, LIBRARY)
    if not os.path.exists(library):
        return Result(violations=[{"file": library, "case": None,
                                   "problems": ["the library is not built"]}])
    programs, backend = count_allocations(context)
    if not all(0 < before < count for before, count in (*programs.values(), *backend.values())):
        return Result(violations=[{"file": library, "case": None, "problems": [
            "the library does not count the programs' allocations"]}])
    cases = (context.sample(make_cases(programs, False), SHORT_PROGRAM_RUNS)
             + context.sample(make_cases(backend, True), SHORT_BACKEND_RUNS))
    return run_cases(context, "allocations", cases, lambda: Worker(context.installation))

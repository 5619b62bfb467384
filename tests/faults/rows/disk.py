"""Runs requests on a disk with too few pages or inodes, and with low limits of file size and
descriptors."""

import resource

from faults.case_runs import Result, run_cases
from faults.judge import Fault
from faults.program import run_program
from faults.request_types import BACKEND_REQUESTS, REQUEST_TYPES
from faults.response import parse_response
from faults.small_disk import PAGE, SmallDisk, why_impossible
from faults.worker import RequestWorker

HELP = "a disk full after every 4 KiB, without inodes; limits of file size and descriptors"
SHORT_DISK_RUNS = 90
SHORT_LIMIT_RUNS = 110

# Upper bounds of the space that each request uses, in pages.
REACH = {"upload": 96, "unusable upload": 14, "too large upload": 106, "broken upload": 58,
         "backup": 36, "restore": 180, "login": 8}
OTHER_REACH = 4
MOST_INODES = 6
MOST_DESCRIPTORS = 24
STANDARD_DESCRIPTORS = 3

LOADER_FAILED = 127


class Worker(RequestWorker):
    """Runs a request with little disk space or a low limit of the program or the back-end."""

    def __init__(self, installation, on_small_disk):
        self.disk = SmallDisk() if on_small_disk else None
        super().__init__(installation, self.disk.folder if on_small_disk else None)

    def run(self, case):
        kind, request, before = self.begin(case)
        run = self.run_short(case, request)
        fault = Fault(unbegun=run.exit_status == LOADER_FAILED, must_report=kind.writes)
        problems = self.judge.judge(kind, before, run, fault)
        if self.disk:
            self.disk.empty()
        problems += self.judge.settle()
        return self.outcome(problems, run, tally=self.tally(kind, run),
                            backend_errors=self.board.errors()[-2000:])

    def tally(self, kind, run):
        """Returns the effect of the shortage, for the figures."""
        if not run.output:
            return "no answer"
        done = kind.claims_success(parse_response(run.output), self.scene)
        return "carried out" if done else "not carried out"

    def run_short(self, case, request):
        board = self.board
        amount = case["amount"]
        if case["short"] == "pages":
            self.disk.leave_pages(amount)
        elif case["short"] == "inodes":
            self.disk.leave_inodes(amount)
        number, value = limit_of(case)
        if number is None:
            return run_program(board, request)
        if not case["backend"]:
            return run_program(board, request, limits={number: value})
        pid = board.backend_process()
        usual = resource.prlimit(pid, number, (value, resource.prlimit(pid, number)[1]))
        try:
            run = run_program(board, request)
            board.wait_until_quiet()
        finally:
            resource.prlimit(pid, number, usual)
        return run

    def close(self):
        super().close()
        if self.disk:
            self.disk.remove()


def limit_of(case):
    if case["short"] == "file size":
        return resource.RLIMIT_FSIZE, case["amount"] * PAGE
    if case["short"] == "descriptors":
        return resource.RLIMIT_NOFILE, case["amount"]
    return None, None


def disk_cases():
    cases = []
    for request in REQUEST_TYPES:
        for amount in range(REACH.get(request, OTHER_REACH) + 1):
            cases.append({"request": request, "short": "pages", "amount": amount, "backend": False})
        for amount in range(MOST_INODES + 1):
            cases.append({"request": request, "short": "inodes", "amount": amount,
                          "backend": False})
    return cases


def limit_cases():
    cases = []
    for request in REQUEST_TYPES:
        for backend in (False, True):
            if backend and request not in BACKEND_REQUESTS:
                continue
            for amount in range(REACH.get(request, OTHER_REACH) + 1):
                cases.append({"request": request, "short": "file size", "amount": amount,
                              "backend": backend})
            for amount in range(STANDARD_DESCRIPTORS, MOST_DESCRIPTORS):
                cases.append({"request": request, "short": "descriptors", "amount": amount,
                              "backend": backend})
    return cases


def tallies(name, result):
    return {f"{name} {tally}": result.figures[tally]
            for tally in ("carried out", "not carried out", "no answer") if tally in result.figures}


def make_worker(installation, case):
    return Worker(installation, case["short"] in ("pages", "inodes"))


def run(context):
    installation = context.installation
    limits = run_cases(context, "disk", context.sample(limit_cases(), SHORT_LIMIT_RUNS),
                       lambda: Worker(installation, False))
    figures = {"limits": limits.runs, "tried": limits.figures["tried"], **tallies("limits", limits)}
    reason = why_impossible()
    if reason is not None:
        # Makes clear that half of the row was not run.
        figures["full disk and inodes"] = f"NOT RUN, {reason}"
        return Result(limits.runs, limits.violations, figures)
    disk = run_cases(context, "disk", context.sample(disk_cases(), SHORT_DISK_RUNS),
                     lambda: Worker(installation, True))
    figures["tried"] += disk.figures["tried"]
    figures.update({"full disk and inodes": disk.runs, **tallies("disk", disk)})
    return Result(limits.runs + disk.runs, limits.violations + disk.violations, figures)

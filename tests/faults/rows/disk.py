"""Runs requests on a disk with too few pages or inodes, and with low limits of file size and
descriptors."""

import resource

from support.caseRuns import Result, runCases
from support.judge import Fault
from support.program import runProgram
from support.requestTypes import BACKEND_REQUESTS, REQUEST_TYPES
from support.response import parseResponse
from support.smallDisk import PAGE, SmallDisk, whyImpossible
from support.worker import RequestWorker

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

    def __init__(self, installation, onSmallDisk):
        self.disk = SmallDisk() if onSmallDisk else None
        super().__init__(installation, self.disk.folder if onSmallDisk else None)

    def run(self, case):
        kind, request, before = self.begin(case)
        run = self.runShort(case, request)
        fault = Fault(unbegun=run.exitStatus == LOADER_FAILED, mustReport=kind.writes)
        problems = self.judge.judge(kind, before, run, fault)
        if self.disk:
            self.disk.empty()
        problems += self.judge.settle()
        return self.outcome(problems, run, tally=self.tally(kind, run),
                            backendErrors=self.board.errors()[-2000:])

    def tally(self, kind, run):
        """Returns the effect of the shortage, for the figures."""
        if not run.output:
            return "no answer"
        done = kind.claimsSuccess(parseResponse(run.output), self.scene)
        return "carried out" if done else "not carried out"

    def runShort(self, case, request):
        board = self.board
        amount = case["amount"]
        if case["short"] == "pages":
            self.disk.leavePages(amount)
        elif case["short"] == "inodes":
            self.disk.leaveInodes(amount)
        number, value = limitOf(case)
        if number is None:
            return runProgram(board, request)
        if not case["backend"]:
            return runProgram(board, request, limits={number: value})
        pid = board.backendProcess()
        usual = resource.prlimit(pid, number, (value, resource.prlimit(pid, number)[1]))
        try:
            run = runProgram(board, request)
            board.waitUntilQuiet()
        finally:
            resource.prlimit(pid, number, usual)
        return run

    def close(self):
        super().close()
        if self.disk:
            self.disk.remove()


def limitOf(case):
    if case["short"] == "file size":
        return resource.RLIMIT_FSIZE, case["amount"] * PAGE
    if case["short"] == "descriptors":
        return resource.RLIMIT_NOFILE, case["amount"]
    return None, None


def diskCases():
    cases = []
    for request in REQUEST_TYPES:
        for amount in range(REACH.get(request, OTHER_REACH) + 1):
            cases.append({"request": request, "short": "pages", "amount": amount, "backend": False})
        for amount in range(MOST_INODES + 1):
            cases.append({"request": request, "short": "inodes", "amount": amount,
                          "backend": False})
    return cases


def limitCases():
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


def makeWorker(installation, case):
    return Worker(installation, case["short"] in ("pages", "inodes"))


def run(context):
    installation = context.installation
    limits = runCases(context, "disk", context.sample(limitCases(), SHORT_LIMIT_RUNS),
                      lambda: Worker(installation, False))
    figures = {"limits": limits.runs, "tried": limits.figures["tried"], **tallies("limits", limits)}
    reason = whyImpossible()
    if reason is not None:
        # Makes clear that half of the row was not run.
        figures["full disk and inodes"] = f"NOT RUN, {reason}"
        return Result(limits.runs, limits.violations, figures)
    disk = runCases(context, "disk", context.sample(diskCases(), SHORT_DISK_RUNS),
                    lambda: Worker(installation, True))
    figures["tried"] += disk.figures["tried"]
    figures.update({"full disk and inodes": disk.runs, **tallies("disk", disk)})
    return Result(limits.runs + disk.runs, limits.violations + disk.violations, figures)

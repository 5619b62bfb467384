"""Makes every system call of each request's program and of the back-end fail, once and lasting."""

from rows import backendFaults, programFaults
from support.caseRuns import Result, runCases

HELP = "failure of each system call with each of its possible errors, once and lasting"
SHORT_PROGRAM_RUNS = 150
SHORT_BACKEND_RUNS = 40


def makeWorker(installation, case):
    """Returns the worker for repeating a recorded violation."""
    worker = (backendFaults.BackendFaultWorker if "inMain" in case
              else programFaults.CallFaultWorker)
    return worker(installation)


def run(context):
    programs = programFaults.failureCases(programFaults.listCalls(context.installation))
    backend = backendFaults.backendFailureCases(
        backendFaults.listBackendCalls(context.installation))
    if not context.long:
        programs = [case for case in programs if not programFaults.takesLong(case)]
        backend = [case for case in backend if not programFaults.takesLong(case)]
    return runBoth(context, "syscalls", context.sample(programs, SHORT_PROGRAM_RUNS),
                   context.sample(backend, SHORT_BACKEND_RUNS))


def runBoth(context, row, programs, backend):
    installation = context.installation
    context.beginPart(0.7)
    one = runCases(context, row, programs,
                   lambda: programFaults.CallFaultWorker(installation))
    context.beginPart(1)
    other = runCases(context, row, backend,
                     lambda: backendFaults.BackendFaultWorker(installation))
    return Result(one.runs + other.runs, one.violations + other.violations,
                  {"program runs": one.runs, "back-end runs": other.runs,
                   "cases": len(programs) + len(backend),
                   "tried": one.figures["tried"] + other.figures["tried"]})

"""Every system call of every request type failing, once and from then on; the back-end's, too."""

from rows import backendFaults, programFaults
from support.caseRuns import Result, runCases

HELP = "each system call failing with each error that fits it, once and from then on"
SHORT_PROGRAM_RUNS = 150
SHORT_BACKEND_RUNS = 40


def makeWorker(installation, case):
    """The worker that a kept violation needs."""
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

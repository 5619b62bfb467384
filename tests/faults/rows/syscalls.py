"""Makes every system call of each request's program and of the back-end fail, once and lasting."""

from rows import backend_faults, program_faults
from faults.case_runs import Result, run_cases

HELP = "failure of each system call with each of its possible errors, once and lasting"
SHORT_PROGRAM_RUNS = 150
SHORT_BACKEND_RUNS = 40


def make_worker(installation, case):
    """Returns the worker for repeating a recorded violation."""
    worker = (backend_faults.BackendFaultWorker if "in_main" in case
              else program_faults.CallFaultWorker)
    return worker(installation)


def run(context):
    programs = program_faults.failure_cases(program_faults.list_calls(context.installation))
    backend = backend_faults.backend_failure_cases(
        backend_faults.list_backend_calls(context.installation))
    if not context.long:
        programs = [case for case in programs if not program_faults.takes_long(case)]
        backend = [case for case in backend if not program_faults.takes_long(case)]
    return run_both(context, "syscalls", context.sample(programs, SHORT_PROGRAM_RUNS),
                    context.sample(backend, SHORT_BACKEND_RUNS))


def run_both(context, row, programs, backend):
    installation = context.installation
    context.begin_part(0.7)
    one = run_cases(context, row, programs,
                    lambda: program_faults.CallFaultWorker(installation))
    context.begin_part(1)
    other = run_cases(context, row, backend,
                      lambda: backend_faults.BackendFaultWorker(installation))
    return Result(one.runs + other.runs, one.violations + other.violations,
                  {"program runs": one.runs, "back-end runs": other.runs,
                   "cases": len(programs) + len(backend),
                   "tried": one.figures["tried"] + other.figures["tried"]})

"""Kills the programs and the back-end before and after every system call."""

from rows import backend_faults, program_faults
from rows.syscalls import make_worker, run_both

__all__ = ["HELP", "make_worker", "run"]

HELP = "a kill before and after each system call"
SHORT_PROGRAM_RUNS = 80
SHORT_BACKEND_RUNS = 120


def run(context):
    programs = program_faults.kill_cases(program_faults.list_calls(context.installation))
    backend = backend_faults.backend_kill_cases(
        backend_faults.list_backend_calls(context.installation))
    return run_both(context, "kills", context.sample(programs, SHORT_PROGRAM_RUNS),
                    context.sample(backend, SHORT_BACKEND_RUNS))

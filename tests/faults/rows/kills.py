"""Kills the programs and the back-end before and after every system call."""

from rows import backendFaults, programFaults
from rows.syscalls import makeWorker, runBoth

__all__ = ["HELP", "makeWorker", "run"]

HELP = "a kill before and after each system call"
SHORT_PROGRAM_RUNS = 80
SHORT_BACKEND_RUNS = 120


def run(context):
    programs = programFaults.killCases(programFaults.listCalls(context.installation))
    backend = backendFaults.backendKillCases(
        backendFaults.listBackendCalls(context.installation))
    return runBoth(context, "kills", context.sample(programs, SHORT_PROGRAM_RUNS),
                   context.sample(backend, SHORT_BACKEND_RUNS))

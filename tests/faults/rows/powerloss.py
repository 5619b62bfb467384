"""Power loss: checks in which order kept files are written, synced and renamed."""

import os
import re

from support import auditLog, durability
from support.board import sampleFile
from support.caseRuns import Outcome, runCases
from support.configurationFile import decodeState, encodeState
from support.program import runProgram
from support.requestTypes import REQUEST_TYPES, multipart, postParts
from support.scene import STATE, stagedFile
from support.worker import RequestWorker

HELP = "the order of write, sync, rename and folder sync of all kept files"

KEPT = re.compile(r"/var/(lib/board/configurations|run/board_properties|tmp/efi_backup[0-9a-f]{16}"
                  r"|lib/session/[0-9a-f]{16})$")


LOG = re.compile(r"/var/log/audit\.log$")


def isKept(path):
    return KEPT.search(path) is not None


def isLog(path):
    return LOG.search(path) is not None


def startsFirst(board, scene):
    """There is no state file yet."""
    board.write(None, STATE)


def startsWithNewPartition(board, scene):
    """The state file lacks a partition."""
    payloads = decodeState(board.read(STATE))
    del payloads[2]
    board.write(encodeState(payloads), STATE)


def startsAgain(board, scene):
    """Nothing is missing."""


def startsAfterDeath(board, scene):
    """There is a temporary file of a killed back-end."""
    board.write(b"half", STATE + ".aside-abcdef")


def asksFor(name):
    """Returns a function that prepares a request of the given type."""

    def prepare(board, scene):
        return REQUEST_TYPES[name]().prepare(scene)

    return prepare


def restores(*targets, everything=False):
    def prepare(board, scene):
        scene.stage({stagedFile(scene.operator): sampleFile(scene.letter)})
        fields = {"functionID": 106, "hidden_status": 2}
        fields.update({"check_box": "on"} if everything else {f"pid{n}": n for n in targets})
        return postParts(scene.operator, multipart(fields))

    return prepare


def withoutLog(prepare):
    def prepareWithout(board, scene):
        request = prepare(board, scene)
        board.write(None, auditLog.LOG)
        return request

    return prepareWithout


# For each action: how to prepare it, how often it replaces a kept file, how often it writes the
# audit log, and which process is traced. The back-end's start and stop write one line each.
PATHS = {
    "first start": (startsFirst, 2, 2, "backend"),
    "start with a new partition": (startsWithNewPartition, 2, 2, "backend"),
    "start": (startsAgain, 1, 2, "backend"),
    "start without a log": (withoutLog(startsAgain), 1, 2, "backend"),
    "start after a death": (startsAfterDeath, 1, 2, "backend"),
    "backup": (asksFor("backup"), 2, 3, "backend"),
    # The log has a line for the begin and one for the end.
    "restore to one partition": (restores(3), 2, 4, "backend"),
    "restore to two partitions": (restores(2, 3), 2, 4, "backend"),
    # One of the partitions is running and one has another BIOS: nothing is changed.
    "restore to all, refused": (restores(everything=True), 1, 3, "backend"),
    # Another session has expired.
    "login": (asksFor("login"), 1, 2, "program"),
    # The log ends with half a line, as after a power cut.
    "logout": (asksFor("logout"), 0, 2, "program"),
    "upload": (asksFor("upload"), 0, 1, "program"),
    "discard": (asksFor("discard"), 0, 1, "program"),
    "discard without a log": (withoutLog(asksFor("discard")), 0, 1, "program"),
    "discard and rotation": (asksFor("rotating discard"), 0, 1, "program"),
    "download": (asksFor("download"), 0, 1, "program"),
}


def lastBeforeWord(later):
    """Returns true if the steps rename or report something before they sync the log again."""
    for step in later:
        if step.kind == "synced" and isLog(step.path):
            return False
        if step.kind in ("named", "reported"):
            return True
    return True


class Worker(RequestWorker):
    def run(self, case):
        prepare, expectedFiles, expectedLines, watched = PATHS[case["path"]]
        board = self.board
        board.stop()
        prefix = durability.tracing(self.log)
        if watched == "program":
            board.start()
        request = prepare(board, self.scene)
        logIsNew = board.read(auditLog.LOG) is None
        if watched == "backend":
            board.start(prefix=prefix)
        if request is not None:
            run = runProgram(board, request, prefix=prefix if watched == "program" else ())
            if run.exitStatus != 0:
                return Outcome([f"the request failed: {run.output[-300:]!r}"])
            board.waitUntilQuiet()
        if watched == "backend":
            board.stop()
            board.start()
        steps = durability.nameSources(durability.readSteps(self.log))
        problems, replaced, appended = durability.check(steps, isKept, isLog, logIsNew)
        if replaced != expectedFiles:
            problems.append(f"{replaced} kept files were replaced, not {expectedFiles}")
        if appended != expectedLines:
            problems.append(f"the audit log was written {appended} times, not {expectedLines}")
        problems += self.missedMistakes(steps, logIsNew)
        return Outcome(problems, True, {"steps": [str(step) for step in steps]})

    @staticmethod
    def missedMistakes(steps, logIsNew):
        """Omits each sync in turn; reports those that the check does not notice."""
        missed = []
        for index, step in enumerate(steps):
            if step.kind == "synced" and isLog(step.path) and lastBeforeWord(steps[index + 1:]):
                less = steps[:index] + steps[index + 1:]
                if not durability.check(less, isKept, isLog, logIsNew)[0]:
                    missed.append(f"a missing sync of {step.path} would go unnoticed")
            if step.kind == "named" and isKept(step.path):
                folder = os.path.dirname(step.path)
                own = max((i for i, other in enumerate(steps[:index])
                           if other.kind == "synced" and other.path == step.source), default=None)
                following = min((i for i, other in enumerate(steps)
                              if i > index and other.kind == "synced" and other.path == folder),
                             default=None)
                for left in (own, following):
                    less = [other for i, other in enumerate(steps) if i != left]
                    if left is None or not durability.check(less, isKept, isLog, logIsNew)[0]:
                        missed.append(f"a missing sync of {step.path} would go unnoticed")
        return missed


def makeWorker(installation, case):
    return Worker(installation)


def run(context):
    return runCases(context, "powerloss", [{"path": path} for path in PATHS],
                    lambda: Worker(context.installation))

"""Power loss: checks in which order kept files are written, synced and renamed."""

import os
import re

from faults import audit_log, durability
from faults.board import sample_file
from faults.case_runs import Outcome, run_cases
from faults.configuration_file import decode_state, encode_state
from faults.program import run_program
from faults.request_types import REQUEST_TYPES, multipart, post_parts
from faults.scene import STATE, staged_file
from faults.worker import RequestWorker

HELP = "the order of write, sync, rename and folder sync of all kept files"

KEPT = re.compile(r"/var/(lib/board/configurations|run/board_properties|tmp/efi_backup[0-9a-f]{16}"
                  r"|lib/session/[0-9a-f]{16})$")


LOG = re.compile(r"/var/log/audit\.log$")


def is_kept(path):
    return KEPT.search(path) is not None


def is_log(path):
    return LOG.search(path) is not None


def starts_first(board, scene):
    """There is no state file yet."""
    board.write(None, STATE)


def starts_with_new_partition(board, scene):
    """The state file lacks a partition."""
    payloads = decode_state(board.read(STATE))
    del payloads[2]
    board.write(encode_state(payloads), STATE)


def starts_again(board, scene):
    """Nothing is missing."""


def starts_after_death(board, scene):
    """There is a temporary file of a killed back-end."""
    board.write(b"half", STATE + ".aside-abcdef")


def asks_for(name):
    """Returns a function that prepares a request of the given type."""

    def prepare(board, scene):
        return REQUEST_TYPES[name]().prepare(scene)

    return prepare


def restores(*targets, everything=False):
    def prepare(board, scene):
        scene.stage({staged_file(scene.operator): sample_file(scene.letter)})
        fields = {"functionID": 106, "hidden_status": 2}
        fields.update({"check_box": "on"} if everything else {f"pid{n}": n for n in targets})
        return post_parts(scene.operator, multipart(fields))

    return prepare


def without_log(prepare):
    def prepare_without(board, scene):
        request = prepare(board, scene)
        board.write(None, audit_log.LOG)
        return request

    return prepare_without


# For each action: how to prepare it, how often it replaces a kept file, how often it writes the
# audit log, and which process is traced. The back-end's start and stop write one line each.
PATHS = {
    "first start": (starts_first, 2, 2, "backend"),
    "start with a new partition": (starts_with_new_partition, 2, 2, "backend"),
    "start": (starts_again, 1, 2, "backend"),
    "start without a log": (without_log(starts_again), 1, 2, "backend"),
    "start after a death": (starts_after_death, 1, 2, "backend"),
    "backup": (asks_for("backup"), 2, 3, "backend"),
    # The log has a line for the begin and one for the end.
    "restore to one partition": (restores(3), 2, 4, "backend"),
    "restore to two partitions": (restores(2, 3), 2, 4, "backend"),
    # One of the partitions is running and one has another BIOS: nothing is changed.
    "restore to all, refused": (restores(everything=True), 1, 3, "backend"),
    # Another session has expired.
    "login": (asks_for("login"), 1, 2, "program"),
    # The log ends with half a line, as after a power cut.
    "logout": (asks_for("logout"), 0, 2, "program"),
    "upload": (asks_for("upload"), 0, 1, "program"),
    "discard": (asks_for("discard"), 0, 1, "program"),
    "discard without a log": (without_log(asks_for("discard")), 0, 1, "program"),
    "discard and rotation": (asks_for("rotating discard"), 0, 1, "program"),
    "download": (asks_for("download"), 0, 1, "program"),
}


def last_before_word(later):
    """Returns true if the steps rename or report something before they sync the log again."""
    for step in later:
        if step.kind == "synced" and is_log(step.path):
            return False
        if step.kind in ("named", "reported"):
            return True
    return True


class Worker(RequestWorker):
    def run(self, case):
        prepare, expected_files, expected_lines, watched = PATHS[case["path"]]
        board = self.board
        board.stop()
        prefix = durability.tracing(self.log)
        if watched == "program":
            board.start()
        request = prepare(board, self.scene)
        log_is_new = board.read(audit_log.LOG) is None
        if watched == "backend":
            board.start(prefix=prefix)
        if request is not None:
            run = run_program(board, request, prefix=prefix if watched == "program" else ())
            if run.exit_status != 0:
                return Outcome([f"the request failed: {run.output[-300:]!r}"])
            board.wait_until_quiet()
        if watched == "backend":
            board.stop()
            board.start()
        steps = durability.name_sources(durability.read_steps(self.log))
        problems, replaced, appended = durability.check(steps, is_kept, is_log, log_is_new)
        if replaced != expected_files:
            problems.append(f"{replaced} kept files were replaced, not {expected_files}")
        if appended != expected_lines:
            problems.append(f"the audit log was written {appended} times, not {expected_lines}")
        problems += self.missed_mistakes(steps, log_is_new)
        return Outcome(problems, True, {"steps": [str(step) for step in steps]})

    @staticmethod
    def missed_mistakes(steps, log_is_new):
        """Omits each sync in turn; reports those that the check does not notice."""
        missed = []
        for index, step in enumerate(steps):
            if step.kind == "synced" and is_log(step.path) and last_before_word(steps[index + 1:]):
                less = steps[:index] + steps[index + 1:]
                if not durability.check(less, is_kept, is_log, log_is_new)[0]:
                    missed.append(f"a missing sync of {step.path} would go unnoticed")
            if step.kind == "named" and is_kept(step.path):
                folder = os.path.dirname(step.path)
                own = max((i for i, other in enumerate(steps[:index])
                           if other.kind == "synced" and other.path == step.source), default=None)
                following = min((i for i, other in enumerate(steps)
                                 if i > index and other.kind == "synced" and other.path == folder),
                                default=None)
                for left in (own, following):
                    less = [other for i, other in enumerate(steps) if i != left]
                    if left is None or not durability.check(less, is_kept, is_log, log_is_new)[0]:
                        missed.append(f"a missing sync of {step.path} would go unnoticed")
        return missed


def make_worker(installation, case):
    return Worker(installation)


def run(context):
    return run_cases(context, "powerloss", [{"path": path} for path in PATHS],
                     lambda: Worker(context.installation))

"""Judges every run of a program, whatever fault it had, by these questions:

1. Did it end within its deadline, and without a signal?
2. Did it print one valid response, or nothing if it could not print?
3. Is each file the old or the new one, byte for byte, and are other sessions' files untouched?
4. If the page reports success, did it happen? If the page says that nothing was changed, was
   nothing changed?
5. Are the locks free, and do the next normal requests leave no temporary files?
6. Does the audit log consist of its former content and whole lines? Does it contain the actions
   that the page reports, only requested actions, and the reasons for the partitions'
   configurations?
"""

import fcntl
import os
import re
import signal
import time

from faults import audit_log
from faults.board import identifier_of, sample_file
from faults.configuration_file import decode_state
from faults.program import run_program
from faults.request_types import get, multipart, notices_of, post, post_parts
from faults.response import MalformedResponse, parse_response
from faults.scene import SESSIONS, STATE, TEMPORARY, backup_file, staged_file

# Far more than an exchange with the back-end (10 s) and a wait for a lock (5 s) need, so that a
# busy machine does not fail a test.
DEADLINE_SECONDS = 120

LOCKS = ("var/tmp/restored_eficonf.lock", "var/lib/board/restore.lock", "var/lib/login.lock",
         audit_log.LOCK)
KEPT = (TEMPORARY, SESSIONS, "var/lib/board")
NOT_JUDGED = set(LOCKS) | {"var/lib/board/backend.lock"}
WHOLE_SESSION = re.compile(rb"token_sha256=[0-9a-f]{64}\nuser=.*\ncreated=\d+\n")

# Texts of pages that are sure that nothing was changed.
UNCHANGED = re.compile(r"Nothing was (changed|restored|uploaded|done)|No partition was changed")
ALL_UNCHANGED = re.compile(r"Nothing was (changed|uploaded|done)")
# Texts of pages that do not know the outcome, because the back-end's answer was lost.
UNSURE = re.compile(r"71-(1613|200[234])\b|it is not certain how far")


UNCAUGHT = re.compile(rb"terminate called after throwing an instance of '.*bad_alloc'")


class Fault:
    """The fault of a run, as far as it changes the expected answer.

    `killed`: the program was killed and may have printed nothing. `mute`: it could not print.
    `unbegun`: the fault hit the dynamic loader, before the program's own code. `must_report`: the
    request could not be carried out, and the page must say so.
    """

    def __init__(self, killed=False, mute=False, unbegun=False, must_report=False):
        self.killed = killed
        self.mute = mute or unbegun
        self.unbegun = unbegun
        self.must_report = must_report


class Judge:
    def __init__(self, scene):
        self.scene = scene
        self.board = scene.board
        self.torn = False

    def snapshot(self):
        files = self.board.files(*KEPT)
        return {path: data for path, data in files.items() if path not in NOT_JUDGED}

    def judge(self, kind, before, run, fault, without_backend=False):
        """Returns the problems of the run, a line each."""
        problems = []
        if not without_backend and not self.board.wait_until_quiet():
            problems.append("the back-end still works for the request")
        self.check_end(run, fault, problems)
        response = self.check_response(run, fault, problems)
        after = self.snapshot()
        self.check_files(kind, before, after, response, fault, problems)
        if response is not None:
            self.check_claims(kind, before, after, response, fault, problems)
        self.check_log(kind, after, response, fault, problems)
        return problems

    @staticmethod
    def ended_unbegun(run, fault):
        """Returns true if the program ended by a signal before its work began, as it may: in the
        loader, or without memory for its main object, where exceptions are not caught."""
        if run.output:
            return False
        uncaught = run.signal == signal.SIGABRT and UNCAUGHT.search(run.errors) is not None
        return fault.unbegun or (fault.mute and uncaught)

    @staticmethod
    def check_end(run, fault, problems):
        if run.timed_out or run.seconds > DEADLINE_SECONDS:
            problems.append(f"it did not end within {DEADLINE_SECONDS} s")
        elif (run.signal is not None and not fault.killed
              and not Judge.ended_unbegun(run, fault)):
            problems.append(f"it died of signal {run.signal}: {run.errors[-300:]!r}")

    @staticmethod
    def check_response(run, fault, problems):
        if not run.output:
            silent = fault.killed or Judge.ended_unbegun(run, fault) or (
                fault.mute and run.exit_status != 0)
            if not silent and not run.timed_out:
                problems.append(
                    f"no response (exit status {run.exit_status}, {run.errors[-300:]!r})")
            return None
        try:
            return parse_response(run.output)
        except MalformedResponse as reason:
            problems.append(f"not a valid response: {reason}")
            return None

    @staticmethod
    def check_files(kind, before, after, response, fault, problems):
        for path in sorted(before.keys() | after.keys()):
            old, new = before.get(path), after.get(path)
            if old == new or any(value(new) if callable(value) else value == new
                                 for value in kind.allowed.get(path, ())
                                 if not (callable(value) and new is None)):
                continue
            if path not in before and is_passing(path, new, kind, response, fault):
                continue
            problems.append(f"{path} is neither the old nor the new file: "
                            f"{None if new is None else len(new)} bytes")

    def check_claims(self, kind, before, after, response, fault, problems):
        if kind.claims_success(response, self.scene):
            if not kind.happened(self.scene, response, after):
                problems.append("the page reports a success that did not happen")
            return
        notice = notices_of(response)
        if fault.must_report and not notice and response.status < 400:
            problems.append("the page does not report the failure")
        if UNCHANGED.search(notice) and not UNSURE.search(notice):
            for path, values in kind.allowed.items():
                if path != STATE and not ALL_UNCHANGED.search(notice):
                    continue
                news = [value for value in values if value not in (None, b"")]
                if before.get(path) != after.get(path) and any(
                        value(after[path]) if callable(value) else value == after[path]
                        for value in news if path in after):
                    problems.append(f"the page says that nothing was changed, but {path} is new")

    def new_lines(self, may_be_torn, problems):
        """Returns the lines added to the log since it was staged."""
        old, now = self.scene.log, audit_log.read_log(self.board)
        if not now.startswith(old):
            problems.append("the audit log has lost lines")
            return []
        added = now[len(old):]
        if added and not old.endswith(b"\n"):
            if not added.startswith(b"\n"):
                problems.append("a line of the audit log follows half a line")
            added = added.partition(b"\n")[2]
        lines, damaged, rest = audit_log.parse_lines(added)
        if len(damaged) + bool(rest) > (1 if may_be_torn else 0):
            problems.append(f"the audit log contains malformed lines: {[*damaged, rest]!r:.300}")
        return lines

    def check_log(self, kind, after, response, fault, problems):
        lines = self.new_lines(fault.killed, problems)
        for line in lines:
            if line["event"] not in (*kind.events, "start", "end"):
                problems.append(f"the audit log contains an action that was not requested: {line}")
        if response is not None and kind.tells_done(response, self.scene, after):
            self.expect_line(lines, kind.expected_line(self.scene, response), problems)
        self.check_explanation(after.get(STATE), problems)
        self.torn = fault.killed

    @staticmethod
    def expect_line(lines, expected, problems):
        if not any(contains(line, expected) for line in lines):
            problems.append(f"the audit log lacks {expected}; it contains {lines}")

    def check_explanation(self, state, problems):
        lines = audit_log.parse_lines(audit_log.read_log(self.board))[0]
        problems += audit_log.unexplained(lines, decode_state(state or b"") or {})

    def settle(self):
        """Makes the next normal requests: an upload, a discard, a backup page and a backup. All
        must succeed, and no held lock or temporary file may remain."""
        problems = []
        scene, board = self.scene, self.board
        for lock in LOCKS:
            if not is_free(board.path(lock)):
                problems.append(f"the lock {lock} is held")
        scene.stage({path: data for path, data in self.leftovers().items()})
        upload = multipart({"functionID": 106, "hidden_status": 1}, "next.dat", sample_file("next"))
        steps = (
            ("upload", post_parts(scene.operator, upload), 'class="facts"'),
            ("discard", post(scene.operator, b"functionID=106&hidden_status=3"), 'type="file"'),
            ("backup page", get(scene.operator, "functionID=105"), 'name="radio_button"'),
        )
        for name, request, mark in steps:
            run = run_program(board, request)
            if run.timed_out or run.exit_status != 0 or mark.encode() not in run.output:
                problems.append(f"the {name} that followed failed: exit status {run.exit_status}, "
                                f"signal {run.signal}, {run.seconds:.1f} s, {run.output[-600:]!r}")
        self.check_configurations(problems)
        self.check_following_lines(problems)
        for path in sorted(self.leftovers()):
            problems.append(f"{path} is left behind")
        for path in os.listdir(board.path("var/run")):
            if path not in ("backend.sock", "board_properties", "hosts.conf"):
                problems.append(f"var/run/{path} is left behind")
        return problems

    def leftovers(self):
        """Returns files that belong to no session and that no program needs."""
        own = {staged_file(self.scene.operator), backup_file(self.scene.operator), STATE}
        return {path: data for path, data in self.snapshot().items()
                if path not in self.scene.standing and path not in own
                and not WHOLE_SESSION.fullmatch(data)
                and not re.search(r"(0123456789abcdef|fedcba9876543210)$", path)}

    def check_following_lines(self, problems):
        """Checks that the requests of settle() have their lines in the log, after whole lines."""
        lines = self.new_lines(self.torn, problems)
        session = identifier_of(self.scene.operator)
        for event in ("upload", "discard", "backup"):
            done = {"event": event, "session": session, "result": "done"}
            self.expect_line(lines, done, problems)
        self.check_explanation(self.board.read(STATE), problems)
        self.torn = False

    def check_configurations(self, problems):
        """Checks that a backup contains the configuration in the back-end's state file."""
        scene = self.scene
        run = run_program(self.board, post(
            scene.operator, b"functionID=105&hidden_status=BACKUP&radio_button=3"))
        saved = self.board.read(backup_file(scene.operator)) or b""
        payloads = decode_state(self.board.read(STATE) or b"")
        if b'id="download_link"' not in run.output:
            problems.append(f"the backup that followed failed: {run.output[-600:]!r}")
        elif payloads is None or payloads[3] not in saved:
            problems.append("the back-end and its file have different configurations")


def contains(line, expected):
    """Returns true if the line has the expected fields; it may have others."""
    return all(contains(line.get(name, {}), value) if isinstance(value, dict)
               else line.get(name) == value for name, value in expected.items())


def is_passing(path, data, kind, response, fault):
    """Returns true if a new file may remain until the next requests."""
    folder, name = path.rsplit("/", 1)
    if folder == SESSIONS and kind.name == "login":
        # An unreported session ends when it has been idle.
        reported = response is not None and response.status < 400
        return (".aside-" in name and fault.killed) or (
            WHOLE_SESSION.fullmatch(data) is not None and (reported or fault.killed or fault.mute))
    return fault.killed and (name.startswith("upload_") or ".aside-" in name)


def is_free(path, seconds=5):
    """Returns true if no process holds the lock; waits up to `seconds` for one that is ending."""
    if not os.path.exists(path):
        return True
    end = time.monotonic() + seconds
    with open(path, "rb") as file:
        while True:
            try:
                fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
                return True
            except BlockingIOError:
                if time.monotonic() > end:
                    return False
                time.sleep(0.01)

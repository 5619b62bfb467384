"""Delays the back-end at each of its system calls during a restore until the client gives up."""

import re
import socket
import struct
import time

from rows.backend_faults import list_backend_calls
from faults import audit_log
from faults.board import identifier_of, sample_file
from faults.case_runs import Outcome, run_cases
from faults.configuration_file import decode_state
from faults.scene import STATE, TARGETS, staged_file
from faults.worker import RequestWorker

HELP = "a restore abandoned by its client while the back-end is delayed at each system call"

SHORT_RUNS = 12
HOLD_MICROSECONDS = 800000
PATIENCE_SECONDS = 0.3
SET, SET_RESTORE = 2, 0x020100A4
ABANDONED = 1616

# The back-end's check for its client, a poll() without waiting, and the change itself.
LOOK = re.compile(r"(\d+\.\d+) .*poll\(\[\{fd=\d+, events=0\}\], 1, 0\)")
COMMIT = re.compile(r"(\d+\.\d+) .*rename\(\"[^\"]*configurations\.aside")


def restore_frame(cookie):
    session = identifier_of(cookie).encode()
    body = struct.pack(">BI", SET, SET_RESTORE)
    for text in (session, b"", b"", b""):
        body += struct.pack(">H", len(text)) + text
    body += struct.pack(">H", len(TARGETS)) + bytes(TARGETS)
    return struct.pack(">I", len(body)) + body


def last_time(pattern, text):
    found = pattern.findall(text)
    return float(found[-1]) if found else None


class Worker(RequestWorker):
    def ask(self):
        """Sends the request and disconnects after PATIENCE_SECONDS at most. Returns the reply or
        None, and the time of disconnection."""
        with socket.socket(socket.AF_UNIX) as client:
            client.connect(self.board.path("var/run/backend.sock"))
            client.sendall(restore_frame(self.scene.operator))
            client.settimeout(PATIENCE_SECONDS)
            try:
                reply = client.recv(4096)
            except TimeoutError:
                reply = None
            went = time.time()
        return reply, went

    def run(self, case):
        self.remove_log()
        board = self.board
        payload = self.scene.next_payload()
        self.scene.stage({staged_file(self.scene.operator): sample_file(self.scene.letter)})
        self.scene.stage_log(self.scene.log_line())
        board.stop()
        board.start(prefix=["strace", "-f", "-ttt", "-qqq", "-s", "200", "-o", self.log,
                            "-e", f"trace=poll,rename,{case['name']}",
                            "-e", f"inject={case['inject']}"])
        reply, went = self.ask()
        board.wait_until_quiet()
        board.stop()
        with open(self.log, encoding="utf-8", errors="replace") as log:
            trace = log.read()
        problems = self.judge_run(reply, went, trace, payload)
        board.start()
        changed = self.has_configuration(payload)
        tally = ("answered" if reply else "changed after the client left" if changed else
                 "not changed")
        return Outcome(problems, "(DELAYED)" in trace, {"trace": trace[-4000:]} if problems else {},
                       tally)

    def has_configuration(self, payload):
        payloads = decode_state(self.board.read(STATE))
        return all(payloads[target] == payload for target in TARGETS)

    def judge_run(self, reply, went, trace, payload):
        lines, _, _ = audit_log.parse_lines(audit_log.read_log(self.board))
        last = [line for line in lines if line["event"] == "restore"][-1:]
        result = last[0].get("result") if last else None
        looked = last_time(LOOK, trace)
        if reply is not None:
            ok = reply[4:8] == bytes(4) and self.has_configuration(payload) and result == "done"
            return [] if ok else [f"the answer {reply!r} does not match the result: {last}"]
        if not self.has_configuration(payload):
            # A restore that the back-end had not begun when it was stopped has no line.
            fine = not last or (result == "refused" and last[0].get("code") == ABANDONED)
            return [] if fine else [f"nothing was changed, but the log says {last}"]
        problems = [] if result == "done" else [f"it was changed, but the log says {last}"]
        # The change is allowed only if the client was still connected at the check.
        if looked is None or last_time(COMMIT, trace) is None:
            problems.append("the check for the client or the change is not in the trace")
        elif went < looked:
            problems.append(f"it was changed, but its client left {looked - went:.3f} s "
                            "before the check")
        return problems


def list_cases(installation):
    calls = list_backend_calls(installation)["restore"]
    return [{"name": call.name, "call": call.line[:160],
             "inject": f"{call.name}:delay_enter={HOLD_MICROSECONDS}:when={call.occurrence}"}
            for call in calls
            if call.name not in ("execve", "exit_group", "restart_syscall", "rt_sigreturn")]


def make_worker(installation, case):
    return Worker(installation)


def run(context):
    cases = context.sample(list_cases(context.installation), SHORT_RUNS)
    return run_cases(context, "abandoned", cases, lambda: Worker(context.installation))

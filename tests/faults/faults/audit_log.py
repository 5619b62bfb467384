"""Prepares the board's audit log before a request, and reads it afterwards."""

import hashlib
import json
import os

FOLDER = "var/log"
LOG = "var/log/audit.log"
LOCK = "var/log/audit.lock"
COUNTS = "var/log/audit.counts"
FORMER_FILES = 15
ROTATED_AT = 1024 * 1024

# Counts of the first minute of 1970, which is over: the next event adds a line with them.
OLD_COUNTS = (b'{"":{"start":1,"length":60,"lines":10,"counts":{"login_failed":3}}}')


def sum_of(data):
    return hashlib.sha256(data).hexdigest()


def sums_of(payloads):
    """Returns {partition number as text: SHA-256 of its configuration}, as in the log."""
    return {str(number): sum_of(payload) for number, payload in payloads.items()}


def make_line(event, **fields):
    return json.dumps({"time": "2026-01-31T23:59:59.123Z", "event": event, **fields}).encode() + b"\n"


def fill_up(data):
    """Returns the log with enough lines added that the next one causes a rotation."""
    line = make_line("end", order="x" * 65536)
    return data + line * (-(-(ROTATED_AT - len(data)) // len(line)))


def former_files():
    """Returns the names of the rotated files, newest first."""
    return [f"{LOG}.{number}" for number in range(1, FORMER_FILES + 1)]


def stage_log(board, data, counts=None):
    """Replaces the whole log by `data`, without rotated files."""
    for path in former_files():
        if os.path.exists(board.path(path)):
            board.write(None, path)
    board.write(data, LOG)
    board.write(counts, COUNTS)


def read_log(board):
    """Returns the log with its rotated files, oldest line first."""
    return b"".join(board.read(path) or b"" for path in reversed([LOG, *former_files()]))


def parse_lines(data):
    """Returns the parsed lines, the malformed lines, and the text after the last line end."""
    *ended, rest = data.split(b"\n")
    lines, damaged = [], []
    for text in ended:
        try:
            line = json.loads(text)
            if not (isinstance(line, dict) and "event" in line and "time" in line):
                raise ValueError
            lines.append(line)
        except ValueError:
            damaged.append(text)
    return lines, damaged, rest


def follow_up(lines, problems):
    """Returns {partition: possible hashes of its configuration} according to the lines."""
    known = {}
    for line in lines:
        after, before = line.get("after", {}), line.get("before", {})
        if line["event"] == "start":
            known = {number: {total} for number, total in after.items()}
        elif line["event"] == "restore" and "before" in line:
            result = line["result"]
            for number in after:
                if before[number] not in known.get(number, {before[number]}) and result == "begun":
                    problems.append(f"the log has a wrong configuration for partition {number}")
                known[number] = {"begun": {before[number], after[number]}, "done": {after[number]},
                                 "failed": {before[number]}, "refused": {before[number]}}[result]
    return known


def unexplained(lines, payloads):
    """Reports partitions with a configuration that does not follow from the lines."""
    problems = []
    known = follow_up(lines, problems)
    for number, total in sums_of(payloads).items():
        if total not in known.get(number, {total}):
            problems.append("the audit log does not explain the configuration of partition "
                            f"{number}")
    return problems

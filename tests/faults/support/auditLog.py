"""The board's audit log: what stands there before a request, and what it says afterwards."""

import hashlib
import json
import os

FOLDER = "var/log"
LOG = "var/log/audit.log"
LOCK = "var/log/audit.lock"
COUNTS = "var/log/audit.counts"
FORMER_FILES = 15
ROTATED_AT = 1024 * 1024

# The first minute of 1970 is over: these counts get their line with the next event.
OLD_COUNTS = (b'{"":{"start":1,"length":60,"lines":10,"counts":{"login_failed":3}}}')


def sumOf(data):
    return hashlib.sha256(data).hexdigest()


def sumsOf(payloads):
    """{number as the log has it: SHA-256} of the partitions' configurations."""
    return {str(number): sumOf(payload) for number, payload in payloads.items()}


def makeLine(event, **fields):
    return json.dumps({"time": "2026-01-31T23:59:59.123Z", "event": event, **fields}).encode() + b"\n"


def fillUp(data):
    """The log with so many more lines that the next one is for another file."""
    line = makeLine("end", order="x" * 65536)
    return data + line * (-(-(ROTATED_AT - len(data)) // len(line)))


def formerFiles():
    """From the youngest."""
    return [f"{LOG}.{number}" for number in range(1, FORMER_FILES + 1)]


def stageLog(board, data, counts=None):
    """Makes this the whole log."""
    for path in formerFiles():
        if os.path.exists(board.path(path)):
            board.write(None, path)
    board.write(data, LOG)
    board.write(counts, COUNTS)


def readLog(board):
    """All that the log says, from the oldest line that is kept."""
    return b"".join(board.read(path) or b"" for path in reversed([LOG, *formerFiles()]))


def parseLines(data):
    """(the lines, what is no line, whether the last one has no end)"""
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


def followUp(lines, problems):
    """{partition: the sums that its configuration may have} by what the lines say."""
    known = {}
    for line in lines:
        after, before = line.get("after", {}), line.get("before", {})
        if line["event"] == "start":
            known = {number: {total} for number, total in after.items()}
        elif line["event"] == "restore" and "before" in line:
            result = line["result"]
            for number in after:
                if before[number] not in known.get(number, {before[number]}) and result == "begun":
                    problems.append(f"the log says that partition {number} held what it did not")
                known[number] = {"begun": {before[number], after[number]}, "done": {after[number]},
                                 "failed": {before[number]}, "refused": {before[number]}}[result]
    return known


def unexplained(lines, payloads):
    """What of the partitions' configurations does not follow from the lines."""
    problems = []
    known = followUp(lines, problems)
    for number, total in sumsOf(payloads).items():
        if total not in known.get(number, {total}):
            problems.append(f"the audit log does not explain what partition {number} holds")
    return problems

"""Reads the audit log as an auditor would."""

import json
import re

LOG = "/var/log/audit.log"
TIME = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z")
EVENTS = {"login", "login_failed", "logout", "session_expired", "session_ended", "backup",
          "download", "upload", "restore", "discard", "refusal", "fault_order", "start", "end",
          "anonymous", "repeated"}
REASONS = {"rights", "cross_site", "method", "host"}
BEGUN, DONE = "begun", "done"


class Contradiction(Exception):
    pass


def files_of(board):
    """Returns the log's files, oldest first: audit.log.2, audit.log.1, audit.log."""
    path = board.path(LOG)
    former = [file for file in path.parent.glob(path.name + ".*")
              if file.suffix[1:].isdigit()]
    former.sort(key=lambda file: -int(file.suffix[1:]))
    return former + ([path] if path.exists() else [])


def read(board):
    """Returns all events, oldest first; raises Contradiction for a malformed one."""
    events = []
    for file in files_of(board):
        for line in file.read_text(encoding="ascii").splitlines():
            event = json.loads(line)
            if not TIME.fullmatch(event["time"]) or event["event"] not in EVENTS:
                raise Contradiction("not a line of the log: " + line)
            events.append(event)
    return events


def find(events, **fields):
    return [event for event in events
            if all(event.get(name) == value for name, value in fields.items())]


def reconstruct(events):
    """Returns {partition: the possible hashes of its configuration after the last line}: one hash,
    or several if the log leaves it open."""
    possible = {}
    for event in events:
        after = event.get("after", {})
        if event["event"] == "start":
            for partition, value in after.items():
                if value not in possible.get(partition, {value}):
                    raise Contradiction(f"no line explains {event}")
                possible[partition] = {value}
        elif event["event"] == "restore" and after:
            settle(possible, event, after)
    return possible


def settle(possible, event, after):
    before = event["before"]
    for partition, value in after.items():
        known = possible.get(partition, {before[partition]})
        if event["result"] == BEGUN:
            if before[partition] not in known:
                raise Contradiction(
                    f"partition {partition} had another configuration before {event}")
            possible[partition] = {before[partition], value}
        else:
            if not known <= {before[partition], value}:
                raise Contradiction(f"no line announces {event}")
            possible[partition] = {value if event["result"] == DONE else before[partition]}

"""Sends requests directly to the back-end. docs/wire-formats.md defines the bytes."""

import re
import struct

from support.document import Document

GET, SET, LOGIN, CONTROL = 1, 2, 3, 4
BACK_UP, RESTORE = 0x020100A3, 0x020100A4
NO_SESSION, NOT_ALLOWED, FAULTS_NOT_ALLOWED = 1606, 1611, 1614

# The number of texts between a request's number and its payload: the session's identifier and the
# texts that follow it in the grammar.
TEXTS = len(re.search(r"^ +request += kind number (.*?) rest\b",
                      Document("docs/wire-formats.md").text, re.MULTILINE)[1].split())


def encode(kind, number, session=b"", payload=b""):
    """Returns the body of a request frame."""
    texts = [session] + [b""] * (TEXTS - 1)
    return (struct.pack(">BI", kind, number)
            + b"".join(struct.pack(">H", len(text)) + text for text in texts) + payload)


def ask(board, kind, number, session=b"", payload=b""):
    """Sends a request; returns code and payload of the back-end's reply."""
    return board.exchange(encode(kind, number, session, payload))[0]


def back_up(board, session, partition=3):
    return ask(board, SET, BACK_UP, session.encode(), struct.pack(">I", partition))[0]


def restore(board, session, *partitions):
    payload = struct.pack(">H", len(partitions)) + bytes(partitions)
    return ask(board, SET, RESTORE, session.encode(), payload)[0]

"""The state of a board before a request: three sessions and their files."""

import os
import time

from faults import audit_log
from faults.board import (OPERATOR, VIEWER, Board, identifier_of, sample_file, sample_payload)
from faults.configuration_file import decode_state, encode_state

SESSIONS = "var/lib/session"
TEMPORARY = "var/tmp"
STATE = "var/lib/board/configurations"

# The partitions that the tests restore to: installed, not running, with a matching BIOS.
TARGETS = (2, 3)

# Seconds since a session's last use; enough for the next use to be recorded.
IDLE_SECONDS = 100


class Scene:
    """A board with an operator's session for the requests, and two sessions that must not change:
    another operator's and a viewer's, each with a staged file and a backup."""

    def __init__(self, installation, folder=None, board=None):
        self.board = board or Board(installation, folder)
        self.board.start()
        self.operator = self.board.log_in(OPERATOR)
        self.other = self.board.log_in(OPERATOR)
        self.viewer = self.board.log_in(VIEWER)
        self.sessions = self.board.files(SESSIONS)
        self.letter = "A"
        self.stage_log(self.log_line())
        self.standing = dict(self.sessions)
        for cookie, letters in ((self.other, ("other's file", "other's backup")),
                                (self.viewer, ("viewer's file", "viewer's backup"))):
            self.standing[staged_file(cookie)] = sample_file(letters[0], 5000)
            self.standing[backup_file(cookie)] = sample_file(letters[1], 5000)

    def stage(self, more):
        """Writes the files of all sessions, with `more` ({path: bytes}) for the operator's session,
        and removes all other files of sessions."""
        wanted = {**self.standing, **more}
        board = self.board
        for path, data in board.files(SESSIONS, TEMPORARY).items():
            if path not in wanted:
                board.write(None, path)
            elif wanted[path] == data:
                del wanted[path]
        for path, data in wanted.items():
            board.write(data, path)
        now = time.time()
        for path in self.sessions:
            os.utime(board.path(path), (now, now - IDLE_SECONDS))

    def log_line(self):
        """Returns a log with the partitions' configurations."""
        return audit_log.make_line(
            "start", after=audit_log.sums_of(decode_state(self.board.read(STATE))))

    def stage_log(self, data, counts=None):
        self.log = data
        audit_log.stage_log(self.board, data, counts)

    def expected_state(self, payload):
        """Returns the state file with this payload in the targets."""
        payloads = decode_state(self.board.read(STATE))
        payloads.update({target: payload for target in TARGETS})
        return encode_state(payloads)

    def next_payload(self):
        """Returns a payload that the targets do not have yet."""
        payloads = decode_state(self.board.read(STATE))
        self.letter = "B" if payloads[TARGETS[0]] == sample_payload("A") else "A"
        return sample_payload(self.letter)

    def remove(self):
        self.board.remove()


def staged_file(cookie):
    return f"{TEMPORARY}/restored_eficonf{identifier_of(cookie)}"


def backup_file(cookie):
    return f"{TEMPORARY}/efi_backup{identifier_of(cookie)}"


def session_file(cookie):
    return f"{SESSIONS}/{identifier_of(cookie)}"

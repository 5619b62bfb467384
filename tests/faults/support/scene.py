"""The state of a board before a request: three sessions and their files."""

import os
import time

from support import auditLog
from support.board import (OPERATOR, VIEWER, Board, identifierOf, sampleFile, samplePayload)
from support.configurationFile import decodeState, encodeState

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
        self.operator = self.board.logIn(OPERATOR)
        self.other = self.board.logIn(OPERATOR)
        self.viewer = self.board.logIn(VIEWER)
        self.sessions = self.board.files(SESSIONS)
        self.letter = "A"
        self.stageLog(self.logLine())
        self.standing = dict(self.sessions)
        for cookie, letters in ((self.other, ("other's file", "other's backup")),
                                (self.viewer, ("viewer's file", "viewer's backup"))):
            self.standing[stagedFile(cookie)] = sampleFile(letters[0], 5000)
            self.standing[backupFile(cookie)] = sampleFile(letters[1], 5000)

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

    def logLine(self):
        """Returns a log with the partitions' configurations."""
        return auditLog.makeLine(
            "start", after=auditLog.sumsOf(decodeState(self.board.read(STATE))))

    def stageLog(self, data, counts=None):
        self.log = data
        auditLog.stageLog(self.board, data, counts)

    def expectedState(self, payload):
        """Returns the state file with this payload in the targets."""
        payloads = decodeState(self.board.read(STATE))
        payloads.update({target: payload for target in TARGETS})
        return encodeState(payloads)

    def nextPayload(self):
        """Returns a payload that the targets do not have yet."""
        payloads = decodeState(self.board.read(STATE))
        self.letter = "B" if payloads[TARGETS[0]] == samplePayload("A") else "A"
        return samplePayload(self.letter)

    def remove(self):
        self.board.remove()


def stagedFile(cookie):
    return f"{TEMPORARY}/restored_eficonf{identifierOf(cookie)}"


def backupFile(cookie):
    return f"{TEMPORARY}/efi_backup{identifierOf(cookie)}"


def sessionFile(cookie):
    return f"{SESSIONS}/{identifierOf(cookie)}"

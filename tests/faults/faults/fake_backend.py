"""A fake back-end that plays back the real one's replies, with one reply altered.

docs/wire-formats.md defines the frames.
"""

import os
import socket
import struct
import threading

SET = 2
SET_BACKUP = 0x020100A3


def receive_exactly(connection, size):
    data = b""
    while len(data) < size:
        piece = connection.recv(size - len(data))
        if not piece:
            raise EOFError
        data += piece
    return data


def receive_frame(connection):
    """Receives a frame; returns it including its length."""
    head = receive_exactly(connection, 4)
    return head + receive_exactly(connection, struct.unpack(">I", head)[0])


class SocketSwitch:
    """Replaces the board's socket by another one, and restores it."""

    def __init__(self, board):
        self.place = board.path("var/run/backend.sock")
        folder = board.path("alternate")
        os.mkdir(folder)
        self.real = os.path.join(folder, "real")
        self.fake = os.path.join(folder, "fake")
        self.listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self.listener.bind(self.fake)
        self.listener.listen(8)
        self.listener.settimeout(0.05)

    def to_fake(self):
        os.rename(self.place, self.real)
        os.rename(self.fake, self.place)

    def to_real(self):
        os.rename(self.place, self.fake)
        os.rename(self.real, self.place)

    def to_nothing(self):
        os.rename(self.place, self.real)

    def from_nothing(self):
        os.rename(self.real, self.place)

    def close(self):
        self.listener.close()


class Listening(threading.Thread):
    """Serves the connections of one run, from start() to end()."""

    def __init__(self, listener):
        super().__init__()
        self.listener = listener
        self.ending = threading.Event()

    def run(self):
        while not self.ending.is_set():
            try:
                connection, _ = self.listener.accept()
            except TimeoutError:
                continue
            connection.settimeout(60)
            with connection:
                try:
                    self.serve(connection)
                except (OSError, EOFError):
                    pass

    def serve(self, connection):
        raise NotImplementedError

    def end(self):
        self.ending.set()
        self.join()


class Recorder(Listening):
    """Forwards everything to the real back-end and records [(request, reply), ...]."""

    def __init__(self, switch):
        super().__init__(switch.listener)
        self.real = switch.real
        self.exchanges = []

    def serve(self, connection):
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as backend:
            backend.connect(self.real)
            while True:
                request = receive_frame(connection)
                backend.sendall(request)
                reply = receive_frame(backend)
                self.exchanges.append((request, reply))
                connection.sendall(reply)


class Player(Listening):
    """Answers with the recorded replies; alters reply `number` by `alteration` (how, at, value)."""

    def __init__(self, switch, exchanges, number, alteration, on_request):
        super().__init__(switch.listener)
        self.exchanges = exchanges
        self.number = number
        self.how, self.at, self.value = alteration
        self.on_request = on_request

    def serve(self, connection):
        for index, (_, reply) in enumerate(self.exchanges):
            altered = index == self.number
            if altered and self.how == "unread":
                return
            if altered and self.how == "early":
                connection.sendall(reply)
            self.on_request(receive_frame(connection))
            if not altered:
                connection.sendall(reply)
            elif self.how != "early" and not self.alter(connection, reply):
                return
        # Waits until the program closes its end.
        connection.recv(1)

    def alter(self, connection, reply):
        """Sends the altered reply. Returns true if the connection continues."""
        if self.how == "silent":
            self.wait(connection)
            return False
        if self.how in ("slow", "trickle"):
            for byte in reply:
                connection.sendall(bytes([byte]))
                if self.ending.wait(self.value):
                    return False
            return True
        connection.sendall(altered_reply(reply, self.how, self.at, self.value))
        return False

    def wait(self, connection):
        """Waits until the program gives up."""
        connection.recv(1)


def altered_reply(reply, how, at, value):
    if how == "cut":
        return reply[:at]
    if how == "byte":
        return reply[:at] + bytes([value]) + reply[at + 1:]
    if how == "length":
        return struct.pack(">I", value) + reply[4:]
    if how == "extra":
        return struct.pack(">I", len(reply) - 4 + value) + reply[4:] + bytes(value)
    raise ValueError(how)


def is_backup_request(frame):
    return frame[4] == SET and struct.unpack(">I", frame[5:9])[0] == SET_BACKUP

"""A hostile board: an HTTP server that sends the responses chosen by a test."""

import socket
import threading
import time

LOGGED_IN = (b"HTTP/1.1 303 See Other\r\nLocation: /\r\nSet-Cookie: session=0123456789abcdef-"
             + b"0" * 32 + b"; Path=/\r\nContent-Type: text/html\r\nContent-Length: 0\r\n\r\n")
SCREEN = "/maintenance/efi_backup_restore.cgi"
PIECE = 65536


def html(body, status="200 OK", kind="text/html; charset=UTF-8"):
    data = body if isinstance(body, bytes) else body.encode()
    return (f"HTTP/1.1 {status}\r\nContent-Type: {kind}\r\n"
            f"Content-Length: {len(data)}\r\nConnection: close\r\n\r\n").encode() + data


def menu(rows=(("0", "Zero", "1.2"),)):
    """Returns a menu with these partitions. Does not escape their texts."""
    cells = "".join(f"<tr><td>{number}</td><td>{name}</td><td>{version}</td><td></td><td></td></tr>"
                    for number, name, version in rows)
    return html('<title>Menu</title><form action="/logout.cgi"></form>'
                '<nav aria-labelledby="functions"><a href="/activity.cgi">A</a></nav>'
                f'<section aria-labelledby="round"><table>{cells}</table></section>')


def backup(link="/common/download.cgi?functionID=5&amp;filename=a.dat"):
    return html(f'<div data-outcome="done"><a id="download_link" href="{link}">x</a></div>')


def selection(digest, number=0, name="Test", version="1.2", rows=(("0", "Zero", "1.2"),)):
    cells = "".join(f"<tr><td></td><td>{number}</td><td>{target}</td><td>{its}</td><td></td></tr>"
                    for number, target, its in rows)
    return html(f'<dl class="facts"><dd>{number}</dd><dd>{name}</dd><dd>2026-01-01 UTC</dd>'
                f'<dd>{version}</dd></dl><table class="targets">{cells}</table>'
                f'<input name="staged_file" value="{digest}">')


def file(data, disposition="a.dat"):
    return (b"HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\n"
            + f"Content-Disposition: attachment; filename=\"{disposition}\"\r\n".encode()
            + f"Content-Length: {len(data)}\r\nConnection: close\r\n\r\n".encode() + data)


class HostileBoard:
    """A board that answers each path with the bytes in `answers`, or calls the function there with
    the connection. A step of the form (upload, restore or discard) may follow the path. Login and
    logout succeed unless `answers` contains them. `requests` lists the requests received."""

    def __init__(self, answers, tls=None):
        """With `tls`, an ssl.SSLContext, the board speaks https."""
        self.tls = tls
        self.answers = {"/login.cgi": LOGGED_IN, "/logout.cgi": LOGGED_IN, **answers}
        self.requests = []
        self.ending = threading.Event()

    def __enter__(self):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.address = f"{'https' if self.tls else 'http'}://127.0.0.1:{self.port}"
        self.thread = threading.Thread(target=self.serve)
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.ending.set()
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()
        self.thread.join()

    def serve(self):
        clients = []
        while not self.ending.is_set():
            try:
                connection, _ = self.listener.accept()
            except OSError:
                break
            clients.append(threading.Thread(target=self.answer, args=(connection,)))
            clients[-1].start()
        for client in clients:
            client.join()

    def answer(self, connection):
        with connection:
            connection.settimeout(60)
            try:
                if self.tls is None:
                    self.converse(connection)
                else:
                    with self.tls.wrap_socket(connection, server_side=True) as encrypted:
                        self.converse(encrypted)
            except OSError:
                pass

    def converse(self, connection):
        head, body = self.read(connection)
        if not head:
            return
        method, target, _ = head.split(b"\r\n")[0].decode().split(" ", 2)
        path = target.split("?")[0]
        step = next((f" {name}" for name, mark in (
            ("upload", b'name="filename"'), ("restore", b"hidden_status=2"),
            ("discard", b"hidden_status=3")) if mark in body), "")
        self.requests.append(f"{method} {path}{step}")
        answer = next((self.answers[key] for key in
                       (f"{path}{step}", path) if key in self.answers), html("?", "404 Not Found"))
        if callable(answer):
            answer(connection, self.ending)
        else:
            connection.sendall(answer)

    @staticmethod
    def read(connection):
        data = b""
        while b"\r\n\r\n" not in data:
            piece = connection.recv(PIECE)
            if not piece:
                return b"", b""
            data += piece
        head, body = data.split(b"\r\n\r\n", 1)
        length = next((int(line.split(b":")[1]) for line in head.split(b"\r\n")
                       if line.lower().startswith(b"content-length:")), 0)
        while len(body) < length:
            piece = connection.recv(PIECE)
            if not piece:
                break
            body += piece
        return head, body


def endless(start, piece, pause=0.0):
    """Returns a response that begins with `start` and repeats `piece` forever."""
    def write(connection, ending):
        connection.sendall(start)
        while not ending.is_set():
            connection.sendall(piece)
            time.sleep(pause)
    return write


def silence(connection, ending):
    """Reads the request and never responds."""
    connection.settimeout(0.1)
    while not ending.is_set():
        try:
            if not connection.recv(PIECE):
                return
        except TimeoutError:
            continue


def hang_up(_connection, _ending):
    """Closes the connection without a response."""

"""Connects many slow clients at once; another user must still get a page in under a second."""

import os
import resource
import socket
import ssl
import threading
import time

from faults.case_runs import Outcome, Result, keep
from faults.web_board import COOKIE, TLS, Browser, WebBoard

HELP = "200 slow clients at once; another user still gets a page in under a second"

CLIENTS = 200
SHORT_SECONDS = 4
LONG_SECONDS = 25  # less than the server's time limit for receiving a request
PAUSE_SECONDS = 0.5  # between the bytes of a slow client

# The soft and hard limits that a service gets by default.
OPEN_FILES = (1024, 4096)

# The time limit of a page: the promised one, and that of the short form, which must also hold on a
# busy machine.
LONG_PAGE_SECONDS = 1.0
SHORT_PAGE_SECONDS = 30.0

SCREEN = "/maintenance/efi_backup_restore.cgi"


def slow_text(kind, cookie):
    """Returns the bytes that a slow client sends at once, and those it then sends one at a time."""
    head = f"Host: 127.0.0.1\r\nCookie: {COOKIE}={cookie}\r\n"
    if kind == "slow head":
        return b"GET /login.cgi HTTP/1.1\r\n", head.encode() + b"X-Filler: " + b"x" * 4000
    if kind == "slow body":
        length = 200000
        form = (f"POST {SCREEN} HTTP/1.1\r\n{head}Content-Type: multipart/form-data; boundary=b\r\n"
                f"Content-Length: {length}\r\n\r\n")
        return form.encode(), b"-" * 4000
    if kind == "slow reader":
        return f"GET {SCREEN}?functionID=105 HTTP/1.1\r\n{head}\r\n".encode() * 20, b""
    return b"", b""  # a silent client


KINDS = ("slow head", "slow body", "slow body", "slow reader", "silent")


class SlowClients(threading.Thread):
    def __init__(self, board, cookie):
        super().__init__()
        self.ending = threading.Event()
        self.refused = 0
        self.clients = []
        for number in range(CLIENTS):
            at_once, slowly = slow_text(KINDS[number % len(KINDS)], cookie)
            client = socket.socket()
            # A small buffer, so that the server has to wait for the reader.
            client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
            client.connect(("127.0.0.1", board.port))
            if TLS and at_once:  # silent clients do not even start the handshake
                client = board.certificate.wrap_socket(client, server_hostname="127.0.0.1")
            client.sendall(at_once)
            client.setblocking(False)
            self.clients.append([client, slowly])

    def run(self):
        while not self.ending.wait(PAUSE_SECONDS):
            for client in self.clients:
                if client[1]:
                    try:
                        client[0].send(client[1][:1])
                        client[1] = client[1][1:]
                    except OSError:
                        self.refused += 1
                        client[1] = b""

    def end(self):
        """Closes all clients; returns how many were still connected or being served."""
        self.ending.set()
        self.join()
        held = 0
        for client, _ in self.clients:
            try:
                held += 1 if client.recv(1 << 20) else 0
            except (BlockingIOError, ssl.SSLWantReadError):
                held += 1
            except OSError:
                pass
            client.close()
        return held


def slowest_page(board, cookie, seconds):
    """Requests pages as another user. Returns the longest time of a page, in seconds, and the
    number of pages."""
    longest, pages = 0.0, 0
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        browser = Browser(board)
        browser.cookie = cookie
        begin = time.monotonic()
        status, _, body = browser.ask("GET", SCREEN + "?functionID=105")
        longest = max(longest, time.monotonic() - begin)
        pages += 1
        browser.close()
        if status != 200 or b'name="radio_button"' not in body:
            raise RuntimeError(f"no page: {status}")
        time.sleep(0.1)
    return longest, pages


def run(context):
    preset = os.path.basename(context.installation.build)
    hard = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
    resource.setrlimit(resource.RLIMIT_NOFILE, (hard, hard))
    seconds = LONG_SECONDS if context.long else SHORT_SECONDS
    board = WebBoard(context.project, preset, OPEN_FILES)
    problems = []
    try:
        browser = Browser(board)
        browser.log_in("admin")
        alone, _ = slowest_page(board, browser.cookie, 2)
        clients = SlowClients(board, browser.cookie)
        clients.start()
        try:
            among, pages = slowest_page(board, browser.cookie, seconds)
        except (OSError, RuntimeError) as failure:
            problems.append(f"another user got no page: {failure}")
            among, pages = 0.0, 0
        held = clients.end()
        if among > (LONG_PAGE_SECONDS if context.long else SHORT_PAGE_SECONDS):
            problems.append(f"a page took {among:.2f} s among slow clients, {alone:.2f} s alone")
        if held < CLIENTS // 2:
            problems.append(f"only {held} slow clients were still connected at the end")
        browser.close()
    finally:
        board.remove()
    result = Result(pages, figures={
        "slow clients": CLIENTS, "held at the end": held,
        "slowest page alone": f"{alone:.3f} s", "among them": f"{among:.3f} s"})
    for problem in problems:
        result.violations.append(keep(context, "slowclients", None, Outcome([problem])))
    return result

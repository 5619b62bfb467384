"""Starts a program of the board without a web server, but as the web server would."""

import os
import resource
import signal
import subprocess
import time


class ProgramRun:
    """The result of a program: its output, exit status or signal, and duration in seconds."""

    def __init__(self, output, errors, status, seconds, timed_out):
        self.output = output
        self.errors = errors
        self.exit_status = status if status >= 0 else None
        self.signal = -status if status < 0 else None
        self.seconds = seconds
        self.timed_out = timed_out


def environment_for(root, request):
    """Returns the CGI environment of a request, without the caller's environment."""
    environment = {
        "BOARD_ROOT": root,
        "REQUEST_METHOD": request["method"],
        "QUERY_STRING": request.get("query", ""),
        "SCRIPT_NAME": "/" + request["program"],
        "HTTP_HOST": "127.0.0.1:8080",
        "REMOTE_ADDR": request.get("address", "127.0.0.1"),
        "SERVER_PROTOCOL": "HTTP/1.1",
        "GATEWAY_INTERFACE": "CGI/1.1",
        "PATH": "/usr/bin:/bin",
    }
    if request.get("cookie"):
        environment["HTTP_COOKIE"] = "session=" + request["cookie"]
    if request["method"] == "POST":
        body = request.get("body", b"")
        environment["CONTENT_LENGTH"] = str(request.get("announced", len(body)))
        environment["CONTENT_TYPE"] = request.get("type", "application/x-www-form-urlencoded")
    return environment


def limited(limits):
    """Returns a function that sets limits, {resource number: value}, on the calling process, or
    None without limits."""
    if not limits:
        return None

    def set_limits():
        # As under the web server: the program itself must handle the signal.
        signal.signal(signal.SIGXFSZ, signal.SIG_DFL)
        for number, value in limits.items():
            resource.setrlimit(number, (value, value))

    return set_limits


def run_program(board, request, prefix=(), limits=None, more=None, deadline=150, body=None):
    """Runs the program of `request`, as arguments of the command `prefix` if given, and waits for
    its end; kills it after `deadline` seconds.

    The program reads the request's body from a pipe, in pieces of any size, or from the open file
    `body`.
    """
    environment = environment_for(board.root, request)
    environment.update(more or {})
    command = [*prefix, os.path.join(board.programs, request["program"])]
    started = time.monotonic()
    process = subprocess.Popen(command, env=environment, stdin=body or subprocess.PIPE,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               preexec_fn=limited(limits), start_new_session=True)
    timed_out = False
    try:
        output, errors = process.communicate(
            None if body else request.get("body", b""), timeout=deadline)
    except subprocess.TimeoutExpired:
        timed_out = True
        # Kills the whole group, because a killed strace leaves its program running.
        os.killpg(process.pid, signal.SIGKILL)
        output, errors = process.communicate()
    return ProgramRun(output, errors, process.returncode, time.monotonic() - started, timed_out)

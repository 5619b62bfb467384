"""Starts a program of the board as the web server would, without one."""

import os
import resource
import signal
import subprocess
import time


class ProgramRun:
    """How a program ended: what it printed, its exit status or signal, and how long it took."""

    def __init__(self, output, errors, status, seconds, timedOut):
        self.output = output
        self.errors = errors
        self.exitStatus = status if status >= 0 else None
        self.signal = -status if status < 0 else None
        self.seconds = seconds
        self.timedOut = timedOut


def environmentFor(root, request):
    """The CGI environment of a request. Nothing of the caller's own gets into it."""
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
    """A function that puts limits, {resource number: value}, onto the process that calls it."""
    if not limits:
        return None

    def setLimits():
        # As the web server starts programs: the signal must be dealt with by the program itself.
        signal.signal(signal.SIGXFSZ, signal.SIG_DFL)
        for number, value in limits.items():
            resource.setrlimit(number, (value, value))

    return setLimits


def runProgram(board, request, prefix=(), limits=None, more=None, deadline=150, body=None):
    """Runs the program of `request` to its end, under the command `prefix` if there is one.

    The program reads the request's body from a pipe, in pieces of any size, or from the open file `body`.
    """
    environment = environmentFor(board.root, request)
    environment.update(more or {})
    command = [*prefix, os.path.join(board.programs, request["program"])]
    started = time.monotonic()
    process = subprocess.Popen(command, env=environment, stdin=body or subprocess.PIPE,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               preexec_fn=limited(limits), start_new_session=True)
    timedOut = False
    try:
        output, errors = process.communicate(None if body else request.get("body", b""), timeout=deadline)
    except subprocess.TimeoutExpired:
        timedOut = True
        # strace leaves what it traces running when it is killed itself: the whole group goes.
        os.killpg(process.pid, signal.SIGKILL)
        output, errors = process.communicate()
    return ProgramRun(output, errors, process.returncode, time.monotonic() - started, timedOut)

"""A complete board with its web server, started by ./serve; with FAULTS_TLS=1 in the environment it
serves https."""

import http.client
import os
import re
import resource
import shutil
import signal
import ssl
import subprocess
import tempfile


TLS = os.environ.get("FAULTS_TLS") == "1"
COOKIE = "__Host-session" if TLS else "session"


class WebBoard:
    """Runs ./serve on a free port with a new root, from construction to remove()."""

    def __init__(self, project, preset, open_files=None):
        self.root = tempfile.mkdtemp(prefix="faults-web-")

        def limit():
            if open_files is not None:
                resource.setrlimit(resource.RLIMIT_NOFILE, open_files)

        self.process = subprocess.Popen(
            [os.path.join(project, "serve"), "--no-build", "--preset", preset, "--port", "0",
             "--root", self.root, *(["--tls"] if TLS else [])],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
            preexec_fn=limit)
        line = self.process.stdout.readline()
        match = re.fullmatch(r"Serving https?://127\.0\.0\.1:(\d+)/\n", line)
        if not match:
            self.remove()
            raise RuntimeError(f"./serve did not start: {line!r}")
        self.port = int(match[1])
        self.certificate = None
        if TLS:
            self.certificate = ssl.create_default_context(
                cafile=self.path("var/lib/tls/certificate.pem"))
        self.backend = self.child("efi_backend")
        self.web_server = self.child("lighttpd")

    def child(self, name):
        """Returns the number of the process with this name that ./serve started."""
        with open(f"/proc/{self.process.pid}/task/{self.process.pid}/children",
                  encoding="ascii") as children:
            for pid in children.read().split():
                with open(f"/proc/{pid}/comm", encoding="ascii") as comm:
                    if comm.read().strip() == name:
                        return int(pid)
        raise RuntimeError(f"{name} does not run")

    def path(self, *parts):
        return os.path.join(self.root, *parts)

    def remove(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            self.process.wait(60)
        self.process.stdout.close()
        shutil.rmtree(self.root, ignore_errors=True)


class Browser:
    """One user's client, with a persistent connection."""

    def __init__(self, board, timeout=60):
        address = {"host": "127.0.0.1", "port": board.port, "timeout": timeout}
        self.connection = (http.client.HTTPSConnection(**address, context=board.certificate) if TLS
                           else http.client.HTTPConnection(**address))
        self.cookie = None

    def ask(self, method, target, body=None, kind="application/x-www-form-urlencoded"):
        """Sends a request; returns (status, headers, body)."""
        headers = {"Content-Type": kind} if body is not None else {}
        if self.cookie:
            headers["Cookie"] = f"{COOKIE}={self.cookie}"
        try:
            self.connection.request(method, target, body, headers)
            response = self.connection.getresponse()
        except (http.client.RemoteDisconnected, BrokenPipeError, ConnectionResetError,
                ssl.SSLEOFError):
            # The server has closed the idle connection.
            self.connection.close()
            self.connection.request(method, target, body, headers)
            response = self.connection.getresponse()
        return response.status, response.headers, response.read()

    def log_in(self, user):
        self.cookie = None
        _, headers, _ = self.ask("POST", "/login.cgi", f"user={user}&password={user}")
        match = re.match(COOKIE + r"=([^;]+)", headers.get("Set-Cookie", ""))
        if not match:
            raise RuntimeError(f"{user} cannot log in")
        self.cookie = match[1]

    def close(self):
        self.connection.close()

"""Runs efictl for the modules of this collection."""

import ctypes
import json
import os
import signal
import subprocess

SCHEMA = 1
DONE, DIFFERENT, UNKNOWN = 0, 1, 5

# How long efictl may run after its own timeout, and how long it may take to log out after SIGTERM.
GRACE_SECONDS = 30
END_SECONDS = 20

PR_SET_PDEATHSIG = 1

BOARD_OPTIONS = {
    "board": {"type": "str", "required": True},
    "user": {"type": "str"},
    "password": {"type": "str", "no_log": True},
    # The path is not a secret.
    "password_file": {"type": "path", "no_log": False},
    "cacert": {"type": "path"},
    "insecure": {"type": "bool", "default": False},
    "timeout": {"type": "int", "default": 60},
    "executable": {"type": "path", "default": "efictl"},
}


class Client:
    """Runs efictl commands with the options of a module. If a command fails, fails the module with
    the reason that efictl reports."""

    def __init__(self, module):
        self.module = module
        self.options = module.params

    def ask_board(self, command, *words):
        """Runs a command that talks to the board, and returns its report."""
        options = ["--board", self.options["board"], "--timeout", str(self.options["timeout"])]
        for name in ("user", "password_file", "cacert"):
            if self.options[name]:
                options += ["--" + name.replace("_", "-"), self.options[name]]
        if self.options["insecure"]:
            options.append("--insecure")
        return self.run(command, *options, *words, seconds=self.options["timeout"] + GRACE_SECONDS)

    def run(self, command, *words, seconds=None):
        """Runs a command and returns its report. `seconds` is its time limit, None for no limit."""
        report = self._report_of(command, words, seconds)
        if report["exit"] not in (DONE, DIFFERENT):
            reason = (report.get("reason") or {}).get("text")
            none = "efictl %s exited with %d and gave no reason." % (command, report["exit"])
            self.module.fail_json(msg=reason or none, changed=report["changed"],
                                  **result_of(report))
        return report

    def _report_of(self, command, words, seconds):
        arguments = [self.options["executable"], command, "--json", *words]
        status, output, errors = self._output_of(arguments, seconds)
        try:
            report = json.loads(output)
            if report["schema"] != SCHEMA or report["exit"] != status:
                raise ValueError
        except (KeyError, TypeError, ValueError):
            self.module.fail_json(
                msg="%s %s exited with %d and printed no report of schema %d: %s"
                % (arguments[0], command, status, SCHEMA, (errors or output).strip()[-500:]),
                status="failed", exit=status)
        return report

    def _output_of(self, arguments, seconds):
        environment = {**os.environ, "LC_ALL": "C.UTF-8"}
        if self.options.get("password"):
            environment["EFICTL_PASSWORD"] = self.options["password"]
        set_option = ctypes.CDLL(None).prctl
        try:
            # If the module is killed, efictl gets SIGTERM, so that it logs out and leaves no
            # staged file on the board.
            process = subprocess.Popen(
                arguments, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                env=environment, text=True, errors="replace",
                preexec_fn=lambda: set_option(PR_SET_PDEATHSIG, signal.SIGTERM))
        except OSError as error:
            self.module.fail_json(msg="%s cannot be run: %s." % (arguments[0], error.strerror),
                                  status="failed", exit=None)
        try:
            output, errors = process.communicate(timeout=seconds)
        except subprocess.TimeoutExpired:
            end(process)
            self.module.fail_json(
                msg="%s did not finish within %d seconds and was stopped. Check the board before "
                "you try again." % (arguments[0], seconds), status="unknown", exit=UNKNOWN)
        return process.returncode, output, errors


def end(process):
    """Terminates a process, and kills it if it does not exit in time."""
    process.terminate()
    try:
        process.communicate(timeout=END_SECONDS)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()


def result_of(report):
    """Returns the members of a report that a module returns."""
    return {name: value for name, value in report.items()
            if name not in ("schema", "command", "changed")}

"""The base of the rows' workers: a scene, its judge, and a log of system calls."""

import os
import tempfile

from faults.case_runs import Outcome
from faults.judge import Judge
from faults.request_types import REQUEST_TYPES
from faults.scene import Scene


class RequestWorker:
    """Runs cases of one request each; `request` in a case names its type."""

    def __init__(self, installation, folder=None):
        self.scene = Scene(installation, folder)
        self.board = self.scene.board
        self.judge = Judge(self.scene)
        self.log = tempfile.mktemp(prefix="faults-log-")

    def begin(self, case):
        """Prepares the case. Returns its request type, the request, and the files before it."""
        kind = REQUEST_TYPES[case["request"]]()
        request = kind.prepare(self.scene)
        return kind, request, self.judge.snapshot()

    @staticmethod
    def outcome(problems, run, met=True, tally=None, **more):
        """Returns the Outcome; if there are problems, with details to understand them."""
        return Outcome(problems, met, {"output": run.output, "errors": run.errors,
                                       "exit_status": run.exit_status, "signal": run.signal, **more}
                       if problems else {}, tally)

    def remove_log(self):
        if os.path.exists(self.log):
            os.remove(self.log)

    def close(self):
        self.scene.remove()
        self.remove_log()

"""Peak usage of the processes in a tree, measured by polling."""

import os
import threading
from contextlib import contextmanager
from pathlib import Path

PAUSE_SECONDS = 0.2
CLIENT = "efictl"


def descendants(pid):
    """Returns the pids of the process and all its descendants."""
    found = []
    left = [pid]
    while left:
        each = left.pop()
        try:
            for task in Path(f"/proc/{each}/task").iterdir():
                left += map(int, (task / "children").read_text(encoding="ascii").split())
        except OSError:
            continue
        found.append(each)
    return found


def proportional_memory(pid):
    """Returns the memory of a process in bytes. Divides shared pages among the processes."""
    for line in Path(f"/proc/{pid}/smaps_rollup").read_text(encoding="ascii").splitlines():
        if line.startswith("Pss:"):
            return 1024 * int(line.split()[1])
    return 0


def most_used(pid):
    """Polls a process until it ends, without pauses. Returns its peak memory in bytes and its peak
    number of open files. The caller must wait for the process afterwards. (The kernel's resource
    usage of children is of no use: it includes the memory that the process had as a copy of its
    parent, before execve().)"""
    most = {"memory": 0, "files": 0}
    while True:
        try:
            status = dict(line.split(":", 1) for line in
                          Path(f"/proc/{pid}/status").read_text(encoding="utf-8").splitlines())
            if status["State"].split()[0] == "Z":
                return most
            files = len(os.listdir(f"/proc/{pid}/fd"))
            memory = 1024 * int(status["VmHWM"].split()[0]) if status["Name"].strip() == CLIENT else 0
        except (KeyError, OSError):
            return most
        most = {"memory": max(most["memory"], memory), "files": max(most["files"], files)}


class Peaks:
    """The peak usage of a whole tree, among the times when it was polled."""

    def __init__(self):
        self.found = {"memory": 0, "files": 0, "processes": 0}

    def look(self, pid):
        now = dict.fromkeys(self.found, 0)
        for each in descendants(pid):
            try:
                now["files"] += len(os.listdir(f"/proc/{each}/fd"))
                now["memory"] += proportional_memory(each)
                now["processes"] += 1
            except OSError:
                continue
        self.found = {key: max(value, now[key]) for key, value in self.found.items()}

    def figures(self):
        return self.found


@contextmanager
def watch(pid):
    """Polls a tree until the block ends."""
    peaks = Peaks()
    ended = threading.Event()

    def keep_looking():
        while not ended.wait(PAUSE_SECONDS):
            peaks.look(pid)

    thread = threading.Thread(target=keep_looking)
    thread.start()
    try:
        yield peaks
    finally:
        ended.set()
        thread.join()

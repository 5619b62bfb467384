"""What the processes of a tree use at most, by looking at them again and again."""

import os
import threading
from contextlib import contextmanager
from pathlib import Path

PAUSE_SECONDS = 0.2
CLIENT = "efictl"


def descendants(pid):
    """The process and everything below it."""
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
    """Bytes in memory; a page that several processes share counts for each in part."""
    for line in Path(f"/proc/{pid}/smaps_rollup").read_text(encoding="ascii").splitlines():
        if line.startswith("Pss:"):
            return 1024 * int(line.split()[1])
    return 0


def most_used(pid):
    """Looks at a process until it has ended, without a pause; returns how many bytes it had in memory
    and how many files it had open. The process must be waited for later. (What the kernel counts for
    the parent has the parent's own memory in it, which the process had before it became another
    program.)"""
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
    """The most that a whole tree had at the same time, as far as it was looked at."""

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
    """Looks at a tree until the block ends."""
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

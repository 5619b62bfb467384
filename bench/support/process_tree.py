"""What the processes of a tree use at most, by looking at them again and again."""

import os
import threading
from contextlib import contextmanager
from pathlib import Path

PAUSE_SECONDS = 0.2


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


def most_files(pid):
    """Looks at a process until it has ended, without a pause; returns how many files it had open at
    the same time. The process must be waited for later."""
    most = 0
    while True:
        try:
            most = max(most, len(os.listdir(f"/proc/{pid}/fd")))
            status = Path(f"/proc/{pid}/stat").read_text(encoding="utf-8")
            if status.rpartition(")")[2].split()[0] == "Z":
                return most
        except OSError:
            return most


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

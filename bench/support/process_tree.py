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


def peak_memory(pid):
    """The most bytes in memory that the process has ever had, shared ones included."""
    for line in Path(f"/proc/{pid}/status").read_text(encoding="utf-8").splitlines():
        if line.startswith("VmHWM:"):
            return 1024 * int(line.split()[1])
    return 0


class Peaks:
    """Of the whole tree, and of the one process of the name that used the most."""

    def __init__(self, name):
        self.name = name
        self.found = dict.fromkeys(("memory", "files", "processes", "client_memory", "client_files"), 0)

    def look(self, pid):
        now = dict.fromkeys(self.found, 0)
        for each in descendants(pid):
            try:
                files = len(os.listdir(f"/proc/{each}/fd"))
                now["memory"] += proportional_memory(each)
                now["files"] += files
                now["processes"] += 1
                if Path(f"/proc/{each}/comm").read_text(encoding="utf-8").strip() == self.name:
                    now["client_memory"] = max(now["client_memory"], peak_memory(each))
                    now["client_files"] = max(now["client_files"], files)
            except OSError:
                continue
        self.found = {key: max(value, now[key]) for key, value in self.found.items()}

    def figures(self):
        return self.found


@contextmanager
def watch(pid, name):
    """Looks at a tree until the block ends."""
    peaks = Peaks(name)
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

"""Checks in a log of system calls that a power cut at any moment would lose nothing.

A kept file is replaced as a whole: it is written under a temporary name or none, synced and
renamed, and then its folder is synced, all before the change is reported. A power cut then leaves
the old or the new file, and after the report the new one. A line of the audit log is written in
place, and synced before its action is done or reported.
"""

import os
import re

CALLS = ("openat,open,creat,write,pwrite64,writev,ftruncate,truncate,fsync,fdatasync,rename,renameat,"
         "renameat2,linkat,sendto,exit_group")

LINE = re.compile(r"^(\d+)\s+(\w+)\((.*)\)\s+= (-?\d+)")
UNFINISHED = re.compile(r"^(\d+)\s+(.*) <unfinished \.\.\.>$")
RESUMED = re.compile(r"^(\d+)\s+<\.\.\. \w+ resumed>(.*)$")
DESCRIPTOR = re.compile(r"^\d+<([^>]*)>")
TEXT = re.compile(r'"((?:[^"\\]|\\.)*)"')
FOR_WRITING = re.compile(r"O_WRONLY|O_RDWR|O_TRUNC")


class Step:
    """A process's operation on a file, or "reported" for output that others receive."""

    def __init__(self, kind, path, source=None):
        self.kind = kind
        self.path = path
        self.source = source

    def __repr__(self):
        return f"{self.kind} {self.path}" + (f" from {self.source}" if self.source else "")


def tracing(log):
    return ["strace", "-f", "-y", "-qqq", "-s", "300", "-o", log, "-e", "trace=" + CALLS]


def read_steps(path):
    steps = []
    begun = {}
    with open(path, encoding="utf-8", errors="replace") as log:
        for line in log:
            line = line.rstrip("\n")
            unfinished, resumed = UNFINISHED.match(line), RESUMED.match(line)
            if unfinished:
                begun[unfinished[1]] = line.removesuffix(" <unfinished ...>")
                continue
            if resumed:
                line = begun.pop(resumed[1], "") + resumed[2]
            match = LINE.match(line)
            if match and int(match[4]) >= 0:
                steps += read_step(match[2], match[3])
    return steps


def read_step(call, arguments):
    descriptor = DESCRIPTOR.match(arguments)
    texts = TEXT.findall(arguments)
    if call in ("openat", "open", "creat") and (call == "creat" or FOR_WRITING.search(arguments)):
        return [] if "O_TMPFILE" in arguments else [Step("opened", texts[0])]
    if call == "ftruncate":
        return [Step("cut", descriptor[1])]
    if call in ("write", "pwrite64", "writev") and descriptor:
        reported = arguments.startswith("1<")
        return [Step("reported" if reported else "written", descriptor[1])]
    if call == "truncate":
        return [Step("written", texts[0])]
    if call in ("fsync", "fdatasync"):
        return [Step("synced", descriptor[1])]
    if call.startswith("rename"):
        return [Step("named", texts[1], texts[0])]
    if call == "linkat":
        unnamed = DESCRIPTOR.match(arguments.split("fd/")[-1])
        return [Step("named", texts[1], unnamed[1] if unnamed else texts[0])]
    if call in ("sendto", "exit_group"):
        return [Step("reported", call)]
    return []


def name_sources(steps):
    """Replaces the source /proc/self/fd/N in the steps by the open file: the unnamed file that was
    synced last."""
    unnamed = None
    for step in steps:
        if step.kind == "synced" and "/#" in step.path:
            unnamed = step.path
        if step.kind == "named" and step.source.startswith("/proc/self/fd/"):
            step.source = unnamed or step.source
    return steps


def check(steps, is_kept, is_log, log_is_new=False):
    """Returns the problems of the steps, the number of kept files that were replaced, and the
    number of writes to the log."""
    problems = []
    replaced = appended = 0
    dirty = set()
    unsynced = {}
    for step in steps:
        if step.kind in ("reported", "named"):
            problems += [f"{path} is not synced when {step}" for path in dirty if is_log(path)]
        if step.kind == "opened" and is_log(step.path):
            if log_is_new:
                unsynced[step.path] = True
            log_is_new = False
        elif step.kind == "named" and is_log(step.source):
            unsynced[step.path] = log_is_new = True
        elif step.kind == "written" and is_log(step.path):
            appended += 1
            dirty.add(step.path)
        elif step.kind == "opened" and is_kept(step.path):
            problems.append(f"{step.path} is opened for writing in place")
        elif step.kind == "written" or step.kind == "cut" and not is_log(step.path):
            dirty.add(step.path)
            if is_kept(step.path):
                problems.append(f"{step.path} is written in place")
        elif step.kind == "synced":
            dirty.discard(step.path)
            for path in [path for path in unsynced if os.path.dirname(path) == step.path]:
                del unsynced[path]
        elif step.kind == "named" and is_kept(step.path):
            replaced += 1
            if step.source in dirty:
                problems.append(f"{step.path} gets its name before its bytes are synced")
            unsynced[step.path] = True
        elif step.kind == "reported":
            problems += [f"{path} is reported before its folder is synced" for path in unsynced]
            unsynced.clear()
    problems += [f"the folder of {path} is never synced" for path in unsynced]
    problems += [f"{path} is never synced" for path in dirty if is_log(path)]
    return problems, replaced, appended

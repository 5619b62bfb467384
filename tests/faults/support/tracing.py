"""strace: which system calls a program makes, and how one of them is made to fail."""

import re

CALL = re.compile(r"^(?:\[pid\s+\d+\] |\d+\s+)?(\w+)\((.*)$")

# The first call of each program's own code: the response ignores SIGPIPE before anything else.
# What comes earlier is the dynamic loader's and the C++ library's start.
MAIN_BEGINS = ("rt_sigaction", "SIGPIPE")

# What a call can fail with on a board, as its manual page has it.
FILE = ("EIO", "EACCES", "ENOENT", "ENOMEM")
CHANGE = ("EIO", "ENOSPC", "EDQUOT", "EROFS", "EACCES", "ENOENT", "ENOMEM")
ERRORS = {
    "openat": ("EIO", "EACCES", "ENOENT", "EMFILE", "ENFILE", "ENOMEM", "ENOSPC", "EROFS", "EINTR"),
    "open": ("EIO", "EACCES", "ENOENT", "EMFILE", "ENFILE", "ENOMEM", "ENOSPC", "EROFS", "EINTR"),
    "creat": ("EIO", "EACCES", "ENOENT", "EMFILE", "ENFILE", "ENOMEM", "ENOSPC", "EROFS", "EINTR"),
    "read": ("EIO", "EINTR", "EBADF", "ENOMEM", "ECONNRESET"),
    "pread64": ("EIO", "EINTR", "EBADF", "ENOMEM"),
    "write": ("EIO", "ENOSPC", "EDQUOT", "EPIPE", "EFBIG", "EINTR"),
    "writev": ("EIO", "ENOSPC", "EDQUOT", "EPIPE", "EFBIG", "EINTR"),
    "close": ("EIO", "EINTR", "ENOSPC"),
    "fstat": ("EIO", "ENOMEM"),
    "newfstatat": FILE,
    "lstat": FILE,
    "stat": FILE,
    "statx": FILE,
    "rename": CHANGE,
    "renameat": CHANGE,
    "unlink": CHANGE,
    "unlinkat": CHANGE,
    "linkat": CHANGE,
    "mkdir": CHANGE,
    "utimensat": CHANGE,
    "fsync": ("EIO", "ENOSPC", "EDQUOT", "EINTR"),
    "fchmod": ("EIO", "EROFS", "EPERM"),
    "getdents64": ("EIO", "ENOENT", "ENOMEM"),
    "socket": ("EMFILE", "ENFILE", "ENOMEM", "ENOBUFS", "EACCES"),
    "connect": ("ECONNREFUSED", "ENOENT", "EACCES", "EAGAIN", "EINTR", "ENOMEM"),
    "accept4": ("EMFILE", "ENFILE", "ENOMEM", "ENOBUFS", "ECONNABORTED", "EAGAIN", "EINTR"),
    "bind": ("EADDRINUSE", "EACCES", "EROFS", "ENOSPC", "ENOMEM"),
    "listen": ("EADDRINUSE", "ENOMEM"),
    "sendto": ("EPIPE", "ECONNRESET", "ENOMEM", "ENOBUFS", "EAGAIN", "EINTR"),
    "recvfrom": ("ECONNRESET", "ENOMEM", "EAGAIN", "EINTR"),
    "poll": ("EINTR", "ENOMEM"),
    "flock": ("EINTR", "ENOLCK", "EAGAIN", "EIO"),
    "clock_nanosleep": ("EINTR",),
    "getrandom": ("EINTR", "ENOSYS", "EIO"),
    "signalfd4": ("EMFILE", "ENFILE", "ENOMEM"),
    "clone": ("EAGAIN", "ENOMEM"),
    "clone3": ("EAGAIN", "ENOMEM"),
    "mmap": ("ENOMEM", "EAGAIN"),
    "mprotect": ("ENOMEM",),
    # The kernel reports this failure by another value than an error number.
    "brk": ("UNMOVED",),
    "execve": (),
    "exit_group": (),
    "exit": (),
    "rt_sigreturn": (),
    "restart_syscall": (),
    # Failing, they would be a broken kernel and no broken board.
    "futex": (),
    "gettid": (),
    "getpid": (),
    "geteuid": (),
    "umask": (),
}
OTHER_ERRORS = ("ENOMEM", "EIO")

# An interrupted call is made again. One that is interrupted for ever would be made for ever, so
# the interruptions come in bursts.
BURST = 10


class TracedCall:
    """A call that a program made: its name, and which of that name it was (from 1)."""

    def __init__(self, name, occurrence, inMain, line):
        self.name = name
        self.occurrence = occurrence
        self.inMain = inMain
        self.line = line


def readCalls(path):
    """The calls in a log of one thread, in their order."""
    calls = []
    counts = {}
    inMain = False
    with open(path, encoding="utf-8", errors="replace") as log:
        for line in log:
            match = CALL.match(line)
            if not match:
                continue
            name, arguments = match[1], match[2]
            if name == MAIN_BEGINS[0] and arguments.startswith(MAIN_BEGINS[1]):
                inMain = True
            counts[name] = counts.get(name, 0) + 1
            calls.append(TracedCall(name, counts[name], inMain, line.rstrip("\n")))
    return calls


# That these are not there is no fault: a session is then one that has ended, and its files go; a
# board without properties has no partitions.
MAY_BE_ABSENT = ("/var/lib/session/", "/var/run/board_properties")


def errorsOf(call, later=()):
    """The errors that fit a call; `later` are the calls of its name that a lasting one meets."""
    errors = ERRORS["fstat"] if ofOpenFile(call) else ERRORS.get(call.name, OTHER_ERRORS)
    # Nor is a file absent that is open.
    if any(ofOpenFile(met) or any(path in met.line for path in MAY_BE_ABSENT)
           for met in (call, *later)):
        errors = tuple(error for error in errors if error != "ENOENT")
    return errors


def ofOpenFile(call):
    return "AT_EMPTY_PATH" in call.line


def failing(name, occurrence, error, lasting):
    """The strace expression that makes the call fail, once or from then on."""
    when = str(occurrence)
    if lasting:
        when += f"..{occurrence + BURST - 1}" if error == "EINTR" else "+"
    how = "retval=0" if error == "UNMOVED" else f"error={error}"
    return f"{name}:{how}:when={when}"


def injecting(expression, log):
    """The command in front of a program that injects `expression`; what it did is in `log`."""
    name = expression.split(":")[0]
    # With the filter a run takes half the time, but strace 6.1 then injects no signal.
    speed = [] if ":signal=" in expression else ["--seccomp-bpf"]
    return ["strace", "-f", *speed, "-qqq", "-o", log, "-e", f"trace={name}",
            "-e", f"inject={expression}"]


def listing(log):
    """The command in front of a program that logs every call."""
    return ["strace", "-qqq", "-s", "200", "-o", log]


def wasInjected(log):
    try:
        with open(log, encoding="utf-8", errors="replace") as lines:
            return any("(INJECTED)" in line or "killed by SIGKILL" in line for line in lines)
    except FileNotFoundError:
        return False

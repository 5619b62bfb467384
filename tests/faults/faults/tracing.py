"""Uses strace to list the system calls of a program and to make one of them fail."""

import re

CALL = re.compile(r"^(?:\[pid\s+\d+\] |\d+\s+)?(\w+)\((.*)$")

# The first call of each program's own code, which ignores SIGPIPE first. Earlier calls belong to
# the dynamic loader and the C++ library.
MAIN_BEGINS = ("rt_sigaction", "SIGPIPE")

# The errors of each call that can occur on a board, from its manual page. EPERM and EACCES can also
# come from a security module, EUCLEAN and EBADMSG from a file system on damaged flash.
FILE = ("EIO", "EACCES", "ENOENT", "ENOMEM", "ENOTDIR", "EPERM", "EUCLEAN")
OPEN = ("EIO", "EACCES", "ENOENT", "EMFILE", "ENFILE", "ENOMEM", "ENOSPC", "EROFS", "EINTR",
        "ENOTDIR", "EPERM", "EUCLEAN", "EBADMSG")
CHANGE = ("EIO", "ENOSPC", "EDQUOT", "EROFS", "EACCES", "ENOENT", "ENOMEM", "ENOTDIR", "EPERM",
          "EUCLEAN")
READ = ("EIO", "EINTR", "EBADF", "ENOMEM", "EACCES", "EUCLEAN", "EBADMSG")
WRITE = ("EIO", "ENOSPC", "EDQUOT", "EPIPE", "EFBIG", "EINTR", "EPERM", "ENOMEM", "EUCLEAN")
ERRORS = {
    "openat": OPEN,
    "open": OPEN,
    "creat": OPEN,
    "read": (*READ, "ECONNRESET"),
    "pread64": READ,
    "write": WRITE,
    "writev": WRITE,
    "close": ("EIO", "EINTR", "ENOSPC", "EDQUOT"),
    "fstat": ("EIO", "ENOMEM", "EACCES", "EOVERFLOW", "EUCLEAN"),
    "newfstatat": FILE,
    "lstat": FILE,
    "stat": FILE,
    "statx": FILE,
    "rename": CHANGE,
    "renameat": CHANGE,
    "unlink": CHANGE,
    "unlinkat": CHANGE,
    "linkat": (*CHANGE, "EMLINK"),
    "mkdir": (*CHANGE, "EMLINK"),
    "utimensat": CHANGE,
    "fsync": ("EIO", "ENOSPC", "EDQUOT", "EINTR", "EROFS", "EUCLEAN"),
    "fdatasync": ("EIO", "ENOSPC", "EDQUOT", "EINTR", "EROFS", "EUCLEAN"),
    "fallocate": ("EIO", "ENOSPC", "EDQUOT", "EFBIG", "EINTR", "EOPNOTSUPP", "ENOSYS", "EPERM"),
    "ftruncate": ("EIO", "EINTR", "EPERM", "EROFS", "EFBIG"),
    "access": FILE,
    "faccessat": FILE,
    "faccessat2": FILE,
    "fchmod": ("EIO", "EROFS", "EPERM", "EUCLEAN"),
    "getdents64": ("EIO", "ENOENT", "ENOMEM", "EACCES", "EUCLEAN", "EBADMSG"),
    "socket": ("EMFILE", "ENFILE", "ENOMEM", "ENOBUFS", "EACCES"),
    "connect": ("ECONNREFUSED", "ENOENT", "EACCES", "EAGAIN", "EINTR", "ENOMEM", "EPERM",
                "EPROTOTYPE"),
    "accept4": ("EMFILE", "ENFILE", "ENOMEM", "ENOBUFS", "ECONNABORTED", "EAGAIN", "EINTR"),
    "bind": ("EADDRINUSE", "EACCES", "EROFS", "ENOSPC", "ENOMEM"),
    "listen": ("EADDRINUSE", "ENOMEM"),
    "sendto": ("EPIPE", "ECONNRESET", "ENOMEM", "ENOBUFS", "EAGAIN", "EINTR", "EPERM", "ENOTCONN"),
    "recvfrom": ("ECONNRESET", "ENOMEM", "EAGAIN", "EINTR", "EPERM", "ENOTCONN"),
    "poll": ("EINTR", "ENOMEM", "EINVAL"),
    "flock": ("EINTR", "ENOLCK", "EAGAIN", "EIO"),
    "clock_nanosleep": ("EINTR",),
    "getrandom": ("EINTR", "ENOSYS", "EIO"),
    "signalfd4": ("EMFILE", "ENFILE", "ENOMEM"),
    "clone": ("EAGAIN", "ENOMEM"),
    "clone3": ("EAGAIN", "ENOMEM"),
    "mmap": ("ENOMEM", "EAGAIN", "EACCES"),
    "mprotect": ("ENOMEM", "EACCES"),
    # The kernel reports this failure by its return value, not by an error number.
    "brk": ("UNMOVED",),
    "execve": (),
    "exit_group": (),
    "exit": (),
    "rt_sigreturn": (),
    "restart_syscall": (),
    # A failure of these would mean a broken kernel.
    "futex": (),
    "gettid": (),
    "getpid": (),
    "geteuid": (),
    "umask": (),
}
# A system call filter returns EPERM; a kernel without the call returns ENOSYS.
OTHER_ERRORS = ("ENOMEM", "EIO", "EPERM", "ENOSYS")

# An interrupted call is retried. A permanent interruption would be retried for ever, so this many
# calls are interrupted instead.
BURST = 10


class TracedCall:
    """A call of a program: its name, and its number among the calls of that name (from 1)."""

    def __init__(self, name, occurrence, in_main, line):
        self.name = name
        self.occurrence = occurrence
        self.in_main = in_main
        self.line = line


def read_calls(path):
    """Returns the calls in a log of one thread, in order."""
    calls = []
    counts = {}
    in_main = False
    with open(path, encoding="utf-8", errors="replace") as log:
        for line in log:
            match = CALL.match(line)
            if not match:
                continue
            name, arguments = match[1], match[2]
            if name == MAIN_BEGINS[0] and arguments.startswith(MAIN_BEGINS[1]):
                in_main = True
            counts[name] = counts.get(name, 0) + 1
            calls.append(TracedCall(name, counts[name], in_main, line.rstrip("\n")))
    return calls


# Files that may be missing without a fault: a session without its file has ended, and its other
# files are removed; a board without properties has no partitions; a board without configurations
# starts with those of its description.
MAY_BE_ABSENT = ("/var/lib/session/", "/var/run/board_properties", "/var/lib/board/configurations",
                 "/var/tmp/restored_eficonf", "/var/tmp/efi_backup", "/var/log/audit")


def failures(call, calls):
    """Returns the strace expressions that make `call`, one of `calls`, fail with each of its
    possible errors, once and lasting."""
    later = [other for other in calls
             if other.name == call.name and other.occurrence > call.occurrence]
    return [failing(call.name, call.occurrence, error, lasting)
            for lasting in (False, True)
            for error in errors_of([call, *later] if lasting else [call])]


def errors_of(calls):
    """Returns the errors that are possible for all of `calls`, which have the same name."""
    errors = (ERRORS["fstat"] if of_open_file(calls[0])
              else ERRORS.get(calls[0].name, OTHER_ERRORS))
    # An open file cannot be missing.
    if any(of_open_file(call) or any(path in call.line for path in MAY_BE_ABSENT)
           for call in calls):
        errors = tuple(error for error in errors if error != "ENOENT")
    return errors


def of_open_file(call):
    return "AT_EMPTY_PATH" in call.line


def failing(name, occurrence, error, lasting):
    """Returns the strace expression that makes the call fail, once or lasting."""
    when = str(occurrence)
    if lasting:
        when += f"..{occurrence + BURST - 1}" if error == "EINTR" else "+"
    how = "retval=0" if error == "UNMOVED" else f"error={error}"
    return f"{name}:{how}:when={when}"


def injecting(expression, log):
    """Returns the strace command that runs a program with `expression` injected; writes `log`."""
    name = expression.split(":")[0]
    # With the filter, a run takes half the time, but strace 6.1 then injects no signals.
    speed = [] if ":signal=" in expression else ["--seccomp-bpf"]
    return ["strace", "-f", *speed, "-qqq", "-o", log, "-e", f"trace={name}",
            "-e", f"inject={expression}"]


def listing(log):
    """Returns the strace command that runs a program and writes all its calls to `log`."""
    return ["strace", "-qqq", "-s", "200", "-o", log]


def was_injected(log):
    try:
        with open(log, encoding="utf-8", errors="replace") as lines:
            return any("(INJECTED)" in line or "killed by SIGKILL" in line for line in lines)
    except FileNotFoundError:
        return False

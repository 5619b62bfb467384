"""Whether a back-end serves nobody: each of its threads but the first waits for another client."""

import os
import platform

# System calls by number: taking a client, and waiting until there is one.
ACCEPT, POLL = {"x86_64": (288, 7), "aarch64": (242, 73)}.get(platform.machine(), (None, None))


def waitsForClient(syscall):
    """Looks at the call that a thread sleeps in, as the kernel prints it. What waits for a client
    that is there has a deadline."""
    number, *arguments = syscall.split()
    if number == str(ACCEPT):
        return True
    if number != str(POLL):
        return False
    count, timeout = int(arguments[1], 16), int(arguments[2], 16)
    unlimited = timeout == 0 if platform.machine() == "aarch64" else timeout & 0x80000000 != 0
    return count == 0 or unlimited


def servesNobody(pid):
    try:
        for thread in os.listdir(f"/proc/{pid}/task"):
            if thread != str(pid):
                with open(f"/proc/{pid}/task/{thread}/syscall", encoding="ascii") as call:
                    if not waitsForClient(call.read()):
                        return False
    except (FileNotFoundError, ProcessLookupError):
        return not os.path.exists(f"/proc/{pid}")  # a thread has ended just now; or all have
    return True

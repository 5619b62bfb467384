"""Finds out whether a back-end is idle: all its threads but the first wait for the next client."""

import os
import platform

# Numbers of the system calls that accept a client and wait for one.
ACCEPT, POLL = {"x86_64": (288, 7), "aarch64": (242, 73)}.get(platform.machine(), (None, None))


def waits_for_client(syscall):
    """Returns true if a thread in this call, as printed by the kernel, waits for the next client. A
    thread that waits for data of a connected client has a timeout."""
    number, *arguments = syscall.split()
    if number == str(ACCEPT):
        return True
    if number != str(POLL):
        return False
    count, timeout = int(arguments[1], 16), int(arguments[2], 16)
    unlimited = timeout == 0 if platform.machine() == "aarch64" else timeout & 0x80000000 != 0
    return count == 0 or unlimited


def serves_nobody(pid):
    try:
        for thread in os.listdir(f"/proc/{pid}/task"):
            if thread != str(pid):
                with open(f"/proc/{pid}/task/{thread}/syscall", encoding="ascii") as call:
                    if not waits_for_client(call.read()):
                        return False
    except (FileNotFoundError, ProcessLookupError):
        return not os.path.exists(f"/proc/{pid}")  # one thread has just ended, or all have
    return True

"""A file system of a few megabytes in memory, visible only to the process that made it."""

import ctypes
import os
import subprocess
import tempfile

PAGE = 4096
CLONE_NEWNS = 0x00020000
SIZE = 8 * 1024 * 1024
INODES = 400


class NotPossible(Exception):
    pass


def leave_mount_namespace():
    """Gives the process its own mount namespace: its later mounts are private and end with it."""
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.unshare(CLONE_NEWNS) != 0:
        raise NotPossible("no mount namespace: " + os.strerror(ctypes.get_errno()))
    run(["mount", "--make-rprivate", "/"])


def run(command):
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode != 0:
        raise NotPossible(f"{' '.join(command)}: {done.stderr.strip()}")


def why_impossible():
    """Returns None if small disks can be made here, otherwise the reason."""
    child = os.fork()
    if child == 0:
        try:
            SmallDisk().remove()
            os._exit(0)
        except NotPossible as reason:
            os.write(2, f"{reason}\n".encode())
            os._exit(1)
    return None if os.waitpid(child, 0)[1] == 0 else "this process may not mount a file system"


class SmallDisk:
    def __init__(self):
        leave_mount_namespace()
        self.folder = tempfile.mkdtemp(prefix="faults-disk-")
        run(["mount", "-t", "tmpfs", "-o", f"size={SIZE},nr_inodes={INODES},mode=0700", "faults",
             self.folder])
        self.filler = os.path.join(self.folder, "filler")

    def leave_pages(self, count):
        """Fills the disk except for `count` pages of 4 KiB."""
        state = os.statvfs(self.folder)
        free = state.f_bavail * state.f_frsize // PAGE
        with open(self.filler, "wb") as file:
            if free > count:
                os.posix_fallocate(file.fileno(), 0, (free - count) * PAGE)

    def leave_inodes(self, count):
        """Makes files until only `count` more can be made."""
        os.mkdir(self.filler)
        for number in range(max(0, os.statvfs(self.folder).f_ffree - count)):
            with open(os.path.join(self.filler, str(number)), "wb"):
                pass

    def empty(self):
        if os.path.isdir(self.filler):
            for name in os.listdir(self.filler):
                os.remove(os.path.join(self.filler, name))
            os.rmdir(self.filler)
        elif os.path.exists(self.filler):
            os.remove(self.filler)

    def remove(self):
        run(["umount", "-l", self.folder])
        os.rmdir(self.folder)

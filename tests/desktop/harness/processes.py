# SPDX-License-Identifier: MIT
"""Child processes that never outlive the harness."""

import ctypes
import os
import signal
import subprocess
import time

_libc = ctypes.CDLL(None, use_errno=True)
_PR_SET_PDEATHSIG = 1
_PR_SET_CHILD_SUBREAPER = 36


# Who has asked for the orphans and will have them killed.
_parents = 0


def adopt_orphans():
    """Daemons that a child leaves behind become children of this process, so that they are found.
    To be followed by kill_adopted()."""
    global _parents
    _parents += 1
    _libc.prctl(_PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def _end_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL, 0, 0, 0)


def spawn(arguments, environment, **options):
    """Starts a child that the kernel kills should this process die."""
    options = {"stdin": subprocess.DEVNULL} | options
    return subprocess.Popen(arguments, env=environment, preexec_fn=_end_with_parent, **options)


class Foreign:
    """Somebody else's child, as far as one can treat it like one's own."""

    def __init__(self, process):
        self.pid = process
        self.returncode = None  # Told to the parent alone.

    def poll(self):
        try:
            os.waitpid(self.pid, os.WNOHANG)  # Its parent may have left it to this process.
        except ChildProcessError:
            pass
        return None if os.path.exists(f"/proc/{self.pid}") else 0

    def terminate(self):
        os.kill(self.pid, signal.SIGTERM)

    def kill(self):
        os.kill(self.pid, signal.SIGKILL)

    def wait(self, seconds=5.0):
        end = time.monotonic() + seconds
        while self.poll() is None:
            if time.monotonic() > end:
                raise subprocess.TimeoutExpired(str(self.pid), seconds)
            time.sleep(0.01)


def stop(process, seconds=5.0):
    """Asks a child to end, and kills it when it does not."""
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(seconds)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
    return process.returncode


def _children_of(parent):
    found = []
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open(f"/proc/{entry}/stat", encoding="utf-8", errors="replace") as stat:
                fields = stat.read().rpartition(")")[2].split()
        except OSError:
            continue
        if int(fields[1]) == parent:
            found.append(int(entry))
    return found


def children():
    """The children of this process, with those that it was left."""
    return _children_of(os.getpid())


def kill_adopted(seconds=5.0):
    """Kills and reaps every child that is left, and what these leave behind in turn, once the last
    one is done who has adopted: nobody knows whose orphan it is."""
    global _parents
    _parents -= 1
    if _parents > 0:
        return
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        left = children()
        if not left:
            return
        for child in left:
            try:
                os.kill(child, signal.SIGKILL)
                os.waitpid(child, 0)
            except (ProcessLookupError, ChildProcessError):
                pass

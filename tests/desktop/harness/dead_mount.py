# SPDX-License-Identifier: MIT
"""A disk that has stopped to answer: a file system in user space behind which nobody works."""

import ctypes
import os
import select
import struct

from .waiting import DEADLINE

_libc = ctypes.CDLL(None, use_errno=True)
_MNT_DETACH = 2
_INIT = 26
# Lengths, numbers and the like at the beginning of every request; linux/fuse.h.
_REQUEST = struct.Struct("<IIQQIIII")
_LARGEST_REQUEST = 1 << 20


class DeadMount:
    """Mounted on a folder: whoever looks below it waits. Raises OSError where that is not allowed."""

    def __init__(self, folder):
        self._folder = os.fsencode(folder)
        self._device = os.open("/dev/fuse", os.O_RDWR | os.O_CLOEXEC)
        options = f"fd={self._device},rootmode=40000,user_id={os.getuid()},group_id={os.getgid()}"
        if _libc.mount(b"dead", self._folder, b"fuse", 0, options.encode()) != 0:
            number = ctypes.get_errno()
            os.close(self._device)
            raise OSError(number, os.strerror(number))
        self._agree()

    def _agree(self):
        """The one answer that it gives: with a file system that is not there yet nobody begins to
        talk."""
        _, opcode, unique, *_ = _REQUEST.unpack_from(os.read(self._device, _LARGEST_REQUEST))
        assert opcode == _INIT
        version = struct.pack("<IIII", 7, 31, 0, 0)
        answer = version.ljust(64, b"\0")
        os.write(self._device, struct.pack("<IiQ", 16 + len(answer), 0, unique) + answer)

    def wait_for_somebody(self):
        """Until a process waits. What it asks stays unread, as when nobody is there to read: from a
        question that was read the system lets nobody go, not even by a kill."""
        waiting, _, _ = select.select([self._device], [], [], DEADLINE)
        if not waiting:
            raise AssertionError("nobody has looked at the dead disk")

    def close(self):
        _libc.umount2(self._folder, _MNT_DETACH)
        os.close(self._device)

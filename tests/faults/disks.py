# SPDX-License-Identifier: MIT
"""Disks of their own: full, read-only, and cut off from power. Needs root."""

import contextlib
import os
import shutil
import subprocess
import tempfile

from calls import every_call
from storage import RECOVERY, RECOVERY_SENTENCE, STAGE, Broken, Disk, Faults, tree


# File systems whose driver runs in user space, how one is made, and how it is mounted.
_USER_SPACE = {"exfat": (["mkfs.exfat"], ["mount.exfat-fuse"]),
               "ntfs": (["mkfs.ntfs", "-F", "-q"], ["ntfs-3g"])}


class Mount:
    """A file system of its own, for as long as the block runs; needs root."""

    def __init__(self, scratch, kind, *options, size="64M"):
        self.image = tempfile.mktemp(dir=scratch, suffix=".img")
        self.point = tempfile.mkdtemp(dir=scratch)
        self.kind, self.options, self.size = kind, options, size
        self._loop = None

    @staticmethod
    def is_available(kind):
        make, mount = _USER_SPACE.get(kind, ([f"mkfs.{kind}"], ["mount"]))
        return shutil.which(make[0]) is not None and shutil.which(mount[0]) is not None

    def __enter__(self):
        if self.kind == "tmpfs":
            _run("mount", "-t", "tmpfs", "-o", ",".join(self.options), "tmpfs", self.point)
            return self
        _run("truncate", "-s", self.size, self.image)
        if self.kind in _USER_SPACE:
            make, mount = _USER_SPACE[self.kind]
            _run(*make, self.image)
            self._loop = _run("losetup", "--find", "--show", self.image).strip()
            _run(*mount, self._loop, self.point)
        else:
            _run(f"mkfs.{self.kind}", "-q", self.image)
            _run("mount", "-o", "loop", self.image, self.point)
        return self

    def __exit__(self, *_):
        subprocess.run(["umount", "-l", self.point], check=False)
        if self._loop:
            subprocess.run(["losetup", "--detach", self._loop], check=False)
        shutil.rmtree(self.point, ignore_errors=True)
        with contextlib.suppress(FileNotFoundError):
            os.remove(self.image)


def _run(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL).stdout


def can_mount():
    return os.geteuid() == 0 and subprocess.run(
        ["unshare", "--mount", "true"], check=False, stderr=subprocess.DEVNULL).returncode == 0


def full_disks(faults):
    """No space and no inodes left: old, nothing left over; and the save works once there is room."""
    for what, option in (("no space", "size=160k"), ("no inodes", "nr_inodes=64")):
        with Mount(faults.scratch, "tmpfs", option) as disk:
            folder = os.path.join(disk.point, "data")
            if faults.run("fill", folder).status != 0:
                raise Broken(f"{what}: the disk is too small for the test itself")
            old = Disk(folder).live()
            ballast = []
            with contextlib.suppress(OSError):
                while True:
                    name = os.path.join(disk.point, f"ballast-{len(ballast)}")
                    ballast.append(name)
                    with open(name, "wb") as file:
                        file.write(b"x" * (1024 if what == "no space" else 0))
            result = faults.run("save", folder)
            faults.count()
            if result.status != 1 or Disk(folder).live() != old or Disk(folder).beside(STAGE):
                raise Broken(f"{what}: {result}")
            for name in ballast:
                with contextlib.suppress(FileNotFoundError):
                    os.remove(name)
            if faults.run("save", folder).status != 0:
                raise Broken(f"{what}: the save fails although there is room again")


def read_only_disk(faults):
    with Mount(faults.scratch, "ext4") as disk:
        folder = os.path.join(disk.point, "data")
        faults.run("fill", folder)
        old = Disk(folder).live()
        _run("mount", "-o", "remount,ro", disk.point)
        result = faults.run("save", folder)
        faults.count()
        if result.status != 1 or Disk(folder).live() != old or Disk(folder).beside(STAGE):
            raise Broken(f"read-only disk: {result}")


def strange_disks(faults, names, every):
    """File systems that lack something: exFAT has no hard links and no exchange of folders, NTFS in
    user space no exchange. Calls fail and kill there as well."""
    for kind in ("exfat", "ntfs"):
        if not Mount.is_available(kind):
            print(f"{kind}: left out, its programs are missing")
            continue
        with Mount(faults.scratch, kind) as disk:
            there = Faults(faults.driver, disk.point)
            for fault, errors in (("error", names), ("signal", ["KILL"])):
                # A close that is made to fail is not carried out, and a driver in user space does not
                # remove the folder of a file that is open.
                every_call(there, fault, errors, every, only=["first save", "save", "delete"],
                           without=["close"] if fault == "error" else [])
            faults.tried += there.tried


def power_cuts(faults, kinds, every):
    """The image of the disk, copied at a kill at each publishing call, mounted and loaded."""
    for kind in kinds:
        if not Mount.is_available(kind):
            print(f"power cut on {kind}: left out, its programs are missing")
            continue
        size = {"xfs": "320M", "btrfs": "128M"}.get(kind, "32M")
        with Mount(faults.scratch, kind, size=size) as disk:
            folder = os.path.join(disk.point, "data")
            faults.run("fill", folder)
            os.sync()
            old = Disk(folder).live()
            trace = os.path.join(faults.scratch, "trace")
            pristine = disk.image + ".pristine"
            subprocess.run(["cp", "--sparse=always", disk.image, pristine], check=True)
            faults.run("save", folder, "-y", "-o", trace)
            new = Disk(folder).live()
            with open(trace, encoding="utf-8", errors="replace") as file:
                before, after = faults.calls_of(file.read().splitlines())
        for call in ("fsync", "syncfs", "renameat2", "renameat", "linkat", "unlinkat", "write"):
            for k in range(1, after[call] + 1, every):
                power_cut_at(faults, kind, pristine, call, before[call] + k, old, new)
        power_cut_at(faults, kind, pristine, None, 0, old, new)
        os.remove(pristine)


def power_cut_at(faults, kind, pristine, call, when, old, new):
    image = tempfile.mktemp(dir=faults.scratch, suffix=".img")
    copy = image + ".cut"
    point = tempfile.mkdtemp(dir=faults.scratch)
    subprocess.run(["cp", "--sparse=always", pristine, image], check=True)
    try:
        subprocess.run(["mount", "-o", "loop", image, point], check=True)
        folder = os.path.join(point, "data")
        inject = ["-o", "/dev/null", "-e", f"inject={call}:signal=KILL:when={when}"] if call else []
        result = faults.run("save", folder, *inject)
        # What the disk holds now, without anything that is still in memory only.
        subprocess.run(["cp", "--sparse=always", image, copy], check=True)
        subprocess.run(["umount", "-l", point], check=True)
        subprocess.run(["mount", "-o", "loop", copy, point], check=True)
        faults.count()
        disk = Disk(folder)
        live, recoveries = disk.live(), disk.beside(RECOVERY)
        what = f"power cut on {kind} at {call} number {when}"
        if result.status == 0 and (live != new or recoveries):
            raise Broken(f"{what}: saved, but it is not there")
        if live not in (old, new) and not any(tree(r) in (old, new) for r in recoveries):
            raise Broken(f"{what}: neither old nor new: {sorted(live or {})}")
        again = faults.run("load", folder)
        if recoveries:
            if RECOVERY_SENTENCE not in again.text:
                raise Broken(f"{what}: the recovery copy is not spoken of: {again}")
        elif again.status != 0:
            raise Broken(f"{what}: the next load fails: {again}")
    finally:
        subprocess.run(["umount", "-l", point], check=False)
        os.rmdir(point)
        for path in (image, copy):
            with contextlib.suppress(FileNotFoundError):
                os.remove(path)



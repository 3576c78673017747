# SPDX-License-Identifier: MIT
"""Engines that exchange when they are told to: git through a bare repository, and rclone bisync.
Both do what docs/SYNC.md tells a person to do."""

import os
import re
import shutil
import subprocess

IGNORED_BY_GIT = "/.quillmark-*\n/Markdown/Drafts/\n"
# A note is never merged line by line, and no line end is changed.
ATTRIBUTES_OF_GIT = "/Markdown/** -text -merge\n"
FILTERS_OF_RCLONE = "- /.quillmark-*\n- /.quillmark-*/**\n- /Markdown/Drafts/**\n"


def is_installed(program):
    return shutil.which(program) is not None


class _Exchanges:
    """Exchanges at random, and until nothing more comes."""

    def __init__(self, computers):
        self.computers = computers
        self.conflicts = 0

    def start(self):
        for computer in self.computers:
            self.exchange_on(computer)

    def close(self):
        pass

    def disturb(self, random):
        self.exchange_on(random.choice(self.computers))
        return "exchanged"

    def settle(self):
        for _ in range(10):
            for computer in self.computers:
                self.exchange_on(computer)
            files = [computer.files() for computer in self.computers]
            if files[0] == files[1]:
                return
        raise AssertionError("ten exchanges, and still not equal")


class GitPair(_Exchanges):
    """Two clones of a bare repository."""

    def __init__(self, folder, computers):
        super().__init__(computers)
        self._folder = folder
        self._run(folder, "init", "--quiet", "--bare", "--initial-branch=main", "bare.git")
        for computer in computers:
            path = computer.data.path
            path.mkdir(parents=True, exist_ok=True)
            (path / ".gitignore").write_text(IGNORED_BY_GIT)
            (path / ".gitattributes").write_text(ATTRIBUTES_OF_GIT)
            self._run(path, "init", "--quiet", "--initial-branch=main")
            self._run(path, "remote", "add", "origin", str(folder / "bare.git"))

    def _run(self, where, *arguments, may_fail=False):
        environment = {"HOME": str(self._folder), "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
                       "GIT_CONFIG_NOSYSTEM": "1", "GIT_AUTHOR_NAME": "somebody",
                       "GIT_AUTHOR_EMAIL": "somebody@localhost", "GIT_COMMITTER_NAME": "somebody",
                       "GIT_COMMITTER_EMAIL": "somebody@localhost"}
        done = subprocess.run(["git", *arguments], cwd=where, env=environment, timeout=120,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        if done.returncode != 0 and not may_fail:
            raise AssertionError(f"git {' '.join(arguments)}: {done.stdout}{done.stderr}")
        return done

    def exchange_on(self, computer):
        path = computer.data.path
        self._commit(path)
        if self._run(path, "ls-remote", "--exit-code", "origin", "main",
                     may_fail=True).returncode == 0:
            pulled = self._run(path, "pull", "--quiet", "--no-rebase", "--no-edit",
                               "--allow-unrelated-histories", "origin", "main", may_fail=True)
            if pulled.returncode != 0:
                self._keep_both(computer, pulled)
        self._run(path, "push", "--quiet", "origin", "HEAD:main")

    def _commit(self, path):
        self._run(path, "add", "--all")
        if self._run(path, "diff", "--cached", "--quiet", may_fail=True).returncode != 0:
            self._run(path, "commit", "--quiet", "--message=notes")

    def _keep_both(self, computer, pulled):
        """Ours stays, theirs is put beside it, to be taken in."""
        path = computer.data.path
        unmerged = self._run(path, "ls-files", "--unmerged", "-z").stdout.decode().split("\0")
        names = {}
        for line in filter(None, unmerged):
            head, name = line.split("\t")
            names.setdefault(name, set()).add(head.split()[2])
        if not names:
            raise AssertionError(f"git pull: {pulled.stdout}{pulled.stderr}")
        for name, stages in names.items():
            self.conflicts += 1
            if stages >= {"2", "3"}:
                theirs = self._run(path, "show", f":3:{name}").stdout
                (path / name.replace(".md", ".theirs.md")).write_bytes(theirs)
        if any(name.endswith(".theirs.md") for name in os.listdir(computer.data.notes)):
            computer.repair()
        self._commit(path)
        if (path / ".git/MERGE_HEAD").exists():
            self._run(path, "commit", "--quiet", "--no-edit")


class RclonePair(_Exchanges):
    """Two folders, which one of the computers keeps equal."""

    def __init__(self, folder, computers):
        super().__init__(computers)
        self._folder = folder
        self._filters = folder / "filters"
        self._filters.write_text(FILTERS_OF_RCLONE)
        self._is_first = True

    def exchange_on(self, computer):
        """Whoever starts it: both folders are as if on this computer."""
        arguments = ["rclone", "bisync", *(str(one.data.path) for one in self.computers),
                     f"--filters-file={self._filters}", f"--workdir={self._folder / 'bisync'}",
                     "--config=", "--verbose"]
        if self._is_first:
            for one in self.computers:
                one.data.path.mkdir(parents=True, exist_ok=True)
            arguments.append("--resync")
        done = subprocess.run(arguments, timeout=120, text=True, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT,
                              env={"HOME": str(self._folder), "PATH": os.environ["PATH"]})
        if done.returncode != 0:
            raise AssertionError(done.stdout)
        self._is_first = False
        # Both texts are on both sides now, and neither is a note: either computer may take them in.
        pattern = re.compile(r"\.\.path[12]$")
        if any(pattern.search(name) for name in os.listdir(computer.data.notes)):
            self.conflicts += 1
            computer.repair()

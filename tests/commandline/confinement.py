# SPDX-License-Identifier: MIT
"""The command line has given up its rights before it looks at what others wrote."""

import re
import shutil
import subprocess

from harness import CommandLineTest, main

CONFINED = {"QUILLMARK_UNCONFINED": "", "ASAN_OPTIONS": "detect_leaks=0"}


class Confinement(CommandLineTest):
    def environment(self, **variables):
        return super().environment(**CONFINED, **variables)

    def opened_afterwards(self, *arguments, text=b""):
        """The paths that a command opens once it is confined, of the home folder alone."""
        if shutil.which("strace") is None:
            self.skipTest("strace is not installed")
        log = self.home / "calls"
        done = subprocess.run(["strace", "-f", "-o", str(log), "-e", "trace=openat,seccomp",
                               *self.command(*arguments)], env=self.environment(), input=text,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        before, confined, after = log.read_text().partition("SECCOMP_SET_MODE_FILTER")
        self.assertTrue(confined, before)
        return [path for path in re.findall(r'openat\([^,]*, "([^"]*)"', after)
                if path.startswith(str(self.home)) or not path.startswith("/")]

    def test_the_version_says_what_is_on(self):
        said = self.ok("--version").splitlines()[1]
        unconfined = self.ok("--version", env=self.environment() | {"QUILLMARK_UNCONFINED": "1"})

        self.assertRegex(said, "^Confined: .*no network\\.$")
        self.assertEqual(unconfined.splitlines()[1], "Not confined: QUILLMARK_UNCONFINED is set.")

    def test_files_for_an_import_are_read_before_and_no_longer_afterwards(self):
        file = self.home / "one.txt"
        file.write_text("one")

        opened = self.opened_afterwards("import", str(file))

        self.assertNotIn(str(file), opened)
        self.assertIn(str(self.data.path), opened)
        self.assertEqual(self.bodies(), ["one"])

    def test_notes_are_read_afterwards(self):
        self.ok("add", "one")

        for command in (["list"], ["search", "one"], ["check"], ["check", "--repair", "--yes"],
                        ["export", str(self.home / "copies")], ["add", "two"]):
            with self.subTest(command=command[0]):
                self.assertIn(str(self.data.path), self.opened_afterwards(*command))


if __name__ == "__main__":
    main()

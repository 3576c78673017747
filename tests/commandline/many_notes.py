# SPDX-License-Identifier: MIT
"""Ten thousand notes: captured, searched, exported, imported, and compared."""

import hashlib
import json
import os
import subprocess

from harness import CommandLineTest, DONE, main

COUNT = 10_000
CAPTURED = 200


class ManyNotes(CommandLineTest):
    def body(self, number):
        words = "two lines" if number % 2 else "one line"
        return f"Note {number % 5000}: {words}\n{hashlib.sha256(str(number).encode()).hexdigest()}"

    def test_they_come_back_as_they_were(self):
        bodies = sorted(self.body(number) for number in range(COUNT))
        texts = self.home / "texts"
        texts.mkdir()
        for number in range(COUNT - CAPTURED):
            path = texts / f"{number}.txt"
            path.write_text(self.body(number))
            os.utime(path, ns=(0, (1_700_000_000 + number) * 10**9))

        # Captured, one by one and by the thousand.
        self.ok("import", *(str(path) for path in texts.iterdir()))
        for number in range(COUNT - CAPTURED, COUNT):
            self.ok("add", text=self.body(number).encode())
        self.assertEqual(self.bodies(), bodies)

        # Searched.
        listed = self.ok("list").splitlines()
        self.assertEqual(len(listed), COUNT)
        times = [line.split("\t")[1] for line in listed]
        self.assertEqual(times, sorted(times, reverse=True))
        digest = hashlib.sha256(b"1234").hexdigest()
        self.assertEqual(len(self.ok("search", digest[:20].upper()).splitlines()), 1)
        self.assertEqual(len(self.ok("search", "note", "4999:").splitlines()), 2)
        self.assertEqual(sorted(note["body"] for note in json.loads(self.ok("list", "--json"))),
                         bodies)

        # Exported: each in whole, under a name of its own.
        copies = self.home / "copies"
        self.ok("export", str(copies))
        self.assertEqual(sorted(path.read_text() for path in copies.iterdir()), bodies)

        # And imported anew elsewhere.
        elsewhere = self.environment(XDG_DATA_HOME=str(self.home / "elsewhere"))
        self.ok("import", *(str(path) for path in copies.iterdir()), env=elsewhere)
        again = json.loads(self.ok("list", "--json", env=elsewhere))
        before = json.loads(self.ok("list", "--json"))
        def facts(notes):
            return sorted((note["body"], note["updated"]) for note in notes)
        self.assertEqual(facts(again), facts(before))
        self.assertEqual(self.ok("check", env=elsewhere), "")

    def test_reading_beside_additions_never_sees_a_half_state(self):
        self.ok("add", "first")
        writer = subprocess.Popen(
            ["sh", "-c", 'for i in $(seq 100); do "$0" add "note $i" >/dev/null || exit 1; done',
             self.program], env=self.environment())

        seen = 0
        while writer.poll() is None:
            count = len(self.ok("list").splitlines())
            self.assertGreaterEqual(count, seen)
            seen = count

        self.assertEqual(writer.returncode, DONE)
        self.assertEqual(len(self.ok("list").splitlines()), 101)


if __name__ == "__main__":
    main()

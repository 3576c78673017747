# SPDX-License-Identifier: MIT
"""What each command does, and what it answers to bad input."""

import fcntl
import json
import os
import pathlib
import pty
import resource
import select
import shutil
import signal
import socket
import subprocess
import time
import unittest

from harness import (AMBIGUOUS, BLANK, CommandLineTest, DISK, DONE, FILE, IN_USE, LIMITS,
                     NOT_UTF8, UNKNOWN, USAGE, main)

COMPLETIONS = pathlib.Path(__file__).parents[2] / "packaging/completions"


class Commands(CommandLineTest):
    def test_add_saves_a_note_and_prints_its_path(self):
        printed = self.ok("add", "buy milk")

        note, = self.data.read_notes()
        self.assertEqual(printed, f"{self.data.notes}/{note.id}.md\n")
        self.assertEqual((note.body, note.created), ("buy milk", note.updated))
        self.assertEqual(self.hidden(), [])

    def test_add_reads_the_standard_input_and_trims_as_the_window_does(self):
        self.ok("add", text="  two\nlines é 漢\n\n".encode())
        self.ok("add", "--", "--help")

        self.assertEqual(self.bodies(), ["--help", "two\nlines é 漢"])

    def test_add_keeps_what_is_there(self):
        self.data.create()
        self.data.add_note("by hand")
        self.data.capture.write_text("a draft")
        (self.data.notes / "picture.png").write_bytes(b"other")
        before = self.data.state()

        self.ok("add", "one more")

        after = self.data.state()
        files = {name for name in before if b"Penwick" != name and before[name] == after.get(name)}
        self.assertLessEqual({b"Markdown/Drafts/capture.md", b"Markdown/Notes/picture.png",
                              b"Markdown/.format"}, files)
        self.assertEqual(self.bodies(), ["by hand", "one more"])

    def test_add_moves_older_notes_along(self):
        self.data.path.mkdir(parents=True)
        older = {"version": 1, "captureDraft": "draft", "editingDrafts": {}, "notes": [
            {"id": "8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F", "body": "old", "createdAt": 7e8,
             "updatedAt": 7e8}]}
        (self.data.path / "notes.json").write_text(json.dumps(older))
        before = self.data.state()

        self.assertIn("old", self.ok("list"))
        self.assertEqual(self.data.state(), before)
        self.ok("add", "new")

        self.assertEqual(self.bodies(), ["new", "old"])
        self.assertEqual(self.data.draft(), "draft")

    def test_list_and_search_as_the_window_does(self):
        self.data.create()
        for number, body in enumerate(["Café\tau lait\nmore", "strasse", "other"]):
            file = self.data.add_note(body, number)
            text = file.read_text().replace("updated: 2025-03-01", f"updated: 2025-03-0{number + 1}")
            file.write_text(text)

        lines = self.ok("list").splitlines()

        self.assertEqual([line.split("\t")[2] for line in lines], ["other", "strasse", "Café au lait"])
        self.assertEqual(lines[1].split("\t")[:2], ["00000000-0000-0000-0000-000000000001",
                                                    "2025-03-02T08:15:30.250Z"])
        self.assertEqual(self.ok("search", "STRASSE"), lines[1] + "\n")
        self.assertEqual(self.ok("search", "cafe"), lines[2] + "\n")
        self.assertEqual(self.ok("search", "nowhere"), "")
        found = json.loads(self.ok("search", "--json", "straße"))
        self.assertEqual(found, [{"id": "00000000-0000-0000-0000-000000000001", "body": "strasse",
                                  "title": "strasse", "created": "2025-03-01T08:15:30.250Z",
                                  "updated": "2025-03-02T08:15:30.250Z"}])
        self.assertEqual(len(json.loads(self.ok("list", "--json"))), 3)

    def test_show_takes_the_beginning_of_an_identifier(self):
        self.data.create()
        self.data.add_note("first\n---\nlast\n", 0xA << 124)
        self.data.add_note("second", 0xAB << 120)

        self.assertEqual(self.ok("show", "ab"), "second")
        self.assertEqual(self.ok("show", "A0000000-0000"), "first\n---\nlast\n")
        self.assertEqual(json.loads(self.ok("show", "--json", "AB"))["body"], "second")
        self.refused(AMBIGUOUS, "show", "a")
        self.refused(UNKNOWN, "show", "c")

    def test_export_gives_every_note_a_readable_name_and_its_time(self):
        self.data.create()
        long = "漢" * 400
        for number, body in enumerate(["a/b", "Same", "same", "..", long, " \n\t", "-dash", "a\\b"]):
            self.data.add_note(body, number)
        folder = self.home / "out"

        self.ok("export", str(folder))

        names = {path.name: path.read_text() for path in folder.iterdir()}
        self.assertEqual(names, {"a-b.md": "a/b", "Same.md": "Same", "same (2).md": "same",
                                 "_...md": "..", "漢" * 60 + "….md": long, "Untitled.md": " \n\t",
                                 "-dash.md": "-dash", "a-b (2).md": "a\\b"})
        for path in folder.iterdir():
            self.assertEqual(path.stat().st_mtime_ns, 1740816930250000000)

    def test_export_overwrites_nothing(self):
        self.data.create()
        self.data.add_note("title")
        folder = self.home / "out"
        folder.mkdir()
        (folder / "title.md").write_text("mine")
        (folder / "title (2).md").symlink_to("nowhere")

        self.ok("export", str(folder))

        self.assertEqual((folder / "title.md").read_text(), "mine")
        self.assertEqual(os.readlink(folder / "title (2).md"), "nowhere")
        self.assertEqual((folder / "title (3).md").read_text(), "title")

    def test_import_makes_a_note_of_each_file_with_its_time(self):
        one, two = self.home / "one.txt", self.home / "two"
        one.write_bytes("eins\r\nzwei\n".encode())
        two.write_text("drei")
        os.utime(one, ns=(0, 1740816930250999999))

        printed = self.ok("import", str(one), str(two))

        notes = {note.body: note for note in self.data.read_notes()}
        self.assertEqual(set(notes), {"eins\r\nzwei\n", "drei"})
        self.assertEqual(notes["eins\r\nzwei\n"].created, "2025-03-01T08:15:30.250Z")
        self.assertEqual(notes["eins\r\nzwei\n"].updated, "2025-03-01T08:15:30.250Z")
        self.assertEqual(len(printed.splitlines()), 2)

    def test_import_takes_all_or_none(self):
        good, pipe = self.home / "good", self.home / "pipe"
        good.write_text("good")
        os.mkfifo(pipe)
        bad, blank = self.home / "bad", self.home / "blank"
        bad.write_bytes(b"\xc3")
        blank.write_text(" \n")
        large = self.home / "large"
        large.touch()
        os.truncate(large, 64 * 1024 * 1024 + 1)
        for status, path in ((FILE, self.home / "missing"), (FILE, pipe), (FILE, self.home),
                             (NOT_UTF8, bad), (BLANK, blank), (LIMITS, large)):
            with self.subTest(path=path.name):
                self.assertIn(str(path), self.refused(status, "import", str(good), str(path)))

        self.assertEqual(os.listdir(self.data.path), [])

    def test_bad_input_has_a_status_of_its_own_and_changes_nothing(self):
        self.ok("add", "there")
        before = self.data.state()

        self.refused(BLANK, "add", " \n\u3000")
        self.refused(BLANK, "add")
        self.refused(NOT_UTF8, "add", text=b"caf\xe9")
        self.refused(NOT_UTF8, "add", b"caf\xe9")
        self.refused(LIMITS, "add", text=b"x" * (64 * 1024 * 1024))
        self.refused(USAGE)
        self.refused(USAGE, "rm")
        self.refused(USAGE, "list", "more")
        self.refused(USAGE, "show")

        self.assertEqual(self.data.state(), before)

    def test_a_file_that_may_not_grow_and_a_full_output_are_told(self):
        self.ok("add", "there")
        before = self.data.state()
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))

        self.refused(DISK, "add", text=b"x" * 8192, preexec_fn=limit)
        done = subprocess.run(["sh", "-c", 'exec "$0" list > /dev/full', self.program],
                              env=self.environment(), stderr=subprocess.PIPE, check=False)

        self.assertEqual(done.returncode, FILE)
        self.assertIn(b"No space left", done.stderr)
        self.assertEqual({name: facts[4] for name, facts in self.data.state().items()},
                         {name: facts[4] for name, facts in before.items()})

    def test_a_folder_that_another_program_has_is_left_alone(self):
        self.ok("add", "there")
        before = self.data.state()
        folder = os.open(self.data.path, os.O_RDONLY)
        fcntl.flock(folder, fcntl.LOCK_EX)

        sentence = self.refused(IN_USE, "add", "text")
        listed = self.ok("list")

        self.assertIn(str(self.data.path), sentence)
        self.assertIn("there", listed)
        self.assertEqual(self.data.state(), before)
        os.close(folder)
        self.ok("add", "text")

    def test_a_folder_that_another_program_has_for_a_moment_is_waited_for(self):
        self.ok("add", "there")
        holder = subprocess.Popen(
            ["python3", "-c", "import fcntl, os, sys, time\n"
             f"folder = os.open({str(self.data.path)!r}, os.O_RDONLY)\n"
             "fcntl.flock(folder, fcntl.LOCK_EX)\nprint(flush=True)\ntime.sleep(0.2)\n"],
            stdout=subprocess.PIPE)
        holder.stdout.readline()

        self.ok("add", "later")

        holder.wait()
        holder.stdout.close()
        self.assertEqual(self.bodies(), ["later", "there"])

    def test_many_at_once_on_an_empty_home(self):
        started = [subprocess.Popen(self.command("add", f"note {number}"), env=self.environment(),
                                    stdout=subprocess.DEVNULL) for number in range(50)]

        self.assertEqual({one.wait() for one in started}, {DONE})

        self.assertEqual(self.bodies(), sorted(f"note {number}" for number in range(50)))
        self.assertEqual(self.hidden(), [])

    def test_it_never_starts_the_window(self):
        services, started = self.home / "services", self.home / "started"
        services.mkdir()
        (services / "org.quillmark.Quillmark.service").write_text(
            f"[D-BUS Service]\nName=org.quillmark.Quillmark\nExec=/usr/bin/touch {started}\n")
        bus = self.start_bus(f"<servicedir>{services}</servicedir>")

        # Nothing there to be locked: the window, if there were one, would have to be asked.
        self.ok("add", "text", env=self.environment(DBUS_SESSION_BUS_ADDRESS=bus))

        self.assertEqual(self.bodies(), ["text"])
        self.assertFalse(started.exists())

    def test_a_bus_that_does_not_answer_is_not_waited_for_long(self):
        silent = socket.socket(socket.AF_UNIX)
        silent.bind(str(self.home / "bus"))
        silent.listen(8)
        address = f"unix:path={self.home}/bus"
        self.addCleanup(silent.close)

        began = time.monotonic()
        done = self.run_it("add", "text", env=self.environment(DBUS_SESSION_BUS_ADDRESS=address))

        self.assertEqual(done.returncode, DONE)
        self.assertLess(time.monotonic() - began, 10)
        self.assertEqual(self.bodies(), ["text"])

    def start_bus(self, configuration):
        """A session bus of its own; its address."""
        file = self.home / "bus.conf"
        file.write_text(f"<busconfig><type>session</type><listen>unix:dir={self.home}</listen>"
                        f"{configuration}<policy context='default'><allow send_destination='*'/>"
                        "<allow receive_sender='*'/><allow own='*'/></policy></busconfig>")
        daemon = subprocess.Popen(["dbus-daemon", "--nofork", "--print-address",
                                   f"--config-file={file}"], stdout=subprocess.PIPE, text=True)
        self.addCleanup(daemon.stdout.close)
        self.addCleanup(daemon.wait)
        self.addCleanup(daemon.kill)
        return daemon.stdout.readline().strip()

    def environment_of_shells(self):
        """One in which the program is found by its name."""
        folder = self.home / "bin"
        folder.mkdir()
        (folder / "quillmark-notes").symlink_to(self.program)
        return self.environment(PATH=f"{folder}:{os.environ['PATH']}")

    def test_bash_completes_commands_and_identifiers(self):
        self.data.create()
        self.data.add_note("one", 0xAB << 120)
        script = (f'source "{COMPLETIONS}/quillmark-notes.bash"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
                  '_quillmark_notes; echo "${COMPREPLY[*]}"')
        environment = self.environment_of_shells()
        def completed(*words):
            return subprocess.run(["bash", "-c", script, "bash", "quillmark-notes", *words],
                                  env=environment, stdout=subprocess.PIPE, text=True,
                                  check=True).stdout.strip()

        self.assertEqual(completed("s"), "search show")
        self.assertEqual(completed("--v"), "--version")
        self.assertEqual(completed("list", "--"), "--json")
        self.assertEqual(completed("show", "ab"), "AB000000-0000-0000-0000-000000000000")

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_fish_completes_commands_and_identifiers(self):
        self.data.create()
        self.data.add_note("one", 0xAB << 120)
        environment = self.environment_of_shells()
        def completed(line):
            script = f'source "{COMPLETIONS}/quillmark-notes.fish"; complete -C "$argv"'
            lines = subprocess.run(["fish", "--no-config", "-c", script, line], env=environment,
                                   stdout=subprocess.PIPE, text=True, check=True).stdout
            return [found.split("\t")[0] for found in lines.splitlines()]

        self.assertEqual(completed("quillmark-notes s"), ["search", "show"])
        self.assertEqual(completed("quillmark-notes --v"), ["--version"])
        self.assertEqual(completed("quillmark-notes list --"), ["--json"])
        self.assertIn("AB000000-0000-0000-0000-000000000000", completed("quillmark-notes show "))

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh_completes_commands_and_identifiers(self):
        self.data.create()
        self.data.add_note("one", 0xAB << 120)
        try:
            own, terminal = pty.openpty()
        except OSError as error:
            self.skipTest(f"no terminal can be made here: {error}")
        shell = subprocess.Popen(["zsh", "-f", "-i"], stdin=terminal, stdout=terminal,
                                 stderr=terminal, start_new_session=True,
                                 env=self.environment_of_shells() | {"TERM": "dumb"})
        os.close(terminal)
        self.addCleanup(os.close, own)
        self.addCleanup(shell.wait)
        self.addCleanup(shell.kill)
        def shows(keys, wanted):
            os.write(own, keys.encode())
            shown, end = b"", time.monotonic() + 10
            while wanted.encode() not in shown and time.monotonic() < end:
                if select.select([own], [], [], 0.1)[0]:
                    shown += os.read(own, 65536)
            self.assertIn(wanted, shown.decode())

        shows(f"fpath=({COMPLETIONS} $fpath); autoload -Uz compinit; compinit -u -D; setopt nobeep; "
              "echo is-$((6 * 7))\n", "is-42")
        cancel = "\x15"
        shows("quillmark-notes se\t", "search ")
        shows(f"{cancel}quillmark-notes list --\t", "list --json ")
        shows(f"{cancel}quillmark-notes search milk --\t", "--json")
        shows(f"{cancel}quillmark-notes show A\t", "AB000000-0000-0000-0000-000000000000")

    def test_it_speaks_the_language_of_the_locale(self):
        chinese = self.environment(LC_ALL="zh_CN.UTF-8", LANGUAGE="zh_CN")

        self.assertIn("没有可保存的文字", self.refused(BLANK, "add", " ", env=chinese))
        self.assertIn("用法", self.ok("--help", env=chinese))
        self.assertIn("Usage", self.ok("--help"))
        self.assertIn("Usage", self.ok("add", "--help"))
        self.assertRegex(self.ok("--version"), r"\Aquillmark-notes \d+\.\d+\.\d+\n(C|Not c)onfined: .+\n\Z")

    def on_terminal(self, *arguments, status=DONE):
        """What a terminal shows."""
        try:
            own, terminal = pty.openpty()
        except OSError as error:
            self.skipTest(f"no terminal can be made here: {error}")
        process = subprocess.Popen(self.command(*arguments), env=self.environment(TERM="xterm"),
                                   stdin=terminal, stdout=terminal, stderr=terminal)
        os.close(terminal)
        shown = b""
        try:
            while chunk := os.read(own, 65536):
                shown += chunk
        except OSError:  # The other end is closed.
            pass
        os.close(own)
        self.assertEqual(process.wait(), status)
        return shown.decode()

    def test_what_takes_over_a_second_says_so_on_a_terminal(self):
        self.ok("add", "there")
        folder = os.open(self.data.path, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        fcntl.flock(folder, fcntl.LOCK_EX)

        shown = self.on_terminal("add", "text", status=IN_USE)

        self.assertRegex(shown, r"\A\r\x1b\[KSaving the note… 1 s.*\r\x1b\[Kquillmark-notes: ")
        self.assertNotIn("Saving", self.refused(IN_USE, "add", "text"))
        self.assertNotIn("Reading", self.on_terminal("list"))

    def test_colours_are_for_a_terminal_and_nothing_steers_it(self):
        self.data.create()
        self.data.add_note("evil \x1b[2J\x07 title " + "long " * 40, 1)

        listed = self.on_terminal("list")

        self.assertIn("\x1b[2m00000000", listed)
        self.assertNotIn("\x1b[2J", listed)
        self.assertNotIn("\x07", listed)
        self.assertIn("…", listed)
        self.assertNotIn("\x1b", self.on_terminal("show", "0"))
        self.assertNotIn("\x1b", self.ok("list"))
        self.assertIn("\x1b[2J", self.ok("show", "0"))

    def test_an_interrupt_while_it_waits_for_text_leaves_nothing(self):
        process = subprocess.Popen(self.command("add"), env=self.environment(),
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        process.stdin.write(b"half a thou")
        process.stdin.flush()
        process.send_signal(signal.SIGINT)

        self.assertEqual(process.wait(), -signal.SIGINT)

        process.stdin.close()
        process.stdout.close()
        self.assertFalse(self.data.path.exists())


if __name__ == "__main__":
    main()

# SPDX-License-Identifier: MIT
"""The command line beside the window: what it adds goes through the window, and disturbs nobody."""

import json
import os
import pathlib
import signal
import subprocess

from harness import DesktopTest, main, until

FOLDER, IN_USE, SILENT = 6, 10, 11
OUTSIDE = "Notes changed outside Quillmark"


class CommandLine(DesktopTest):
    def command(self, *arguments):
        return [str(pathlib.Path(self.program).with_name("quillmark-notes")), *arguments]

    def environment(self, **variables):
        return self.desktop.environment_for(self.home) | variables

    def run_it(self, *arguments, **options):
        options.setdefault("env", self.environment())
        return subprocess.run(self.command(*arguments), stdout=subprocess.PIPE, timeout=120,
                              stderr=subprocess.PIPE, text=True, check=False, **options)

    def ok(self, *arguments):
        done = self.run_it(*arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def bodies(self):
        return sorted(note.body for note in self.data.read_notes())

    def start_with_draft(self, draft, **variables):
        quillmark = self.start("--show-editor", **variables)
        quillmark.editor()
        self.keyboard.type(draft)
        until(lambda: self.data.draft() == draft, "the draft is on the disk")
        return quillmark

    def assert_undisturbed(self, quillmark, draft):
        self.assertTrue(quillmark.shows_editor())
        self.assertEqual(quillmark.element("text", "Note text").text(), draft)
        self.assertFalse([text for text in quillmark.texts() if text.startswith(OUTSIDE)])

    def test_two_hundred_at_once_beside_an_open_editor(self):
        quillmark = self.start_with_draft("half a thought")

        started = [subprocess.Popen(self.command("add", f"note {number}"), env=self.environment(),
                                    stdout=subprocess.PIPE, text=True) for number in range(200)]
        paths = [one.communicate()[0].rstrip("\n") for one in started]

        self.assertEqual({one.returncode for one in started}, {0})
        self.assertEqual(self.bodies(), sorted(f"note {number}" for number in range(200)))
        self.assertEqual(sorted(map(str, self.data.note_files())), sorted(paths))
        self.assert_undisturbed(quillmark, "half a thought")
        self.assertEqual(self.data.draft(), "half a thought")
        # The window has them, and goes on as ever.
        self.keyboard.type(" more")
        until(lambda: self.data.draft() == "half a thought more", "the draft is saved on")
        self.keyboard.press("ctrl+Return")
        quillmark.launcher()
        self.assertIn("half a thought more", self.bodies())
        quillmark.open_editor()
        quillmark.element(name="Notes").press()
        quillmark.element(name="201 notes")

    def test_what_is_typed_and_not_saved_yet_stays(self):
        quillmark = self.start("--show-editor")
        quillmark.editor()
        self.keyboard.type("typed in this moment")

        self.ok("add", "from the terminal")

        until(lambda: self.data.draft() == "typed in this moment", "the draft is saved")
        self.assertEqual(self.bodies(), ["from the terminal"])
        self.assert_undisturbed(quillmark, "typed in this moment")

    def test_files_are_imported_through_the_window(self):
        quillmark = self.start_with_draft("draft")
        files = []
        for number in range(300):
            path = self.home / f"{number}.txt"
            path.write_text(f"file {number}\n")
            files.append(str(path))

        self.ok("import", *files)

        self.assertEqual(self.bodies(), sorted(f"file {number}\n" for number in range(300)))
        self.assert_undisturbed(quillmark, "draft")
        self.assertEqual(len(json.loads(self.ok("list", "--json"))), 300)

    def test_the_refusal_of_the_window_is_told(self):
        quillmark = self.start_with_draft("draft")
        (self.data.notes / "plan.md").write_text("no note")

        done = self.run_it("add", "text")

        self.assertEqual((done.returncode, done.stdout), (FOLDER, ""))
        self.assertIn("invalid metadata", done.stderr)
        self.assertEqual(os.listdir(self.data.notes), ["plan.md"])
        self.assertEqual(quillmark.element("text", "Note text").text(), "draft")

    def test_what_another_program_changed_is_no_reason_to_refuse(self):
        self.start_with_draft("draft")
        self.data.add_note("by another program")

        done = self.run_it("add", "text")

        self.assertEqual(done.returncode, 0)
        self.assertEqual(sorted(self.bodies()), ["by another program", "text"])

    def test_a_window_that_does_not_answer_is_not_waited_for_for_ever(self):
        quillmark = self.start_with_draft("draft")
        quillmark.send(signal.SIGSTOP)

        done = self.run_it("add", "text")

        self.assertEqual((done.returncode, done.stdout), (SILENT, ""))
        quillmark.send(signal.SIGCONT)
        until(lambda: self.bodies() == ["text"], "it is saved, as the sentence says it may be")

    def test_a_window_that_cannot_be_reached_is_told(self):
        self.start_with_draft("draft", DBUS_SESSION_BUS_ADDRESS="disabled:")
        before = self.data.state()

        done = self.run_it("add", "text")
        listed = self.run_it("list", env=self.environment(DBUS_SESSION_BUS_ADDRESS="disabled:"))

        self.assertEqual((done.returncode, done.stdout), (IN_USE, ""))
        self.assertIn(str(self.data.path), done.stderr)
        self.assertEqual((listed.returncode, listed.stdout, listed.stderr), (0, "", ""))
        self.assertEqual(self.data.state(), before)

    def test_a_window_on_other_notes_is_left_alone(self):
        quillmark = self.start_with_draft("draft")
        elsewhere = self.home / "elsewhere"

        done = self.run_it("add", "text", env=self.environment(XDG_DATA_HOME=str(elsewhere)))

        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertTrue(os.path.exists(done.stdout.rstrip("\n")))
        self.assertEqual(self.bodies(), [])
        self.assert_undisturbed(quillmark, "draft")

    def test_a_window_without_notes_yet_takes_the_first(self):
        quillmark = self.start()
        quillmark.launcher()
        self.assertEqual(os.listdir(self.data.path), [])

        self.ok("add", "the first")

        self.assertEqual(self.bodies(), ["the first"])
        quillmark.open_editor()
        self.keyboard.type("second")
        self.keyboard.press("ctrl+Return")
        quillmark.launcher()
        self.assertEqual(self.bodies(), ["second", "the first"])

    def test_reading_beside_saves_never_sees_a_half_state(self):
        self.data.create()
        for number in range(300):
            self.data.add_note(f"note {number}")
        quillmark = self.start("--show-editor")
        quillmark.editor()
        script = 'for i in $(seq 20); do "$0" list | wc -l; "$0" check >&2 || exit 1; done'
        reader = subprocess.Popen(["sh", "-c", script, *self.command()], env=self.environment(),
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        saved = 0
        while reader.poll() is None and saved < 15:
            self.keyboard.type("more")
            self.keyboard.press("ctrl+Return")
            quillmark.launcher()
            quillmark.open_editor()
            saved += 1
        counted, said = reader.communicate()

        self.assertEqual((reader.returncode, said), (0, ""))
        counts = [int(line) for line in counted.split()]
        self.assertEqual(counts, sorted(counts))
        self.assertLessEqual({*counts}, {*range(300, 300 + saved + 1)})


if __name__ == "__main__":
    main()

# SPDX-License-Identifier: MIT
"""A save that fails says why, loses nothing, and is tried again."""

import collections
import itertools
import os
import re
import resource
import shutil
import signal

from harness import DesktopTest, main, until
from harness.translations import table

NOT_SAVED = "Could not save. Your text is still in this window."
RECOVERY = ("A recovery copy needs attention. "
            "Original files were preserved in the data folder.")

# A system call of a save, how it fails, and the sentence that follows.
FAILURES = [
    ("fsync", "ENOSPC",
     "“%@” was not written: the disk is full. Free some space, then try again."),
    ("fsync", "EDQUOT",
     "“%@” was not written: your disk quota is used up. Delete other files, then try again."),
    ("renameat", "EACCES",
     "“%@” may not be used. Check its permissions and its owner, then try again."),
    ("renameat", "EROFS",
     "“%@” is on a read-only disk. Make the disk writable, then try again."),
    ("fsync", "EIO",
     "“%@” could not be used: the disk reports an error. Check the disk, then try again."),
]


class FailingDisk(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        self.data.add_note("milk", number=1)
        # While it is there, nothing can be saved.
        self.obstacle = self.data.path / ".quillmark-recovery-of-a-test"

    def fail_to_save(self):
        """An open editor with text that is on the screen only."""
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("one")
        until(lambda: self.data.draft() == "one", "the first draft is on the disk")
        until(lambda: len(os.listdir(self.data.path)) == 1, "the save has cleaned up")
        self.obstacle.mkdir()
        # One key, and so one delayed save: none is under way once this one has failed.
        self.keyboard.type("!")
        self.expect_failure(quillmark)
        return quillmark

    def expect_failure(self, quillmark, way_out=""):
        quillmark.element(name=f"{NOT_SAVED}\n{RECOVERY}\n{self.obstacle}{way_out}")
        quillmark.element(name="Not saved · Retry")
        self.assertEqual(quillmark.element("text", "Note text").text(), "one!")
        self.assertEqual(self.data.draft(), "one")

    def expect_saved(self, text):
        until(lambda: self.data.draft() == text, "the draft is on the disk")

    def test_it_is_tried_again_at_the_next_key(self):
        quillmark = self.fail_to_save()
        self.obstacle.rmdir()

        self.keyboard.type("!")

        self.expect_saved("one!!")
        quillmark.element(name="Saved on this Mac")
        self.assertFalse(quillmark.has_element(name="Retry"))

    def test_it_is_tried_again_by_retry(self):
        quillmark = self.fail_to_save()
        # That it fails again changes nothing that could be waited for.
        quillmark.element(name="Retry").press(is_awaited=True)
        self.expect_failure(quillmark)
        self.obstacle.rmdir()

        quillmark.element(name="Retry").press()

        self.expect_saved("one!")
        until(lambda: not quillmark.has_element(name="Retry"), "the banner is gone")

    def test_it_is_tried_again_when_the_editor_folds(self):
        quillmark = self.fail_to_save()
        self.keyboard.press("Escape")
        self.expect_failure(quillmark, "\nTo quit all the same, press Ctrl+Q.")
        self.assertIsNotNone(quillmark.shows_editor())
        self.obstacle.rmdir()

        self.keyboard.press("Escape")

        quillmark.launcher()
        self.assertEqual(self.data.draft(), "one!")

    def test_it_is_tried_again_at_the_end_of_the_session(self):
        quillmark = self.fail_to_save()
        self.obstacle.rmdir()

        quillmark.send(signal.SIGTERM)

        self.assertEqual(quillmark.wait_until_ended(), 0)
        self.assertEqual(self.data.draft(), "one!")

    def test_a_capture_that_fails_stays_and_is_written_once(self):
        quillmark = self.fail_to_save()
        self.keyboard.press("ctrl+Return")
        self.expect_failure(quillmark)
        self.obstacle.rmdir()

        self.keyboard.press("ctrl+Return")

        quillmark.launcher()
        self.assertEqual(sorted(note.body for note in self.data.read_notes()), ["milk", "one!"])
        self.assertEqual(self.data.draft(), "")

    def test_too_many_open_files_are_named_and_survived(self):
        quillmark = self.start()
        quillmark.open_editor()
        with open(f"/proc/{quillmark.process}/maps", encoding="utf-8") as maps:
            if "libubsan" in maps.read():
                self.skipTest("The sanitizer opens files to look at an object, and takes one that it "
                              "cannot look at for a wrong one.")
        at_rest = self.open_files(quillmark)
        self.keyboard.type("one")
        self.expect_saved("one")
        # A save closes its folders last of all: they would be room for the next one.
        until(lambda: self.open_files(quillmark) <= at_rest, "the save is over")
        before = resource.prlimit(quillmark.process, resource.RLIMIT_NOFILE)
        resource.prlimit(quillmark.process, resource.RLIMIT_NOFILE, (max(at_rest) + 2, before[1]))
        state = self.data.state()

        self.keyboard.type("!")

        self.expect_sentence(quillmark, "en", "“%@” was not opened: too many files are open. "
                             "Close some programs, then try again.")
        self.assertEqual(self.data.state(), state)
        resource.prlimit(quillmark.process, resource.RLIMIT_NOFILE, before)
        quillmark.element(name="Retry").press()
        self.expect_saved("one!")

    def open_files(self, quillmark):
        """The numbers of its descriptors."""
        return {int(name) for name in os.listdir(f"/proc/{quillmark.process}/fd")}

    def expect_sentence(self, quillmark, language, sentence):
        """The sentence is on the screen and names a file of the notes."""
        before, after = map(re.escape, table(language)[sentence].split("%@"))
        wanted = re.compile(before + re.escape(str(self.data.path)) + "[^“”]*" + after)

        def shown():
            return any(wanted.fullmatch(line) for text in quillmark.texts()
                       for line in text.splitlines())
        until(shown, f"“{sentence}” is shown in {language}")

    def test_every_failure_of_the_disk_is_a_sentence_in_both_languages(self):
        if shutil.which("strace") is None:
            self.skipTest("strace is not installed")
        for call, name, sentence in FAILURES:
            for language in ("en", "zh-Hans"):
                with self.subTest(failure=name, language=language):
                    self.expect_named(call, name, sentence, language)

    def test_a_limit_on_file_sizes_is_named_and_survived(self):
        for language in ("en", "zh-Hans"):
            with self.subTest(language=language):
                self.write_settings({"ui.language": language})
                self.limit_file_sizes(self.start(), language)

    def limit_file_sizes(self, quillmark, language):
        quillmark.open_editor()
        self.keyboard.type("one")
        until(lambda: (self.data.draft() or "").endswith("one"), "the draft is on the disk")
        until(lambda: len(os.listdir(self.data.path)) == 1, "the save has cleaned up")
        saved = self.data.draft()
        before = resource.prlimit(quillmark.process, resource.RLIMIT_FSIZE)
        resource.prlimit(quillmark.process, resource.RLIMIT_FSIZE, (2, before[1]))

        self.keyboard.type("!")

        self.expect_sentence(quillmark, language,
                             "“%@” was not written: it would be larger than a file may be. "
                             "Raise the limit, then try again.")
        self.assertEqual(self.data.draft(), saved)
        self.assertEqual([note.body for note in self.data.read_notes()], ["milk"])
        resource.prlimit(quillmark.process, resource.RLIMIT_FSIZE, before)
        self.keyboard.type("!")
        until(lambda: self.data.draft().endswith("one!!"), "the draft is on the disk")
        until(lambda: len(os.listdir(self.data.path)) == 1, "the save has cleaned up")
        quillmark.kill()

    def test_a_kill_at_any_step_of_a_save_leaves_old_or_new_notes(self):
        if shutil.which("strace") is None:
            self.skipTest("strace is not installed")
        outcomes = collections.Counter()
        for call in ("unlinkat", "fsync", "renameat", "renameat2"):
            for number in itertools.count(1):
                outcome = self.kill_while_saving(call, number)
                outcomes[outcome] += 1
                if outcome == "survived":
                    break
                self.assertLess(number, 50)
        for outcome in ("old", "new", "recovery copy"):
            self.assertGreater(outcomes[outcome], 0, outcomes)

    def kill_while_saving(self, call, number):
        """What is on the disk after a kill at this call of the first save, as one word."""
        shutil.rmtree(self.data.path)
        shutil.rmtree(self.home / ".local/state", ignore_errors=True)
        self.data.create()
        self.data.add_note("milk", number=1)
        quillmark = self.start_traced(call, f"signal=KILL:when={number}")
        try:
            quillmark.open_editor()
            self.keyboard.type("text")
        except AssertionError:
            # Libraries make such calls, too, while the program starts.
            if quillmark.is_running():
                raise
        until(lambda: not quillmark.is_running() or self.data.draft() == "text"
              and len(os.listdir(self.data.path)) == 1, "it is saved or killed")
        survived = quillmark.is_running()
        if survived:
            quillmark.kill()
        recoveries = [path for path in self.data.path.iterdir()
                      if path.name.startswith(".quillmark-recovery-")]
        draft = self.data.draft()
        again = self.start()
        again.open_editor()
        editor = again.element("text", "Note text")
        if recoveries:
            self.assertTrue(any(RECOVERY in text for text in again.texts()))
            # A save of one draft exchanges that file alone.
            files = [*recoveries, self.data.markdown / "Drafts/capture.md"]
            self.assertEqual({file.read_bytes() for file in files}, {b"", b"text"})
        else:
            self.assertFalse(again.has_element(name="Retry"))
            self.assertEqual([note.body for note in self.data.read_notes()], ["milk"])
            # What was typed may have been kept before the save.
            self.assertIn(editor.text(), (draft, "text"))
        again.kill()
        if survived:
            return "survived"
        if recoveries:
            return "recovery copy"
        return "new" if draft == "text" else "old"

    def start_traced(self, call, injection):
        # With -D the program, and not the tracer, is the process that is started.
        return self.start("-D", "-f", "-qq", "-o", "/dev/null", "-e", f"trace={call}",
                          "-e", f"inject={call}:{injection}", "-e", "signal=none", self.program,
                          program="strace")

    def expect_named(self, call, name, sentence, language):
        self.write_settings({"ui.language": language})
        before = self.data.state()
        quillmark = self.start_traced(call, f"error={name}")
        quillmark.open_editor()

        self.keyboard.type("text")

        self.expect_sentence(quillmark, language, sentence)
        self.assertEqual(self.data.state(), before)
        quillmark.kill()


if __name__ == "__main__":
    main()

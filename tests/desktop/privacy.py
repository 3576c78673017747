# SPDX-License-Identifier: MIT
"""What is written stays between the writer and the notes."""

import os
import resource
import signal
import stat

from harness import DesktopTest, main, until

# A word that stands nowhere else.
SECRET = "quincunx"


class Privacy(DesktopTest):
    def write_secrets(self):
        """The word in every place where it can be written: note, search field, edit, draft."""
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type(f"{SECRET} as a title\nand a line")
        self.keyboard.press("ctrl+Return")
        quillmark.open_editor()
        quillmark.element(name="Notes").press()
        search = quillmark.element("text", "Find a thought…")
        until(lambda: search.has("focused"), "the search field has the keyboard")
        self.keyboard.type(SECRET)
        until(lambda: search.text() == SECRET, "the word is typed")
        row = quillmark.element(name=f"Open note: {SECRET} as a title")
        self.mouse.click(row.centre())
        until(lambda: quillmark.element("text", "Note text").has("focused"), "the note is open")
        self.keyboard.press("ctrl+End")
        self.keyboard.type(f" with a {SECRET} as a draft")
        until(lambda: any(SECRET in file.read_text() for file in self.data.drafts.glob("*.md")
                          if file != self.data.capture), "the draft is on the disk")
        quillmark.element(name="Copy text").press()
        return quillmark

    def test_no_window_tells_it(self):
        quillmark = self.write_secrets()

        told = [(window, name) for window in self.windows.all()
                for name, value in window.properties().items() if SECRET in value]

        self.assertEqual(told, [])
        # The search must see what a window does tell.
        editor = quillmark.editor()
        self.assertIn("Quillmark", editor.properties()["_NET_WM_NAME"])
        self.assertIn(editor, self.windows.all())

    def test_nothing_is_printed_and_nothing_kept_beside_the_notes(self):
        quillmark = self.write_secrets()
        quillmark.send(signal.SIGTERM)
        self.assertEqual(quillmark.wait_until_ended(), 0)

        self.assertEqual(quillmark.output(), "")
        self.assertEqual(self.files_with_the_secret_outside_the_notes(), [])

    def test_what_a_crash_leaves_does_not_hold_it(self):
        # The most that a user may have allowed, in a folder that can take it.
        limits = resource.getrlimit(resource.RLIMIT_CORE)
        self.addCleanup(resource.setrlimit, resource.RLIMIT_CORE, limits)
        resource.setrlimit(resource.RLIMIT_CORE, (limits[1], limits[1]))
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.home)
        quillmark = self.write_secrets()
        # Whatever the kernel does with a core here: with this limit it starts no crash reporter.
        self.assertEqual(resource.prlimit(quillmark.process, resource.RLIMIT_CORE)[0],
                         1 if limits[1] != 0 else 0)

        quillmark.send(signal.SIGABRT)

        self.assertEqual(quillmark.wait_until_ended(), -signal.SIGABRT)
        self.assertEqual(quillmark.output(), "")
        self.assertEqual(self.files_with_the_secret_outside_the_notes(), [])

    def test_only_its_owner_may_look_into_the_folder(self):
        before = os.umask(0)
        self.addCleanup(os.umask, before)
        quillmark = self.write_secrets()
        quillmark.stop()

        modes = {path: stat.S_IMODE(path.stat().st_mode) for path in self.data.path.rglob("*")}
        modes[self.data.path] = stat.S_IMODE(self.data.path.stat().st_mode)

        self.assertGreaterEqual(len(modes), 8)
        for path, mode in modes.items():
            self.assertEqual(oct(mode), oct(0o700 if path.is_dir() else 0o600), path)

    def files_with_the_secret_outside_the_notes(self):
        found = []
        for folder, folders, files in os.walk(self.home):
            if self.data.path.name in folders and folder == str(self.data.path.parent):
                folders.remove(self.data.path.name)
            for name in files:
                with open(os.path.join(folder, name), "rb") as file:
                    content = file.read()
                if any(SECRET.encode(code) in content for code in ("utf-8", "utf-16-le")):
                    found.append(os.path.join(folder, name))
        return found


if __name__ == "__main__":
    main()

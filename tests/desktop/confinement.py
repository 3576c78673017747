# SPDX-License-Identifier: MIT
"""What code that others brought into the running program gets, and what it is told of that."""

import os
import pathlib
import re
import socket
import subprocess

from harness import DesktopTest, main, until

REFUSED = {"EPERM", "EACCES", "ENOSYS", "EXDEV"}
# X11 and the session manager are reached by such sockets; and Landlock hides no file.
ALLOWED = {"connect to an abstract socket", "look at a file's size and times"}
THREADS = {"while it starts", "of the pool"}
# Also where the suite runs without, as under the sanitizers, which look for leaks as a tracer.
CONFINED = {"QUILLMARK_UNCONFINED": "", "ASAN_OPTIONS": "detect_leaks=0"}


def has_landlock(program):
    said = subprocess.run([program, "--version"], stdout=subprocess.PIPE, text=True, check=True,
                          env={**os.environ, **CONFINED})
    return re.search("by Landlock ([0-9]+)", said.stdout)


class Confinement(DesktopTest):
    def setUp(self):
        super().setUp()
        self.data.create()
        (self.data.path / "mine").write_text("of the notes", encoding="utf-8")
        (self.home / ".ssh").mkdir()
        (self.home / ".ssh/id").write_text("secret", encoding="utf-8")
        (self.home / "movable").write_text("another's", encoding="utf-8")

    def start(self, *arguments, **variables):
        return super().start(*arguments, **{**CONFINED, **variables})

    def bait(self):
        """What the plug-in reaches for, as its variables."""
        tcp = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(tcp.close)
        abstract = socket.socket(socket.AF_UNIX)
        self.addCleanup(abstract.close)
        name = f"quillmark-test-{os.getpid()}"
        abstract.bind("\0" + name)
        abstract.listen(64)
        other = subprocess.Popen(["sleep", "1000"])
        self.addCleanup(other.wait)
        self.addCleanup(other.kill)
        (self.home / "session").mkdir(mode=0o700)
        beside = [self.home / name for name in (".local/share", ".config", ".local/state", ".cache",
                                                "session")]
        return {"BREAKOUT_HOME": str(self.home), "BREAKOUT_BESIDE": ":".join(map(str, beside)),
                "XDG_RUNTIME_DIR": str(self.home / "session"),
                "BREAKOUT_OWN": str(self.data.path), "BREAKOUT_PROCESS": str(other.pid),
                "BREAKOUT_PORT": str(tcp.getsockname()[1]), "BREAKOUT_ABSTRACT": name,
                "QT_QPA_GENERIC_PLUGINS": "breakout",
                "QT_PLUGIN_PATH": str(pathlib.Path(self.program).parents[1] / "break-out")}

    def attempts(self, **variables):
        """What the plug-in got: by thread, by attempt."""
        quillmark = self.start(**self.bait(), **variables)
        until(lambda: re.search("^done$", quillmark.output(), re.MULTILINE), "all is tried")
        quillmark.launcher()
        table = {}
        for line in quillmark.output().splitlines():
            if line.count("\t") == 2:
                thread, attempt, result = line.split("\t")
                table.setdefault(thread, {})[attempt] = result
        return table

    def test_code_of_others_gets_nowhere(self):
        if not has_landlock(self.program):
            self.skipTest("This kernel has no Landlock.")

        table = self.attempts()

        self.assertLessEqual(THREADS, set(table))
        # Those for the display and for the bus, which others have started, and the main one.
        self.assertGreaterEqual(len(table), 5, list(table))
        for thread, results in table.items():
            self.assertGreater(len(results), 30)
            for attempt, result in results.items():
                with self.subTest(thread=thread, attempt=attempt):
                    self.assertIn(result, {"worked"} if attempt in ALLOWED else REFUSED)
        self.assertEqual((self.home / "movable").read_text(encoding="utf-8"), "another's")

    def test_it_gets_everywhere_when_that_is_switched_off(self):
        table = self.attempts(QUILLMARK_UNCONFINED="1")

        self.assertEqual({table["while it starts"][attempt] for attempt in
                          ("read ~/.ssh/id", "list the home folder", "connect by TCP",
                           "execute /bin/true", "signal another process")}, {"worked"})

    def test_every_thread_is_confined_for_good(self):
        quillmark = self.start("--show-editor")
        quillmark.editor()

        threads = list(pathlib.Path(f"/proc/{quillmark.process}/task").iterdir())

        self.assertGreater(len(threads), 2)
        for thread in threads:
            status = (thread / "status").read_text(encoding="utf-8")
            self.assertIn("\nNoNewPrivs:\t1\n", status)
            self.assertIn("\nSeccomp:\t2\n", status)

    def test_interface_tests_are_confined_without_the_notes(self):
        if not has_landlock(self.program):
            self.skipTest("This kernel has no Landlock.")

        quillmark = self.start("--ui-testing", **self.bait())

        until(lambda: "\ndone" in quillmark.output(), "all is tried")
        results = {line for line in quillmark.output().splitlines() if line.count("\t") == 2}
        self.assertIn("while it starts\tlink out\tEACCES", results)

    def test_the_version_says_what_is_on(self):
        for value, display, said in (("", ":0", "^Confined: .*no network\\.$"),
                                     ("1", ":0", "^Not confined: QUILLMARK_UNCONFINED is set\\.$"),
                                     ("", "far:0", "^Confined: .*network for the display alone")):
            with self.subTest(value=value, display=display):
                environment = {**os.environ, **CONFINED, "QUILLMARK_UNCONFINED": value, "DISPLAY": display}

                printed = subprocess.run([self.program, "--version"], env=environment, text=True,
                                         stdout=subprocess.PIPE, check=True).stdout

                first, second = printed.splitlines()
                self.assertRegex(first, r"^Quillmark \d+\.\d+\.\d+$")
                self.assertRegex(second, said)

    def test_settings_that_are_kept_elsewhere_are_written_there(self):
        elsewhere = self.home / "dotfiles/settings"
        elsewhere.parent.mkdir()
        elsewhere.write_text("[General]\nui.appearance=dark\n", encoding="utf-8")
        self.settings_file.parent.mkdir(parents=True)
        self.settings_file.symlink_to(elsewhere)
        quillmark = self.start()

        self.mouse.drag(quillmark.launcher().centre(), (500, 500))

        until(lambda: quillmark.settings().get("launcher.x") == "468", "the place is remembered")
        self.assertEqual(quillmark.settings()["ui.appearance"], "dark")
        self.assertTrue(self.settings_file.is_symlink())

    def test_a_data_folder_that_is_replaced_asks_for_a_restart(self):
        if not has_landlock(self.program):
            self.skipTest("This kernel has no Landlock.")
        quillmark = self.start()
        quillmark.open_editor()
        self.keyboard.type("one")
        until(lambda: self.data.draft() == "one", "the draft is on the disk")
        self.data.path.rename(self.data.path.with_name("put aside"))
        self.data.path.mkdir()

        self.keyboard.type(" two")

        sentence = (f"“{self.data.path}” is not the folder that was there when Quillmark started. "
                    "Quit Quillmark, then start it again.")
        until(lambda: any(sentence in text for text in quillmark.texts()), "it says so")
        quillmark.kill()
        again = self.start("--show-editor")
        again.editor()
        until(lambda: again.element("text", "Note text").text() == "one two", "nothing is lost")


if __name__ == "__main__":
    main()

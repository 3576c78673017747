#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""A real input method for the tests: ibus, with an engine that knows a few words of Chinese.

Run as a program this file is the engine. While it composes, letters are its own; space puts the
word into the text, Return the letters as they are, Escape nothing.
"""

import pathlib
import shutil
import subprocess
import sys
import threading

WORDS = {"xiangdao": "想到", "jiuji": "就记"}


def is_available():
    return shutil.which("ibus-daemon") is not None


class InputMethod:
    """Starts ibus with the engine on a desktop; the engine is in use once this is made."""

    def __init__(self, desktop):
        desktop.spawn(["ibus-daemon", "--panel=disable", "--emoji-extension=disable",
                       "--config=disable", "--cache=none", "--replace"])
        engine = desktop.spawn(["/usr/bin/python3", "-B", __file__], stdout=subprocess.PIPE)
        if engine.stdout.readline().strip() != b"ready":
            raise RuntimeError("the input method did not start:\n" + desktop.log())
        self._composed = ""
        threading.Thread(target=self._follow, args=[engine.stdout], daemon=True).start()

    def _follow(self, lines):
        with lines:
            for line in lines:
                self._composed = line.decode().rstrip("\n")

    def composed(self):
        """The letters that the input method is holding back."""
        return self._composed


def share_with(desktop, home):
    """Lets a program with this home folder find the desktop's input method."""
    folder = pathlib.Path(home) / ".config"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "ibus").symlink_to(pathlib.Path(desktop.environment["XDG_CONFIG_HOME"]) / "ibus")


def run_engine():
    import gi
    gi.require_version("IBus", "1.0")
    from gi.repository import GLib, IBus
    from waiting import until

    class Engine(IBus.Engine):
        __gtype_name__ = "QuillmarkTestEngine"

        def __init__(self):
            super().__init__()
            self.letters = ""

        def hold(self, letters):
            self.letters = letters
            # Left in the text when the keyboard goes elsewhere, as input methods of today do.
            self.update_preedit_text_with_mode(IBus.Text.new_from_string(letters), len(letters),
                                               bool(letters), IBus.PreeditFocusMode.COMMIT)
            print(letters, flush=True)

        def finish(self, text):
            self.hold("")
            if text:
                self.commit_text(IBus.Text.new_from_string(text))

        def do_process_key_event(self, key, _code, state):
            held = (IBus.ModifierType.CONTROL_MASK | IBus.ModifierType.MOD1_MASK
                    | IBus.ModifierType.SUPER_MASK | IBus.ModifierType.RELEASE_MASK)
            if state & held:
                return False
            if IBus.KEY_a <= key <= IBus.KEY_z:
                self.hold(self.letters + chr(key))
                return True
            if not self.letters:
                return False
            if key == IBus.KEY_space:
                self.finish(WORDS.get(self.letters, self.letters.upper()))
            elif key == IBus.KEY_Return:
                self.finish(self.letters)
            elif key == IBus.KEY_Escape:
                self.finish("")
            return True

        def do_reset(self):
            self.letters = ""
            print(flush=True)

    IBus.init()
    # There is one connection in a process, and the library tries to make it once: the daemon has to
    # be there before. It tells where it listens as soon as it does.
    until(IBus.get_address, "ibus-daemon has started", 60)
    bus = IBus.Bus()
    if not bus.is_connected():
        sys.exit("ibus-daemon does not answer")
    factory = IBus.Factory.new(bus.get_connection())
    factory.add_engine("quillmark-test", Engine.__gtype__)
    component = IBus.Component(name="org.quillmark.TestEngine", description="A few words",
                               version="1", license="MIT", author="Quillmark", homepage="",
                               command_line="", textdomain="")
    component.add_engine(IBus.EngineDesc(name="quillmark-test", longname="A few words",
                                         description="", language="zh", license="MIT",
                                         author="Quillmark", icon="", layout="us"))
    bus.register_component(component)
    loop = GLib.MainLoop()

    def chosen(_bus, result):
        print("ready" if bus.set_global_engine_async_finish(result) else "refused", flush=True)

    # Not waited for: ibus asks this very process to make the engine.
    bus.set_global_engine_async("quillmark-test", -1, None, chosen)
    loop.run()


if __name__ == "__main__":
    run_engine()

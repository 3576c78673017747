#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Real input methods for the tests: ibus with an engine that knows a few words of Chinese, and
ibus and fcitx with the engines for pinyin that people use, where they are installed.

Run as a program this file is the engine of our own. While it composes, letters are its own; space
puts the word into the text, Return the letters as they are, Escape nothing. Its argument is what it
leaves behind: "commit", what is composed when the keyboard goes elsewhere, or "clear", nothing; then
it also only hides what it composed, as most engines do, so that the toolkit remembers it.
"""

import pathlib
import shutil
import subprocess
import sys
import threading

if __name__ == "__main__":
    from waiting import until
else:
    from .waiting import until

WORDS = {"xiangdao": "想到", "jiuji": "就记"}


IBUS = {"QT_IM_MODULE": "ibus"}
# The toolkit waits for the answer to each key; otherwise it goes on and takes the key up later.
IBUS_WAITING = IBUS | {"IBUS_ENABLE_SYNC_MODE": "1"}
FCITX = {"QT_IM_MODULE": "fcitx"}

_PINYIN_OF_IBUS = pathlib.Path("/usr/share/ibus/component/libpinyin.xml")
_PINYIN_OF_FCITX = pathlib.Path("/usr/share/fcitx5/inputmethod/pinyin.conf")
_PLUGIN_FOR_FCITX = "platforminputcontexts/libfcitx5platforminputcontextplugin.so"


def is_available():
    return shutil.which("ibus-daemon") is not None


def has_pinyin_of_ibus():
    return is_available() and _PINYIN_OF_IBUS.exists()


def has_pinyin_of_fcitx():
    plugins = pathlib.Path("/usr/lib").glob(f"*/qt6/plugins/{_PLUGIN_FOR_FCITX}")
    return (shutil.which("fcitx5") is not None and _PINYIN_OF_FCITX.exists()
            and any(plugins))


def _start_ibus(desktop, settings="disable"):
    desktop.spawn(["ibus-daemon", "--panel=disable", "--emoji-extension=disable",
                   f"--config={settings}", "--cache=none", "--replace"])


class PinyinOfIbus:
    """Starts ibus with the pinyin engine of Debian; it is in use once this is made."""

    def __init__(self, desktop):
        # It keeps what it learns and how it is set up to itself.
        desktop.environment["GSETTINGS_BACKEND"] = "memory"
        _start_ibus(desktop, "/usr/libexec/ibus-memconf")
        # The engine ends when it comes before the settings.
        until(lambda: self._has_settings(desktop), "the settings of ibus are there", 60)
        until(lambda: self._choose(desktop) == "libpinyin", "the engine is in use", 60)

    @staticmethod
    def _has_settings(desktop):
        from gi.repository import Gio, GLib
        address = desktop.run(["ibus", "address"]).strip()
        if not address.startswith("unix:"):
            return False
        bus = Gio.DBusConnection.new_for_address_sync(
            address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        answer = bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus",
                               "org.freedesktop.DBus", "NameHasOwner",
                               GLib.Variant("(s)", ("org.freedesktop.IBus.Config",)), None,
                               Gio.DBusCallFlags.NONE, -1, None)
        bus.close_sync(None)
        return answer.unpack()[0]

    @staticmethod
    def _choose(desktop):
        # Its own answer is about the layout of the keyboard, too.
        def ask(*question):
            return subprocess.run(["ibus", "engine", *question], env=desktop.environment, text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False,
                                  timeout=60).stdout.strip()
        ask("libpinyin")
        return ask()


class PinyinOfFcitx:
    """Starts fcitx with its pinyin engine; it is in use once this is made.

    What is composed is shown in the application or only in a panel, as pinyin or as the words that
    would become of it.
    """

    _PROFILE = """\
[Groups/0]
Name=Default
Default Layout=us
DefaultIM=pinyin

[Groups/0/Items/0]
Name=pinyin
Layout=

[GroupOrder]
0=Default
"""

    def __init__(self, desktop, in_application=True, as_pinyin=True):
        folder = pathlib.Path(desktop.environment["XDG_CONFIG_HOME"]) / "fcitx5"
        (folder / "conf").mkdir(parents=True)
        (folder / "profile").write_text(self._PROFILE, encoding="utf-8")
        (folder / "config").write_text("[Behavior]\nActiveByDefault=True\n", encoding="utf-8")
        (folder / "conf/pinyin.conf").write_text(
            f"PreeditInApplication={in_application}\nPinyinInPreedit={as_pinyin}\n"
            "CloudPinyinEnabled=False\nFirstRun=False\n", encoding="utf-8")
        desktop.spawn(["fcitx5", "--disable", "cloudpinyin,notifications,notificationitem,kimpanel",
                       "--keep"])
        self._desktop = desktop
        # It answers once its engines are there.
        until(lambda: self._ask().returncode == 0, "fcitx has started", 60)

    def is_in_use(self):
        """Whether what has the keyboard is known to it."""
        return self._ask("-n").stdout.strip() == "pinyin"

    def _ask(self, *question):
        return subprocess.run(["fcitx5-remote", *question], env=self._desktop.environment,
                              text=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              check=False, timeout=60)


class InputMethod:
    """Starts ibus with the engine of our own on a desktop; it is in use once this is made."""

    def __init__(self, desktop, leaves="commit"):
        _start_ibus(desktop)
        engine = desktop.spawn(["/usr/bin/python3", "-B", __file__, leaves],
                               stdout=subprocess.PIPE)
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


def run_engine(leaves):
    import gi
    gi.require_version("IBus", "1.0")
    from gi.repository import GLib, IBus

    class Engine(IBus.Engine):
        __gtype_name__ = "QuillmarkTestEngine"

        def __init__(self):
            super().__init__()
            self.letters = ""

        def hold(self, letters):
            self.letters = letters
            if leaves == "commit":
                self.update_preedit_text_with_mode(IBus.Text.new_from_string(letters), len(letters),
                                                   bool(letters), IBus.PreeditFocusMode.COMMIT)
            elif letters:
                self.update_preedit_text(IBus.Text.new_from_string(letters), len(letters), True)
            else:
                self.hide_preedit_text()
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
    run_engine(sys.argv[1])

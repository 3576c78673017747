# SPDX-License-Identifier: MIT
"""One of the computers: a desktop, a home folder, the program, and who works there."""

import ctypes
import os
import pathlib
import re
import signal
import subprocess
import time
import uuid

from places import DataFolder, NoteFile, assistive, kept, until

REFUSED, DONE = "refused", "done"

_ROW = "Open note: "
_NOTE_NAME = re.compile(r"[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\.md")
_EXCHANGE = 2
_libc = ctypes.CDLL(None, use_errno=True)


class Computer:
    """What a person does there. Each act says whether it is done, and keeps the account of texts."""

    def __init__(self, name, program, home, texts, desktop=None):
        self.name = name
        self.home = pathlib.Path(home)
        self.home.mkdir(parents=True)
        self.data = DataFolder(self.home / ".local/share/Penwick")
        self.texts = texts
        self.repairs = 0
        self.conflicts = set()
        self.last_edited = None
        self._program = pathlib.Path(program)
        self._desktop = desktop
        self._window = None

    # The program without its window

    def _environment(self):
        if self._desktop is not None:
            return self._desktop.environment_for(self.home)
        return kept() | {"HOME": str(self.home), "LC_ALL": "C.UTF-8",
                         "DBUS_SESSION_BUS_ADDRESS": "disabled:"}

    def start_command(self, *arguments):
        return subprocess.Popen([self._program.with_name("quillmark-notes"), *arguments],
                                env=self._environment(), stdin=subprocess.DEVNULL, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def command(self, *arguments):
        """The exit status, and what it printed and said."""
        process = self.start_command(*arguments)
        printed, said = process.communicate(timeout=120)
        return process.returncode, printed, said

    def check(self):
        """The lines of quillmark-notes check, each a word, a path and a sentence."""
        _, printed, _ = self.command("check")
        return [line.split("\t") for line in printed.splitlines()]

    def refusals(self):
        """The reasons why the folder is refused, or something is wrong with it."""
        return [line for line in self.check() if line[0] in ("refused", "recovery", "conflict")]

    def repair(self):
        """Takes copies in, while the program is ended. The one place where that is done."""
        had_window = self._window is not None
        self.end_window()
        self._note_conflicts()
        status, printed, said = self.command("check", "--repair", "--yes")
        self.repairs += 1
        if status != 0:
            raise AssertionError(f"{self.name}: the repair ended with {status}:\n{printed}{said}")
        if had_window:
            self.start_window()
        return printed

    def _note_conflicts(self):
        for folder in (self.data.notes, self.data.drafts):
            if folder.exists():
                self.conflicts |= {name for name in os.listdir(folder)
                                   if "conflict" in name or "..path" in name}

    def report(self):
        """What there is to see when something went wrong."""
        window = self._window.texts() if self._window and self._window.is_running() else []
        return [*window[:20], *map(str, self.check()), *map(str, self.notes().items()),
                *self.drafts()]

    # What is there

    def _note_files(self):
        """Without the copies that lie between them."""
        return [path for path in self.data.note_files() if _NOTE_NAME.fullmatch(path.name)]

    def notes(self):
        """Every note by its identifier, as it is at one moment."""
        while True:
            try:
                return {note.id: note.body for note in map(NoteFile.read, self._note_files())}
            except FileNotFoundError:
                continue  # Somebody exchanged the folder meanwhile.

    def files(self):
        """The bytes of all that belongs to the notes, drafts aside; None while it changes."""
        try:
            return {path.name: path.read_bytes()
                    for path in [self.data.markdown / ".format", *self.data.note_files()]}
        except FileNotFoundError:
            return None

    def drafts(self):
        """Every half thought, on the disk or in the journal of what was typed."""
        state = self.home / ".local/state/Penwick"
        found = []
        for path in [*self.data.drafts.glob("*.md"), *state.glob("typed-*")]:
            try:
                found.append(path.read_bytes().decode(errors="replace"))
            except FileNotFoundError:
                continue
        return found

    def _is_kept(self, text):
        return any(text in one for one in [*self.drafts(), *self.notes().values()])

    # The command line

    def add(self):
        text = self.texts.new("t", self.name)
        status, _, said = self.command("add", text)
        if status == 0:
            self.texts.written(text, f"added on {self.name}")
        return DONE if status == 0 else f"{REFUSED}: {said.strip()}"

    def add_and_kill(self, seconds):
        text = self.texts.new("t", self.name)
        process = self.start_command("add", text)
        time.sleep(seconds)  # Where it is stopped is left to chance.
        process.kill()
        printed, _ = process.communicate()
        if printed.endswith(".md\n"):
            self.texts.written(text, f"added on {self.name}, killed after it said so")
        return DONE

    # An editor of another make, which docs/FORMAT.md tells how to

    def _choose(self, random):
        """One of the few notes that somebody worked on last, so that two do at once."""
        recent = []
        for path in self._note_files():
            try:
                recent.append((path.stat().st_mtime_ns, path.stem))
            except FileNotFoundError:
                continue
        return random.choice(sorted(recent)[-5:])[1] if recent else None

    def edit_by_hand(self, random, wanted=None):
        """Changes one note. What was there is taken out in the same step, so that it is known
        exactly what the new text stands for."""
        while True:
            number = wanted or self._choose(random)
            if number is None:
                return DONE
            try:
                path = self.data.notes / f"{number}.md"
                text = path.read_bytes()
                new = text + b" " + self.texts.new("e", self.name).encode()
                outside = self.home / str(uuid.uuid4())
                outside.write_bytes(new)
                if not _exchange(outside, path):
                    continue
            except FileNotFoundError:
                if wanted is not None and not path.exists():
                    return DONE
                continue
            self.texts.replaced(_body(outside.read_bytes()))
            self.texts.written(_body(new), f"edited by hand on {self.name}")
            outside.unlink()
            return DONE

    def delete_by_hand(self, random, wanted=None):
        number = wanted or self._choose(random)
        if number is None:
            return DONE
        outside = self.home / str(uuid.uuid4())
        draft = self.data.drafts / f"{number}.md"
        try:
            if draft.exists():
                return DONE  # It has to go first, and the program may be about to write it.
            os.rename(self.data.notes / f"{number}.md", outside)
        except FileNotFoundError:
            return DONE
        self.texts.replaced(_body(outside.read_bytes()))
        outside.unlink()
        return DONE

    # The window

    @property
    def window(self):
        return self._window

    def start_window(self):
        if self._window is None:
            self._window = self._desktop.start_quillmark(self._program, self.home)
            self._window.launcher()

    def end_window(self):
        """As the end of the session does."""
        if self._window is not None:
            self._window.send(signal.SIGTERM)
            self._window.wait_until_ended(30)
            self._window = None

    def kill_window(self):
        if self._window is not None:
            self._window.kill()
            self._window = None

    def killed(self):
        self.kill_window()
        return DONE

    def ended(self):
        self.end_window()
        return DONE

    def _press(self, combination):
        self._desktop.keyboard.press(combination)

    def _field(self):
        return self._window.element("text", "Note text")

    def _type(self, text):
        """At the end of what is in the field."""
        field = self._field()
        # A press of the mouse on what covers nothing, as a person makes sure of the place.
        self._desktop.mouse.click(field.centre())
        until(lambda: field.has("focused"), "the text has the keyboard")
        self._press("ctrl+End")
        before = field.text()
        self._desktop.keyboard.type(text)
        until(lambda: field.text() == before + text, "the text is typed")
        return before + text

    def _open(self):
        """The editor; False when it has no notes, since they are refused."""
        self.start_window()
        if not self._window.shows_editor():
            self._window.open_editor()
        if not self._has_banner():
            return True
        return self._window.has_element(name="Reload") and self._reload() == DONE

    def _has_banner(self):
        return self._window.has_element(name="Retry") or self._window.has_element(name="Reload")

    def _fold(self):
        """Escape, again and again: a note that is open, the list, the editor."""
        for _ in range(4):
            self._press("Escape")
            if self._wait_for(self._window.shows_launcher, 1):
                return DONE
            if self._has_banner() and self._reload() == REFUSED:
                return REFUSED
        raise AssertionError(f"{self.name}: the editor does not fold: {self._window.texts()}")

    @staticmethod
    def _wait_for(condition, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if condition():
                return True
            time.sleep(0.02)
        return False

    def _reload(self):
        """Presses "Reload", where something stands as failed."""
        window = self._window
        if not window.has_element(name="Reload"):
            return DONE
        window.element(name="Reload").press(is_awaited=True)
        return REFUSED if self._has_banner() else DONE

    def _until_done_or_failed(self, is_done, what):
        """Whether it is done; False when a banner stands instead."""
        outcome = []

        def ended():
            if is_done():
                outcome.append(True)
            elif self._has_banner():
                outcome.append(False)
            return outcome
        until(ended, f"{self.name}: {what}, or a sentence why not", 20)
        return outcome[0]

    def begin_half_thought(self):
        """Types and leaves the editor open."""
        if not self._open():
            return self._give_up()
        text = self._type(self.texts.new(" h", self.name)).strip()
        if self._until_kept(text) == REFUSED:
            return self._give_up()
        self.texts.written(text, f"half a thought on {self.name}")
        return DONE

    def _until_kept(self, text):
        until(lambda: self._is_kept(text), f"{self.name}: “{text}” is kept")
        return self._reload()

    def fold(self):
        """The half thought stays; the bubble comes back."""
        if self._window is None or not self._window.shows_editor():
            return DONE
        return DONE if self._fold() == DONE else self._give_up()

    def _give_up(self):
        """The folder is refused: the window ends, what was typed stays where it is kept."""
        self.end_window()
        return REFUSED

    def capture(self, kill_after=None):
        """Types a thought, or goes on with half a one, and saves it."""
        if not self._open():
            return self._give_up()
        field = self._type(self.texts.new(" c", self.name))
        for _ in range(10):
            text = field.strip()
            self.texts.written(text, f"captured on {self.name}")
            if self._until_kept(text) == REFUSED:
                return self._give_up()
            field = self._field().text()
            if field.strip() != text:
                continue  # What another program left there stands below it now.
            self._press("ctrl+Return")
            if kill_after is not None:
                time.sleep(kill_after)  # Where it is stopped is left to chance.
                self.kill_window()
                return DONE
            if self._until_done_or_failed(self._window.shows_launcher, "the thought is saved"):
                return DONE
            if self._reload() == REFUSED:
                return self._give_up()
            field = self._field().text()
        raise AssertionError(f"{self.name}: the capture was refused ten times")

    def _open_note(self, random):
        """Opens one of the notes in sight; its identifier, or None."""
        self._window.element(name="Notes").press(is_awaited=True)
        titles = [text.removeprefix(_ROW) for text in self._window.texts()
                  if text.startswith(_ROW)]
        notes = self.notes()
        known = {}
        for number, body in notes.items():
            known.setdefault(body.splitlines()[0], []).append(number)
        titles = [title for title in titles if len(known.get(title, [])) == 1]
        if not titles:
            return None
        title = random.choice(titles)
        try:
            self._window.element(name=_ROW + title).press(is_awaited=True)
        except assistive.Gone:
            return None
        self._window.element(name="Delete note")
        return known[title][0]

    def _body_on_disk(self, number):
        """None when there is no such note."""
        return self.notes().get(number)

    def edit(self, random, saves=True, kill_after=None):
        """Opens a note and changes it; the change stays a draft unless it is to be saved."""
        if not self._open():
            return self._give_up()
        number = self._open_note(random)
        if number is None:
            return self.fold()
        text = self._type(self.texts.new(" e", self.name))
        until(lambda: self._is_kept(text), f"{self.name}: the edit is kept")
        self.texts.written(text.strip(), f"edit on {self.name}")
        self.last_edited = number
        for _ in range(10):
            if self._reload() == REFUSED:
                return self._give_up()
            replaced = self._body_on_disk(number)
            if replaced is None or not saves:
                return self.fold()
            self._press("ctrl+Return")
            if kill_after is not None:
                time.sleep(kill_after)
                self.kill_window()
                return DONE
            if self._until_done_or_failed(lambda: self._body_on_disk(number) == text.strip(),
                                          "the edit is saved"):
                self.texts.replaced(replaced)
                self.texts.written(text.strip(), f"edited on {self.name}")
                return self.fold()
        raise AssertionError(f"{self.name}: the edit was refused ten times")

    def delete(self, random, kill_after=None):
        if not self._open():
            return self._give_up()
        number = self._open_note(random)
        if number is None:
            return self.fold()
        shown = self._field().text().strip()
        self._window.element(name="Delete note").press()
        self._window.element(name="Cancel")
        replaced = self._body_on_disk(number)
        self._window.element(name="Delete").press()
        if kill_after is not None:
            time.sleep(kill_after)
            self.kill_window()
        elif not self._until_done_or_failed(lambda: self._body_on_disk(number) is None,
                                            "the note is gone"):
            return DONE if self._reload() == DONE and self.fold() == DONE else self._give_up()
        for text in (replaced, shown):
            if text is not None:
                self.texts.replaced(text)
        return DONE if kill_after is not None else self.fold()


def _exchange(one, two):
    """Exchanges two files in one step."""
    at = -100
    result = _libc.renameat2(at, os.fsencode(one), at, os.fsencode(two), _EXCHANGE)
    return result == 0


def _body(file):
    """What stands below the header of a note."""
    return file.decode().split("\n---\n", 1)[1]

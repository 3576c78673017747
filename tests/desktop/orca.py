# SPDX-License-Identifier: MIT
"""What Orca says on three roads through the program, compared with docs/orca/.

Orca words things anew with each release, so that there is a transcript for each release of Debian;
where there is none for this one, nothing is compared. ORCA_WRITE=1 in the environment writes it.
"""

import os
import pathlib
import re
import unittest

from harness import DesktopTest, main, until
from harness.screen_reader import ScreenReader, has_locale
from harness.translations import table

IS_WRITTEN = bool(os.environ.get("ORCA_WRITE"))


def transcripts():
    """The folder with those of this release."""
    version = pathlib.Path("/etc/debian_version")
    found = re.match(r"\d+", version.read_text(encoding="utf-8")) if version.exists() else None
    release = f"debian-{found[0]}" if found else "another"
    return pathlib.Path(__file__).parents[2] / "docs/orca" / release


def reliable(transcript):
    """What is said every time. The name of the window is when Orca hears of it before the focus,
    and a letter that was typed by Orca 48 when it does not take it for a key in time."""
    return re.sub(r"^(Quillmark.*|.)\n", "", transcript, flags=re.MULTILINE)


class Orca(DesktopTest):
    language = "en"
    language_of_orca = "en"

    @classmethod
    def setUpClass(cls):
        if not ScreenReader.is_available():
            raise unittest.SkipTest("Orca is not installed")
        if not IS_WRITTEN and not transcripts().exists():
            raise unittest.SkipTest("there are no transcripts of this release")
        super().setUpClass()
        cls.reader = ScreenReader(cls.desktop, cls.language_of_orca)

    def words(self, text):
        return table(self.language)[text]

    def step(self, what, act, said=None, done=lambda: True):
        """Does something; ends when this is said, or something done, and Orca is idle again."""
        start = len(self.reader.said())
        act()
        until(done, f"all is done when {what}")
        if said is not None:
            until(lambda: any(said in one for one in self.reader.said()[start:]),
                  f"“{said}” is said when {what}", 60)
        until(self.reader.is_idle, f"Orca is idle when {what}", 60)
        self.transcript += [f"— {what}", *self.reader.said()[start:]]

    def press(self, keys, said=None, done=lambda: True):
        self.step(keys, lambda: self.keyboard.press(keys), said, done)

    def test_a_thought_a_search_and_a_deletion(self):
        self.transcript = []
        self.data.create()
        for number, body in enumerate(["milk", "bread\nof rye, and butter"], 1):
            self.data.add_note(body, number=number)
        self.write_settings({"ui.language": self.language})
        quillmark = self.start(TZ="UTC")
        quillmark.launcher()
        note = self.words("Note text")
        row = self.words("Open note: %@").replace("%@", "milk")

        self.step("a click on the bubble", quillmark.open_editor, note)
        self.step("tea", lambda: self.keyboard.type("tea"),
                  done=lambda: quillmark.element("text", note).text() == "tea")
        self.press("ctrl+Return", done=quillmark.shows_launcher)

        self.step("a click on the bubble", quillmark.open_editor, note)
        self.press("ctrl+f", self.words("Find a thought…"))
        self.press("q", self.words("No matching thoughts yet."))
        self.press("ctrl+u", done=lambda: quillmark.has_element("list item", row))
        self.press("m", self.words("1 note"))
        self.press("Down", row)
        self.press("Return", note)
        self.press("alt+Left", row)

        self.press("Delete", self.words("Cancel"))
        self.press("Escape", row)
        self.press("Delete", self.words("Cancel"))
        self.press("Tab", self.words("Delete"))
        self.press("Return", self.words("Open note: %@").split("%")[0])

        self.compare("\n".join(self.transcript) + "\n")

    def compare(self, said):
        file = transcripts() / f"{self.language}.txt"
        if IS_WRITTEN:
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(said, encoding="utf-8")
        self.assertEqual(reliable(said), reliable(file.read_text(encoding="utf-8")))


class OrcaInChinese(Orca):
    language = "zh-Hans"
    language_of_orca = "zh_CN"

    @classmethod
    def setUpClass(cls):
        if transcripts().name != "debian-12" and not has_locale(cls.language_of_orca):
            raise unittest.SkipTest("there is no Chinese locale")
        super().setUpClass()


if __name__ == "__main__":
    main()

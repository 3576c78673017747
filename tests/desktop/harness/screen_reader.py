# SPDX-License-Identifier: MIT
"""Orca on a virtual desktop, and what it says. It speaks to its log alone."""

import pathlib
import re
import shutil

from .waiting import until

_SAID = re.compile(r"SPEECH OUTPUT: '(.*?)' ?\[?\{'", re.DOTALL)
# What would sound or be felt, which Orca asks for at its start. Without it the log is all.
_OUTPUTS = "speechd", "brlapi"
# Read by Orca as its user's own. The log is read while it is written.
_CUSTOMIZATIONS = """\
from orca import debug, settings
debug.debugFile.reconfigure(line_buffering=True)
settings.enableKeyEcho = False
settings.enableBraille = False
settings.enableBrailleMonitor = False
"""


class ScreenReader:
    """Starts on entry, in the language of the environment's LANGUAGE; ends with the desktop."""

    def __init__(self, desktop, language):
        self._folder = pathlib.Path(desktop.folder) / "orca"
        self._log = self._folder / "log"
        self._make_folder()
        # Not --replace, which would end the user's own.
        desktop.spawn(["env", f"PYTHONPATH={self._folder}", f"LANGUAGE={language}", "orca",
                       "--debug", f"--debug-file={self._log}", f"--user-prefs={self._folder}"])
        until(lambda: self._text().count("ORCA: Starting registry"), "Orca listens", 60)

    @staticmethod
    def is_available():
        return shutil.which("orca") is not None

    def _make_folder(self):
        self._folder.mkdir()
        for name in _OUTPUTS:
            (self._folder / f"{name}.py").write_text("raise ImportError\n", encoding="utf-8")
        customizations = self._folder / "orca-customizations.py"
        customizations.write_text(_CUSTOMIZATIONS, encoding="utf-8")

    def _text(self):
        if not self._log.exists():
            return ""
        return self._log.read_text(encoding="utf-8", errors="replace")

    def said(self):
        """All that was said until now. Lines within one utterance are parted by a stroke."""
        return [" / ".join(line.strip() for line in said.strip().splitlines())
                for said in _SAID.findall(self._text())]

    def is_idle(self):
        """Whether it has dealt with all that it has heard of."""
        log = self._text()
        return log.count("EVENT MANAGER: Queueing") == log.count("^^^^^ PROCESS OBJECT EVENT")

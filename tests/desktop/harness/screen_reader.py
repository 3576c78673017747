# SPDX-License-Identifier: MIT
"""Orca on a virtual desktop, and what it says. It speaks to its log alone."""

import pathlib
import re
import shutil
import subprocess

from .waiting import until

_SAID = re.compile(r"SPEECH OUTPUT: '(.*?)' ?\[?\{'", re.DOTALL)
# In the words of Orca 43 and of Orca 48.
_LISTENS = re.compile("ORCA: Starting (registry|Atspi main event loop)")
_DEALT_WITH = re.compile(r"\^{5} (PROCESS|FINISHED PRIORITY-\d+) OBJECT EVENT")

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


def has_locale(language):
    listed = subprocess.run(["locale", "-a"], check=True, capture_output=True, text=True).stdout
    return f"{language}.utf8" in listed.splitlines()


class ScreenReader:
    """Starts on entry, in this language; ends with the desktop.

    From Orca 48 on the names of roles come from a library that wants a locale which exists.
    """

    def __init__(self, desktop, language):
        self._folder = pathlib.Path(desktop.folder) / "orca"
        self._log = self._folder / "log"
        self._make_folder()
        # Not --replace, which would end the user's own.
        locale = f"{language}.UTF-8" if has_locale(language) else "C.UTF-8"
        desktop.spawn(["env", f"PYTHONPATH={self._folder}", f"LANGUAGE={language}",
                       f"LANG={locale}", "orca", "--debug", f"--debug-file={self._log}",
                       f"--user-prefs={self._folder}"])
        until(lambda: _LISTENS.search(self._text()), "Orca listens", 60)

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
        return log.count("EVENT MANAGER: Queueing") == len(_DEALT_WITH.findall(log))

# SPDX-License-Identifier: MIT
"""What the tests of the whole program have already: desktops, processes, the folder of notes."""

import pathlib
import sys

_TESTS = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(_TESTS / "desktop"))

from harness import Desktop, until  # noqa: E402
from harness import assistive, processes  # noqa: E402
from harness.notes import DataFolder, NoteFile  # noqa: E402
from harness.surroundings import kept  # noqa: E402

__all__ = ["DataFolder", "Desktop", "NoteFile", "assistive", "kept", "processes", "until"]

# SPDX-License-Identifier: MIT
"""What every program under test is told of where it runs."""

import os

# Sanitizers look at the program from outside, so that nothing is confined beside them.
_KEPT = ("PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "QUILLMARK_UNCONFINED")


def kept():
    """The variables that a program is given of those of the tests."""
    return {key: os.environ[key] for key in _KEPT if key in os.environ}

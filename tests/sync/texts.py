# SPDX-License-Identifier: MIT
"""What was written where, and which of it must be there at the end."""


class Texts:
    """A text must be there until somebody deletes it or saves a newer one on top of it, having seen
    it. What is there counts also as a part of a longer text: half thoughts are put together."""

    def __init__(self):
        self._wanted = {}
        self._count = 0

    def new(self, kind, computer):
        """A text that occurs nowhere else; none is a part of another one."""
        self._count += 1
        return f"{kind}{self._count:04d}{computer}"

    def written(self, text, where):
        """Somebody was told that this text is kept."""
        self._wanted[text] = where

    def replaced(self, text):
        """Somebody has deleted this text, or has saved another one in its place, and with it the
        half thoughts that it had grown from."""
        for one in [one for one in self._wanted if one in text]:
            del self._wanted[one]

    def missing(self, found):
        """What must be there and is in none of the texts found, with who has written it."""
        return {text: where for text, where in self._wanted.items()
                if not any(text in one for one in found)}

    def __len__(self):
        return len(self._wanted)

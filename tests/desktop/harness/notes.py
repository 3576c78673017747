# SPDX-License-Identifier: MIT
"""The data folder, as docs/FORMAT.md describes it, read and written by other means."""

import dataclasses
import hashlib
import os
import re
import stat
import uuid

_NOTE = re.compile(
    rb"---\n"
    rb"quillmark: 1\n"
    rb"id: (?P<id>[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12})\n"
    rb"created: (?P<created>\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)\n"
    rb"updated: (?P<updated>\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)\n"
    rb"---\n"
    rb"(?P<body>.*)", re.DOTALL)

MARKER = b"Quillmark Markdown 1\n"


@dataclasses.dataclass
class NoteFile:
    """A note file whose every byte is as it should be."""

    id: str
    created: str
    updated: str
    body: str

    @classmethod
    def read(cls, path):
        """Fails when the file is not exactly a note, named after its identifier."""
        match = _NOTE.fullmatch(path.read_bytes())
        if match is None:
            raise AssertionError(f"{path.name} is no note file: {path.read_bytes()!r}")
        note = cls(**{key: value.decode() for key, value in match.groupdict().items()})
        if path.name != f"{note.id}.md":
            raise AssertionError(f"{path.name} holds the note {note.id}")
        return note


class DataFolder:
    """…/Penwick below a data home."""

    def __init__(self, path):
        self.path = path
        self.markdown = path / "Markdown"
        self.notes = self.markdown / "Notes"
        self.drafts = self.markdown / "Drafts"
        self.capture = self.drafts / "capture.md"

    def create(self, marker=MARKER):
        """An empty collection, with the modes that the program gives: as its last step a save takes
        others their access, and what is looked at just before would differ from what comes after."""
        for folder in (self.path, self.markdown, self.notes, self.drafts):
            folder.mkdir(mode=0o700, parents=True, exist_ok=True)
        (self.markdown / ".format").write_bytes(marker)
        self.capture.write_bytes(b"")

    def add_note(self, body, number=None):
        """A note by another hand; returns its file."""
        name = str(uuid.UUID(int=number) if number is not None else uuid.uuid4()).upper()
        file = self.notes / f"{name}.md"
        file.write_bytes(f"---\nquillmark: 1\nid: {name}\ncreated: 2025-03-01T08:15:30.250Z\n"
                         f"updated: 2025-03-01T08:15:30.250Z\n---\n{body}".encode())
        return file

    def note_files(self):
        return sorted(self.notes.glob("*.md")) if self.notes.exists() else []

    def read_notes(self):
        return [NoteFile.read(path) for path in self.note_files()]

    def draft(self):
        """The capture draft on disk, or None."""
        try:
            return self.capture.read_bytes().decode()
        except FileNotFoundError:
            return None

    def state(self):
        """Every name below with its kind, size, time and content; equal means untouched."""
        found = {}
        top = os.fsencode(self.path)
        for folder, folders, files in os.walk(top):
            for name in folders + files:
                path = os.path.join(folder, name)
                facts = os.lstat(path)
                content = None
                if stat.S_ISLNK(facts.st_mode):
                    content = os.readlink(path)
                elif stat.S_ISREG(facts.st_mode):
                    content = _digest(path, facts.st_size)
                found[os.path.relpath(path, top)] = (facts.st_mode, facts.st_size, facts.st_ino,
                                                     facts.st_mtime_ns, content)
        return found


def _digest(path, size):
    """The content's digest. Of a file too large to be read in a moment, its first part stands."""
    with open(path, "rb") as file:
        return hashlib.sha256(file.read(min(size, 1 << 20))).hexdigest()

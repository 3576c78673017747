# SPDX-License-Identifier: MIT
"""Data folders as nobody would wish them.

Whatever is found in one: the operation ends soon and in bounded memory, nothing outside is touched,
and everything that is not the program's own stays byte for byte, or the operation is refused with a
sentence and everything stays as it was.
"""

import contextlib
import itertools
import os
import resource
import shutil
import socket
import stat
import subprocess
import tempfile

from storage import Broken, Faults, Result

NOTE = "00000000-0000-4000-8000-000000000003"
OTHER = "8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F"
UNKNOWN = "FFFFFFFF-0000-4000-8000-000000000000"
# Enough for the most text that is allowed, and for nothing without bounds.
MOST_MEMORY = 4 << 30
NOBODY = 65534


def write(path, content=b"of another program"):
    with open(path, "wb") as file:
        file.write(content)


def note(identifier, body=b"text"):
    return (b"---\nquillmark: 1\nid: " + identifier.encode() + b"\ncreated: 2025-03-01T08:15:30.250Z"
            b"\nupdated: 2025-03-01T08:15:30.250Z\n---\n" + body)


def sparse(path, size, start=b""):
    with open(path, "wb") as file:
        file.write(start)
        file.truncate(size)


def bind_socket(path):
    # The path of a socket may be no longer than 107 bytes, so it is made by its folder's number.
    folder = os.open(os.path.dirname(path), os.O_RDONLY)
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(f"/proc/self/fd/{folder}/{os.path.basename(path)}")
    os.close(folder)


def link_to(target):
    return lambda path: os.symlink(target, path)


# What may stand where a file is expected.
THINGS = {
    "a pipe": os.mkfifo,
    "a folder": os.mkdir,
    "a folder with a file": lambda path: (os.mkdir(path), write(path + "/inside.md")),
    "a socket": bind_socket,
    "a link to a file outside": link_to("../../../outside/file"),
    "a link to a device": link_to("/dev/zero"),
    "a link to nothing": link_to("nowhere"),
    "a link to itself": lambda path: os.symlink(os.path.basename(path), path),
    "a hole of 2 GB": lambda path: sparse(path, 2 << 30),
    "a hole of 1 TB": lambda path: sparse(path, 1 << 40),
    "nothing in it": lambda path: write(path, b""),
    "a single fence": lambda path: write(path, b"---\n"),
    "no UTF-8": lambda path: write(path, b"\xff\xfe\x00"),
    "a cut character": lambda path: write(path, b"caf\xc3"),
    "half a surrogate pair": lambda path: write(path, b"\xed\xa0\x80"),
    "a byte order mark and a note": lambda path: write(path, b"\xef\xbb\xbf" + note(OTHER)),
    "line ends of another system": lambda path: write(path, note(OTHER).replace(b"\n", b"\r\n")),
    "a header without an end": lambda path: write(path, b"---\n" + b"a: b\n" * 200_000),
    "a key of a megabyte": lambda path: write(path, b"---\n" + b"k" * 1_000_000 + b": v\n---\n"),
    "a note of another name": lambda path: write(path, note(UNKNOWN)),
    "zeros": lambda path: write(path, note(OTHER, b"a\0b\0")),
}

# Where they stand, below the data folder.
PLACES = [f"Markdown/Notes/{OTHER}.md", f"Markdown/Notes/{OTHER.lower()}.MD", "Markdown/Notes/.md",
          "Markdown/Notes/.hidden.md", "Markdown/Notes/photo.jpg", "Markdown/Drafts/capture.md",
          f"Markdown/Drafts/{NOTE}.md", "Markdown/Drafts/x.md", "Markdown/.format",
          "Markdown/Notes", "Markdown/Drafts", "Markdown", "notes.json"]


def things():
    """Names of cases, and what makes one in a filled folder."""
    for place in PLACES:
        for what, make in THINGS.items():
            def build(folder, place=place, make=make):
                path = os.path.join(folder, place)
                if os.path.lexists(path):
                    subprocess.run(["rm", "-rf", path], check=True)
                make(path)
            yield f"{what} as {place}", build


def in_notes(make):
    return lambda folder: make(os.path.join(folder, "Markdown", "Notes"))


def many_files(count, name):
    def build(folder):
        for i in range(count):
            write(os.path.join(folder, "Markdown", "Notes", name.format(i)), b"")
    return build


def deep(depth):
    def build(folder):
        place = os.open(os.path.join(folder, "Markdown"), os.O_RDONLY)
        for _ in range(depth):
            os.mkdir("d", dir_fd=place)
            inner = os.open("d", os.O_RDONLY, dir_fd=place)
            os.close(place)
            place = inner
        os.close(place)
    return build


def link_folder(name):
    def build(folder):
        os.rename(os.path.join(folder, name), os.path.join(folder, "elsewhere"))
        os.symlink(os.path.join(folder, "elsewhere"), os.path.join(folder, name))
    return build


def two_names_for_one_note(folder):
    os.link(os.path.join(folder, "Markdown/Notes", NOTE + ".md"),
            os.path.join(folder, "Markdown/Notes", "copy.txt"))
    os.link(os.path.join(folder, "Markdown/Notes", NOTE + ".md"),
            os.path.join(folder, os.pardir, "outside", "note.md"))


def case_variants(folder):
    write(f"{folder}/Markdown/Drafts/capture.MD", b"another capture")


def case_variants_of_a_draft(folder):
    for name in (f"{NOTE}.md", f"{NOTE}.Md"):
        write(f"{folder}/Markdown/Drafts/{name}", name.encode())


def case_variants_of_a_note(folder):
    for name in (OTHER, OTHER.lower()):
        write(f"{folder}/Markdown/Notes/{name}.md", note(OTHER, name.encode()))


def case_variants_of_folders(folder):
    for name in ("notes", "NOTES", "drafts"):
        os.mkdir(f"{folder}/Markdown/{name}")
        write(f"{folder}/Markdown/{name}/{OTHER}.md", note(OTHER))


def strange_names(folder):
    for name in (b"\xff\xfe", b"new\nline", b"x" * 255, b" ", b"-rf", b"\xed\xa0\x80.txt"):
        write(os.fsencode(folder) + b"/Markdown/Notes/" + name)


def strange_names_of_notes(name):
    return lambda folder: write(os.fsencode(folder) + b"/Markdown/Notes/" + name)


def closed(path, mode):
    return lambda folder: os.chmod(os.path.join(folder, path), mode)


def closed_folder(mode):
    def build(folder):
        path = os.path.join(folder, "Markdown", "private")
        os.mkdir(path)
        write(path + "/file")
        os.chmod(path, mode)
    return build


def text_of_gigabytes(folder):
    for i in range(40):
        identifier = f"8C5B6F0E-3C1D-4E0A-9C55-{i:012X}"
        sparse(f"{folder}/Markdown/Notes/{identifier}.md", 63 << 20, note(identifier))


def older_notes(content):
    def build(folder):
        subprocess.run(["rm", "-rf", os.path.join(folder, "Markdown")], check=True)
        write(os.path.join(folder, "notes.json"), content)
    return build


OTHERS = {
    "100,000 files of others": many_files(100_000, "file {}"),
    "100,000 files that are no notes": many_files(100_000, "{}.md"),
    "150,000 notes": many_files(150_000, "8C5B6F0E-3C1D-4E0A-9C55-{:012X}.md"),
    "text of gigabytes": text_of_gigabytes,
    "folders 100 deep": deep(100),
    "folders 300 deep": deep(300),
    "Markdown is a link": link_folder("Markdown"),
    "Notes is a link": link_folder("Markdown/Notes"),
    "Drafts is a link": link_folder("Markdown/Drafts"),
    "two names for one note": two_names_for_one_note,
    "capture.md and capture.MD": case_variants,
    "a draft in two cases": case_variants_of_a_draft,
    "a note in two cases": case_variants_of_a_note,
    "folders in other cases": case_variants_of_folders,
    "strange names": strange_names,
    "a note whose name is not UTF-8": strange_names_of_notes(b"\xff\xfe.md"),
    "a note whose name is too long": strange_names_of_notes(b"x" * 252 + b".md"),
    "a note whose name has a line end": strange_names_of_notes(b"new\nline.md"),
    "a closed note": closed(f"Markdown/Notes/{NOTE}.md", 0),
    "a closed photo": lambda folder: (in_notes(lambda n: write(n + "/photo.jpg"))(folder),
                                      closed("Markdown/Notes/photo.jpg", 0)(folder)),
    "closed Notes": closed("Markdown/Notes", 0),
    "Notes that may not be written": closed("Markdown/Notes", 0o500),
    "Markdown that may not be written": closed("Markdown", 0o500),
    "a data folder that may not be written": closed("", 0o500),
    "a data folder that may not be read": closed("", 0o300),
    "a folder of others that is closed": closed_folder(0),
    "a folder of others that may not be written": closed_folder(0o500),
    "older notes of depth": older_notes(b"[" * 1_000_000),
    "older notes with a huge number": older_notes(b'{"version": 1e999999}'),
    "older notes with 2^64": older_notes(b'{"version": 18446744073709551616}'),
    "older notes with a key twice": older_notes(b'{"version": 1, "version": 1}'),
    "older notes with half a character": older_notes(b'{"captureDraft": "\\ud800"}'),
    "older notes with a long key": older_notes(b'{"' + b"k" * (50 << 20) + b'": nothing}'),
    "older notes that end early": older_notes(b'{"version": 1, "notes": ['),
    "older notes of a hole": lambda folder: (older_notes(b"")(folder),
                                             sparse(folder + "/notes.json", 3 << 30)),
}


def contents(folder):
    """Each path below with its kind, mode, owner and content; of holes the beginning."""
    found = {}
    for base, folders, files in os.walk(os.fsencode(folder)):
        for name in folders + files:
            path = os.path.join(base, name)
            facts = os.lstat(path)
            content = None
            if stat.S_ISLNK(facts.st_mode):
                content = os.readlink(path)
            elif stat.S_ISREG(facts.st_mode):
                with open(path, "rb") as file:
                    content = (facts.st_size, file.read(1 << 20))
            found[os.path.relpath(path, os.fsencode(folder))] = (stat.S_IFMT(facts.st_mode),
                                                                 facts.st_uid, content)
    return found


def is_own(path):
    """Whether a path below the data folder may be another after a save: the program's own files, and
    the folders that lead to them."""
    folder, name = os.path.split(path)
    is_file = folder in (b"Markdown/Notes", b"Markdown/Drafts") and name.lower().endswith(b".md")
    return is_file or path == b"Markdown/.format"


def run_bounded(faults, operation, folder, user):
    """In bounded memory, and as a user with no more rights than others."""
    def confine():
        resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))
        if user is not None:
            os.setgroups([])
            os.setresgid(user, user, user)
            os.setresuid(user, user, user)
    try:
        return faults.run(operation, folder, preexec_fn=confine)
    except subprocess.TimeoutExpired:
        return Result(None, "it does not end")


def hostile_folders(faults, every=1):
    """Every so many of the things in every place, and all the others."""
    user = NOBODY if os.geteuid() == 0 else None
    cases = [*itertools.islice(things(), 0, None, every), *OTHERS.items()]
    with tempfile.TemporaryDirectory(dir=faults.scratch) as top:
        # The way there is open to everyone, and what is in it to one user.
        for folder in (faults.scratch, top):
            os.chmod(folder, 0o711)
        there = Faults(shutil.copy(faults.driver, top), top)
        there.side_by_side([lambda what=what, build=build, number=number: one_folder(
            there, what, build, f"{top}/{number}", user)
            for number, (what, build) in enumerate(cases)])
        faults.tried += there.tried


def one_folder(faults, what, build, place, user):
    folder, outside = place + "/data", place + "/outside"
    for path in (place, folder, outside):
        os.mkdir(path)
    write(outside + "/file", b"nobody's business")
    if faults.run("fill", folder).status != 0:
        raise Broken(f"{what}: the folder could not be filled")
    build(folder)
    if user is not None:
        subprocess.run(["chown", "-hR", f"{user}:{user}", place], check=True)
    before, before_outside = contents(folder), contents(outside)
    for operation in ("load", "save", "save"):
        result = run_bounded(faults, operation, folder, user)
        faults.count()

        def require(condition, sentence):
            if not condition:
                raise Broken(f"{what}, {operation}: {sentence}\n  it said: {result}")

        require(result.status in (0, 1), "it crashed, or does not end")
        after = contents(folder)
        require(contents(outside) == before_outside, "something outside was touched")
        if result.status == 1:
            require(result.text.startswith("failed: ") and 20 < len(result.text) < 2_000,
                    "no sentence")
            require(after == before, f"it failed and changed {difference(before, after)}")
        else:
            lost = [path for path, facts in before.items()
                    if not is_own(path) and after.get(path) != facts]
            require(not lost, f"others' files changed: {lost[:5]}")
            require(not any(b".quillmark-recovery-" in path for path in after),
                    "a recovery copy was left behind")
        before = after
    with contextlib.suppress(OSError):
        subprocess.run(["chmod", "-R", "u+rwX", place], check=True, stderr=subprocess.DEVNULL)
    subprocess.run(["rm", "-rf", place], check=True)


def difference(before, after):
    return [path for path in before.keys() | after.keys()
            if before.get(path) != after.get(path)][:5]

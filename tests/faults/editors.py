# SPDX-License-Identifier: MIT
"""Another program that writes one note at the same moment as a save."""

import contextlib
import os
import threading
import time

from storage import RECOVERY_SENTENCE, Broken, Disk, tree

# The whole file under another name and then renamed, as most editors save; into the file as it
# stands; and renamed within a folder that was opened before the save, as a file manager does.
WAYS = ("rename", "in place", "in an open folder")
NOTE = "00000000-0000-4000-8000-000000000003.md"
CHANGED_SENTENCE = "Notes changed outside Quillmark."


def racing_editors(faults, rounds):
    """What the editor wrote is live afterwards, or the save has said that the notes changed outside,
    or that a recovery copy needs attention, in which the text then is."""
    faults.side_by_side([lambda way=way: race(faults, way, rounds // len(WAYS) + 1)
                         for way in WAYS])


def race(faults, way, rounds):
    with faults.folder() as folder:
        path = os.path.join(folder, "Markdown", "Notes", NOTE)
        with open(path, "rb") as file:
            header = file.read().split(b"\n---\n")[0] + b"\n---\n"
        for i in range(rounds):
            text = header + b"written outside %d" % i
            results = []
            notes = os.open(os.path.dirname(path), os.O_RDONLY | os.O_DIRECTORY)
            saver = threading.Thread(target=lambda: results.append(faults.run("save", folder)))
            saver.start()
            # Another moment of the save in each round.
            time.sleep((i % 80) / 4000)
            write_outside(path, notes, text, way)
            saver.join()
            os.close(notes)
            faults.count()
            judge(f"{way}, round {i}", folder, path, text, results[0])


def judge(what, folder, path, text, result):
    with open(path, "rb") as file:
        is_live = file.read() == text
    recoveries = Disk(folder).beside(b".quillmark-recovery-")
    if is_live:
        is_seen = True
    elif recoveries:
        is_seen = RECOVERY_SENTENCE in result.text and any(
            text in tree(recovery).values() for recovery in recoveries)
    else:
        is_seen = result.status == 1 and CHANGED_SENTENCE in result.text
    if not is_seen:
        raise Broken(f"{what}: the text of the editor was overwritten unseen: {result}")
    # As a person does who was told.
    for recovery in recoveries:
        os.rename(recovery, os.fsencode(folder) + b"/put-aside-%d" % time.monotonic_ns())


def write_outside(path, notes, text, way):
    with contextlib.suppress(FileNotFoundError):
        if way == "in place":
            with open(path, "r+b") as file:
                file.write(text)
                file.truncate()
            return
        # By path, or in the folder that has stood open since before the save.
        where = {"dir_fd": notes} if way == "in an open folder" else {}
        name = os.path.basename(path) if where else path
        temporary = os.open(name + "~", os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600, **where)
        os.write(temporary, text)
        os.close(temporary)
        os.rename(name + "~", name, **({"src_dir_fd": notes, "dst_dir_fd": notes} if where else {}))

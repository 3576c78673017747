# SPDX-License-Identifier: MIT
"""Two computers, on which somebody works at random while their folders are kept equal."""

import collections
import functools

from computer import DONE

_SHARES = {"add": 30, "add and kill": 3, "capture": 14, "capture and kill": 4,
           "half thought": 8, "fold": 6, "edit": 10, "edit and kill": 3, "edit draft": 5,
           "edit by hand": 8, "delete": 4, "delete and kill": 1, "delete by hand": 4,
           "edit on both": 4, "edit here, delete there": 2, "draft here, delete there": 2,
           "kill": 2, "end": 3, "disturb": 5}
_CAPTURES = ("add", "add and kill", "capture", "capture and kill")
_WINDOWLESS = ("add", "add and kill", "edit by hand", "delete by hand", "edit on both",
               "edit here, delete there", "disturb")

# The longest that a save takes on a slow disk, and with it the time in which a kill may hit it.
_SAVE = 0.03


class Life:
    """Goes on until so many thoughts are captured. What it does depends on the dice alone, when it
    happens on the computers."""

    def __init__(self, computers, engine, random, windows=True, without=(), only=None,
                 tell=None):
        self._computers = computers
        self._engine = engine
        self._random = random
        self._tell = tell or (lambda line: None)
        acts = set(only or _SHARES) - set(without)
        self._shares = {act: share for act, share in _SHARES.items()
                        if act in acts and (windows or act in _WINDOWLESS)}
        self.counts = collections.Counter()
        self.log = []

    def _note(self, line):
        self.log.append(line)
        self._tell(line)

    def live(self, captures):
        while sum(self.counts[act] for act in _CAPTURES) < captures:
            [act] = self._random.choices(list(self._shares), self._shares.values())
            computer = self._random.choice(self._computers)
            self._do(act, computer)

    def _do(self, act, computer):
        self._note(f"{computer.name}: {act}")
        if act == "disturb":
            self.counts[self._engine.disturb(self._random)] += 1
            return
        if "there" in act or "both" in act:
            self._at_once(act, computer)
            self.counts[act] += 1
            return
        outcome = self._act(act, computer)()
        self._note(f"    {outcome}")
        if outcome == DONE:
            self.counts[act] += 1
        else:
            self.counts["refused"] += 1
            self._mend(computer)

    def _at_once(self, act, here):
        """Both do something with one note before they have heard of each other."""
        [there] = [computer for computer in self._computers if computer is not here]
        self._engine.settle()
        if act.startswith("draft"):
            here.last_edited = None
            if here.edit(self._random, saves=False) != DONE:
                self._mend(here)
            note = here.last_edited
        else:
            both = sorted(set(here.notes()) & set(there.notes()))
            note = self._random.choice(both) if both else None
            here.edit_by_hand(self._random, note)
        if note is not None:
            act_there = there.edit_by_hand if act.endswith("both") else there.delete_by_hand
            act_there(self._random, note)

    def _act(self, act, computer):
        moment = self._random.random() * _SAVE
        return {
            "add": computer.add,
            "add and kill": functools.partial(computer.add_and_kill, moment),
            "capture": computer.capture,
            "capture and kill": functools.partial(computer.capture, moment),
            "half thought": computer.begin_half_thought,
            "fold": computer.fold,
            "edit": functools.partial(computer.edit, self._random),
            "edit and kill": functools.partial(computer.edit, self._random, True, moment),
            "edit draft": functools.partial(computer.edit, self._random, False),
            "edit by hand": functools.partial(computer.edit_by_hand, self._random),
            "delete": functools.partial(computer.delete, self._random),
            "delete and kill": functools.partial(computer.delete, self._random, moment),
            "delete by hand": functools.partial(computer.delete_by_hand, self._random),
            "kill": computer.killed,
            "end": computer.ended,
        }[act]

    def _mend(self, computer):
        """Takes copies in where the folder is refused. What a syncer is about to bring needs no
        hand."""
        for line in computer.refusals():
            self._note("    " + " ".join(line))
        if computer.refusals():
            self._note(computer.repair())

    def settle(self):
        """Until both folders are equal and nothing in them is refused."""
        for computer in self._computers:
            computer.ended()
        for _ in range(20):
            self._engine.settle()
            refused = [computer for computer in self._computers if computer.refusals()]
            if not refused:
                return
            self._mend(self._random.choice(refused))
        raise AssertionError("twenty repairs, and still refused")

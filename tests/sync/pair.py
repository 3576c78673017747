# SPDX-License-Identifier: MIT
"""Two Syncthing that keep one folder of two computers equal."""

from places import until
from syncthing import Syncthing, until_settled

# What docs/SYNC.md gives to copy.
IGNORED = "/.quillmark-*\n/Markdown/Drafts\n"

# What it says is a minute; here people work faster. Without it a change by a program of another make
# is heard of late, which sharing.py shows.
_INTERVAL = 5


class SyncthingPair:
    """Starts both, and at times stops or kills one of them."""

    def __init__(self, folder, computers, ignored=IGNORED):
        self._computers = computers
        self.syncers = []
        for computer in computers:
            computer.data.path.mkdir(parents=True, exist_ok=True)
            (computer.data.path / ".stignore").write_text(ignored)
            self.syncers.append(Syncthing(folder / f"syncthing-{computer.name}", computer.data.path,
                                          _INTERVAL))
        for one, two in (self.syncers, reversed(self.syncers)):
            one.share_with(two)

    def start(self):
        for syncer in self.syncers:
            syncer.start()
        until_settled(*self.syncers)

    def close(self):
        for syncer in self.syncers:
            syncer.stop()

    def disturb(self, random):
        """One of the two is killed, or is stopped for a while, or goes on; what was done."""
        syncer = random.choice(self.syncers)
        if not syncer.is_running():
            syncer.start()
            return "syncer goes on"
        if random.random() < 0.5:
            syncer.kill()
            syncer.start()
            return "syncer killed"
        syncer.stop()
        return "syncer stopped"

    def settle(self):
        """Both folders are equal, and stay so, since nobody has anything more to tell."""
        for syncer in self.syncers:
            if not syncer.is_running():
                syncer.start()
        until_settled(*self.syncers)
        one, two = self._computers

        def equal():
            return one.files() is not None and one.files() == two.files()
        until(equal, "both folders are equal", 120)
        until_settled(*self.syncers)

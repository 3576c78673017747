# SPDX-License-Identifier: MIT
"""The real Syncthing, talking to nobody but its counterpart on this computer."""

import json
import os
import pathlib
import secrets
import shutil
import signal
import socket
import subprocess
import urllib.error
import urllib.request
import xml.etree.ElementTree

from places import processes, until

FOLDER = "penwick"

# Whatever would look for others, or tell them something.
_ALONE = {
    "globalAnnounceEnabled": "false", "localAnnounceEnabled": "false", "relaysEnabled": "false",
    "natEnabled": "false", "urAccepted": "-1", "urURL": "", "crashReportingEnabled": "false",
    "autoUpgradeIntervalH": "0", "releasesURL": "", "stunKeepaliveStartS": "0",
    "stunServer": "", "globalAnnounceServer": "", "startBrowser": "false",
    "announceLANAddresses": "false", "reconnectionIntervalS": "1", "setLowPriority": "false",
}


def is_installed():
    return shutil.which("syncthing") is not None


def version():
    said = subprocess.run(["syncthing", "--version"], stdout=subprocess.PIPE, text=True, check=True)
    return " ".join(said.stdout.split()[:2])


def _free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Syncthing:
    """One of two. It shares one folder, on a port of its own of the loopback interface. It hears of
    changes from the system, and looks through the folder after the interval, 0 for never."""

    def __init__(self, home, path, interval=0):
        self.home = pathlib.Path(home)
        self.path = pathlib.Path(path)
        self.home.mkdir(parents=True)
        self._interval = interval
        self._key = secrets.token_hex(16)
        self._listens = f"tcp://127.0.0.1:{_free_port()}"
        self._interface = f"127.0.0.1:{_free_port()}"
        self._process = None
        self._run("generate", "--no-default-folder")
        self._settings = self.home / "config.xml"
        self.device = self._tree().find("device").get("id")

    def _run(self, command, *arguments):
        done = subprocess.run(["syncthing", command, f"--home={self.home}", *arguments],
                              env=self._environment(), stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, timeout=120, check=False)
        if done.returncode != 0:
            raise RuntimeError(f"syncthing {command}: {done.stdout}")

    def _environment(self):
        # As its own guardian starts it, which would only stand between it and a kill.
        return {"HOME": str(self.home), "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
                "STNOUPGRADE": "1", "STNODEFAULTFOLDER": "1", "STMONITORED": "yes"}

    def _tree(self):
        return xml.etree.ElementTree.parse(self._settings).getroot()

    def share_with(self, other):
        """Writes the settings; before the first start."""
        root = self._tree()
        for kind in ("folder", "device"):
            for element in root.findall(kind):
                root.remove(element)
        for one in (self, other):
            device = _add(root, "device", id=one.device, name=one.home.name, compression="never",
                          introducer="false")
            _add(device, "address", one._listens)
        folder = _add(root, "folder", id=FOLDER, label="Penwick", path=str(self.path),
                      type="sendreceive", rescanIntervalS=str(self._interval), fsWatcherEnabled="true",
                      fsWatcherDelayS="1", ignorePerms="false", autoNormalize="true")
        for one in (self, other):
            _add(folder, "device", id=one.device)
        _add(folder, "minDiskFree", "0", unit="%")
        # As its own window sets it; without a word in the file it is 0, and conflicts lose a text.
        _add(folder, "maxConflicts", "10")
        options = root.find("options")
        for key, value in {"listenAddress": self._listens, **_ALONE}.items():
            for element in options.findall(key):
                options.remove(element)
            _add(options, key, value)
        interface = root.find("gui")
        interface.find("address").text = self._interface
        interface.find("apikey").text = self._key
        xml.etree.ElementTree.ElementTree(root).write(self._settings, encoding="utf-8")

    def start(self):
        with open(self.home / "output.log", "ab") as output:
            self._process = processes.spawn(
                ["syncthing", "serve", f"--home={self.home}", "--no-browser"], self._environment(),
                stdout=output, stderr=subprocess.STDOUT)

    def is_running(self):
        return self._process is not None and self._process.poll() is None

    def stop(self):
        if self.is_running():
            processes.stop(self._process, 30)
        self._process = None

    def kill(self):
        if self.is_running():
            os.kill(self._process.pid, signal.SIGKILL)
            self._process.wait()
        self._process = None

    @property
    def process(self):
        return self._process.pid

    def output(self):
        return (self.home / "output.log").read_text(encoding="utf-8", errors="replace")

    def ask(self, path, method="GET"):
        """What it answers over its interface; None while it is not there to answer."""
        request = urllib.request.Request(f"http://{self._interface}/rest/{path}", method=method,
                                         headers={"X-API-Key": self._key})
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            with opener.open(request, timeout=10) as answer:
                text = answer.read()
        except (urllib.error.URLError, ConnectionError, TimeoutError):
            return None
        return json.loads(text) if text.strip() else {}

    def is_connected_with(self, other):
        answer = self.ask("system/connections")
        return bool(answer and answer["connections"].get(other.device, {}).get("connected"))

    def is_idle(self):
        """It has looked through the folder, and has fetched what it knows of."""
        status = self.ask(f"db/status?folder={FOLDER}")
        return bool(status and status["state"] == "idle" and status["needTotalItems"] == 0)

    def knows_of_nothing_for(self, other):
        answer = self.ask(f"db/completion?folder={FOLDER}&device={other.device}")
        return bool(answer and answer["needItems"] == 0 and answer["needDeletes"] == 0)

    def errors(self):
        answer = self.ask(f"folder/errors?folder={FOLDER}")
        return answer and answer.get("errors")

    def rescan(self):
        self.ask(f"db/scan?folder={FOLDER}", "POST")

    def connections_elsewhere(self):
        """The addresses, beside those of the loopback interface, that its sockets have."""
        return sorted(address for address in _addresses(self.process)
                      if not address.startswith("127.") and address != "::1")


def until_settled(one, two):
    """Both are connected, and neither knows of anything that the other lacks."""
    def settled():
        return (one.is_connected_with(two) and two.is_connected_with(one)
                and one.is_idle() and two.is_idle()
                and one.knows_of_nothing_for(two) and two.knows_of_nothing_for(one))
    until(settled, "both syncers are idle", 120)


def _add(parent, tag, text=None, **attributes):
    element = xml.etree.ElementTree.SubElement(parent, tag, attributes)
    element.text = text
    return element


def _addresses(process):
    """The local and the remote address of every socket of a process for the Internet's protocols."""
    sockets = set()
    for descriptor in os.listdir(f"/proc/{process}/fd"):
        try:
            target = os.readlink(f"/proc/{process}/fd/{descriptor}")
        except OSError:
            continue
        if target.startswith("socket:["):
            sockets.add(target[8:-1])
    found = set()
    for table in ("tcp", "tcp6", "udp", "udp6"):
        with open(f"/proc/{process}/net/{table}", encoding="ascii") as lines:
            next(lines)
            for line in lines:
                fields = line.split()
                if fields[9] in sockets:
                    found |= {_readable(fields[1]), _readable(fields[2])}
    return found - {None}


def _readable(field):
    """An address as the kernel's tables have it; None for the one that stands for no peer."""
    address, port = field.split(":")
    words = [bytes.fromhex(address[at:at + 8])[::-1] for at in range(0, len(address), 8)]
    raw = b"".join(words)
    if int(port, 16) == 0:
        return None
    return socket.inet_ntop(socket.AF_INET if len(raw) == 4 else socket.AF_INET6, raw)

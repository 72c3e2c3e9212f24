# SPDX-License-Identifier: BSD-3-Clause
"""Follows the journal for rounds.py, on the handset."""

import collections
import json
import os
import re
import select
import subprocess
import time

LUMD, RUNTIME = "lumd.service", "aliendalvik.service"
# Longest time, in seconds, that anything may take to happen.
PATIENCE = 120
# And how long nobody need write anything.
SILENCE = 5
# The services to which lumd keeps a link.
LASTING = {"package", "activity", "alarm", "alien"}
CONNECTED = re.compile(r"Connected to Alien Service (\w+)")
DIED = re.compile(r"(\w+) died! Trying to reconnect\.")
STATE = re.compile(r'Alien Dalvik is "(\w+)"')


class Journal:
    """What lumd and the runtime write, as it comes."""

    def __init__(self):
        self.process = None
        self.rest = b""
        self.cursor = ""
        self.heard = 0.0
        self.follow(f"--since=@{time.time():.6f}")

    def follow(self, start):
        self.process = subprocess.Popen(
            ["journalctl", "--follow", "--lines=all", start, "--quiet", "--output=json",
             "--output-fields=MESSAGE,_SYSTEMD_UNIT", f"_SYSTEMD_UNIT={LUMD}",
             f"_SYSTEMD_UNIT={RUNTIME}"], stdout=subprocess.PIPE)
        self.heard = time.monotonic()

    def lines(self, seconds):
        """The lines that came, waited for that long at most: unit and text."""
        if not select.select([self.process.stdout], [], [], seconds)[0]:
            self.follow_anew()
            return []
        *whole, self.rest = (self.rest + os.read(self.process.stdout.fileno(), 1 << 16)
                             ).split(b"\n")
        entries = [json.loads(line) for line in whole]
        if entries:
            self.cursor = entries[-1]["__CURSOR"]
            self.heard = time.monotonic()
        return [(entry["_SYSTEMD_UNIT"], entry["MESSAGE"]) for entry in entries]

    def follow_anew(self):
        """Starts again behind the last line after a silence: where the journal's files are
        exchanged a follower may miss what comes next until more is written."""
        if not self.cursor or time.monotonic() - self.heard < SILENCE:
            return
        self.process.kill()
        self.process.communicate()
        self.rest = b""
        self.follow(f"--after-cursor={self.cursor}")


class Watcher:
    """Knows lumd's links, and what the runtime got."""

    def __init__(self):
        self.journal = Journal()
        self.links = set()
        self.states = []
        self.changes = []
        self.launches = collections.Counter()
        self.intents = []
        self.finished = set()
        self.announced = 0
        self.found = 0

    def wait(self, condition, what):
        """Reads on until the condition holds."""
        deadline = time.monotonic() + PATIENCE
        while not condition():
            if time.monotonic() > deadline:
                raise RuntimeError(f"waited {PATIENCE} s in vain: {what}")
            self.read(0.5)

    def read(self, seconds):
        for unit, text in self.journal.lines(seconds):
            if unit == LUMD:
                self.hear(text)
            elif text.startswith("{"):
                self.see(json.loads(text))

    def hear(self, text):
        """Follows a line of lumd's, which libgbinder's own may have been written into."""
        if found := CONNECTED.search(text):
            self.links |= LASTING & {found[1]}
            self.found += 1
        elif found := DIED.search(text):
            self.links.discard(found[1])
        elif found := STATE.search(text):
            self.states.append(found[1])
            if found[1] == "deactivating":
                self.links.clear()

    def see(self, event):
        """Follows an event of the runtime's."""
        kind, arguments = event["event"], event.get("arguments", {})
        if "error" in event:
            raise RuntimeError(f"the runtime was sent {event}")
        if kind in ("install", "delete"):
            self.finished.add((kind, event["package"]))
        elif kind == "announce" and event["method"] == "complete":
            self.announced += 1
        elif kind == "call":
            self.count(event["method"], arguments)

    def count(self, method, arguments):
        """Counts a call that was asked for."""
        if method == "deletePackageAsUser":
            self.changes.append(("remove", arguments["package"]))
        elif method == "installPackage":
            self.changes.append(("install", arguments["path"].rpartition("/")[2]))
        elif method == "startActivity":
            self.intents.append(arguments["intent"]["action"])
        elif method == "launchPackage":
            self.launches[arguments["package"]] += 1

#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Runs on the handset: ends the runtime again and again, and asks lumd for things meanwhile.

Each round prints what lumd holds behind it, as a line of JSON. The first request that is lost,
comes twice or out of order ends the program with what was asked and what the runtime got.
"""

import collections
import json
import os
import select
import socket
import subprocess
import sys
import time

import dbus

LUMD, RUNTIME = "lumd.service", "aliendalvik.service"
NAME, PATH = "com.tovra.lumd", "/com/tovra/lumd"
SYSTEMD = "org.freedesktop.systemd1"
CONTROL = "/run/alien-runtime/control"
APKS = "/run/rounds"
STAGED = "/home/.android/data/aas-staging/app/incoming"
# Longest time, in seconds, that anything may take to happen.
PATIENCE = 120
LASTING = {"package", "activity", "alarm", "alien"}

bus = dbus.SystemBus()
lumd = dbus.Interface(bus.get_object(NAME, PATH, introspect=False), NAME)
manager = dbus.Interface(bus.get_object(SYSTEMD, "/org/freedesktop/systemd1"),
                         f"{SYSTEMD}.Manager")


class Journal:
    """What lumd and the runtime write, as it comes."""

    def __init__(self):
        self.process = subprocess.Popen(
            ["journalctl", "--follow", "--lines=all", f"--since=@{time.time():.6f}", "--quiet",
             "--output=json", "--output-fields=MESSAGE,_SYSTEMD_UNIT", f"_SYSTEMD_UNIT={LUMD}",
             f"_SYSTEMD_UNIT={RUNTIME}"], stdout=subprocess.PIPE)
        self.rest = b""

    def lines(self, seconds):
        """The lines that came, waited for that long at most: unit and text."""
        if not select.select([self.process.stdout], [], [], seconds)[0]:
            return []
        *whole, self.rest = (self.rest + os.read(self.process.stdout.fileno(), 1 << 16)
                             ).split(b"\n")
        entries = [json.loads(line) for line in whole]
        return [(entry["_SYSTEMD_UNIT"], entry["MESSAGE"]) for entry in entries]


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
        """Follows a line of lumd's."""
        words = text.split()
        if text.startswith("Connected to Alien Service "):
            self.links |= LASTING & {words[-1]}
        elif text.endswith("died! Trying to reconnect."):
            self.links.discard(words[0])
        elif text.startswith("Alien Dalvik is "):
            self.states.append(words[3].strip('"'))
            if self.states[-1] == "deactivating":
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


class Rounds:
    """Asks for things and ends the runtime, in a way that changes from round to round."""

    def __init__(self, watcher):
        self.watcher = watcher
        self.changes = []
        self.intents = []
        self.launches = collections.Counter()
        self.installed = []
        self.due = set()
        self.name = ""

    # Requests

    def ask(self, state):
        """Asks for a removal, a launch and an activity in this state of the runtime."""
        package = f"{self.name}.{state}"
        lumd.removeFile(package, timeout=PATIENCE)
        self.changes.append(("remove", package))
        lumd.launchApp(package, timeout=PATIENCE)
        self.launches[package] += 1
        # Of an app that is there, so that lumd finds its window.
        lumd.launchIntent(package, "", "", sys.argv[2], "", "",
                          dbus.Dictionary({}, signature="sv"), timeout=PATIENCE)
        self.intents.append(package)

    def change_apps(self):
        """Asks for the removal of the last round's app, and for a new one."""
        for package in self.installed:
            lumd.removeFile(package, timeout=PATIENCE)
            self.changes.append(("remove", package))
            self.due.add(("delete", package))
        package = f"{self.name}.app"
        self.installed = [package]
        app = {"package": package, "version": "1", "launchers": [
            {"class": f"{package}.Main", "caption": package, "iconBase64": "iVBORw0KGgo="}]}
        path = f"{APKS}/{package}.apk"
        with open(path, "w", encoding="utf-8") as apk:
            json.dump(app, apk)
        lumd.installFile(path, timeout=PATIENCE)
        os.remove(path)
        self.changes.append(("install", f"{package}.apk"))
        self.due.add(("install", package))

    def ask_for_values(self):
        """Asks over the links that last for five seconds."""
        lumd.getAppSize(self.installed[0] if self.installed else "none", timeout=PATIENCE)
        lumd.getAppStartOnBootup(self.name, timeout=PATIENCE)

    # The runtime

    def wait_told(self, state):
        """Waits until lumd has been told of this state of the unit."""
        self.watcher.wait(lambda: state in self.watcher.states, f"lumd is told of {state}")

    def wait_unlinked(self):
        self.watcher.wait(lambda: not self.watcher.links, "lumd has no link left")

    def wait_linked(self):
        self.watcher.wait(lambda: self.watcher.links == LASTING, "lumd has all links")

    def start(self):
        """Starts the runtime, unless a request has done so, and asks while it starts."""
        manager.StartUnit(RUNTIME, "replace", timeout=PATIENCE)
        self.wait_told("activating")
        self.ask("starting")

    def stopped(self):
        """Somebody stops the runtime, and starts it again."""
        manager.StopUnit(RUNTIME, "replace", timeout=PATIENCE)
        self.wait_told("inactive")
        self.start()

    def stopped_for_a_request(self):
        """Somebody stops the runtime; what is asked for then starts it."""
        manager.StopUnit(RUNTIME, "replace", timeout=PATIENCE)
        self.wait_told("inactive")
        self.ask("down")
        self.wait_told("activating")
        self.ask("starting")

    def asked_while_it_stops(self):
        """The runtime is stopped through the bus; what is asked for meanwhile starts it anew."""
        lumd.controlService(False, timeout=PATIENCE)
        self.wait_told("deactivating")
        self.ask("stopping")
        self.wait_told("activating")
        self.ask("starting")

    def killed(self):
        """The runtime is killed, and started through the bus."""
        manager.KillUnit(RUNTIME, "all", 9, timeout=PATIENCE)
        self.wait_unlinked()
        self.wait_told("failed")
        self.ask("failed")
        lumd.controlService(True, timeout=PATIENCE)
        self.wait_told("activating")
        self.ask("starting")

    def crashed(self):
        """All services but the service manager are killed, and come back."""
        control("crash")
        self.wait_unlinked()
        self.ask("crashed")
        control("recover")
        self.ask("recovering")

    def run(self, number):
        """One round."""
        began = time.monotonic()
        self.name = f"round.n{number}"
        self.ask("up")
        self.ask_for_values()
        self.wait_carried_out()
        self.watcher.states.clear()
        self.watcher.announced = 0
        endings = [self.stopped, self.killed, self.stopped_for_a_request, self.crashed,
                   self.asked_while_it_stops]
        ending = endings[number % len(endings)]
        ending()
        self.change_apps()
        self.wait_linked()
        self.wait_carried_out()
        self.watcher.wait(lambda: self.watcher.announced, "the launchers are announced")
        self.report(number, ending.__name__, time.monotonic() - began)

    def launch_what_waits(self):
        """Starts the runtime anew until no launch waits for the next link."""
        for _ in range(PATIENCE):
            if not self.launches:
                return
            self.watcher.states.clear()
            manager.StopUnit(RUNTIME, "replace", timeout=PATIENCE)
            self.wait_told("inactive")
            manager.StartUnit(RUNTIME, "replace", timeout=PATIENCE)
            self.wait_linked()
            self.wait_carried_out()
        raise RuntimeError(f"never launched: {self.launches}")

    def wait_carried_out(self):
        """Waits for all that was asked for; of launches some may wait for the next link."""
        seen = self.watcher
        seen.wait(lambda: len(seen.changes) >= len(self.changes)
                  and len(seen.intents) >= len(self.intents)
                  and self.due <= seen.finished,
                  f"{self.changes} {self.intents}, not {seen.changes} {seen.intents}")
        if seen.changes != self.changes or seen.intents != self.intents:
            raise RuntimeError(f"asked {self.changes} {self.intents}, "
                               f"got {seen.changes} {seen.intents}")
        for file in os.listdir(STAGED):
            os.remove(f"{STAGED}/{file}")
        for done in (self.changes, self.intents, self.due,
                     seen.changes, seen.intents, seen.finished):
            done.clear()
        if seen.launches - self.launches:
            raise RuntimeError(f"launched unasked or twice: {seen.launches - self.launches}")
        for package in list(seen.launches):
            self.launches.subtract([package])
        seen.launches.clear()
        self.launches = +self.launches

    def report(self, number, ending, seconds):
        process = f"/proc/{lumd_process()}"
        with open(f"{process}/status", encoding="utf-8") as file:
            status = dict(line.split(":", 1) for line in file)
        print(json.dumps({"round": number, "ending": ending, "seconds": round(seconds, 2),
                          "files": len(os.listdir(f"{process}/fd")),
                          "memory": int(status["VmRSS"].split()[0]),
                          "own": int(status["RssAnon"].split()[0]),
                          "waiting": sum(self.launches.values())}), flush=True)


def control(command):
    """Has the runtime do something, and waits until it is done."""
    with socket.socket(socket.AF_UNIX) as connection:
        connection.settimeout(PATIENCE)
        connection.connect(CONTROL)
        connection.sendall(json.dumps({"command": command}).encode() + b"\n")
        answer = json.loads(connection.makefile().readline())
    if not answer["ok"]:
        raise RuntimeError(f"{command}: {answer}")


def lumd_process():
    """The process behind lumd's name."""
    daemon = bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus")
    return int(daemon.GetConnectionUnixProcessID(NAME, dbus_interface="org.freedesktop.DBus"))


def main():
    os.makedirs(APKS, exist_ok=True)
    watcher = Watcher()
    watcher.links |= LASTING
    rounds = Rounds(watcher)
    for number in range(1, int(sys.argv[1]) + 1):
        rounds.run(number)
    rounds.launch_what_waits()


if __name__ == "__main__":
    main()

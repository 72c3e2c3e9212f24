#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Runs on the handset: ends the runtime again and again, and asks lumd for things meanwhile.

Each round prints what lumd holds behind it, as a line of JSON. The first request that is lost,
comes twice or out of order ends the program with what was asked and what the runtime got.
"""

import collections
import json
import os
import socket
import sys
import time

import dbus
from roundwatcher import LASTING, PATIENCE, RUNTIME, Watcher

NAME, PATH = "com.tovra.lumd", "/com/tovra/lumd"
SYSTEMD = "org.freedesktop.systemd1"
CONTROL = "/run/alien-runtime/control"
APKS = "/run/rounds"
STAGED = "/home/.android/data/aas-staging/app/incoming"

bus = dbus.SystemBus()
lumd = dbus.Interface(bus.get_object(NAME, PATH, introspect=False), NAME)
manager = dbus.Interface(bus.get_object(SYSTEMD, "/org/freedesktop/systemd1"),
                         f"{SYSTEMD}.Manager")


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
        try:
            manager.KillUnit(RUNTIME, "all", 9, timeout=PATIENCE)
        except dbus.DBusException:
            # One of the processes has ended before its turn came: whether all did is seen below.
            pass
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
                          "found": self.watcher.found,
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

# SPDX-License-Identifier: BSD-3-Clause
"""The handset's user: what he was notified of, his home screen, and what is said on the bus."""

import json

import device

NOTIFICATIONS = "/run/user/1000/notifications.jsonl"
BUS = "unix:path=/run/user/1000/dbus/user_bus_socket"
HOME_SCREEN = "org.teskmobile.glossbar"

# A home screen that writes down what it is told. Its unit ends with stop_home_screen().
HOME_SCREEN_PROGRAM = "/run/home-screen"
HOME_SCREEN_UNIT = "home-screen.service"
HOME_SCREEN_CALLS = "/run/user/1000/home-screen.jsonl"
HOME_SCREEN_TEXT = f'''
import json
import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

INTERFACE = "{HOME_SCREEN}.LauncherModel"


class HomeScreen(dbus.service.Object):
    def write(self, *call):
        with open("{HOME_SCREEN_CALLS}", "a", encoding="utf-8") as record:
            print(json.dumps(call), file=record)

    @dbus.service.method(INTERFACE, in_signature="ssss")
    def updatingStarted(self, name, icon, label, path):
        self.write("updatingStarted", name, icon, label, path)

    @dbus.service.method(INTERFACE, in_signature="s")
    def updatingFinished(self, name):
        self.write("updatingFinished", name)


DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
screen = HomeScreen(bus, "/LauncherModel")
name = dbus.service.BusName("{HOME_SCREEN}", bus)
GLib.MainLoop().run()
'''

SIGNAL_UNIT = "bus-signals.service"
SIGNALS = "/run/bus-signals.jsonl"


# The user's manager listens on a socket of its own, bus or no bus.
AS_USER = "setpriv --reuid=1000 --regid=1000 --init-groups env XDG_RUNTIME_DIR=/run/user/1000"
BUS_DAEMON = "pgrep --uid 1000 --exact dbus-daemon"


class Session:
    """Looks at the session of the user on the seat."""

    def __init__(self, handset):
        self.device = handset
        self.machine = handset.machine

    def reset(self):
        """No notification was seen, no home screen is there, nobody listens."""
        self.machine.shell(f"""
            for unit in {HOME_SCREEN_UNIT} {SIGNAL_UNIT}; do
                [ ! -e /run/systemd/transient/$unit ] || systemctl stop $unit
            done
            rm -f {HOME_SCREEN_CALLS} {SIGNALS}
            if [ -e {NOTIFICATIONS} ]; then : > {NOTIFICATIONS}; fi
            """)

    def lines(self, path):
        text = self.machine.shell(f"cat {path} 2>/dev/null", check=False).stdout
        return [json.loads(line) for line in text.splitlines()]

    def notifications(self):
        """What the user was notified of, oldest first: records as the server writes them."""
        return self.lines(NOTIFICATIONS)

    def wait_notifications(self, count):
        """Waits until there are as many notifications; gives all."""
        self.device.wait(lambda: len(self.notifications()) >= count, f"{count} notifications")
        return self.notifications()

    def start_home_screen(self):
        """Puts a home screen on the user's bus."""
        self.device.write({HOME_SCREEN_PROGRAM: HOME_SCREEN_TEXT})
        self.machine.run("systemd-run", "--quiet", "--uid=1000", f"--unit={HOME_SCREEN_UNIT}",
                         "--collect", f"--setenv=DBUS_SESSION_BUS_ADDRESS={BUS}",
                         "/usr/bin/python3", HOME_SCREEN_PROGRAM)
        self.device.wait(lambda: self.machine.shell(
            f"busctl --address={BUS} status {HOME_SCREEN}", check=False).returncode == 0,
            "the home screen is on the bus")

    def home_screen_calls(self):
        """What the home screen was told: the method and its arguments."""
        return self.lines(HOME_SCREEN_CALLS)

    def hold_home_screen(self):
        """Stops the home screen's process: it is on the bus, and answers nothing."""
        self.machine.run("systemctl", "kill", "--signal=STOP", HOME_SCREEN_UNIT)

    def continue_home_screen(self):
        self.machine.run("systemctl", "kill", "--signal=CONT", HOME_SCREEN_UNIT)

    def watch_signals(self):
        """Starts to write down the signals of lumd."""
        self.machine.shell(
            f"systemd-run --quiet --collect --unit={SIGNAL_UNIT} sh -c "
            f"'exec busctl --json=short monitor {device.BUS_NAME} > {SIGNALS}'")
        # It says nothing when it listens, but writes down calls, too.
        self.device.wait(lambda: self.device.call("isRunning").returncode == 0 and
                         self.machine.shell(f"grep -q isRunning {SIGNALS}",
                                            check=False).returncode == 0, "busctl listens")

    def signals(self):
        """The signals since then: name and arguments."""
        return [[line["member"], *line["payload"]["data"]] for line in self.lines(SIGNALS)
                if line["type"] == "signal" and line["interface"] == device.BUS_NAME]

    # The user's bus

    def hold_bus(self):
        """Stops the process of the user's bus: it accepts, and answers nothing."""
        self.machine.shell(f"kill -STOP $({BUS_DAEMON})")

    def continue_bus(self):
        """Lets the bus go on."""
        self.machine.shell(f"kill -CONT $({BUS_DAEMON})", check=False)

    def end_bus(self):
        """Takes the user's bus away, with its socket and all that is on it."""
        self.machine.shell(f"{AS_USER} systemctl --user stop dbus.socket dbus.service")

    def start_bus(self):
        """Brings the user's bus back, and the notification server on it."""
        self.machine.shell(f"{AS_USER} systemctl --user start dbus.socket && "
                           f"{AS_USER} systemctl --user start notification-recorder.service")

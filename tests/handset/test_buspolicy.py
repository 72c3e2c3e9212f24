# SPDX-License-Identifier: BSD-3-Clause
"""Who may call what over the system bus."""

import callers
import device
from scenario import Scenario
from test_startup import MEMBERS

ACCESS_DENIED = "org.freedesktop.DBus.Error.AccessDenied"
METHODS = [name for kind, name, *_ in MEMBERS if kind == "method"]
OPEN_TO_ALL = [("org.freedesktop.DBus.Introspectable", "Introspect"),
               ("org.freedesktop.DBus.Peer", "Ping")]
PROPERTIES = [("org.freedesktop.DBus.Properties", name) for name in ("Get", "GetAll", "Set")]


class BusPolicy(Scenario):
    def test_aServiceMayAskWhatThereIsAndNothingElse(self):
        closed = [pair for name in METHODS for pair in ((device.BUS_NAME, name), (None, name))]
        for user in ("nobody", "sensors"):
            with self.subTest(user=user):
                found = callers.Callers(self.device).ask(user, OPEN_TO_ALL + PROPERTIES + closed)
                self.assertEqual(
                    found, {f"{interface or ''} {member}":
                            None if (interface, member) in OPEN_TO_ALL else ACCESS_DENIED
                            for interface, member in OPEN_TO_ALL + PROPERTIES + closed})

    def test_theUserOfTheSeatIsOneOfTheUsersAndMayCall(self):
        groups = self.device.machine.run("id", "--name", "--groups", "handset").split()
        self.assertIn("users", groups)
        result = self.device.call("isRunning", user="handset")
        self.assertEqual((result.stdout, result.stderr), ("b false\n", ""))

# SPDX-License-Identifier: BSD-3-Clause
"""lumd runs when somebody wants something of it, and not in between."""

import pathlib
import sys

from scenario import Scenario

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "bench/handset"))
from idleness import Idleness  # noqa: E402


class Idle(Scenario):
    def test_lumdSleepsUntilItIsCalled(self):
        self.device.start_runtime()
        # lumd is told when what it asked for the time zone goes again.
        self.device.stop("systemd-timedated.service")
        pid = self.device.owner()
        lumd = Idleness(self.device).watch(
            {"lumd": pid}, lambda: self.device.call("isRunning"))["lumd"]

        [bus_thread] = set(lumd["wakers"]) - {pid}
        self.assertEqual(set(lumd["wakers"][pid]), {"QDBusConnection"})
        # lumd wakes it to send the answer, unless it is still awake.
        self.assertEqual(set(lumd["wakers"][bus_thread]) - {"lumd"}, {"dbus-daemon"})
        self.assertLessEqual(set(lumd["threads"]),
                             {f"lumd ({pid})", f"QDBusConnection ({bus_thread})"})

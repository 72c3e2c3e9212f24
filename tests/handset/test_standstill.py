# SPDX-License-Identifier: BSD-3-Clause
"""Whatever keeps lumd waiting for one caller, the others are answered meanwhile."""

import apps
import callers
from appscenario import AppScenario

# The longest wait for a window, in seconds, and what a busy machine may add to it.
WINDOW_WAIT = 5
SLACK = 4

# In a folder that lumd's children may write, too.
DU = "/home/slow-du"
DU_TEXT = f"""#!/bin/sh
echo runs > {DU}.runs
until [ -e {DU}.goes-on ]; do sleep 0.2; done
printf '4711\\t%s\\n' "$2"
"""


class StandStill(AppScenario):
    def setUp(self):
        super().setUp()
        self.callers = callers.Callers(self.device)

    def served(self):
        """Unrelated calls, which must be answered."""
        self.assertEqual(self.bus("isRunning"), "b false")
        self.assertEqual(self.bus("getAppStartOnBootup", "s", apps.NOTES.package), "b false")

    def view(self, package):
        """Starts an activity, and waits for a window of its package behind it."""
        self.assertEqual(self.bus("launchIntent", "ssssssa{sv}", "android.intent.action.VIEW",
                                  "", "", package, "", "", "0"), "")

    def wait_started(self, count):
        """Waits until so many activities were started; gives the times."""
        self.device.wait(lambda: len(self.times("startActivity")) >= count, f"{count} starts")
        return self.times("startActivity")

    def times(self, method):
        return [call["time"] for call in self.device.timeline("call")
                if call["method"] == method]

    def test_aWindowThatNeverComesHoldsTheNextIntentAndNobodyElse(self):
        self.device.configure_runtime(windowPolls=1000)
        self.device.start_runtime()
        self.view(apps.MAPS.package)
        self.view(apps.NOTES.package)
        first, second = self.wait_started(2)
        self.assert_five_seconds(first, second)
        asked = [time for time in self.times("hasWindow") if time < second]
        # Ten, if the machine is fast enough to ask so often in the time.
        self.assertIn(len(asked), range(5, 11))
        self.assertEqual([time for time in asked if time < first], [])
        lines = self.texts()
        (served,) = [number for number, text in enumerate(lines)
                     if text.startswith("Launching intent") and apps.NOTES.package in text]
        waits = [number for number, text in enumerate(lines)
                 if text.startswith(f'Window for "{apps.MAPS.package}"')]
        self.assertLess(served, waits[-1])

    def assert_five_seconds(self, first, second):
        self.assertGreaterEqual(second - first, WINDOW_WAIT - 0.2)
        self.assertLess(second - first, WINDOW_WAIT + SLACK)

    def test_aSurfaceFlingerThatHangsHoldsTheNextIntentForFiveSecondsAndNobodyElse(self):
        self.device.start_runtime()
        self.device.runtime("hold", "SurfaceFlinger")
        self.view(apps.MAPS.package)
        self.view(apps.NOTES.package)
        self.served()
        self.assert_five_seconds(*self.wait_started(2))

    def test_aHomeScreenThatDoesNotAnswerHoldsOnlyWhoeverSpeaksToIt(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        self.session.start_home_screen()
        self.addCleanup(self.session.reset)
        self.session.hold_home_screen()
        first = self.callers.begin("notifyRuntimeUpgrade", "b", "true")
        self.device.wait(lambda: "notifyRuntimeUpgrade: true" in self.texts(), "the first call")
        second = self.callers.begin("notifyRuntimeUpgrade", "b", "false")
        self.served()
        self.assertFalse(first.is_answered() or second.is_answered())
        self.session.continue_home_screen()
        self.assertEqual((first.answer(), second.answer()), (("", 0), ("", 0)))
        self.assertEqual([call[0] for call in self.session.home_screen_calls()],
                         ["updatingStarted"] * 2 + ["updatingFinished"] * 2)

    def texts(self):
        return [line.text for line in self.device.log()]

    def test_aSlowDuHoldsOnlyWhoeverAsksForIt(self):
        self.device.write({DU: DU_TEXT})
        self.device.machine.shell(f"rm -f {DU}.*; chmod 755 {DU}; mount --bind {DU} /usr/bin/du")
        self.addCleanup(self.device.machine.shell,
                        f"echo > {DU}.goes-on; umount --lazy /usr/bin/du")
        usage = self.callers.begin("getAndroidAppDataUsage")
        self.device.wait(lambda: self.callers.exists(f"{DU}.runs"), "du runs")
        self.served()
        self.assertFalse(usage.is_answered())
        self.device.machine.shell(f"echo > {DU}.goes-on")
        self.assertEqual(usage.answer(), ("t 4711", 0))

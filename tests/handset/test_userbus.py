# SPDX-License-Identifier: BSD-3-Clause
"""The user's bus belongs to the user: it stops, comes late and comes anew, and lumd lives on."""

import device
from appscenario import AppScenario

INSTALL = "Installing Android apps is not allowed on this device"
REMOVE = "Removing Android apps is not allowed on this device"

# How the warning begins of a message that the user's bus did not take in time.
LOST = "User's bus not reached in 10 s, dropping message:"


class UserBus(AppScenario):
    def tearDown(self):
        # Whether what was said meanwhile is still delivered depends on how long that took.
        lost = [text for text in self.device.warnings() if text.startswith(LOST)]
        self.expected_warnings = sorted(self.expected_warnings + lost)
        self.assertEqual(sorted(self.device.warnings()), self.expected_warnings)
        self.expected_warnings = self.device.warnings()
        super().tearDown()

    def refuse_installing(self):
        """What a user may not do, he is notified of."""
        self.assertEqual(self.bus("installFile", "s", "/no.apk", user="handset"), "b false")
        self.expected_warnings.append("APK installation prohibited")

    def refuse_removing(self):
        self.assertEqual(self.bus("removeFile", "s", "no.app", user="handset"), "b false")
        self.expected_warnings.append("APK uninstallation prohibited")

    def wait_told(self, body):
        """Waits until this is the last that the user was told."""
        self.device.wait(lambda: [line["body"] for line in self.session.notifications()][-1:]
                         == [body], f"the user is told: {body}")

    def hold_bus(self):
        self.addCleanup(self.session.continue_bus)
        self.session.hold_bus()

    def test_aBusThatHangsHoldsNobodyAndTakesTheNextMessageWhenItGoesOn(self):
        # lumd has no connection to it yet, and gives the message up.
        self.hold_bus()
        self.refuse_removing()
        self.assertEqual(self.bus("isRunning"), "b false")
        self.device.wait(self.is_given_up, "the message is given up")
        self.session.continue_bus()
        self.refuse_installing()
        self.wait_told(INSTALL)
        # Now it has one.
        self.session.hold_bus()
        self.refuse_removing()
        self.assertEqual(self.bus("isRunning"), "b false")
        self.session.continue_bus()
        self.refuse_installing()
        self.device.wait(lambda: len(self.session.notifications()) >= 2, "the next message")
        self.wait_told(INSTALL)

    def is_given_up(self):
        return any(text.startswith(LOST) for text in self.device.warnings())

    def test_aBusThatComesAnewTakesTheNextMessage(self):
        self.refuse_removing()
        self.wait_told(REMOVE)
        self.addCleanup(self.session.start_bus)
        self.session.end_bus()
        self.session.start_bus()
        self.refuse_installing()
        self.wait_told(INSTALL)

    def test_aBusThatComesAfterTheFirstMessageTakesTheNextOne(self):
        self.device.stop(device.LUMD)
        self.addCleanup(self.session.start_bus)
        self.session.end_bus()
        self.device.start(device.LUMD)
        self.refuse_removing()
        self.assertEqual(self.bus("isRunning"), "b false")
        self.session.start_bus()
        self.refuse_installing()
        self.wait_told(INSTALL)

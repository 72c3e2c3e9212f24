# SPDX-License-Identifier: BSD-3-Clause
"""Each Android level with the binder protocol of its time."""

import apps
from scenario import Scenario


class Sdk(Scenario):
    def speak(self, level):
        self.device.install(apps.MAPS, apps.NOTES)
        self.device.set_sdk(level)
        self.device.wait_announced()
        status = self.device.runtime("status")
        self.assertEqual(status["sdk"], level)
        self.assertIn("alien.launcher", status["services"])
        self.assert_files(apps.MAPS.files(), apps.NOTES.files())

    def test_level27(self):
        self.speak(27)

    def test_level28(self):
        self.speak(28)

    def test_level29(self):
        self.speak(29)

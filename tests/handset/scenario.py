# SPDX-License-Identifier: BSD-3-Clause
"""What every scenario begins and ends with."""

import os
import sys
import unittest

import device
import machine


class Scenario(unittest.TestCase):
    """Begins on a handset in its ground state, and ends with a look at both logs."""

    maxDiff = None

    def setUp(self):
        self.device = device.Device(machine.Machine(os.environ["LUMD_HANDSET"]))
        self.device.reset()
        self.expected_warnings = []
        self.expected_errors = []

    def tearDown(self):
        warnings, errors = self.device.faults()
        self.assertEqual(warnings, self.expected_warnings)
        self.assertEqual([event["error"] for event in errors], self.expected_errors)

    def run(self, result=None):
        before = len(result.failures) + len(result.errors)
        super().run(result)
        if len(result.failures) + len(result.errors) > before and hasattr(self, "device"):
            for unit in (device.LUMD, device.RUNTIME):
                print(f"\nThe log of {unit}:", file=sys.stderr)
                for line in self.device.log(unit):
                    print(f"  <{line.priority}> {line.text}", file=sys.stderr)
        return result

    def wait_files(self, *groups):
        """Waits until the files on the handset are those of the groups, by their paths."""
        expected = {path for group in groups for path in group}
        self.device.wait(lambda: set(self.device.files()) == expected,
                         f"the files are {sorted(expected)}")

    def assert_files(self, *groups):
        """The files on the handset are exactly those of the groups, byte for byte."""
        expected = {}
        for group in groups:
            expected.update(group)
        found = {path: file.data for path, file in self.device.files().items()}
        self.assertEqual(sorted(found), sorted(expected))
        self.assertEqual(found, expected)

    def assert_rewritten(self, before, *paths):
        """Of the files there were before, exactly these were replaced by new ones."""
        now = self.device.files()
        self.assertEqual(sorted(now), sorted(before))
        self.assertEqual(sorted(path for path in now if now[path] != before[path]),
                         sorted(paths))

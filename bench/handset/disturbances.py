# SPDX-License-Identifier: BSD-3-Clause
"""How long lumd's answers take while something keeps one of its callers, or itself, waiting."""

import json
import statistics

import device
from session import Session

ROUNDS = 3
SECONDS = 8
SLOW_DU = "/run/bench/slow-du"
SLOW_DU_TEXT = "#!/bin/sh\nsleep 5\nprintf '4711\\t%s\\n' \"$2\"\n"


class Disturbances:
    """Situations, and the answers to an unrelated call every 50 ms in each."""

    def __init__(self, handset, program):
        self.device = handset
        self.machine = handset.machine
        self.session = Session(handset)
        self.program = program

    def run(self):
        """Gives for each situation the microseconds of the longest answer, median of ROUNDS."""
        self.device.write({SLOW_DU: SLOW_DU_TEXT})
        self.machine.run("chmod", "755", SLOW_DU)
        self.device.runtime("windows", "--polls", "1000000")
        situations = {"rest": self.rest, "window": self.window, "du": self.du,
                      "bus": self.user_bus}
        longest = {name: [] for name in situations}
        for _ in range(ROUNDS):
            for name, situation in situations.items():
                longest[name].append(situation()["longest"])
        return {name: {"longest": statistics.median(times), "rounds": times}
                for name, times in longest.items()}

    def answers(self, *disturbance):
        """The answers while a method is called as the user of the seat."""
        output = self.machine.run(
            "setpriv", "--reuid=handset", "--regid=handset", "--init-groups",
            self.program, str(SECONDS), *disturbance)
        return json.loads(output)

    def rest(self):
        return self.answers()

    def window(self):
        """An app is launched whose window never comes."""
        return self.answers("openAppSettings", "com.example.maps")

    def du(self):
        """The sizes are asked for, and du takes five seconds."""
        self.machine.run("mount", "--bind", SLOW_DU, "/usr/bin/du")
        try:
            return self.answers("getAndroidAppDataUsage")
        finally:
            self.machine.run("umount", "--lazy", "/usr/bin/du")

    def user_bus(self):
        """The user's bus does not answer a lumd that was started behind that, and has a
        notification for the user."""
        self.session.hold_bus()
        try:
            self.device.stop(device.LUMD)
            self.device.start(device.LUMD)
            return self.answers("removeFile", "com.example.maps")
        finally:
            self.session.continue_bus()

# SPDX-License-Identifier: BSD-3-Clause
"""The runtime stops, starts and crashes many times in a row.

LUMD_ROUNDS=100 makes it as many as that; a round takes several seconds.
"""

import json
import os

import apps
import device
from appscenario import AppScenario

ROUNDS = int(os.environ.get("LUMD_ROUNDS", "12"))
EARLY = 4

# Each round leaves the runtime in another way and asks for something in another state. A request
# that is made while it is down is carried out when it is back; now and then, when libgbinder
# wakes only some of the connections that wait, not before it is back once more.
SCRIPT = f"""
call() {{ busctl --quiet call {device.BUS_NAME} {device.OBJECT_PATH} {device.BUS_NAME} "$@"; }}
down() {{
    until systemctl show --property=ActiveState {device.RUNTIME} | grep -q 'inactive\\|failed'; do
        sleep 0.1
    done
}}
lumd=$(systemctl show --value --property=MainPID {device.LUMD})
for round in $(seq {ROUNDS}); do
    case $((round % 4)) in
        0) systemctl stop {device.RUNTIME} ;;
        1) systemctl kill --signal=SIGKILL {device.RUNTIME}; down
           systemctl reset-failed {device.RUNTIME} ;;
        2) call controlService b false; down ;;
        3) systemctl stop --no-block {device.RUNTIME} ;;
    esac
    call removeFile s "round.$round"
    systemctl start {device.RUNTIME}
    alienctl wait delete package=round.$round --timeout 15 > /dev/null
    if [ $round = {EARLY} ] || [ $round = {ROUNDS} ]; then
        echo "$(ls /proc/$lumd/fd | wc -l) $(awk '/^VmRSS/ {{print $2}}' /proc/$lumd/status)"
    fi
done
"""


class Endurance(AppScenario):
    def carried_out(self):
        """The rounds whose request reached the runtime, in order."""
        events = [json.loads(line.text) for line in self.device.log(device.RUNTIME)
                  if line.text.startswith("{")]
        return [int(event["package"].removeprefix("round.")) for event in events
                if event["event"] == "delete"]

    def come_back(self):
        """Whether all requests were carried out, if need be after one more start."""
        if len(self.carried_out()) < ROUNDS:
            self.device.stop(device.RUNTIME)
            self.device.start_runtime()
        return len(self.carried_out()) >= ROUNDS

    def test_stopsAndCrashesLoseNoRequestAndLeaveNothingBehind(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        lumd = self.device.owner()
        self.device.write({"/run/rounds": SCRIPT})
        result = self.device.machine.shell("sh /run/rounds", timeout=3300)
        self.device.wait(self.come_back, "every request is carried out")
        self.assertEqual(self.carried_out(), list(range(1, ROUNDS + 1)))
        died = [line.text for line in self.device.log(priority="warning")]
        self.assertEqual({line for line in died if "died! Trying to reconnect." not in line}, set())
        self.expected_warnings = died
        self.assertEqual(result.stderr, "")
        early, late = [line.split() for line in result.stdout.splitlines()]
        # libgbinder's thread has a pipe open while it runs.
        self.assertLessEqual(int(late[0]) - int(early[0]), 2, "open files")
        # What a reconnect leaves behind by design is a few handles, not their data.
        self.assertLess(int(late[1]) - int(early[1]), 1024, "kB of memory")
        self.assertEqual(self.device.owner(), lumd)
        self.assert_files(apps.MAPS.files())

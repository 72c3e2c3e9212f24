# SPDX-License-Identifier: BSD-3-Clause
"""The runtime stops, starts and crashes a hundred times in a row."""

import apps
import device
from appscenario import AppScenario

ROUNDS = 100

# Each round leaves the runtime in another way and asks for it in another state. A request that
# is made while it is down must be carried out in the round that follows.
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
    alienctl wait delete package=round.$round --timeout 60 > /dev/null || echo "lost $round"
    if [ $round = 20 ] || [ $round = {ROUNDS} ]; then
        echo "$(ls /proc/$lumd/fd | wc -l) $(awk '/^VmRSS/ {{print $2}}' /proc/$lumd/status)"
    fi
done
"""


class Endurance(AppScenario):
    def test_aHundredStopsAndCrashesLoseNoRequestAndLeaveNothingBehind(self):
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        lumd = self.device.owner()
        self.device.write({"/run/rounds": SCRIPT})
        result = self.device.machine.shell("sh /run/rounds", timeout=1500)
        self.assertEqual(result.stderr, "")
        early, late = [line.split() for line in result.stdout.splitlines()]
        self.assertEqual(late[0], early[0], "open files")
        # What a reconnect leaves behind by design is a few handles, not their data.
        self.assertLess(int(late[1]) - int(early[1]), 1024, "kB of memory")
        self.assertEqual(self.device.owner(), lumd)
        self.assert_files(apps.MAPS.files())
        died = [line.text for line in self.device.log(priority="warning")]
        self.assertEqual({line for line in died if "died! Trying to reconnect." not in line}, set())
        self.expected_warnings = died

# SPDX-License-Identifier: BSD-3-Clause
"""The unit of lumd, when lumd or the bus ends before its time."""

import device
from scenario import Scenario

DROP_IN = f"/run/systemd/system/{device.LUMD}.d/unit.conf"
FAILURES = 6

# Ends lumd as soon as systemd has started it, so many times in a row.
KILLING = f"""
killed=0
for round in $(seq {FAILURES}); do
    lumd=0
    for attempt in $(seq 100); do
        lumd=$(systemctl show --value --property=MainPID {device.LUMD})
        if [ $lumd != 0 ] && [ $lumd != $killed ]; then break; fi
        sleep 0.1
    done
    [ $lumd != 0 ] || exit 0
    kill -KILL $lumd
    killed=$lumd
done
"""


class Unit(Scenario):
    def property(self, name):
        return self.device.machine.run("systemctl", "show", "--value", f"--property={name}",
                                       device.LUMD).strip()

    def wait_back(self, before):
        """Waits until lumd is on the bus as another process."""
        self.device.wait(lambda: self.device.owner() not in (None, before), "lumd is back")
        self.device.wait_state(device.LUMD, "active")

    def test_aSystemBusThatStartsAnewBringsLumdBack(self):
        # logind answers no more on a bus that came anew under it.
        self.addCleanup(self.device.machine.run, "systemctl", "restart", "systemd-logind.service")
        before = self.device.owner()
        self.device.machine.run("systemctl", "restart", "dbus.service")
        self.wait_back(before)
        self.assertEqual(self.device.call("isRunning").stdout, "b false\n")

    def test_failuresInARowDoNotEndLumdForGood(self):
        before = self.device.owner()
        self.device.machine.shell(KILLING)
        self.wait_back(before)
        self.assertEqual(self.property("NRestarts"), str(FAILURES))

    def test_whoIsNotRootIsNotStartedAgain(self):
        self.device.stop(device.LUMD)
        self.device.write({DROP_IN: "[Service]\nUser=handset\n"})
        self.addCleanup(self.device.machine.shell, f"rm {DROP_IN}; systemctl daemon-reload")
        self.device.machine.shell(
            f"systemctl daemon-reload; systemctl start {device.LUMD}", check=False)
        self.device.wait_state(device.LUMD, "failed")
        self.assertEqual((self.property("ExecMainStatus"), self.property("NRestarts")),
                         ("2", "0"))

    def test_lumdMayTakeNoMoreThanItsShareOfTheMemory(self):
        group = self.property("ControlGroup")
        self.assertEqual(self.device.machine.run("cat", f"/sys/fs/cgroup{group}/memory.max"),
                         f"{256 << 20}\n")

# SPDX-License-Identifier: BSD-3-Clause
"""How long systemctl takes to start lumd on a virtual handset, in its sandbox and without it, beside
a bare service. Each ends when the service owns its name."""

import pathlib
import statistics
import tempfile

from measure import BARE, BARE_POLICY, FOLDER, ROOT, send

import buildroot
import device
import packages
from machine import Machine

UNITS = "/run/systemd/system"
# What is left of the unit without its sandbox.
KEPT = ("Type=", "BusName=", "Environment", "ExecStart=", "TimeoutStartSec=", "Restart", "MemoryMax=",
        "StateDirectory=")
# The handset's own Debian has the compiler and the libraries that lumd is built with.
COMPILE = r"""
set -e
triplet=$(dpkg-architecture --host-arch "$1" --query DEB_HOST_GNU_TYPE 2>/dev/null)
cd /tmp
/usr/lib/qt5/bin/moc /bench/bareservice.cpp -o bareservice.moc
"$triplet-g++" -std=c++17 -O2 -g -fPIC -I. /bench/bareservice.cpp -o /results/bareservice \
    $("$triplet-pkg-config" --cflags --libs Qt5DBus libgbinder)
"""
OPEN = f"{FOLDER}/open.service"
# What each start takes to be prepared, and its unit. systemd knows one unit alone for a bus name.
STARTS = {
    "sandboxed": (f"rm -f {UNITS}/{device.LUMD}; systemctl daemon-reload", device.LUMD),
    "open": (f"cp {OPEN} {UNITS}/{device.LUMD}; systemctl daemon-reload", device.LUMD),
    "bare": (":", "bare.service"),
}
TIME = """set -e
{preparation}
before=$(date +%s%N)
systemctl start {unit}
after=$(date +%s%N)
systemctl stop {unit}
echo $((after - before))
"""


class Starts:
    """A handset of that architecture."""

    def __init__(self, architecture):
        self.architecture = architecture
        self.machine = Machine("starts")
        self.device = device.Device(self.machine)

    def run(self, rounds):
        """The seconds of each start, by what was started; they take turns."""
        wanted = packages.build(self.architecture)
        self.machine.boot(self.architecture)
        try:
            self.machine.install(wanted)
            self.prepare()
            seconds = {name: [] for name in STARTS}
            for _ in range(rounds):
                for name, (preparation, unit) in STARTS.items():
                    took = self.machine.run("sh", "-c", TIME.format(preparation=preparation, unit=unit))
                    seconds[name].append(int(took) / 1e9)
            return {name: {"median": statistics.median(found), "starts": found}
                    for name, found in seconds.items()}
        finally:
            self.machine.stop()

    def prepare(self):
        """The other units, and nothing of what they start at work."""
        with tempfile.TemporaryDirectory() as results:
            root = buildroot.root("trixie", self.architecture)
            binds = [(ROOT / "bench/handset", "/bench", "ro"), (results, "/results", "rw")]
            root.run("sh", "-c", COMPILE, "sh", self.architecture, binds=binds).check_returncode()
            send(self.machine, pathlib.Path(results, "bareservice"), f"{FOLDER}/bareservice")
        lumd = self.machine.run("cat", f"/usr/lib/systemd/system/{device.LUMD}")
        unprotected = without_sandbox(lumd)
        bare = unprotected.replace(device.BUS_NAME, BARE).replace(
            "/usr/sbin/lumd", f"{FOLDER}/bareservice")
        self.device.write({OPEN: unprotected, f"{UNITS}/bare.service": bare,
                           "/etc/dbus-1/system.d/com.tovra.bare.conf": BARE_POLICY})
        self.machine.shell("systemctl daemon-reload; systemctl reload dbus; "
                           f"systemctl stop {device.LUMD} {device.RUNTIME}")


def without_sandbox(unit):
    """The text of a unit without what its section [Service] says of its sandbox."""
    before, service, rest = unit.partition("[Service]\n")
    service_lines, install, end = rest.partition("[Install]\n")
    kept = [line for line in service_lines.splitlines() if line.startswith(KEPT)]
    return before + service + "\n".join(kept) + "\n\n" + install + end

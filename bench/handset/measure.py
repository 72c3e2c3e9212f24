# SPDX-License-Identifier: BSD-3-Clause
"""What is measured of lumd on the virtual handset, beside a bare service on the same bus."""

import json
import pathlib
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "handset"))

import device  # noqa: E402
from machine import Machine  # noqa: E402

FOLDER = "/run/bench"
BARE = "com.tovra.bare"
BARE_POLICY = f"""<busconfig><policy user="root"><allow own="{BARE}"/></policy>
<policy context="default"><allow send_destination="{BARE}"/></policy></busconfig>
"""
IDLE_SECONDS = 60


class Measurement:
    """A handset with both services on it."""

    def __init__(self, build, repetitions):
        self.build = build
        self.repetitions = repetitions
        self.machine = Machine("bench")
        self.device = device.Device(self.machine)

    def run(self):
        """Gives the benchmarks, and for both services what they are while idle."""
        self.machine.boot(self.build)
        try:
            self.prepare()
            measured = self.benchmarks("call")
            self.device.start_runtime()
            measured += self.benchmarks("binder")
            idle = self.idle()
            self.device.stop(device.RUNTIME)
            self.machine.run("systemctl", "stop", "bare")
            measured += self.benchmarks("start")
            return measured, idle
        finally:
            self.machine.stop()

    def prepare(self):
        """lumd as it is installed, without debug lines, and the bare service."""
        programs = [self.build / "bench/handset" / name for name in ("bareservice", "buscalls")]
        for path in (*programs, benchmark_library(programs[1])):
            self.send(path, f"{FOLDER}/{path.name}")
        self.device.write({"/etc/dbus-1/system.d/com.tovra.bare.conf": BARE_POLICY})
        self.device.stop(device.LUMD)
        self.machine.run("systemctl", "reload", "dbus")
        self.device.start(device.LUMD)
        self.start_bare()

    def send(self, source, target):
        """Copies a program or library to the handset."""
        with open(source, "rb") as data:
            subprocess.run([*self.machine.ssh(), "root@handset",
                            f"mkdir -p {FOLDER} && cat > {target} && chmod 755 {target}"],
                           stdin=data, check=True)

    def benchmarks(self, name):
        """Runs the benchmarks whose names begin so."""
        result = self.machine.run(
            "env", f"LD_LIBRARY_PATH={FOLDER}", f"{FOLDER}/buscalls",
            f"--benchmark_filter=^{name}", f"--benchmark_repetitions={self.repetitions}",
            "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.5",
            "--benchmark_format=json", timeout=1800)
        return json.loads(result)["benchmarks"]

    def idle(self):
        """How often either process ran in IDLE_SECONDS, and its proportional set size alone.

        Alone: the libraries that the two share count in full for each.
        """
        # lumd's question for the time zone woke it up; lumd is told when it goes again.
        self.device.wait(lambda: not self.device.owner("org.freedesktop.timedate1"),
                         "timedated has gone")
        processes = {"lumd": self.device.owner(), "bare": self.device.owner(BARE)}
        before = {name: self.switches(pid) for name, pid in processes.items()}
        time.sleep(IDLE_SECONDS)
        wakeups = {name: self.switches(pid) - before[name] for name, pid in processes.items()}
        self.machine.run("systemctl", "stop", "bare")
        sizes = {"lumd": self.proportional_set(processes["lumd"])}
        self.device.stop(device.LUMD)
        self.start_bare()
        self.benchmarks("binder/yardstick")
        sizes["bare"] = self.proportional_set(self.device.owner(BARE))
        return {name: {"wake-ups": wakeups[name], "kilobytes": sizes[name]}
                for name in processes}

    def start_bare(self):
        """Starts the bare service and waits until it is on the bus."""
        self.machine.run("systemd-run", "--unit=bare", f"{FOLDER}/bareservice")
        self.device.wait(lambda: self.device.owner(BARE), f"{BARE} is on the bus")

    def switches(self, pid):
        """How often the threads of a process gave up the processor."""
        text = self.machine.shell(f"cat /proc/{pid}/task/*/status").stdout
        return sum(int(line.split()[1]) for line in text.splitlines()
                   if "ctxt_switches" in line)

    def proportional_set(self, pid):
        """The Pss of a process in kilobytes."""
        text = self.machine.run("grep", "^Pss:", f"/proc/{pid}/smaps_rollup")
        return int(text.split()[1])


def benchmark_library(program):
    """Google Benchmark's shared library, as the program finds it on this machine."""
    for line in subprocess.run(["ldd", program], check=True, text=True,
                               capture_output=True).stdout.splitlines():
        if "libbenchmark" in line:
            return pathlib.Path(line.split()[2])
    raise LookupError(f"{program} does not need libbenchmark")

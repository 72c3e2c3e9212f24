# SPDX-License-Identifier: BSD-3-Clause
"""What is measured of lumd on the virtual handset, beside a bare service on the same bus."""

import json
import pathlib
import statistics
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "handset"))

import device  # noqa: E402
import packages  # noqa: E402
from disturbances import Disturbances  # noqa: E402
from idleness import Idleness  # noqa: E402
from machine import Machine  # noqa: E402

FOLDER = "/run/bench"
BARE = "com.tovra.bare"
BARE_POLICY = f"""<busconfig><policy user="root"><allow own="{BARE}"/></policy>
<policy context="default"><allow send_destination="{BARE}"/></policy></busconfig>
"""
IDLE_SECONDS = 60
MEMORY_STARTS = 5


class Measurement:
    """A handset with both services on it."""

    def __init__(self, build, repetitions):
        self.build = build
        self.repetitions = repetitions
        self.machine = Machine("bench")
        self.device = device.Device(self.machine)

    def run(self):
        """Gives the benchmarks, and what else there is to say of lumd and of the bare service."""
        wanted = packages.build()
        self.machine.boot()
        try:
            self.machine.install(wanted)
            self.prepare()
            measured = self.benchmarks("call")
            self.device.start_runtime()
            measured += self.benchmarks("binder")
            result = {"idle": self.idle(), "answers": self.answers(), "memory": self.memory()}
            self.device.stop(device.RUNTIME)
            self.stop_both()
            measured += self.benchmarks("start")
            return {"benchmarks": measured, **result}
        finally:
            self.machine.stop()

    def prepare(self):
        """lumd as it is installed, without debug lines, and the bare service."""
        programs = [self.build / "bench/handset" / name
                    for name in ("bareservice", "buscalls", "answers")]
        for path in (*programs, benchmark_library(programs[1])):
            send(self.machine, path, f"{FOLDER}/{path.name}")
        self.device.write({"/etc/dbus-1/system.d/com.tovra.bare.conf": BARE_POLICY})
        self.device.stop(device.LUMD)
        self.machine.run("systemctl", "reload", "dbus")
        self.device.start(device.LUMD)
        self.start_bare()

    def benchmarks(self, name, repetitions=None):
        """Runs the benchmarks whose names begin so."""
        result = self.machine.run(
            "env", f"LD_LIBRARY_PATH={FOLDER}", f"{FOLDER}/buscalls",
            f"--benchmark_filter=^{name}",
            f"--benchmark_repetitions={repetitions or self.repetitions}",
            "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.5",
            "--benchmark_format=json", timeout=1800)
        return json.loads(result)["benchmarks"]

    def idle(self):
        """How often the threads of either process ran in IDLE_SECONDS, and who had woken them."""
        # lumd's question for the time zone woke it up; lumd is told when it goes again.
        self.device.wait(lambda: not self.device.owner("org.freedesktop.timedate1"),
                         "timedated has gone")
        processes = {"lumd": self.device.owner(), "bare": self.device.owner(BARE)}
        return Idleness(self.device).watch(processes, lambda: time.sleep(IDLE_SECONDS))

    def answers(self):
        """The longest answers at rest, and while something keeps lumd waiting."""
        return Disturbances(self.device, f"{FOLDER}/answers").run()

    def memory(self):
        """The proportional set sizes in kilobytes, each alone on the handset, of several starts.

        Alone: the libraries that the two share count in full for each.
        """
        sizes = {"lumd": [], "bare": []}
        for _ in range(MEMORY_STARTS):
            self.stop_both()
            self.device.start(device.LUMD)
            self.device.wait(self.is_registered, "lumd has the runtime")
            self.benchmarks("binder/subject", repetitions=1)
            sizes["lumd"].append(self.proportional_set(self.device.owner()))
            self.stop_both()
            self.start_bare()
            self.benchmarks("binder/yardstick", repetitions=1)
            sizes["bare"].append(self.proportional_set(self.device.owner(BARE)))
        return {name: {"median": statistics.median(found), "starts": found}
                for name, found in sizes.items()}

    def is_registered(self):
        return "alien.launcher" in self.device.runtime("status")["services"]

    def stop_both(self):
        self.machine.shell(f"systemctl stop {device.LUMD} bare.service", check=False)

    def start_bare(self):
        """Starts the bare service and waits until it is on the bus."""
        self.machine.run("systemd-run", "--quiet", "--collect", "--unit=bare",
                         f"{FOLDER}/bareservice")
        self.device.wait(lambda: self.device.owner(BARE), f"{BARE} is on the bus")

    def proportional_set(self, pid):
        """The Pss of a process in kilobytes."""
        text = self.machine.run("grep", "^Pss:", f"/proc/{pid}/smaps_rollup")
        return int(text.split()[1])


def send(machine, source, target):
    """Copies a program or library to the handset."""
    with open(source, "rb") as data:
        subprocess.run([*machine.ssh(), "root@handset",
                        f"mkdir -p {FOLDER} && cat > {target} && chmod 755 {target}"],
                       stdin=data, check=True)


def benchmark_library(program):
    """Google Benchmark's shared library, as the program finds it on this machine."""
    for line in subprocess.run(["ldd", program], check=True, text=True,
                               capture_output=True).stdout.splitlines():
        if "libbenchmark" in line:
            return pathlib.Path(line.split()[2])
    raise LookupError(f"{program} does not need libbenchmark")

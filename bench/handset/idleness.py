# SPDX-License-Identifier: BSD-3-Clause
"""Who runs in a while, and who woke it."""

import collections
import re
import time

TRACE = "/sys/kernel/tracing"
MONITOR = "bus-in-idleness.service"
MONITOR_LOG = "/run/bus-in-idleness"
WAKING = re.compile(r"^\s*(?P<waker>\S+)-\d+\s.* sched_waking: comm=.+ pid=(?P<tid>\d+) ")


class Idleness:
    """Watches processes on a handset."""

    def __init__(self, handset):
        self.device = handset
        self.machine = handset.machine

    def watch(self, processes, meanwhile):
        """Gives how often each process gave up the processor, by thread, and who had woken it.

        processes is name to process number; meanwhile is called as soon as nobody runs any more.
        The kernel's own record of who wakes whom is what tells, so that watching wakes nobody.
        """
        self.start_monitor()
        before = self.settle(processes)
        tids = sorted(tid for threads in before.values() for tid in threads)
        self.start_trace(tids)
        meanwhile()
        after = {name: self.threads(pid) for name, pid in processes.items()}
        wakers = self.stop_trace()
        bus = self.stop_monitor()
        return {name: self.record(before[name], after[name], wakers, bus) for name in processes}

    def settle(self, processes):
        """Waits until a second passes in which nobody runs; gives the threads of each."""
        def look():
            return {name: self.threads(pid) for name, pid in processes.items()}

        found = [look()]

        def is_calm():
            time.sleep(1)
            found.append(look())
            return found[-1] == found[-2]

        self.device.wait(is_calm, "what came before has ended")
        return found[-1]

    def record(self, before, after, wakers, bus):
        switches = {f"{name} ({tid})": count - before.get(tid, (name, 0))[1]
                    for tid, (name, count) in after.items()}
        return {"wake-ups": sum(switches.values()),
                "threads": {name: count for name, count in switches.items() if count},
                "wakers": {tid: found for tid, found in wakers.items() if tid in after},
                "bus": bus}

    def threads(self, pid):
        """The threads of a process: number to name and to how often it gave up the processor."""
        text = self.machine.shell(f"cat /proc/{pid}/task/*/status").stdout
        found, name, tid = {}, "", 0
        for line in text.splitlines():
            key, _, value = line.partition(":\t")
            if key == "Name":
                name = value
            elif key == "Pid":
                tid = int(value)
                found[tid] = (name, 0)
            elif key.endswith("voluntary_ctxt_switches"):
                found[tid] = (name, found[tid][1] + int(value))
        return found

    def start_trace(self, tids):
        """Has the kernel write down each time that one of these threads is woken."""
        condition = " || ".join(f"pid == {tid}" for tid in tids)
        self.machine.shell(f"""
            mountpoint -q {TRACE} || mount -t tracefs tracefs {TRACE}
            echo > {TRACE}/trace
            echo '{condition}' > {TRACE}/events/sched/sched_waking/filter
            echo 1 > {TRACE}/events/sched/sched_waking/enable
            echo 1 > {TRACE}/tracing_on""")

    def stop_trace(self):
        """Gives the wakers: number of the thread to names of wakers, with how often each."""
        text = self.machine.shell(f"""
            echo 0 > {TRACE}/events/sched/sched_waking/enable
            cat {TRACE}/trace""").stdout
        found = collections.defaultdict(collections.Counter)
        for line in text.splitlines():
            match = WAKING.match(line)
            if match:
                found[int(match["tid"])][match["waker"]] += 1
        return found

    def start_monitor(self):
        """Writes down what is said on the system bus meanwhile."""
        # A watch that was cut short has left its own.
        self.machine.shell(f"""
            systemctl stop {MONITOR} 2>/dev/null
            rm -f {MONITOR_LOG}
            systemd-run --quiet --collect --unit={MONITOR} sh -c \
                'exec busctl --json=short monitor >> {MONITOR_LOG}'""")
        # It says nothing when it listens, but writes down calls, too.
        self.device.wait(lambda: self.machine.shell(
            "busctl call org.freedesktop.DBus / org.freedesktop.DBus.Peer Ping; "
            f"grep -q Ping {MONITOR_LOG} && : > {MONITOR_LOG}",
            check=False).returncode == 0, "busctl listens")

    def stop_monitor(self):
        """Gives the members that were called or signalled, with how often."""
        text = self.machine.shell(f"cat {MONITOR_LOG}; systemctl stop {MONITOR}").stdout
        return dict(collections.Counter(re.findall(r'"member":"(\w+)"', text)))

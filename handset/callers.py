# SPDX-License-Identifier: BSD-3-Clause
"""Callers of lumd that busctl cannot be: several at once, in the background, and hostile ones."""

import json
import shlex

import device

FOLDER = "/run/callers"

# What every program below begins with.
PREAMBLE = f'''
import collections
import json
import os
import time
import dbus
from dbus.lowlevel import MethodCallMessage

NAME, PATH = "{device.BUS_NAME}", "{device.OBJECT_PATH}"
'''

# Asks for every member that it is given, once with its interface and once without one, and says
# for each what came back: null for an answer, else the error's name.
ASKING = PREAMBLE + '''
import sys

bus = dbus.SystemBus()


def outcome(interface, member):
    message = MethodCallMessage(NAME, PATH, interface, member)
    try:
        bus.send_message_with_reply_and_block(message, 20)
    except dbus.DBusException as error:
        return error.get_dbus_name()


print(json.dumps({f"{interface or ''} {member}": outcome(interface, member)
                  for interface, member in json.loads(sys.argv[1])}))
'''

# Sends Intents with descriptors in their extras, in every other one also within containers, and
# counts what came back.
SENDING_DESCRIPTORS = PREAMBLE + '''
import sys

bus = dbus.SystemBus()
file = os.open("/dev/null", os.O_RDONLY)


def handle(level):
    return dbus.types.UnixFd(file, variant_level=level)


outcomes = collections.Counter()
for number in range(int(sys.argv[1])):
    extras = {"flat": handle(1), "nested": handle(2), "kept": dbus.String("text", variant_level=1)}
    if number % 2:
        extras["map"] = dbus.Dictionary({"deep": handle(1)}, signature="sv", variant_level=1)
        extras["list"] = dbus.Array([handle(0)], signature="h", variant_level=1)
    message = MethodCallMessage(NAME, PATH, NAME, "launchIntent")
    message.append("android.intent.action.VIEW", "geo:1,2", "", "", "", "",
                   dbus.Dictionary(extras, signature="sv"), signature="ssssssa{sv}")
    try:
        bus.send_message_with_reply_and_block(message, 20)
        outcomes["answered"] += 1
    except dbus.DBusException as error:
        outcomes[error.get_dbus_name()] += 1
print(json.dumps(outcomes))
'''

# Several processes that each ask for a removal and become root's behind it, with the connection
# still open: su waits for a password that never comes.
BECOMING_SU = PREAMBLE + '''
import sys

waiting, _ = os.pipe()


def become_su():
    bus = dbus.SystemBus(private=True)
    message = MethodCallMessage(NAME, PATH, NAME, "removeFile")
    message.append("com.example.maps", signature="s")
    bus.send_message(message)
    bus.flush()
    os.set_inheritable(bus.get_unix_fd(), True)
    os.dup2(waiting, 0)
    os.execv("/bin/su", ["su"])


children = []
for _ in range(int(sys.argv[1])):
    child = os.fork()
    if child == 0:
        become_su()
    children.append(child)
while any(os.stat(f"/proc/{child}").st_uid for child in children):
    time.sleep(0.1)
with open(sys.argv[2], "w", encoding="utf-8") as report:
    print(len(children), file=report)
time.sleep(600)
'''


BECOMING_SU_UNIT = "becoming-su.service"


class Callers:
    """Runs programs on a handset that call lumd."""

    def __init__(self, handset):
        self.device = handset
        self.machine = handset.machine

    def ask(self, user, members):
        """Asks for pairs of interface and member as a user; gives what each came to."""
        return self.run(user, ASKING, json.dumps(members))

    def send_descriptors(self, user, count):
        """Sends Intents with descriptors as a user; gives what they came to, counted."""
        return self.run(user, SENDING_DESCRIPTORS, str(count))

    def run(self, user, program, *arguments):
        """Runs a program as a user until its end; gives what it printed."""
        path = self.put(program)
        return json.loads(self.machine.shell(
            f"setpriv --reuid={user} --regid=$(id -g {user}) --init-groups "
            + shlex.join(["python3", path, *arguments])).stdout)

    def become_su(self, count):
        """Starts processes that call and execute su at once; waits until all have."""
        report = f"{FOLDER}/su"
        self.machine.shell(f"rm -f {report}; mkdir -p {FOLDER}; chmod 777 {FOLDER}")
        self.machine.run("systemd-run", "--quiet", "--collect", f"--unit={BECOMING_SU_UNIT}",
                         "--uid=handset", "python3", self.put(BECOMING_SU), str(count), report)
        self.device.wait(lambda: self.exists(report), "all have become su")

    def put(self, program):
        """Puts a program on the handset; gives its path."""
        path = f"{FOLDER}/program.py"
        self.device.write({path: program})
        return path

    def begin(self, method, *arguments):
        """Calls a method of lumd and does not wait for the answer."""
        return Call(self, method, *arguments)

    def exists(self, path):
        return self.machine.shell(f"[ -s {path} ]", check=False).returncode == 0


class Call:
    """A call of lumd in the background."""

    last = 0

    def __init__(self, callers, method, *arguments):
        self.callers = callers
        Call.last += 1
        self.result = f"{FOLDER}/call{Call.last}"
        call = shlex.join(["busctl", f"--timeout={device.PATIENCE}", "call", "--",
                           device.BUS_NAME, device.OBJECT_PATH, device.BUS_NAME, method,
                           *arguments])
        script = f"{call} > {self.result}.text 2>&1; echo $? > {self.result}"
        callers.machine.shell(f"mkdir -p {FOLDER}; rm -f {self.result}; "
                              f"systemd-run --quiet --collect sh -c {shlex.quote(script)}")

    def is_answered(self):
        return self.callers.exists(self.result)

    def answer(self):
        """Waits for the answer; gives busctl's line and exit code."""
        self.callers.device.wait(self.is_answered, "the call is answered")
        text = self.callers.machine.run("cat", f"{self.result}.text").strip()
        return text, int(self.callers.machine.run("cat", self.result))

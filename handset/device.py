# SPDX-License-Identifier: BSD-3-Clause
"""What a scenario does on a handset, and what it looks at there."""

import base64
import collections
import dataclasses
import io
import json
import shlex
import tarfile
import tempfile
import time

import androidlevels
import control
from apps import APPLICATIONS, ICONS, SETTINGS
from image import HandsetError

LUMD = "lumd.service"
RUNTIME = "aliendalvik.service"
BUS_NAME = "com.tovra.lumd"
OBJECT_PATH = "/com/tovra/lumd"
# Longest time, in seconds, that anything on the handset may take to happen.
PATIENCE = 120

# Makes calls shorter to type, and to read.
SHORTHAND = (f"lumd() {{ busctl --timeout={PATIENCE} call "
             f'{BUS_NAME} {OBJECT_PATH} {BUS_NAME} "$@"; }}')
RUNTIME_APPS = "/var/lib/alien-runtime/apps"
RUNTIME_CONFIG = "/etc/alien-runtime.conf"
BLACKLIST = "/etc/lumd/app-blacklist"
MARKERS = "/usr/share/lumd/partnerspace"
POLICY = "/etc/lumd/platform/policy.conf"

# Folders that lumd and the runtime share, and how the runtime calls the first.
INCOMING = "/home/.android/data/aas-staging/app/incoming"
PACKAGED = "/home/.android/data/aas-staging/app/packaged"
APP_DATA = "/home/.android/data/data"
RUNTIME_INCOMING = "/data/aas-staging/app/incoming"

# syslog's number
WARNING = 4

# The daemon's debug lines are on, so that scenarios see what it saw.
VERBOSE = "/run/systemd/system/lumd.service.d/verbose.conf"
VERBOSE_TEXT = "[Service]\nEnvironment=QT_LOGGING_RULES=com.tovra.lumd.*.debug=true\n"

# Is as old as the last ground state.
STAMP = "/run/ground-state"

# There is a link while the runtime starts at boot.
ENABLED_RUNTIME = f"/etc/systemd/system/multi-user.target.wants/{RUNTIME}"

# Services of the runtime to which lumd keeps a connection.
PERSISTENT_SERVICES = ("package", "activity", "alarm", "alien")

File = collections.namedtuple("File", "data inode changed")


@dataclasses.dataclass(frozen=True)
class Line:
    """One line of a unit's log; the priority is syslog's number, 7 for debug.

    The time is that of the handset's clock, in seconds.
    """

    priority: int
    text: str
    time: float


class Device:
    """A running handset, seen from the outside."""

    def __init__(self, machine):
        self.machine = machine
        self.since = "0"

    # Ground state

    def reset(self):
        """Brings the handset to its ground state: no apps, runtime stopped, lumd started."""
        files = {RUNTIME_CONFIG: runtime_config(),
                 **androidlevels.sdk_files(androidlevels.DEFAULT_SDK)}
        self.since = self.machine.shell(f"""
            exec 3>&1 >/dev/null
            systemctl stop {LUMD} {RUNTIME}
            # Either makes systemd read all units anew, which takes seconds on the handset.
            [ ! -L {ENABLED_RUNTIME} ] || systemctl disable --quiet {RUNTIME}
            systemctl reset-failed
            rm -rf {APPLICATIONS}/lumd_launcher_* {ICONS}/* {SETTINGS}/* {RUNTIME_APPS}/* \\
                {BLACKLIST} {MARKERS}/* {POLICY} {INCOMING}/* {PACKAGED}/* {APP_DATA}
            {write_script(files)}
            grep -qs QT_LOGGING_RULES {VERBOSE} || {{
            {write_script({VERBOSE: VERBOSE_TEXT})}
            # It does not always notice a folder that is new.
            systemctl daemon-reload
            }}
            # The question takes longer than to see that no scenario has touched a unit. Of their
            # own ones packages tell systemd themselves.
            if [ ! -e {STAMP} ] || [ -n "$(find /etc/systemd /run/systemd/system \\
                -newer {STAMP} -print -quit)" ]; then
                case $(systemctl show --property=NeedDaemonReload {LUMD} {RUNTIME}) in
                *yes*) systemctl daemon-reload ;;
                esac
            fi
            touch {STAMP}
            journalctl --sync
            date +%s.%6N >&3
            systemctl start getty@tty1.service {LUMD}
            """).stdout.strip()

    def set_sdk(self, level):
        """Makes the runtime one of another Android level; lumd and the runtime start anew."""
        self.machine.run("systemctl", "stop", LUMD, RUNTIME)
        self.write(androidlevels.sdk_files(level))
        self.start(LUMD)
        self.start(RUNTIME)

    def write(self, files):
        """Writes text files: path to text."""
        self.machine.shell(write_script(files))

    def install(self, *apps):
        """Makes apps known to the runtime, which announces them when it starts."""
        self.write({f"{RUNTIME_APPS}/{app.package}.json": app.to_json() for app in apps})

    def forget(self, app):
        """Takes an app from a runtime that is stopped, so that it is told of to nobody."""
        self.machine.run("rm", f"{RUNTIME_APPS}/{app.package}.json")

    def configure_runtime(self, **settings):
        """Writes the runtime's configuration; it is read when the runtime starts."""
        self.write({RUNTIME_CONFIG: runtime_config(**settings)})

    # Units

    def start(self, unit):
        """Starts a unit and waits until it is up."""
        self.machine.run("systemctl", "start", unit)

    def stop(self, unit):
        """Stops a unit and waits until it is down."""
        self.machine.run("systemctl", "stop", unit)

    def kill(self, unit):
        """Kills every process of a unit as if it had crashed, and waits until systemd saw it."""
        self.machine.run("systemctl", "kill", "--signal=SIGKILL", unit)
        self.wait(lambda: self.state(unit) in ("failed", "inactive"),
                  f"{unit} is down after SIGKILL")

    def state(self, unit):
        """systemd's ActiveState of the unit."""
        result = self.machine.shell(f"systemctl is-active {unit}", check=False)
        if not result.stdout:
            raise HandsetError(f"{unit}: {result.stderr}")
        return result.stdout.strip()

    def wait_state(self, unit, state):
        """Waits until systemd gives the unit this ActiveState."""
        self.wait(lambda: self.state(unit) == state, f"{unit} is {state}")

    def end_session(self):
        """Ends the session of the user on the seat, and waits until none is left there."""
        self.stop("getty@tty1.service")
        self.machine.shell("loginctl terminate-seat seat0", check=False)
        self.wait(lambda: self.machine.shell("grep -q ^ACTIVE= /run/systemd/seats/seat0",
                                             check=False).returncode != 0,
                  "no session is left on seat0")

    def owner(self, name=BUS_NAME):
        """The process that owns a name of the system bus, or None."""
        result = self.machine.shell(
            "busctl call org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus "
            f"GetConnectionUnixProcessID s {name}", check=False)
        return int(result.stdout.split()[1]) if result.returncode == 0 else None

    def call(self, method, *arguments, user="root"):
        """Calls a method of lumd over the bus; gives the CompletedProcess of busctl."""
        command = self.as_user(user, "busctl", "call", "--", BUS_NAME, OBJECT_PATH, BUS_NAME,
                               method, *arguments)
        return self.machine.shell(shlex.join(command), check=False)

    @staticmethod
    def as_user(user, *command):
        """The words of a command as root types it to have a user run it."""
        if user == "root":
            return [*command]
        return ["setpriv", f"--reuid={user}", f"--regid={user}", "--init-groups", *command]

    # The runtime

    def runtime(self, *command, check=True):
        """Asks the runtime as alienctl does; gives its answer.

        The client runs here: Python takes more than a second to start on the handset.
        """
        try:
            answer = control.ask(command, self.machine.control)
        except (OSError, ValueError) as error:
            raise HandsetError(f"alienctl {shlex.join(command)}: {error}") from error
        if check and not answer["ok"]:
            raise HandsetError(f"alienctl {shlex.join(command)}: {answer}")
        return answer

    def calls(self, *services):
        """The binder calls that the runtime got, of some services or all, oldest first."""
        return [call for call in self.runtime("calls")["calls"]
                if not services or call["service"] in services]

    def wait_event(self, event, *values, after=0):
        """Waits for an event of the runtime, which may have yet to start; gives it."""
        def ask():
            try:
                return control.ask(("wait", event, *values, "--after", str(after),
                                    "--timeout", str(PATIENCE)), self.machine.control)
            except (OSError, ValueError):
                return None

        answer = self.wait(ask, f"the runtime tells of {event}")
        if not answer["ok"]:
            raise HandsetError(f"alienctl wait {event} {values}: {answer}")
        return answer["found"]

    def announce(self, app):
        """Has the runtime announce an app, also one that it did not know."""
        with tempfile.NamedTemporaryFile("w", encoding="utf-8", suffix=".json") as file:
            file.write(app.to_json())
            file.flush()
            return self.runtime("announce", file.name)

    def start_runtime(self):
        """Starts the runtime and waits until it has announced all of its launchers."""
        self.start(RUNTIME)
        self.wait_announced()

    def wait_control(self):
        """Waits until the runtime's control socket answers."""
        self.wait(self.answers, "the runtime answers")

    def answers(self):
        """Whether the runtime's control socket answers."""
        try:
            return self.runtime("status", check=False)["ok"]
        except HandsetError:
            return False

    def wait_announced(self, after=0):
        """Waits for the end of an announcement of all launchers; gives its event number."""
        return self.wait_event("announce", "method=complete", after=after)["seq"]

    # Files

    def files(self):
        """All files that the daemon made of launchers: path to File."""
        output = self.machine.shell(f"""
            cd /
            list() {{
                find {APPLICATIONS} -name 'lumd_launcher_*' "$@"
                find {ICONS} {SETTINGS} -type f "$@"
            }}
            list -printf '%p\\t%i\\t%T@\\n'
            echo --
            list -print0 | tar -cPf - --null --files-from=- | base64 -w 0
            """).stdout
        listing, _, archive = output.partition("--\n")
        if not listing:
            return {}
        contents = {}
        with tarfile.open(fileobj=io.BytesIO(base64.b64decode(archive))) as tar:
            for member in tar:
                contents[member.name] = tar.extractfile(member).read()
        found = {}
        for line in listing.splitlines():
            path, inode, changed = line.split("\t")
            found[path] = File(contents[path], int(inode), changed)
        return found

    def validate(self):
        """Runs desktop-file-validate over all entries; gives the CompletedProcess."""
        return self.machine.shell(f"desktop-file-validate {APPLICATIONS}/lumd_launcher_*",
                                  check=False)

    # The log

    def log(self, unit=LUMD, priority="debug"):
        """The lines of a unit's log since the ground state."""
        return self.logs(unit, priority=priority)[unit]

    def logs(self, *units, priority="debug"):
        """The same of several units, by the unit's name."""
        output = self.machine.shell(
            f"journalctl --sync && journalctl --since=@{self.since} --quiet --output=json "
            f"--output-fields=PRIORITY,MESSAGE,_SYSTEMD_UNIT --priority={priority} "
            + " ".join(f"_SYSTEMD_UNIT={unit}" for unit in units)).stdout
        found = {unit: [] for unit in units}
        for entry in map(json.loads, output.splitlines()):
            found[entry["_SYSTEMD_UNIT"]].append(
                Line(int(entry["PRIORITY"]), entry["MESSAGE"],
                     int(entry["__REALTIME_TIMESTAMP"]) / 1e6))
        return found

    def warnings(self):
        """What lumd warned of, or worse, since the ground state."""
        return warnings(self.log(priority="warning"))

    def faults(self):
        """What lumd warned of, and what the runtime found wrong in what it was sent."""
        logs = self.logs(LUMD, RUNTIME)
        return warnings(logs[LUMD]), runtime_errors(logs[RUNTIME])

    def timeline(self, event):
        """The runtime's events of one kind since the ground state, with the time of each."""
        found = [{**json.loads(line.text), "time": line.time} for line in self.log(RUNTIME)
                 if line.text.startswith("{")]
        return [record for record in found if record["event"] == event]

    def runtime_errors(self):
        """What the runtime found wrong in what it was sent, since the ground state."""
        return runtime_errors(self.log(RUNTIME))

    def seen_states(self):
        """The states of the runtime's unit that lumd was told of, in order."""
        prefix = "Alien Dalvik is "
        states = []
        for line in self.log():
            if line.text.startswith(prefix):
                state = line.text.removeprefix(prefix).split()[0].strip('"')
                if states[-1:] != [state]:
                    states.append(state)
        return states

    def wait_states(self, *states):
        """Waits until lumd was told of exactly these states, one after the other."""
        self.wait(lambda: self.seen_states() == list(states),
                  f"lumd was told of {states}, not {self.seen_states()}")

    def wait(self, condition, what):
        """Waits until the condition holds, and gives what it gave; one that never does is an
        error."""
        deadline = time.monotonic() + PATIENCE
        # A look takes the handset's processor from what is waited for: less and less often.
        pause = 0.2
        while not (found := condition()):
            if time.monotonic() > deadline:
                raise HandsetError(f"waited {PATIENCE} s in vain: {what}")
            time.sleep(pause)
            pause = min(1.5 * pause, 1)
        return found


def warnings(lines):
    """The texts of those lines that are warnings or worse."""
    return [line.text for line in lines if line.priority <= WARNING]


def runtime_errors(lines):
    """The events among the runtime's lines that tell of something wrong."""
    events = [json.loads(line.text) for line in lines if line.text.startswith("{")]
    return [event for event in events if "error" in event]


def runtime_config(stopDelay=500, **settings):
    """The runtime's configuration: a stop takes its time, and lumd is told before services go."""
    settings["stopDelay"] = stopDelay
    return "[runtime]\n" + "".join(f"{key}={value}\n" for key, value in settings.items())


def write_script(files):
    """A shell script that writes text files: path to text."""
    lines = []
    for path, text in files.items():
        folder = path.rpartition("/")[0]
        folder = shlex.quote(folder)
        lines.append(f"{{ [ -d {folder} ] || mkdir -p {folder}; }} && "
                     f"printf %s {shlex.quote(text)} > {shlex.quote(path)}")
    return "\n".join(lines)

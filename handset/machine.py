# SPDX-License-Identifier: BSD-3-Clause
"""A running handset: the QEMU process, and the way into it by ssh."""

import json
import os
import pathlib
import shlex
import shutil
import signal
import socket
import subprocess
import tempfile
import time

import control
import image as images
from image import HandsetError
from remoteshell import RemoteShell, ShellLost

RUN = images.CACHE / "run"
BOOT_TIMEOUT = 600
COMMAND_TIMEOUT = 240
INSTALL_TIMEOUT = 500

# What QEMU is told of a machine of each architecture, and its kernel of the console.
# no_timer_check: where the host is busy no tick may come in the time that the kernel gives the
# emulated timer, and it would panic.
# norandmaps: QEMU keeps what it translated of a program by its address, for the next process too.
EMULATORS = {
    "amd64": (["qemu-system-x86_64", "-cpu", "max,la57=off"],
              "console=ttyS0 no_timer_check random.trust_cpu=on mitigations=off norandmaps"),
    "arm64": (["qemu-system-aarch64", "-M", "virt", "-cpu", "cortex-a72"],
              "console=ttyAMA0 mitigations=off norandmaps"),
}

# Where packages are put that are installed by hand.
PACKAGES = "/tmp/packages"

# What the guest writes on its console when its user is on the seat.
READY = b"handset: ready"


class Machine:
    """A handset by name. Several may run at once under different names."""

    def __init__(self, name="default"):
        self.name = name
        self.record = RUN / f"{name}.json"
        # What all scripts run in, once there was one.
        self.remote_shell = None
        self.state = {}
        if self.record.exists():
            self.state = json.loads(self.record.read_text(encoding="utf-8"))

    @property
    def folder(self):
        """The folder of this run: console log, sockets."""
        return pathlib.Path(self.state["folder"])

    @property
    def key(self):
        return self.folder / "id_ed25519"

    @property
    def console(self):
        return self.folder / "console.log"

    @property
    def control(self):
        """The socket here that leads to the control socket of the runtime on the handset."""
        return self.folder / "control"

    def running(self):
        """Whether the QEMU process of this record still lives."""
        return "pid" in self.state and start_time(self.state["pid"]) == self.state["started"]

    def boot(self, architecture=None):
        """Starts the machine and waits until its user is on the seat; gives the seconds that
        this took."""
        if self.running():
            raise HandsetError(f"the handset '{self.name}' runs already; stop it first")
        image = images.build(architecture)
        self.close_shell()
        self.state = {"folder": tempfile.mkdtemp(prefix="lumd-handset-")}
        try:
            started = time.monotonic()
            self.start_qemu(image)
            self.connect(started + BOOT_TIMEOUT)
        except BaseException:
            self.stop()
            raise
        return time.monotonic() - started

    def start_qemu(self, image):
        # A key of its own: the image may be replaced while the machine runs.
        shutil.copy(image.key, self.key)
        host_key = image.host_key.read_text(encoding="utf-8")
        (self.folder / "known_hosts").write_text(f"handset {host_key}", encoding="utf-8")
        self.state["port"] = free_port()
        emulator, kernel_options = EMULATORS[image.architecture]
        command = [
            *emulator, "-name", f"lumd-handset-{self.name}",
            "-accel", "tcg,thread=multi", "-smp", "2", "-m", "1024",
            "-kernel", str(image.kernel), "-initrd", str(image.initrd),
            "-append", f"root=/dev/vda rw {kernel_options} quiet net.ifnames=0 apparmor=0 audit=0 "
                       "selinux=0 systemd.show_status=yes TERM=dumb",
            "-drive", f"file={image.disk},format=raw,if=virtio,snapshot=on",
            "-netdev", "user,id=net,restrict=on,"
                       f"hostfwd=tcp:127.0.0.1:{self.state['port']}-:22",
            "-device", "virtio-net-pci,netdev=net,romfile=", "-device", "virtio-rng-pci",
            "-display", "none", "-monitor", "none", "-no-reboot",
            "-serial", f"file:{self.console}",
        ]
        with open(self.folder / "qemu.log", "wb") as log:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log,
                                       stderr=log, start_new_session=True)
        self.state["pid"] = process.pid
        self.state["started"] = start_time(process.pid)
        RUN.mkdir(parents=True, exist_ok=True)
        self.record.write_text(json.dumps(self.state), encoding="utf-8")

    def connect(self, deadline):
        """Waits until the handset is ready, and opens the connection that all commands share."""
        def demand(waiting):
            if not self.running() or time.monotonic() > deadline:
                raise HandsetError(f"the handset did not {waiting}:\n" + self.last_words())

        while READY not in self.console_bytes():
            demand("come up")
            time.sleep(0.1)
        # A first attempt may run into ssh's time limits where the machine is under load.
        with open(self.folder / "ssh.log", "ab") as log:
            forward = f"{self.control}:{control.SOCKET}"
            while subprocess.run([*self.ssh(), "-M", "-N", "-f", "-L", forward, "root@handset"], check=False,
                                 stdin=subprocess.DEVNULL, stdout=log,
                                 stderr=log).returncode != 0:
                demand("answer")
                time.sleep(0.5)

    def console_bytes(self):
        """What the guest has written on its console so far."""
        return self.console.read_bytes() if self.console.exists() else b""

    def last_words(self):
        """The end of what QEMU, the guest's console and ssh wrote."""
        words = ""
        for path in (self.folder / "qemu.log", self.console, self.folder / "ssh.log"):
            if path.exists():
                words += path.read_text(errors="replace")[-3000:]
        return words

    def ssh(self):
        """The ssh command up to the host's name."""
        options = {
            "HostName": "127.0.0.1", "Port": self.state["port"],
            "HostKeyAlias": "handset", "UserKnownHostsFile": self.folder / "known_hosts",
            "IdentityFile": self.key, "IdentitiesOnly": "yes", "BatchMode": "yes",
            "ControlPath": self.folder / "ssh", "ConnectTimeout": 60, "LogLevel": "ERROR",
        }
        command = ["ssh", "-F", "none"]
        for key, value in options.items():
            command += ["-o", f"{key}={value}"]
        return command

    def demand_running(self):
        if not self.running():
            raise HandsetError(f"the handset '{self.name}' does not run")

    def shell(self, script, check=True, timeout=COMMAND_TIMEOUT):
        """Runs a script of the POSIX shell on the handset; gives the CompletedProcess, output as
        text."""
        self.demand_running()
        if self.remote_shell is None:
            self.remote_shell = RemoteShell([*self.ssh(), "root@handset"])
        try:
            result = self.remote_shell.run(script, timeout)
        except ShellLost as error:
            self.close_shell()
            raise HandsetError(f"on the handset, {error}: {script}") from error
        except BaseException:
            self.close_shell()
            raise
        if check and result.returncode != 0:
            raise HandsetError(f"on the handset, with status {result.returncode}: {script}\n"
                               f"{result.stdout}{result.stderr}")
        return result

    def close_shell(self):
        """Ends the shell in which scripts run; the next script begins another."""
        if self.remote_shell is not None:
            self.remote_shell.close()
            self.remote_shell = None

    def run(self, *command, **options):
        """Runs one command on the handset and gives what it wrote to standard output."""
        return self.shell(shlex.join(command), **options).stdout

    def install(self, packages):
        """Installs the packages as a user does who has the files; gives what apt said."""
        self.run("mkdir", "-p", PACKAGES)
        images.run("scp", "-q", *self.ssh()[1:], *packages, f"root@handset:{PACKAGES}")
        files = " ".join(f"./{path.name}" for path in packages)
        return self.shell(f"cd {PACKAGES} && DEBIAN_FRONTEND=noninteractive "
                          f"apt-get --yes install {files} 2>&1", timeout=INSTALL_TIMEOUT).stdout

    def interact(self, *command):
        """Hands the terminal over to a command, or to a shell; gives its exit code."""
        self.demand_running()
        terminal = ["-t"] if os.isatty(0) else []
        return subprocess.run([*self.ssh(), *terminal, "root@handset", *command],
                              check=False).returncode

    def stop(self):
        """Ends the machine and removes what it left. Harmless when it does not run."""
        if not self.state:
            return
        self.close_shell()
        if (self.folder / "ssh").exists():
            subprocess.run([*self.ssh(), "-O", "exit", "root@handset"], check=False,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if self.running():
            os.kill(self.state["pid"], signal.SIGTERM)
            deadline = time.monotonic() + 10
            while self.running() and time.monotonic() < deadline:
                reap(self.state["pid"])
                time.sleep(0.05)
            if self.running():
                os.kill(self.state["pid"], signal.SIGKILL)
        shutil.rmtree(self.folder, ignore_errors=True)
        self.record.unlink(missing_ok=True)
        self.state = {}


def start_time(pid):
    """When the process started, in the kernel's ticks; None when it has ended.

    A process is known by its number and this time together.
    """
    try:
        text = pathlib.Path(f"/proc/{pid}/stat").read_text(encoding="utf-8")
    except OSError:
        return None
    fields = text.rpartition(")")[2].split()
    return None if fields[0] == "Z" else int(fields[19])


def reap(pid):
    """Collects the ended process, when it is a child of this one."""
    try:
        os.waitpid(pid, os.WNOHANG)
    except ChildProcessError:
        pass


def free_port():
    """A TCP port of the loopback address that nobody listens on."""
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]

# SPDX-License-Identifier: BSD-3-Clause
"""The handset's base image: Debian packages, a kernel and an initial RAM disk.

There is one for each architecture. An image is cached under a hash of everything that it is made
from, and made anew only when one of those inputs changes.
"""

import hashlib
import inspect
import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tools"))
import buildroot  # noqa: E402
import debianroot  # noqa: E402
import emulation  # noqa: E402

ARCHITECTURES = ("amd64", "arm64")
CACHE = HERE.parent / ".cache" / "handset"
SUITE = "trixie"
IMAGE_SIZE = "2G"

# What lumd and the runtime depend on is here already: the handset reaches no package source.
PACKAGES = """
    adduser busybox-static cpio dbus dbus-user-session desktop-file-utils iproute2 kmod less
    libgbinder1 libpackagekitqt5-1 libpam-systemd libqt5dbus5t64 libqt5network5t64 login nano
    openssh-server packagekit polkitd procps python3 python3-dbus python3-gi strace
    systemd systemd-sysv udev
""".split()

# What the handset has no use for: documentation, data of hardware, which would be compiled, and the
# kernel's modules but for those from which configure-rootfs chooses.
EXCLUDED = """
    /usr/share/doc/* /usr/share/man/* /usr/share/locale/* /usr/lib/udev/hwdb.d/*
    /usr/lib/modules/*/kernel/*
""".split()
INCLUDED = [f"/usr/lib/modules/*/kernel/{path}*" for path in """
    crypto/crc32c drivers/android/ drivers/block/virtio_blk drivers/char/hw_random/
    drivers/net/net_failover drivers/net/virtio_net drivers/virtio/ fs/autofs/ fs/ext4/ fs/jbd2/
    fs/mbcache lib/ net/core/
""".split()]


class HandsetError(Exception):
    """Something that the user can read and act on."""


class Image:
    """One built image: the disk, the kernel, the RAM disk and the key to log in."""

    def __init__(self, folder, architecture):
        self.folder = folder
        self.architecture = architecture
        self.disk = folder / "root.ext4"
        self.kernel = folder / "vmlinuz"
        self.initrd = folder / "initrd"
        self.key = folder / "id_ed25519"
        self.host_key = folder / "host_key.pub"


def build(architecture=None, say=print):
    """Gives the image for the present inputs, built first if there is none; for this
    machine's own architecture, where none is named."""
    architecture = architecture or buildroot.native()
    folder = CACHE / f"image-{architecture}-{input_hash(architecture)}"
    image = Image(folder, architecture)
    CACHE.mkdir(parents=True, exist_ok=True)
    with debianroot.exclusive(CACHE / f"image-{architecture}.lock"):
        if folder.is_dir():
            return image
        if os.geteuid() != 0:
            raise HandsetError("building the image needs root: run it with sudo")
        say(f"building the handset's image for {architecture} (once, a few minutes)")
        with tempfile.TemporaryDirectory(prefix="build-", dir=CACHE) as scratch:
            make(pathlib.Path(scratch), Image(pathlib.Path(scratch) / "image", architecture))
            # A machine that runs keeps its open disk.
            for path in CACHE.glob(f"image-{architecture}-*"):
                shutil.rmtree(path)
            (pathlib.Path(scratch) / "image").rename(folder)
    return image


def input_hash(architecture):
    """The hash of everything that decides what the image holds."""
    digest = hashlib.sha256(inspect.getsource(debianroot.bootstrap).encode())
    digest.update(architecture.encode())
    if architecture != buildroot.native():
        digest.update(pathlib.Path(emulation.__file__).read_bytes())
    inputs = [HERE / name for name in ("image.py", "configure-rootfs", "initrd-init")]
    inputs += sorted(path for path in (HERE / "rootfs").rglob("*") if path.is_file())
    for path in inputs:
        mode = "x" if os.access(path, os.X_OK) else "-"
        digest.update(f"{path.relative_to(HERE)} {mode}\n".encode())
        digest.update(path.read_bytes())
    return digest.hexdigest()[:16]


def make(scratch, image):
    """Builds the image in an empty folder."""
    image.folder.mkdir()
    run("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-C", "handset", "-f", image.key)
    root = scratch / "root"
    overlay = scratch / "overlay.tar"
    run("tar", "-C", HERE / "rootfs", "--owner=0", "--group=0", "--mode=u=rwX,go=rX",
        "-cf", overlay, ".")
    options = ["--skip=cleanup/reproducible",
               f'--setup-hook=tar -C "$1" -xf {quoted(overlay)} --no-overwrite-dir',
               f'--customize-hook=cp {quoted(HERE / "initrd-init")} "$1/tmp/"',
               f'--customize-hook=chroot "$1" /bin/bash < {quoted(HERE / "configure-rootfs")}',
               f'--customize-hook=install -D -m 600 {quoted(image.key)}.pub '
               '"$1/root/.ssh/authorized_keys"']
    options += [f"--dpkgopt=path-exclude={path}" for path in EXCLUDED]
    options += [f"--dpkgopt=path-include={path}" for path in INCLUDED]
    # INITRD=No keeps the kernel's package from making an initial RAM disk of its own.
    environment = {"INITRD": "No"}
    try:
        if image.architecture != buildroot.native():
            emulation.enable(image.architecture)
            options += [f"--architectures={image.architecture}", *emulation.options()]
            environment.update(emulation.ENVIRONMENT)
        packages = [*PACKAGES, f"linux-image-{image.architecture}"]
        debianroot.bootstrap(root, SUITE, packages, options, debianroot.package_sources(SUITE),
                             CACHE / f"image-{image.architecture}.log", **environment)
    except debianroot.RootError as error:
        raise HandsetError(str(error)) from error
    (kernel,) = (root / "boot").glob("vmlinuz-*")
    shutil.copyfile(kernel, image.kernel)
    shutil.copyfile(root / "boot/initrd", image.initrd)
    shutil.copyfile(root / "etc/ssh/ssh_host_ed25519_key.pub", image.host_key)
    shutil.rmtree(root / "boot")
    (root / "boot").mkdir()
    run("mke2fs", "-q", "-t", "ext4", "-d", root, image.disk, IMAGE_SIZE)


def quoted(path):
    return shlex.quote(str(path))


def run(*command, **options):
    """Runs a command of the build; its output is shown only when it fails."""
    command = [str(word) for word in command]
    with tempfile.TemporaryFile() as log:
        result = subprocess.run(command, stdout=log, stderr=subprocess.STDOUT, check=False,
                                **options)
        if result.returncode == 0:
            return
        log.seek(0)
        tail = log.read().decode(errors="replace").splitlines()[-40:]
    raise HandsetError(f"{command[0]} failed with {result.returncode}:\n" + "\n".join(tail))

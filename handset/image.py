# SPDX-License-Identifier: BSD-3-Clause
"""The handset's base image: Debian packages, a kernel and an initial RAM disk.

The image is cached under a hash of everything that it is made from, and made
anew only when one of those inputs changes.
"""

import contextlib
import fcntl
import hashlib
import os
import pathlib
import shutil
import subprocess
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
CACHE = HERE.parent / ".cache" / "handset"
IMAGE_SIZE = "2G"

PACKAGES = """
    busybox-static cpio dbus dbus-user-session desktop-file-utils iproute2 kmod less
    libglib2.0-0 libpackagekitqt5-1 libpam-systemd libqt5core5a libqt5dbus5
    libqt5network5 libsystemd0 linux-image-amd64 nano openssh-server packagekit polkitd procps
    python3 python3-dbus python3-gi strace systemd systemd-sysv udev
""".split()


class HandsetError(Exception):
    """Something that the user can read and act on."""


class Image:
    """One built image: the disk, the kernel, the RAM disk and the key to log in."""

    def __init__(self, folder):
        self.folder = folder
        self.disk = folder / "root.ext4"
        self.kernel = folder / "vmlinuz"
        self.initrd = folder / "initrd"
        self.key = folder / "id_ed25519"
        self.host_key = folder / "host_key.pub"


def build(say=print):
    """Gives the image for the present inputs, built first if there is none."""
    folder = CACHE / input_hash()
    image = Image(folder)
    CACHE.mkdir(parents=True, exist_ok=True)
    with exclusive(CACHE / "lock"):
        if folder.is_dir():
            return image
        if os.geteuid() != 0:
            raise HandsetError("building the image needs root: run it with sudo")
        say("building the handset's image (once, a few minutes)")
        with tempfile.TemporaryDirectory(prefix="build-", dir=CACHE) as scratch:
            make(pathlib.Path(scratch), Image(pathlib.Path(scratch) / "image"))
            drop_old_images()
            (pathlib.Path(scratch) / "image").rename(folder)
    return image


def input_hash():
    """The hash of everything that decides what the image holds."""
    digest = hashlib.sha256()
    inputs = [HERE / name for name in ("image.py", "configure-rootfs", "initrd-init")]
    inputs += sorted(path for path in (HERE / "rootfs").rglob("*") if path.is_file())
    for path in inputs:
        mode = "x" if os.access(path, os.X_OK) else "-"
        digest.update(f"{path.relative_to(HERE)} {mode}\n".encode())
        digest.update(path.read_bytes())
    digest.update(suite().encode())
    return digest.hexdigest()[:16]


def suite():
    """The code name of the running Debian release."""
    release = {}
    for line in pathlib.Path("/etc/os-release").read_text(encoding="utf-8").splitlines():
        key, _, value = line.partition("=")
        release[key] = value.strip('"')
    if release.get("ID") != "debian":
        raise HandsetError("the handset is made from Debian's packages, on Debian")
    return release["VERSION_CODENAME"]


def sources():
    """Debian's own package sources for the running release, from apt's configuration."""
    fields = ("ORIGIN", "LABEL", "CODENAME", "REPO_URI", "COMPONENT")
    output = subprocess.run(
        ["apt-get", "indextargets", "--format", "|".join(f"$({name})" for name in fields),
         "Created-By: Packages"],
        check=True, stdout=subprocess.PIPE, text=True).stdout
    found = []
    for line in output.splitlines():
        origin, label, codename, uri, component = line.split("|")
        if origin != "Debian" or label not in ("Debian", "Debian-Security"):
            continue
        if codename.removesuffix("-security").removesuffix("-updates") != suite():
            continue
        source = f"deb {uri} {codename} {component}"
        if source not in found:
            found.append(source)
    if not any(source.split()[2] == suite() for source in found):
        raise HandsetError(f"apt knows no package lists of Debian {suite()}: "
                           "run 'apt-get update' first")
    return found


def make(scratch, image):
    """Builds the image in an empty folder."""
    image.folder.mkdir()
    run("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-C", "handset", "-f", image.key)
    root = scratch / "root"
    overlay = scratch / "overlay.tar"
    run("tar", "-C", HERE / "rootfs", "--owner=0", "--group=0", "--mode=u=rwX,go=rX",
        "-cf", overlay, ".")
    # INITRD=No keeps the kernel's package from making an initial RAM disk of its own.
    environment = dict(os.environ, OVERLAY=str(overlay), KEY=f"{image.key}.pub",
                       HERE=str(HERE), INITRD="No")
    # In a mount namespace of its own, so that no mount can outlive the command. In a chroot
    # the root is no mount point, and its mounts cannot be made private.
    run("unshare", "--mount", "--propagation=unchanged", "sh", "-c",
        'mount --make-rprivate / 2>/dev/null; exec "$@"', "sh", "mmdebstrap", "--variant=minbase", *proxy_options(),
        "--skip=cleanup/reproducible", f"--include={','.join(PACKAGES)}",
        '--setup-hook=tar -C "$1" -xf "$OVERLAY" --no-overwrite-dir',
        '--customize-hook=cp "$HERE/initrd-init" "$1/tmp/"',
        '--customize-hook=chroot "$1" /bin/bash < "$HERE/configure-rootfs"',
        '--customize-hook=install -D -m 600 "$KEY" "$1/root/.ssh/authorized_keys"',
        suite(), root, "-", input="\n".join(sources()) + "\n", text=True, env=environment)
    (kernel,) = (root / "boot").glob("vmlinuz-*")
    shutil.copyfile(kernel, image.kernel)
    shutil.copyfile(root / "boot/initrd", image.initrd)
    shutil.copyfile(root / "etc/ssh/ssh_host_ed25519_key.pub", image.host_key)
    shutil.rmtree(root / "boot")
    (root / "boot").mkdir()
    run("mke2fs", "-q", "-t", "ext4", "-d", root, image.disk, IMAGE_SIZE)


def proxy_options():
    """The machine's own apt proxy, if it has one, handed on to mmdebstrap."""
    output = subprocess.run(["apt-config", "dump"], check=True, stdout=subprocess.PIPE,
                            text=True).stdout
    return [f"--aptopt={line}" for line in output.splitlines()
            if line.startswith(("Acquire::http::Proxy ", "Acquire::https::Proxy "))]


def drop_old_images():
    """Removes the images of earlier inputs; a machine that runs keeps its open disk."""
    for path in CACHE.iterdir():
        if (path / "root.ext4").is_file():
            shutil.rmtree(path)


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


@contextlib.contextmanager
def exclusive(path):
    """Holds a lock file, so that two builds do not meet."""
    with open(path, "w", encoding="utf-8") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield

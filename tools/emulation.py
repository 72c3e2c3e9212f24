# SPDX-License-Identifier: BSD-3-Clause
"""Programs of another architecture, run by this machine's kernel through QEMU."""

import pathlib
import subprocess

import debianroot

BINFMT = pathlib.Path('/proc/sys/fs/binfmt_misc')
INTERPRETERS = {'arm64': 'qemu-aarch64'}

# QEMU's own choice would authenticate each return address, with a cipher that is emulated too.
ENVIRONMENT = {'QEMU_CPU': 'cortex-a72'}

# Most of what an installation computes is unpacked by dpkg-deb, which is the same for every
# architecture: this machine's own does it, with its libraries beside it.
USE_NATIVE_DPKG_DEB = r'''
set -e
mkdir "$1/native"
cp --dereference /usr/bin/dpkg-deb $(ldd /usr/bin/dpkg-deb | grep -o "/[^ ]*") "$1/native"
dpkg-divert --quiet --root="$1" --local --rename --add /usr/bin/dpkg-deb
loader=$(basename "$(ldd /usr/bin/dpkg-deb | grep -o "/[^ ]*/ld-[^ ]*")")
cat > "$1/usr/bin/dpkg-deb" <<END
#!/bin/sh
exec /native/$loader --library-path /native /native/dpkg-deb "\$@"
END
chmod 755 "$1/usr/bin/dpkg-deb"
'''
LEAVE_NATIVE_DPKG_DEB = r'''
set -e
rm -r "$1/native" "$1/usr/bin/dpkg-deb"
dpkg-divert --quiet --root="$1" --local --rename --remove /usr/bin/dpkg-deb
'''


def enable(architecture):
    """Has the kernel run the architecture's programs, as systemd does where it runs; as root."""
    name = INTERPRETERS[architecture]
    rule = pathlib.Path(f'/usr/lib/binfmt.d/{name}.conf')
    if not rule.exists():
        raise debianroot.RootError(f'{architecture} takes the package qemu-user-static')
    if not (BINFMT / 'register').exists():
        subprocess.run(['mount', '-t', 'binfmt_misc', 'binfmt_misc', BINFMT], check=True)
    if not (BINFMT / name).exists():
        (BINFMT / 'register').write_text(rule.read_text(encoding='utf-8'), encoding='utf-8')


def options():
    """What mmdebstrap is told, to be quick with a root of another architecture; its environment
    is to have ENVIRONMENT, too."""
    return [f'--extract-hook={USE_NATIVE_DPKG_DEB}', f'--customize-hook={LEAVE_NATIVE_DPKG_DEB}']

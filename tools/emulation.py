# SPDX-License-Identifier: BSD-3-Clause
"""Programs of another architecture, run by this machine's kernel through QEMU."""

import pathlib
import subprocess

import debianroot

BINFMT = pathlib.Path('/proc/sys/fs/binfmt_misc')
INTERPRETERS = {'arm64': 'qemu-aarch64'}


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

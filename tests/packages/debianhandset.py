# SPDX-License-Identifier: BSD-3-Clause
"""A Debian root like a handset's before lumd comes, and the packages that were built."""

import pathlib
import subprocess
import sys
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / 'tools'))
import debianroot  # noqa: E402

PACKAGES = PROJECT / 'build' / 'packages'
SUITE = 'trixie'

# What the packages take, so that it installs without a network, and what its tests do.
INSTALLED = ('autopkgtest', 'dbus', 'dpkg-dev', 'libgbinder1', 'libpackagekitqt5-1',
             'libpam-systemd', 'libqt5dbus5t64', 'libqt5svg5', 'qml-module-org-kde-kirigami2',
             'qml-module-qtquick-controls2', 'qml-module-qtquick-layouts',
             'qml-module-qtquick-window2', 'systemd-sysv')

# Before each script. "lists DIR..." shows all that is there, with owners, modes and contents.
PROLOGUE = r'''
set -Eeu
trap 'echo "ended with $?: $BASH_COMMAND"' ERR
export DEBIAN_FRONTEND=noninteractive
package() {
    echo "/packages/$1"_*_"$(dpkg --print-architecture)".deb
}
lumd=$(package lumd)
companions="$(package lumctl) $(package lumd-apps)"
install_packages() {
    apt-get -qq install "$@" >/tmp/apt.log 2>&1 || { cat /tmp/apt.log; return 1; }
}
install_lumd() {
    install_packages "$lumd"
}
lists() {
    find "$@" -printf '%y %m %u:%g %p %l\n' -type f -exec sha256sum {} + | LC_ALL=C sort
}
show() {
    lists / -xdev \( -path /proc -o -path /tmp -o -path /packages -o -path /var/lib/dpkg \
        -o -path /var/lib/apt -o -path /var/log -o -path /var/cache -o -path /etc/ld.so.cache \
        \) -prune -o
}
# Makes a later version of the package, /tmp/newer.deb.
make_newer() {
    dpkg-deb --raw-extract "$lumd" /tmp/newer
    sed -i 's/^Version: .*/&+later/' /tmp/newer/DEBIAN/control
    dpkg-deb --root-owner-group --build /tmp/newer /tmp/newer.deb >/dev/null
}
# A service manager that notes what it is asked for; with --root no manager is asked.
fake_systemd() {
    mkdir -p /run/systemd/system
    cp /usr/bin/systemctl /tmp/real-systemctl
    printf '%s\n' '#!/bin/sh' 'case $1 in --root*) exec /tmp/real-systemctl "$@" ;; esac' \
        'echo "$*" >>/tmp/systemctl' >/usr/bin/systemctl
    : >/tmp/systemctl
}
'''


class HandsetTest(unittest.TestCase):
    """Each script runs on a handset of its own, which is gone afterwards."""

    maxDiff = None

    def on_handset(self, *scripts):
        """What these scripts print, run as one; it must end well."""
        root = debianroot.root('handset', SUITE, INSTALLED)
        done = root.run('bash', '-c', '\n'.join((PROLOGUE, *scripts)),
                        binds=[(PACKAGES, '/packages', 'ro')], stdout=subprocess.PIPE,
                        stderr=subprocess.STDOUT, text=True, errors='replace')
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout

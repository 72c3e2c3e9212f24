# SPDX-License-Identifier: BSD-3-Clause
"""A package of the host's that delivers an apk, as a device's repositories have them."""

import device

FOLDER = "/root/wrapping-package"
CONTROL = """Package: {name}
Version: 1.0
Architecture: all
Maintainer: Nobody <nobody@localhost>
Description: wraps an apk
"""


class WrappedApk:
    """The package mirlane-apk-NAME of an app, on a handset."""

    def __init__(self, handset, app):
        self.machine = handset.machine
        self.device = handset
        self.app = app
        self.name = f"mirlane-apk-{app.package}"
        self.apk = f"{device.PACKAGED}/{app.package}.apk"

    def install(self):
        """Builds the package and installs it."""
        self.device.write({f"{FOLDER}/DEBIAN/control": CONTROL.format(name=self.name),
                           f"{FOLDER}{self.apk}": self.app.apk()})
        self.machine.shell(f"dpkg-deb --build --root-owner-group {FOLDER} {FOLDER}.deb && "
                           f"dpkg --install {FOLDER}.deb && rm -r {FOLDER} {FOLDER}.deb")

    def is_installed(self):
        return self.machine.shell(f"dpkg --status {self.name}", check=False).returncode == 0

    def purge(self):
        """Takes the package away, whether it is installed or not."""
        self.machine.shell(f"dpkg --purge {self.name}", check=False)

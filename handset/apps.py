# SPDX-License-Identifier: BSD-3-Clause
"""Android apps as the runtime announces them, and the files that they become on the host.

The expected bytes are written down here once more, apart from the daemon's code,
so that the two can disagree.
"""

import base64
import dataclasses
import json
import struct
import zlib

APPLICATIONS = "/usr/share/applications"
ICONS = "/var/lib/lumd"
SETTINGS = "/usr/share/tovra-settings/entries"
APK_FOLDER = "/home/.android/data/app/"
SETTINGS_PAGE = "/usr/share/tovra-settings/pages/apk-configuration/apkConfigurationPage.qml"


@dataclasses.dataclass(frozen=True)
class Launcher:
    """One thing of an app that can be started."""

    class_name: str
    caption: str
    icon: bytes


@dataclasses.dataclass(frozen=True)
class App:
    """An installed app with its launchers."""

    package: str
    version: str
    launchers: tuple

    def to_json(self):
        """The app in the form that the simulated runtime reads."""
        return json.dumps({
            "package": self.package,
            "version": self.version,
            "launchers": [{
                "class": launcher.class_name,
                "caption": launcher.caption,
                "iconBase64": base64.b64encode(launcher.icon).decode(),
            } for launcher in self.launchers],
        })

    def apk(self, **extra):
        """The app as a file that the simulated runtime takes for an apk."""
        return json.dumps({**json.loads(self.to_json()), **extra})

    def files(self, hidden=False, partner_space=False):
        """Every file that the daemon makes from this app: path to bytes."""
        found = {}
        for launcher in self.launchers:
            name = base_name(self.package, launcher.class_name)
            entry = self.entry(launcher, hidden, partner_space)
            found[f"{APPLICATIONS}/{name}.desktop"] = entry.encode()
            found[f"{ICONS}/{name}.png"] = launcher.icon
            found[f"{SETTINGS}/{name}.json"] = self.settings(name).encode()
        return found

    def entry(self, launcher, hidden, partner_space):
        name = base_name(self.package, launcher.class_name)
        lines = ["[Desktop Entry]"]
        if partner_space:
            lines += ["Categories=X-QuillfinPartnerSpace"]
        lines += [f"Exec=lumd-launcher {self.package}.apk {self.package}/{launcher.class_name}",
                  f"Icon={ICONS}/{name}.png", f"Name={launcher.caption}"]
        if hidden or partner_space:
            lines += ["NoDisplay=true"]
        lines += ["Type=Application", "Version=1.0", "X-Tesk-Application-Type=no-invoker",
                  f"X-lumd-apkfile={APK_FOLDER}/{self.package}.apk",
                  f"X-lumd-packageName={self.package}"]
        return "\n".join(lines) + "\n"

    def settings(self, name):
        page = {"params": {"properties": {"packageName": self.package,
                                          "packageVersion": self.version},
                           "source": SETTINGS_PAGE},
                "path": f"applications/{name}.desktop", "type": "page"}
        return json.dumps({"entries": [page]}, indent=4, ensure_ascii=False) + "\n"


def base_name(package, class_name):
    """The name, less its ending, of the three files of a launcher."""
    escaped = [name.replace("_", "__").replace(".", "_") for name in (package, class_name)]
    return "lumd_launcher_" + "-".join(escaped)


def icon(red, green, blue, size=86):
    """A PNG picture of one colour."""
    def chunk(kind, data):
        checksum = zlib.crc32(kind + data)
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", checksum)

    rows = (b"\0" + bytes((red, green, blue)) * size) * size
    header = struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


# What the demo and the scenarios install.
MAPS = App("com.example.maps", "4.2", (
    Launcher("com.example.maps.Main", "Maps", icon(20, 120, 220)),
    Launcher("com.example.maps.Navigation", "Navigation", icon(220, 120, 20))))
NOTES = App("org.example.field_notes", "1.0.7", (
    Launcher("org.example.field_notes.Start", "Notizbücher", icon(240, 220, 80)),))
KEYBOARD = App("com.example.keyboard", "11", (
    Launcher("com.example.keyboard.Settings", "Keyboard", icon(90, 90, 90)),))
STORE = App("com.example.store", "7.3", (
    Launcher("com.example.store.Front", "Store", icon(40, 180, 90)),))

# SPDX-License-Identifier: BSD-3-Clause
"""What the scenarios with apks, apps and intents share."""

import apps
import device
import session
from scenario import Scenario

DOWNLOADS = "/home/handset/Downloads"


class AppScenario(Scenario):
    """Begins with a session that saw nothing, too."""

    def setUp(self):
        super().setUp()
        self.session = session.Session(self.device)
        self.session.reset()

    def put_apk(self, app, **extra):
        """Puts an apk where a user keeps his downloads; gives its path."""
        path = f"{DOWNLOADS}/{app.package}.apk"
        self.device.write({path: app.apk(**extra)})
        return path

    def bus(self, method, *arguments, user="root"):
        """Calls a method, which must succeed; gives busctl's line of the result."""
        result = self.device.call(method, *arguments, user=user)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout.strip()

    def install(self, app):
        """Installs an app over the bus and waits until lumd has its launchers."""
        self.assertEqual(self.bus("installFile", "s", self.put_apk(app)), "b true")
        self.wait_installed(app)

    def wait_installed(self, app):
        self.device.wait_event("install", f"package={app.package}", "returnCode=1")

    def assert_calls(self, found, *expected):
        """The calls are exactly these: service, code, method and arguments."""
        self.assertEqual(
            [(call["service"], call["code"], call["method"], call["arguments"])
             for call in found], list(expected))

    def assert_notified(self, *expected):
        """The user has been notified of exactly this, and not more: summary and body."""
        notifications = self.session.wait_notifications(len(expected))
        self.assertEqual([(line["summary"], line["body"]) for line in notifications],
                         list(expected))


def intent(sdk, action, **fields):
    """The record of an Intent, with what most of them have in common."""
    record = {"action": action, "data": None, "type": None, "flags": 0, "package": None,
              "component": None, "categories": [], "contentUserHint": -2, "extras": None}
    if sdk >= 29:
        record["identifier"] = ""
    return {**record, **fields}


def start(record):
    """The arguments of startActivity for the record of an Intent."""
    return {"caller": None, "callingPackage": "", "intent": record,
            "resolvedType": record["type"], "resultTo": None, "resultWho": "",
            "requestCode": 0, "startFlags": 0}


def entry_path(app):
    """The desktop entry of the app's first launcher."""
    name = apps.base_name(app.package, app.launchers[0].class_name)
    return f"{apps.APPLICATIONS}/{name}.desktop"


def runtime_path(app):
    """Where the runtime finds the apk that lumd has staged."""
    return f"{device.RUNTIME_INCOMING}/{app.package}.apk"

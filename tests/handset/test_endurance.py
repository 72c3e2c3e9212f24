# SPDX-License-Identifier: BSD-3-Clause
"""The runtime stops, starts, is killed and loses its services, many times in a row.

LUMD_ROUNDS=1000 makes it as many as that; a round takes some four seconds.
"""

import json
import os
import pathlib
import statistics
import sys

import apps
import device
from appscenario import AppScenario

ROUNDS = int(os.environ.get("LUMD_ROUNDS", "12"))
LONG_RUN = 200
# Behind this round lumd has reached its size.
EARLY = 100 if ROUNDS >= LONG_RUN else 7
# The runtime ends in five ways, in turn.
WAYS = 5
HERE = pathlib.Path(__file__).parent
# Kilobytes that libgbinder 1.1.54 loses with each service that lumd looks up and finds: it never
# releases the idle source by which gbinder_servicemanager_get_service_sync lets go of it.
LOST = 0.25
# Of the apps that the rounds install.
ICON = b"\x89PNG\r\n\x1a\n"
# Seconds, more than a round ever needs on a machine that does other work too.
ROUND_LIMIT = 30


class Endurance(AppScenario):
    def assert_holds(self, rounds):
        """What lumd holds behind the last rounds is what it held behind the early ones."""
        def behind(number, key):
            return [line[key] for line in rounds[number - WAYS:number]]

        # libgbinder's thread has a pipe open while it runs.
        self.assertLessEqual(max(behind(ROUNDS, "files")) - max(behind(EARLY, "files")), 2,
                             "open files")
        early, late = (statistics.median(behind(number, "memory")) for number in (EARLY, ROUNDS))
        lost = LOST * (rounds[-1]["found"] - rounds[EARLY - 1]["found"])
        self.assertLess(late - lost, early * 1.05 if ROUNDS >= LONG_RUN else early + 1024,
                        "kB of memory")

    def test_endsOfAllKindsLoseNoRequestAndLeaveNothingBehind(self):
        self.device.configure_runtime(readyDelay=200, stopDelay=100)
        self.device.install(apps.MAPS)
        self.device.start_runtime()
        lumd = self.device.owner()
        self.device.write({f"/run/endurance/{name}": (HERE / name).read_text(encoding="utf-8")
                           for name in ("rounds.py", "roundwatcher.py")})
        result = self.device.machine.shell(
            f"python3 -B /run/endurance/rounds.py {ROUNDS} {apps.MAPS.package} "
            "> /run/endurance/rounds.jsonl; status=$?; cat /run/endurance/rounds.jsonl; "
            "exit $status", timeout=60 + ROUNDS * ROUND_LIMIT, check=False)
        rounds = [json.loads(line) for line in result.stdout.splitlines()]
        for line in rounds[EARLY - 1::EARLY]:
            print(json.dumps(line), file=sys.stderr)
        self.assertEqual((result.stderr, result.returncode), ("", 0))
        self.assertEqual([line["round"] for line in rounds], list(range(1, ROUNDS + 1)))
        self.assert_holds(rounds)
        died = self.device.warnings()
        self.assertEqual({line for line in died if "died! Trying to reconnect." not in line}, set())
        self.expected_warnings = died
        self.assertEqual(self.device.owner(), lumd)
        # A removal that the runtime carries out before it has found lumd is told of by nobody; the
        # launcher's files are there until lumd hears a whole list after its next start.
        self.device.machine.run("systemctl", "restart", device.LUMD)
        last = f"round.n{ROUNDS}.app"
        installed = apps.App(last, "1", (apps.Launcher(f"{last}.Main", last, ICON),))
        expected = {**apps.MAPS.files(), **installed.files()}
        self.wait_files(expected)
        self.assert_files(expected)
        told = [line["summary"] for line in self.session.notifications()
                if line["summary"].startswith("App installed")]
        self.assertEqual(told, [f"App installed: round.n{number}.app"
                                for number in range(1, ROUNDS + 1)])

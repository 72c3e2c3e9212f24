#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""handset/remoteshell.py, with a shell of this machine in the place of ssh's."""

import subprocess
import unittest
from unittest import mock

import machine
import remoteshell

PATIENCE = 60


class RemoteShellTest(unittest.TestCase):
    def setUp(self):
        self.shell = remoteshell.RemoteShell(["sh", "-c"])
        self.addCleanup(self.shell.close)

    def outcome(self, script):
        result = self.shell.run(script, PATIENCE)
        return result.stdout, result.stderr, result.returncode

    def testAScriptsOutputsAndStatusAreItsOwn(self):
        self.assertEqual(self.outcome("echo out; echo err >&2; (exit 3)"), ("out\n", "err\n", 3))
        self.assertEqual(self.outcome("printf 'no end'; printf none >&2"), ("no end", "none", 0))
        self.assertEqual(self.outcome(""), ("", "", 0))

    def testMuchOutputComesWhole(self):
        text, errors, _ = self.outcome("seq 100000; seq 50000 >&2")
        self.assertEqual((len(text), len(errors)), (588895, 288894))

    def testOneScriptHasNoPartInTheNext(self):
        before = self.outcome("umask; pwd")
        self.assertEqual(self.outcome("cd /; left=1; umask 0; exec 3>&1 >/dev/null; echo no")[0], "")
        self.assertEqual(self.outcome("umask; pwd"), before)
        self.assertEqual(self.outcome("echo .$left.; echo no >&3")[0], "..\n")

    def testAScriptThatIsNoneOrEndsItsShellIsFollowedByOthers(self):
        self.assertEqual(self.outcome("echo 'never closed")[0], "")
        self.assertNotEqual(self.outcome("if then")[2], 0)
        self.assertEqual(self.outcome("set -e; false; echo no"), ("", "", 1))
        self.assertEqual(self.outcome("exit 7"), ("", "", 7))
        self.assertEqual(self.outcome("kill -9 $(exec sh -c 'echo $PPID')")[2], 137)
        self.assertEqual(self.outcome("echo goes on"), ("goes on\n", "", 0))

    def testThereIsNothingToRead(self):
        self.assertEqual(self.outcome("cat; echo end"), ("end\n", "", 0))

    def testQuotesLinesAndBytesReachTheScript(self):
        self.assertEqual(self.outcome("printf '%s|' 'a  b' \"it's\" 'two\nlines' 'ü\\n'")[0],
                         "a  b|it's|two\nlines|ü\\n|")

    def testAScriptThatTakesTooLongIsTold(self):
        with self.assertRaises(subprocess.TimeoutExpired):
            self.shell.run("while echo on; do sleep 0.1; done", 0.3)

    def testAShellThatEndsIsTold(self):
        for script in ("kill -9 $$", ":"):
            with self.assertRaises(remoteshell.ShellLost):
                self.shell.run(script, PATIENCE)

    def testWhatAShellSaidLastIsTold(self):
        shell = remoteshell.RemoteShell(["sh", "-c", "echo refused >&2; exit 255"])
        self.addCleanup(shell.close)
        with self.assertRaisesRegex(remoteshell.ShellLost, "refused"):
            shell.run(":", PATIENCE)

    def testNobodysShellEnds(self):
        process = self.shell.process
        self.doCleanups()
        self.assertIsNotNone(process.returncode)
        shell = remoteshell.RemoteShell(["sh", "-c"])
        process = shell.process
        del shell
        self.assertIsNotNone(process.returncode)


class MachineTest(unittest.TestCase):
    """A handset's scripts, run by a shell of this machine."""

    def setUp(self):
        self.machine = machine.Machine("tst-remoteshell")
        self.addCleanup(self.machine.close_shell)
        for name, value in (("ssh", ["sh", "-c", 'eval "$1"']), ("demand_running", None)):
            patch = mock.patch.object(self.machine, name, return_value=value)
            self.addCleanup(patch.stop)
            patch.start()

    def testScriptsShareAShell(self):
        self.assertEqual(self.machine.run("echo", "a  b"), "a  b\n")
        shell = self.machine.remote_shell
        self.assertEqual(self.machine.shell("exit 3", check=False).returncode, 3)
        self.assertIs(self.machine.remote_shell, shell)

    def testAScriptThatFailsIsTold(self):
        with self.assertRaisesRegex(machine.HandsetError, "(?s)status 3: .*out\nerr\n$"):
            self.machine.shell("echo out; echo err >&2; exit 3")

    def testAShellThatIsLostOrHeldIsFollowedByAnother(self):
        with self.assertRaisesRegex(machine.HandsetError, "the shell ended"):
            self.machine.shell("kill -9 $$")
        self.assertEqual(self.machine.run("echo", "back"), "back\n")
        with self.assertRaises(subprocess.TimeoutExpired):
            self.machine.shell("while echo on; do sleep 0.1; done", timeout=0.3)
        self.assertEqual(self.machine.run("echo", "back"), "back\n")


if __name__ == "__main__":
    unittest.main()

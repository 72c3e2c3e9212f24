#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""What the shells offer behind lumctl, with a program in its place that knows some apps."""
import os
import pathlib
import subprocess
import tempfile
import unittest

FILES = pathlib.Path(__file__).resolve().parents[2] / 'companions' / 'lumctl' / 'completions'
NAMES = ['Maps', 'Maps $(touch evil)', 'com.maps', "it's"]


class Completion(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        stand_in = self.folder / 'lumctl'
        (self.folder / 'names').write_text('\n'.join(NAMES) + '\n')
        stand_in.write_text(f'#!/bin/sh\n[ "$1" = complete-names ] && cat {folder.name}/names\n')
        stand_in.chmod(0o755)

    def run_shell(self, *command):
        environment = {'PATH': f'{self.folder}:/usr/bin:/bin', 'HOME': str(self.folder),
                       'LC_ALL': 'C.UTF-8', 'TERM': 'dumb'}
        done = subprocess.run(command, cwd=self.folder, env=environment, text=True,
                              capture_output=True, timeout=60)
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.assertFalse((self.folder / 'evil').exists())
        return done.stdout.splitlines()

    def bash(self, *words):
        """What bash offers for the last of the words."""
        return self.run_shell('/bin/bash', '--norc', '-c', f'''
            compopt() {{ :; }}
            source {FILES}/lumctl.bash
            COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
            _lumctl
            printf '%s\\n' "${{COMPREPLY[@]}}"''', 'bash', 'lumctl', *words)

    def test_bashOffersCommands(self):
        self.assertEqual(self.bash('st'), ['status', 'stop'])
        self.assertEqual(self.bash('--json', 'inf'), ['info'])
        self.assertEqual(self.bash('--timeout', '5', 'inf'), ['info'])

    def test_bashOffersTheNamesOfAppsQuoted(self):
        self.assertEqual(self.bash('launch', 'ma'), ['Maps', 'Maps\\ \\$\\(touch\\ evil\\)'])
        self.assertEqual(self.bash('launch', 'Maps\\ '), ['Maps\\ \\$\\(touch\\ evil\\)'])
        self.assertEqual(self.bash('remove', 'Maps', 'com'), ['com.maps'])
        self.assertEqual(self.bash('open', '--package', 'it'), ["it\\'s"])

    def test_bashOffersWhatACommandTakes(self):
        self.assertEqual(self.bash('runtime', 'sta'), ['start', 'status'])
        self.assertEqual(self.bash('autostart', 'Maps', 'o'), ['on', 'off'])
        self.assertEqual(self.bash('install', '--no'), ['--no-wait'])
        self.assertEqual(self.bash('install', 'na'), ['names'])

    def fish(self, line):
        return [offer.split('\t')[0] for offer in self.run_shell(
            '/usr/bin/fish', '--no-config', '-c',
            f'source {FILES}/lumctl.fish; complete -C "{line}"')]

    def test_fishOffersCommandsAndNames(self):
        self.assertEqual(self.fish('lumctl st'), ['status', 'stop'])
        self.assertEqual(self.fish('lumctl launch com'), ['com.maps'])
        self.assertIn('Maps', self.fish('lumctl remove Ma'))
        self.assertEqual(self.fish('lumctl runtime en'), ['enable'])

    def zsh(self, *words):
        """What the functions for zsh offer, with stand-ins for those of zsh itself."""
        return self.run_shell('/usr/bin/zsh', '--no-rcs', '-c', f'''
            compadd() {{ print -rl -- ${{(P)@[-1]}} }}
            _arguments() {{ for argument; do [[ $argument == *:_lumctl_names ]] && _lumctl_names; done; true }}
            words=("$@"); CURRENT=$#
            source {FILES}/_lumctl''', 'zsh', 'lumctl', *words)

    def test_zshOffersCommandsAndNames(self):
        self.assertIn('clear-cache', self.zsh(''))
        self.assertEqual(self.zsh('launch', ''), NAMES)
        self.assertEqual(self.zsh('runtime', ''), [])


if __name__ == '__main__':
    os.umask(0o022)
    unittest.main()

# SPDX-License-Identifier: BSD-3-Clause
"""Small checkouts for the tests of the linters, made and removed by each test."""

import os
import pathlib
import subprocess
import tempfile
import unittest

CHECKOUT = pathlib.Path(__file__).resolve().parent.parent.parent
LICENCE = 'SPDX-License-Identifier: BSD-3-Clause'


def source(*lines):
    return '\n'.join((f'// {LICENCE}', *lines, ''))


class TreeTest(unittest.TestCase):
    """A test with a git checkout of its own, empty at first."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()
        self.path = self.root / 'no-programs'
        self.run_in_tree('git', 'init', '--quiet')

    def run_in_tree(self, *command):
        """No configuration of the machine's own git takes part."""
        environment = {**os.environ, 'GIT_CONFIG_GLOBAL': os.devnull,
                       'GIT_CONFIG_SYSTEM': os.devnull,
                       'PATH': f'{self.path}:{os.environ["PATH"]}'}
        return subprocess.run([str(part) for part in command], cwd=self.root, env=environment,
                              capture_output=True, text=True, check=False)

    def write(self, path, text, executable=False):
        file = self.root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding='utf-8')
        if executable:
            file.chmod(0o755)

    def commit(self, message):
        self.run_in_tree('git', 'add', '--all')
        done = self.run_in_tree(
            'git', '-c', 'user.name=Somebody', '-c', 'user.email=somebody@example.org',
            'commit', '--quiet', '--message', message)
        self.assertEqual(done.returncode, 0, done.stderr)

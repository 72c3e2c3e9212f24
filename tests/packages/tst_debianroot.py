# SPDX-License-Identifier: BSD-3-Clause
"""What is done in a Debian root stays there."""

import pathlib
import subprocess
import tempfile
import unittest

import debianhandset
from debianhandset import debianroot


class Run(unittest.TestCase):

    def run_there(self, script, **options):
        root = debianroot.root('handset', debianhandset.SUITE, debianhandset.INSTALLED)
        return root, root.run('sh', '-c', script, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, **options)

    def testChangesAreGoneAfterwards(self):
        root, done = self.run_there('echo changed >/etc/hostname; rm /etc/passwd; mkdir /made')
        self.assertEqual((done.returncode, done.stdout), (0, ''))
        self.assertTrue((root.folder / 'etc/passwd').exists())
        self.assertFalse((root.folder / 'made').exists())
        self.assertEqual(self.run_there('cat /etc/passwd | head -n 1; ls -d /made')[1].stdout,
                         'root:x:0:0:root:/root:/bin/bash\n'
                         "ls: cannot access '/made': No such file or directory\n")

    def testTheExitCodeArrives(self):
        self.assertEqual(self.run_there('exit 7')[1].returncode, 7)

    def testNoNetworkNoNeighboursAndNoEnvironment(self):
        done = self.run_there('tail -n +3 /proc/net/dev | cut -d: -f1; echo $$; '
                              'env | cut -d= -f1 | sort')[1]
        self.assertEqual(done.stdout, '    lo\n1\nHOME\nLC_ALL\nPATH\nPWD\n')

    def testOnlyWhatIsLentForWritingIsWritten(self):
        with tempfile.TemporaryDirectory() as folder:
            done = self.run_there('echo 1 >/lent/file; echo 2 >/kept/file', binds=[
                (folder, '/lent', 'rw'), (folder, '/kept', 'ro')])[1]
            self.assertIn('Read-only file system', done.stdout)
            self.assertEqual((pathlib.Path(folder) / 'file').read_text(encoding='utf-8'), '1\n')


if __name__ == '__main__':
    unittest.main()

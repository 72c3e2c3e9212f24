# SPDX-License-Identifier: BSD-3-Clause
"""The packages are built once for all who ask, and anew when something in them changes."""

import hashlib
import pathlib
import subprocess
import sys
import tempfile
import threading
import unittest
from unittest import mock

import debianhandset
from debianhandset import PROJECT, SUITE, debianroot

sys.path.insert(0, str(PROJECT / 'handset'))
import buildroot  # noqa: E402
import packagebuilds  # noqa: E402
import packages  # noqa: E402

DEADLINE = 60
NATIVE = buildroot.native()
FOREIGN = 'arm64' if NATIVE == 'amd64' else 'amd64'
FILES = ('daemon/main.cpp', 'cmake/Targets.cmake', 'debian/rules', 'docs/porting.md', 'NEWS.md',
         'handset/runtime/main.cpp', 'handset/device.py', 'tests/daemon/tst_main.cpp',
         'tools/package', 'docs/testing.md')
MAKE = packagebuilds.make


class Builds(unittest.TestCase):
    """In a small checkout, where nothing is compiled."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        subprocess.run(['git', 'init', '--quiet', self.root], check=True)
        for name in FILES:
            self.write(name, 'first')
        self.put(buildroot, 'PROJECT', self.root)
        self.put(packagebuilds, 'BUILT', self.root / '.git/built')
        self.make = self.put(packagebuilds, 'make', mock.Mock(side_effect=self.made))

    def put(self, where, name, value):
        patch = mock.patch.object(where, name, value)
        self.addCleanup(patch.stop)
        return patch.start()

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding='utf-8')

    def made(self, folder, _log, arguments, architecture, _suite, _sources):
        folder.mkdir()
        names = ('lumd-handset-runtime',) if 'pkg.lumd.handset' in arguments else (
            'lumctl', 'lumd', 'lumd-apps', 'lumd-dbgsym')
        for name in names:
            (folder / f'{name}_1_{architecture}.deb').touch()

    def builds(self):
        """Asks for all; gives which of them were built then."""
        self.make.reset_mock()
        for build in (packagebuilds.shipped, packagebuilds.handset_runtime):
            build(NATIVE, SUITE, say=mock.Mock())
        return [call.args[0].name.partition('_')[0] for call in self.make.call_args_list]

    def testUnchangedSourcesAreBuiltOnce(self):
        self.assertEqual(self.builds(), ['lumd', 'lumd-handset-runtime'])
        self.assertEqual(self.builds(), [])

    def testEachBuildIsMadeOfTheFilesThatDecideIt(self):
        self.builds()
        decided = {}
        for name in FILES:
            self.write(name, 'other')
            decided[name] = self.builds()
        both = ['lumd', 'lumd-handset-runtime']
        self.assertEqual(decided, {
            'daemon/main.cpp': ['lumd'], 'cmake/Targets.cmake': both, 'debian/rules': both,
            'docs/porting.md': ['lumd'], 'NEWS.md': ['lumd'],
            'handset/runtime/main.cpp': ['lumd-handset-runtime'], 'handset/device.py': [],
            'tests/daemon/tst_main.cpp': [], 'tools/package': [], 'docs/testing.md': []})

    def testNamesAndModesCountToo(self):
        self.builds()
        (self.root / 'debian/rules').chmod(0o755)
        self.assertEqual(self.builds(), ['lumd', 'lumd-handset-runtime'])
        (self.root / 'NEWS.md').rename(self.root / 'NEWER.md')
        self.assertEqual(self.builds(), ['lumd'])
        (self.root / 'NEWER.md').unlink()
        self.assertEqual(self.builds(), ['lumd'])

    def testThoseOfEarlierSourcesGoAndOthersStay(self):
        first = packagebuilds.shipped(NATIVE, SUITE)
        others = [packagebuilds.shipped(FOREIGN, SUITE), packagebuilds.shipped(NATIVE, 'sid'),
                  packagebuilds.handset_runtime(NATIVE, SUITE)]
        self.write('daemon/main.cpp', 'other')
        second = packagebuilds.shipped(NATIVE, SUITE)
        self.assertEqual([folder.is_dir() for folder in (first, second, *others)],
                         [False, True, True, True, True])

    def testTheSourcesAreThoseThatWereHashed(self):
        packagebuilds.shipped(NATIVE, SUITE)
        packagebuilds.handset_runtime(NATIVE, SUITE)
        self.assertEqual([call.args[-1] for call in self.make.call_args_list], [
            ['NEWS.md', 'cmake/Targets.cmake', 'daemon/main.cpp', 'debian/rules',
             'docs/porting.md'],
            ['cmake/Targets.cmake', 'debian/rules', 'handset/runtime/main.cpp']])

    def testWhoComesWhileAnotherBuildsTakesWhatHeHasBuilt(self):
        building, asking = threading.Event(), threading.Event()
        real = debianroot.exclusive

        def make(*arguments):
            building.set()
            self.assertTrue(asking.wait(DEADLINE))
            self.made(*arguments)

        def exclusive(path):
            if building.is_set():
                asking.set()
            return real(path)

        self.make.side_effect = make
        self.put(debianroot, 'exclusive', exclusive)
        folders = []
        first = threading.Thread(
            target=lambda: folders.append(packagebuilds.shipped(NATIVE, SUITE)))
        first.start()
        self.assertTrue(building.wait(DEADLINE))
        folders.append(packagebuilds.shipped(NATIVE, SUITE))
        first.join(DEADLINE)
        self.assertEqual(self.make.call_count, 1)
        self.assertEqual(folders, [folders[0]] * 2)

    def testWhatIsAskedOfTheBuildCountsToo(self):
        self.builds()
        self.put(buildroot, 'arguments', lambda *_: '--build=other')
        self.assertEqual(len(self.builds()), 2)

    def testSourcesThatAreOthersWhileTheyAreCopiedAreNotBuilt(self):
        def copy(*arguments):
            self.write('NEWS.md', 'other')
            copy_source(*arguments)
            self.write('NEWS.md', 'first')

        copy_source = buildroot.copy_source
        self.make.side_effect = MAKE
        self.put(buildroot, 'root', mock.Mock())
        build = self.put(buildroot, 'build', mock.Mock())
        with mock.patch.object(buildroot, 'copy_source', copy):
            with self.assertRaisesRegex(debianroot.RootError, 'changed meanwhile'):
                packagebuilds.shipped(NATIVE, SUITE)
        build.assert_not_called()
        self.assertTrue(packagebuilds.shipped(NATIVE, SUITE).is_dir())
        build.assert_called_once()

    def testTheHandsetTakesWhatUsersGetAndItsRuntime(self):
        self.assertEqual([path.name for path in packages.build(NATIVE)],
                         [f'{name}_1_{NATIVE}.deb'
                          for name in ('lumd', 'lumctl', 'lumd-handset-runtime')])

    def testAnybodyTakesThemAndRootAloneBuildsThem(self):
        with mock.patch('os.geteuid', return_value=1000):
            with self.assertRaisesRegex(debianroot.RootError, 'sudo'):
                packagebuilds.shipped(NATIVE, SUITE)
        folder = packagebuilds.shipped(NATIVE, SUITE)
        with mock.patch('os.geteuid', return_value=1000):
            self.assertEqual(packagebuilds.shipped(NATIVE, SUITE), folder)


class Shipped(unittest.TestCase):

    def testWhatIsShippedIsWhatTheHandsetInstalls(self):
        # Who is not root builds nothing, and takes none away.
        with mock.patch('os.geteuid', return_value=1000):
            folder = packagebuilds.shipped(NATIVE, SUITE)
        sums = [{path.name: hashlib.sha256((place / path.name).read_bytes()).hexdigest()
                 for path in folder.glob('*.deb')} for place in (folder, debianhandset.PACKAGES)]
        self.assertGreater(len(sums[0]), 3)
        self.assertEqual(*sums)


if __name__ == '__main__':
    unittest.main()

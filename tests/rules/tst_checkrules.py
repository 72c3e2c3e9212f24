#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Each rule of tools/check-rules with a tree that keeps it and one that breaks it."""

import unittest

from tree import CHECKOUT, LICENCE, TreeTest, source

CMAKE = f'# {LICENCE}\n'


class CheckRulesTest(TreeTest):
    maxDiff = None

    def setUp(self):
        super().setUp()
        self.fake_apt('http://mirror.example.net/debian')
        self.write('config/CMakeLists.txt', CMAKE + 'lum_library(lum_config SOURCES names.cpp)\n')
        self.write('config/names.h', source('#pragma once'))
        self.write('config/names.cpp', source('#include "config/names.h"'))
        self.write('tests/CMakeLists.txt', CMAKE + 'lum_add_test(tst_names config/tst_names.cpp)\n')
        self.write('tests/config/tst_names.cpp', source())

    def fake_apt(self, mirror):
        """In place of the machine's own apt, which is slow and knows other mirrors."""
        self.write('.git/bin/apt-get', f'#!/bin/sh\necho "$*" | grep -q REPO_URI && echo {mirror}\n',
                   executable=True)
        self.path = self.root / '.git/bin'

    def check(self):
        done = self.run_in_tree(CHECKOUT / 'tools/check-rules', '.')
        self.assertEqual(done.stderr, '')
        return done.returncode, done.stdout

    def assert_clean(self):
        self.assertEqual(self.check(), (0, ''))

    def assert_finds(self, *lines):
        self.assertEqual(self.check(), (1, ''.join(f'{line}\n' for line in lines)))

    def add_source(self, path, *lines):
        """A source that breaks no rule but those its lines break."""
        self.write(path, source(*lines))
        self.write('CMakeLists.txt', CMAKE + f'add_executable(some {path})\n')
        room, _, name = path.partition('/')
        self.write(f'tests/{room}/tst_{name}', source())
        self.write('tests/CMakeLists.txt',
                   CMAKE + f'lum_add_test(config/tst_names.cpp {room}/tst_{name})\n')

    def testCleanTreePasses(self):
        self.assert_clean()
        self.commit('config: names')
        self.assert_clean()

    def testFolderWithoutFilesIsNoCheckout(self):
        self.run_in_tree('rm', '-r', 'config', 'tests')
        self.assert_finds(f'{self.root}: no files: is this a git checkout?')

    def testIgnoredFilesAreNotRead(self):
        self.write('.gitignore', '/build/\n')
        self.write('build/made.cpp', 'int made;\n')
        self.assert_clean()

    def testSourceWithoutLicenceLine(self):
        self.write('config/names.h', '#pragma once\n')
        self.assert_finds('config/names.h:1: lacks the line that names the licence')

    def testLicenceLineOfAnotherLanguage(self):
        self.write('config/names.h', f'# {LICENCE}\n')
        self.assert_finds('config/names.h:1: lacks the line that names the licence')

    def testScriptNeedsLicenceBehindItsInterpreter(self):
        self.write('tools/good', f'#!/bin/bash\n# {LICENCE}\n')
        self.assert_clean()
        self.write('tools/bad', '#!/bin/bash\nexit 0\n')
        self.assert_finds('tools/bad:1: lacks the line that names the licence')

    def testBuildFileNeedsLicence(self):
        self.write('cmake/Rules.cmake', 'set(a b)\n')
        self.write('docs/plain.md', 'A text needs none.\n')
        self.assert_finds('cmake/Rules.cmake:1: lacks the line that names the licence')

    # The words that must not stand in this file either are put together here.

    def testDocumentsOutsideOfTheTree(self):
        for words in ('sp' + 'ec', 'Sp' + 'ecification', 'Pa' + 'rt 3.1', 'iss' + 'ue 2'):
            with self.subTest(words):
                self.write('docs/a.md', f'first\nsee the {words} for more\n')
                self.assert_finds('docs/a.md:2: refers to a document outside of the tree: ' + words)
        self.write('docs/a.md', 'A special part, with 3 issues; more specific: part two.\n')
        self.assert_clean()

    def testOnlyTheRecipeOfThePackageMayHaveItsEnding(self):
        word = 'sp' + 'ec'
        self.write('docs/a.md', f'See rpm/lumd.{word}, and ("rpm/lumd.{word}").\n')
        self.assert_clean()
        for name, found in ((f'lumd.{word}', word), (f'rpm/other.{word}', word),
                            (f'arpm/lumd.{word}', word), (f'rpm/lumd.{word}s', word + 's'),
                            (f'rpm/lumd-{word}', word), (f'rpm/lumd.{word} {word}', word)):
            with self.subTest(name):
                self.write('docs/a.md', f'See {name}.\n')
                self.assert_finds(f'docs/a.md:1: refers to a document outside of the tree: {found}')

    def testHostsOfRegistries(self):
        for host in ('deb.de' + 'bian.org', 'archive.ub' + 'untu.com', 'py' + 'pi.org'):
            with self.subTest(host):
                self.write('docs/a.md', f'http://{host}/x\n')
                self.assert_finds(f'docs/a.md:1: names a host of a package registry: {host}')
        self.write('docs/a.md', 'Debian 12, deb packages, http://example.org\n')
        self.assert_clean()

    def testMirrorOfThisMachine(self):
        self.write('docs/a.md', 'wget http://mirror.example.net/debian/pool\n')
        self.assert_finds('docs/a.md:1: names a mirror of this machine: mirror.example.net')
        self.fake_apt('http://localhost:3142/debian')
        self.write('docs/a.md', 'only localhost and mirror.example.net\n')
        self.assert_clean()

    def testFoldersOfOneMachine(self):
        folder = '/wo' + 'rk/'
        self.write('docs/a.md', f'see {folder}here\n')
        self.assert_finds(f'docs/a.md:1: names a folder of one machine: {folder}')
        self.write('docs/a.md', f'$dir{folder} a{folder}b /home/.android/\n')
        self.assert_clean()

    def testFolderOfTheCheckoutItself(self):
        self.write('docs/a.md', f'cd {self.root}/tools\n')
        self.assert_finds(f'docs/a.md:1: names the folder of this checkout: {self.root}')

    def testUnfinishedWork(self):
        for mark in ('TO' + 'DO', 'FIX' + 'ME'):
            with self.subTest(mark):
                self.write('config/names.h', source('#pragma once', f'// {mark}: more'))
                self.assert_finds(f'config/names.h:3: is unfinished: {mark}')

    def testFailuresPassedOver(self):
        for macro in ('QS' + 'KIP', 'QEXP' + 'ECT_FAIL'):
            with self.subTest(macro):
                self.write('tests/config/tst_names.cpp', source(f'{macro}("later");'))
                self.assert_finds(
                    f'tests/config/tst_names.cpp:2: passes over a failure: {macro}')

    def testWordsInCommitMessages(self):
        self.commit('config: names\n\nas in pa' + 'rt 6.1')
        name = self.run_in_tree('git', 'log', '--format=%h').stdout.strip()
        self.assert_finds(
            f'commit {name}:3: refers to a document outside of the tree: pa' + 'rt 6.1')

    def testSizes(self):
        for path, aim, limit in (('config/names.cpp', 300, 400), ('config/names.h', 150, 200)):
            first = '#include "config/names.h"'
            with self.subTest(path):
                self.write(path, source(first, *['// x'] * (aim - 2)))
                self.assert_clean()
                self.write(path, source(first, *['// x'] * (aim - 1)))
                self.assertEqual(self.check(), (
                    0, f'{path}: warning: {aim + 1} lines, the aim is {aim}\n'))
                self.write(path, source(first, *['// x'] * (limit - 1)))
                self.assert_finds(f'{path}: {limit + 1} lines, the limit is {limit}')
                self.write(path, source(first))

    def testSourceThatNoTargetNames(self):
        self.add_source('config/more.cpp')
        self.assert_clean()
        self.write('CMakeLists.txt', CMAKE + 'add_executable(some config/evenmore.cpp more.cpp)\n')
        self.assert_finds('config/more.cpp: is listed in no CMakeLists.txt')

    def testLoopMayBuildTheName(self):
        self.add_source('config/more.cpp')
        loop = 'foreach(part re)\n    add_executable(${part} mo${part}.cpp)\n'
        self.write('config/CMakeLists.txt',
                   CMAKE + 'lum_library(lum_config SOURCES names.cpp)\n' + loop)
        self.write('CMakeLists.txt', CMAKE)
        self.assert_clean()
        self.write('config/CMakeLists.txt',
                   CMAKE + 'lum_library(lum_config SOURCES names.cpp)\n'
                   + loop.replace('re)', 'rest)'))
        self.assert_finds('config/more.cpp: is listed in no CMakeLists.txt')

    def testHeaderThatNobodyIncludes(self):
        self.write('config/lonely.h', source('#pragma once'))
        self.assert_finds('config/lonely.h: is included by nobody')

    def testIncludeAgainstTheDirection(self):
        rooms = ('config', 'runtime', 'userbus', 'platform', 'binder', 'clients', 'launcher',
                 'daemon')
        others = ('tests', 'bench', 'fuzz', 'handset')
        # What each may include besides itself.
        allowed = {
            'config': (), 'runtime': (), 'userbus': (), 'platform': ('userbus',),
            'binder': ('runtime',),
            'clients': ('binder', 'config'), 'launcher': ('binder', 'config'), 'daemon': rooms,
            'tests': rooms, 'bench': (*rooms, 'tests'), 'fuzz': (*rooms, 'tests'), 'handset': ()}
        expected = []
        for folder in sorted(rooms + others):
            targets = [target for target in rooms + others if target != folder]
            self.write(f'{folder}/some.cpp',
                       source(*(f'#include "{target}/names.h"' for target in targets)))
            expected += [f'{folder}/some.cpp:{line}: {folder}/ may not include {target}/'
                         for line, target in enumerate(targets, 2)
                         if target not in allowed[folder]]
            if folder in rooms:
                self.write(f'tests/{folder}/tst_some.cpp', source())
        sources = ' '.join(f'{folder}/some.cpp tests/{folder}/tst_some.cpp'
                           for folder in rooms + others)
        self.write('CMakeLists.txt', CMAKE + f'add_executable(some {sources})\n')
        self.assert_finds(*expected)

    def testIncludePastTheIncludeFolders(self):
        self.add_source('config/some.cpp', '#include "../runtime/names.h"',
                        '#include "config/../runtime/names.h"', '#include <../names.h>')
        self.assert_finds(
            *(f'config/some.cpp:{line}: includes by way of ".."' for line in (2, 3, 4)))

    def testSystemHeadersAreNoRooms(self):
        self.add_source('config/some.cpp', '#include <systemd/sd-login.h>', '#include <QDir>')
        self.assert_clean()

    def testSourceWithoutTest(self):
        self.write('tests/config/tst_names.cpp', source())
        self.run_in_tree('mv', 'tests/config/tst_names.cpp', 'tests/config/tst_other.cpp')
        self.write('tests/CMakeLists.txt', CMAKE + 'lum_add_test(config/tst_other.cpp)\n')
        self.assert_finds('config/names.cpp: has no test tests/config/tst_names.cpp')

    def testFlowMayHaveItsOwnTest(self):
        self.run_in_tree('mv', 'config/names.cpp', 'config/all_names.cpp')
        self.write('CMakeLists.txt', CMAKE + 'add_executable(some config/all_names.cpp)\n')
        self.assert_clean()

    def testTestMayBeNamedAfterTheLibrary(self):
        self.write('platform/names/any.cpp', source())
        self.write('platform/CMakeLists.txt', CMAKE + 'add_library(names names/any.cpp)\n')
        self.assert_finds('platform/names/any.cpp: has no test tests/platform/tst_any.cpp')
        self.write('tests/platform/tst_names.cpp', source())
        self.write('tests/platform/CMakeLists.txt', CMAKE + 'lum_add_test(tst_names.cpp)\n')
        self.assert_clean()

    def testTestMayBeSplit(self):
        self.run_in_tree('mv', 'tests/config/tst_names.cpp', 'tests/config/tst_names_odd.cpp')
        self.write('tests/CMakeLists.txt', CMAKE + 'lum_add_test(config/tst_names_odd.cpp)\n')
        self.assert_clean()

    def testLoggingNeedsNoTest(self):
        self.write('config/logging.cpp', source())
        self.write('CMakeLists.txt', CMAKE + 'add_executable(some config/logging.cpp)\n')
        self.assert_clean()


if __name__ == '__main__':
    unittest.main()

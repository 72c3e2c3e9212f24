#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""tools/check: each linter with a file that it must pass and one that it must refuse."""

import itertools
import json
import re
import runpy
import shutil
import subprocess
import unittest

from tree import CHECKOUT, LICENCE, TreeTest, source

GOOD = source('using Three = int;')
UGLY = source('using Three =   int;')
# Both Qt and the standard library refuse: a temporary's data, and 0 for a pointer.
DANGLING = source(
    '#include <QString>', '', 'const char *name(const QString &text)', '{',
    '    const char *data = text.toUtf8().constData();', '    return data;', '}')
OLD = source('int *none()', '{', '    return 0;', '}')


class CheckTest(TreeTest):
    def setUp(self):
        super().setUp()
        for path in ('tools/check', 'tools/check-rules', 'tools/lint-rooms', '.clang-format', '.clang-tidy'):
            (self.root / path).parent.mkdir(exist_ok=True)
            shutil.copy(CHECKOUT / path, self.root / path)
        self.write('.gitignore', '/build/\n')
        self.write('config/CMakeLists.txt', f'# {LICENCE}\nadd_library(names names.cpp)\n')
        self.write('tests/config/tst_names.cpp', source('int main() { }'))
        self.write('tests/CMakeLists.txt', f'# {LICENCE}\nadd_test(config/tst_names.cpp)\n')
        self.write_config(GOOD)

    def write_config(self, text):
        """The one source that is compiled, and its command."""
        self.write('config/names.cpp', text)
        self.write_commands('config/names.cpp')

    def write_commands(self, *sources):
        """The commands that compile the sources, each with a definition of its own."""
        flags = subprocess.run(['pkg-config', '--cflags', 'Qt5Core'],
                               capture_output=True, text=True, check=True).stdout.strip()
        self.write('build/dev/compile_commands.json', json.dumps([{
            'directory': str(self.root), 'file': path,
            'command': f'g++ -std=c++17 -fPIC {flags} -DSOURCE_{index} -c {path}'}
            for index, path in enumerate(sources)]))

    def check(self, *arguments):
        done = self.run_in_tree('tools/check', *arguments)
        return done.returncode, done.stdout.splitlines()

    def assert_finds(self, check, words, *arguments):
        code, lines = self.check(check, *arguments)
        self.assertEqual(code, 1, lines)
        self.assertEqual(lines[-1], f'{check}: FOUND SOMETHING')
        self.assertTrue(any(words in line for line in lines[:-1]), lines)

    def testCleanTreePassesEveryLinter(self):
        self.assertEqual(self.check(), (
            0, ['format: clean', 'rules: clean', 'scripts: clean', 'tidy: clean',
                'clazy: clean']))

    def testFormatRefusesUglyFile(self):
        self.write_config(UGLY)
        self.assert_finds('format', 'config/names.cpp:2')
        self.assertEqual((self.root / 'config/names.cpp').read_text(), UGLY)

    def testFixFormatsInPlace(self):
        self.write_config(UGLY)
        self.assertEqual(self.check('--fix', 'format'), (0, ['format: clean']))
        self.assertEqual((self.root / 'config/names.cpp').read_text(), GOOD)

    def testFormatReadsTestsAndHeadersToo(self):
        self.write('tests/config/tst_names.h', UGLY)
        self.assert_finds('format', 'tests/config/tst_names.h:2')

    def testFormatTellsOfEachFileOfMany(self):
        paths = [f'config/names{number}.h' for number in range(40)]
        for path in paths:
            self.write(path, UGLY)
        code, lines = self.check('format')
        self.assertEqual(code, 1)
        for path in paths:
            self.assertEqual(sum(line.startswith(f'{path}:2:') for line in lines), 1, path)

    def testTidyRefusesZeroAsPointer(self):
        self.write_config(OLD)
        self.assert_finds('tidy', 'modernize-use-nullptr')

    def testTidyReadsProductionCodeAlone(self):
        self.write('tests/config/tst_names.cpp', OLD)
        self.assertEqual(self.check('tidy'), (0, ['tidy: clean']))

    def testTidyTellsOfEachSourceByItsOwnLines(self):
        self.write('config/zero.cpp', source('#ifdef SOURCE_1', *OLD.splitlines()[1:], '#endif'))
        self.write('binder/names.cpp', GOOD)
        self.write_commands('binder/names.cpp', 'config/zero.cpp', 'config/names.cpp')
        self.assert_finds('tidy', 'config/zero.cpp:5:12: error:')

    def testTidyTellsOfAHeaderOfTwoRoomsOnce(self):
        self.write('config/zero.h', source('#pragma once', f'inline {OLD.splitlines()[1]}',
                                           *OLD.splitlines()[2:]))
        paths = ('config/names.cpp', 'binder/zero.cpp')
        for path in paths:
            self.write(path, source('#include "../config/zero.h"'))
        self.write_commands(*paths)
        code, lines = self.check('tidy')
        self.assertEqual(code, 1)
        self.assertEqual(sum('config/zero.h:5:12: error:' in line for line in lines), 1, lines)

    def testTidyReadsRoomsTogetherInOrder(self):
        self.write('no-programs/clang-tidy-19', '#!/bin/sh\nfor last; do :; done\n'
                   'echo "${last##*/}"\ngrep names "$last"\n', executable=True)
        paths = ('config/names.cpp', 'config/other/names.cpp', 'binder/names.cpp',
                 'daemon/names.cpp', 'userbus/names.cpp', 'companions/lumctl/names.cpp',
                 'companions/other/names.cpp')
        for path in paths:
            self.write(path, source(f'// {path}'))
        self.write_commands(*paths)
        self.assertEqual(self.check('tidy'), (1, [
            'companions-lumctl+userbus+runtime.cpp',
            '// companions/lumctl/names.cpp', '// userbus/names.cpp',
            'companions-lumd-apps+binder+config+platform.cpp',
            '// binder/names.cpp', '// config/names.cpp', '// config/other/names.cpp',
            'companions-other.cpp', '// companions/other/names.cpp',
            'daemon.cpp', '// daemon/names.cpp', 'tidy: FOUND SOMETHING']))

    def testTidyReadsProgramsApart(self):
        paths = ('daemon/main.cpp', 'companions/lumctl/main.cpp', 'companions/lumd-apps/main.cpp',
                 'companions/lumd-launcher/main.cpp', 'companions/other/main.cpp')
        for path in paths:
            self.write(path, source('int main() { }'))
        self.write_commands('config/names.cpp', *paths)
        self.assertEqual(self.check('tidy'), (0, ['tidy: clean']))

    def testNoRoomIncludesAnotherThatItIsReadWith(self):
        for whole in runpy.run_path(str(CHECKOUT / 'tools/lint-rooms'))['WHOLES']:
            folders = [CHECKOUT / room.replace('companions-', 'companions/') for room in whole]
            for folder, other in itertools.permutations(folders, 2):
                included = set()
                for file in (*folder.rglob('*.cpp'), *folder.rglob('*.h')):
                    included.update(re.findall(r'^#include ["<](.+)[">]', file.read_text('utf-8'),
                                               re.MULTILINE))
                with self.subTest(folder=folder.name, other=other.name):
                    self.assertTrue(included)
                    self.assertEqual([name for name in included for header in other.rglob('*.h')
                                      if str(header).endswith(f'/{name}')], [])

    def testSourceThatNothingCompilesIsAFinding(self):
        self.write('config/zero.cpp', OLD)
        self.assert_finds('tidy', 'config/zero.cpp: no target compiles it')

    def testClazyRefusesDanglingData(self):
        self.write_config(DANGLING)
        self.assert_finds('clazy', 'clazy-returning-data-from-temporary')

    def testCodeThatDoesNotCompileIsAFinding(self):
        self.write_config(source('int three(;'))
        self.assert_finds('tidy', 'error:')
        self.assert_finds('clazy', 'error:')

    def testScriptsReadsShellByItsFirstLine(self):
        self.write('tools/fine', f'#!/bin/sh\n# {LICENCE}\necho "$1"\n', executable=True)
        self.assertEqual(self.check('scripts'), (0, ['scripts: clean']))
        self.write('tools/some', f'#!/bin/bash\n# {LICENCE}\ncd "$1"\n', executable=True)
        self.assert_finds('scripts', 'In tools/some line 3:')

    def testScriptsReadsPythonByFirstLineAndByName(self):
        for path, first in (('tools/some', '#!/usr/bin/python3\n'), ('tests/some.py', '')):
            with self.subTest(path):
                self.write(path, f'{first}# {LICENCE}\nimport os\n')
                self.assert_finds('scripts', f"{path}:{3 if first else 2}:1: 'os' imported")
                (self.root / path).unlink()

    def testRulesAreRun(self):
        self.write_config('int three();\n')
        self.assert_finds('rules', 'config/names.cpp:1: lacks the line')

    def testMissingBuildIsAFinding(self):
        for check in ('tidy', 'clazy'):
            self.assert_finds(check, 'elsewhere/compile_commands.json is missing',
                              '--build', 'elsewhere')

    def testOneFindingFailsTheWhole(self):
        self.write_config(UGLY)
        code, lines = self.check('format', 'rules')
        self.assertEqual(code, 1)
        self.assertEqual(lines[-2:], ['format: FOUND SOMETHING', 'rules: clean'])

    def testUnknownArgumentIsRefused(self):
        done = self.run_in_tree('tools/check', '--unknown')
        self.assertEqual(done.returncode, 2)
        self.assertIn('tools/check [--fix]', done.stderr)


if __name__ == '__main__':
    unittest.main()

#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Every text that the program shows has a translation in every catalogue."""
import re
import unittest
import xml.etree.ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
# Where each program's texts are used, by the name that its catalogues begin with.
PROGRAMS = {
    'lumd': ('config', 'runtime', 'binder', 'clients', 'launcher', 'daemon'),
    'lumctl': ('companions/lumctl',),
}


def sources(program):
    return [path for folder in PROGRAMS[program] for path in sorted((ROOT / folder).glob('*.cpp'))]


def ids_in_sources(program):
    """The ids by the files that use them."""
    found = {}
    for path in sources(program):
        for name in re.findall(r'\bqtTrId\(\s*"([^"]+)"', path.read_text()):
            found.setdefault(name, set()).add(path.name)
    return found


def catalogues(program):
    return [ROOT / 'translations' / f'{program}-de.ts',
            ROOT / 'translations' / f'{program}_eng_en.ts']


def messages(catalogue):
    """Id: (source text, translation, type), each id once."""
    found = {}
    for message in xml.etree.ElementTree.parse(catalogue).iter('message'):
        translation = message.find('translation')
        name = message.get('id')
        if name in found:
            raise AssertionError(f'{catalogue.name} has {name} twice')
        found[name] = (message.findtext('source'), translation.text, translation.get('type'))
    return found


class Catalogues(unittest.TestCase):
    def test_engineeringEnglishAndALanguageAreThere(self):
        expected = [path.name for program in PROGRAMS for path in catalogues(program)]
        self.assertEqual(sorted(path.name for path in (ROOT / 'translations').glob('*.ts')),
                         sorted(expected))

    def test_everyCallNamesItsId(self):
        # An id that is put together at run time could not be looked for.
        for program in PROGRAMS:
            texts = [path.read_text() for path in sources(program)]
            calls = sum(len(re.findall(r'\bqtTrId\(\s*"[^"]+"\)', text)) for text in texts)
            self.assertEqual(calls, sum(text.count('qtTrId(') for text in texts), program)
        self.assertIn('Aborted', ids_in_sources('lumd'))
        self.assertIn('lumctl-no-lumd', ids_in_sources('lumctl'))

    def test_everyIdHasAFinishedText(self):
        for program in PROGRAMS:
            for catalogue in catalogues(program):
                texts = messages(catalogue)
                for name in ids_in_sources(program):
                    with self.subTest(catalogue=catalogue.name, id=name):
                        self.assertIn(name, texts)
                        _, translation, kind = texts[name]
                        self.assertIsNone(kind)
                        self.assertTrue(translation and translation.strip())
                        self.assertFalse(translation.startswith(f'{program}-'))

    def test_noTextIsWithoutUse(self):
        for program in PROGRAMS:
            for catalogue in catalogues(program):
                self.assertEqual(set(messages(catalogue)), set(ids_in_sources(program)),
                                 catalogue.name)

    def test_placeholdersAreKept(self):
        for program in PROGRAMS:
            for catalogue in catalogues(program):
                for name, (source, translation, _) in messages(catalogue).items():
                    with self.subTest(catalogue=catalogue.name, id=name):
                        self.assertEqual(sorted(re.findall(r'%\d', source)),
                                         sorted(re.findall(r'%\d', translation)))
        english = messages(ROOT / 'translations' / 'lumd_eng_en.ts')
        self.assertIn('%1', english['lumd-launch_alien_to_start_android_app'][1])


if __name__ == '__main__':
    unittest.main()

#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Every text that the program shows has a translation in every catalogue."""
import re
import unittest
import xml.etree.ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FOLDERS = ('config', 'runtime', 'binder', 'clients', 'launcher', 'daemon')


def ids_in_sources():
    """The ids by the files that use them."""
    found = {}
    for folder in FOLDERS:
        for path in sorted((ROOT / folder).glob('*.cpp')):
            for name in re.findall(r'\bqtTrId\(\s*"([^"]+)"', path.read_text()):
                found.setdefault(name, set()).add(path.name)
    return found


def calls_in_sources():
    return sum(path.read_text().count('qtTrId(')
               for folder in FOLDERS for path in (ROOT / folder).glob('*.cpp'))


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
    catalogues = sorted((ROOT / 'translations').glob('*.ts'))

    def test_engineeringEnglishAndALanguageAreThere(self):
        self.assertEqual([path.name for path in self.catalogues], ['lumd-de.ts', 'lumd_eng_en.ts'])

    def test_everyCallNamesItsId(self):
        # An id that is put together at run time could not be looked for.
        calls = sum(len(re.findall(r'\bqtTrId\(\s*"[^"]+"\)', path.read_text()))
                    for folder in FOLDERS for path in (ROOT / folder).glob('*.cpp'))
        self.assertEqual(calls, calls_in_sources())
        self.assertIn('Aborted', ids_in_sources())

    def test_everyIdHasAFinishedText(self):
        for catalogue in self.catalogues:
            texts = messages(catalogue)
            for name in ids_in_sources():
                with self.subTest(catalogue=catalogue.name, id=name):
                    self.assertIn(name, texts)
                    _, translation, kind = texts[name]
                    self.assertIsNone(kind)
                    self.assertTrue(translation and translation.strip())
                    self.assertFalse(translation.startswith('lumd-'))

    def test_noTextIsWithoutUse(self):
        for catalogue in self.catalogues:
            self.assertEqual(set(messages(catalogue)), set(ids_in_sources()), catalogue.name)

    def test_placeholdersAreKept(self):
        for catalogue in self.catalogues:
            for name, (source, translation, _) in messages(catalogue).items():
                with self.subTest(catalogue=catalogue.name, id=name):
                    self.assertEqual(sorted(re.findall(r'%\d', source)),
                                     sorted(re.findall(r'%\d', translation)))
        english = messages(ROOT / 'translations' / 'lumd_eng_en.ts')
        self.assertIn('%1', english['lumd-launch_alien_to_start_android_app'][1])


if __name__ == '__main__':
    unittest.main()

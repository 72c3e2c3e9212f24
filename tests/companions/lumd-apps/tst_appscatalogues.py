#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""Every text that the window shows has a translation in every catalogue."""
import re
import unittest
import xml.etree.ElementTree
from pathlib import Path

FOLDER = Path(__file__).resolve().parents[3] / 'companions' / 'lumd-apps'
SOURCES = [*FOLDER.glob('*.cpp'), *FOLDER.glob('module/*.cpp'), *FOLDER.glob('qml/*.qml')]


def ids_in_sources():
    return {name for path in SOURCES
            for name in re.findall(r'\bq(?:s|t)TrId\("([^"]+)"\)', path.read_text())}


def messages(catalogue):
    """Id: (source text, translation, type)."""
    found = {}
    for message in xml.etree.ElementTree.parse(catalogue).iter('message'):
        translation = message.find('translation')
        found[message.get('id')] = (message.findtext('source'), translation.text,
                                    translation.get('type'))
    return found


class Catalogues(unittest.TestCase):
    catalogues = sorted(FOLDER.glob('translations/*.ts'))

    def test_bothLanguagesAreThere(self):
        self.assertEqual([path.name for path in self.catalogues],
                         ['lumd-apps-de.ts', 'lumd-apps_eng_en.ts'])

    def test_everyCallNamesItsId(self):
        # An id that is put together at run time could not be looked for.
        for path in SOURCES:
            for call in re.findall(r'\bq(?:s|t)TrId\(.', path.read_text()):
                self.assertTrue(call.endswith('"'), f'{path.name}: {call}')

    def test_everyTextIsTranslatedAndUsed(self):
        self.assertGreater(len(ids_in_sources()), 50)
        for catalogue in self.catalogues:
            texts = messages(catalogue)
            self.assertEqual(set(texts), ids_in_sources(), catalogue.name)
            for name, (_, translation, kind) in texts.items():
                with self.subTest(catalogue=catalogue.name, id=name):
                    self.assertIsNone(kind)
                    self.assertTrue(translation and translation.strip())

    def test_placeholdersAreKept(self):
        for catalogue in self.catalogues:
            for name, (source, translation, _) in messages(catalogue).items():
                with self.subTest(catalogue=catalogue.name, id=name):
                    self.assertEqual(sorted(re.findall(r'%\d', source)),
                                     sorted(re.findall(r'%\d', translation)))


if __name__ == '__main__':
    unittest.main()

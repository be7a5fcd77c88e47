"""Which sources can share a translation unit."""
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / 'tools'))
import source_groups  # noqa: E402


def keeping(*names):
    return 'namespace {\n' + ''.join(f'int {name}() {{ return 1; }}\n' for name in names) + \
        '}  // namespace\n'


class SourceGroups(unittest.TestCase):

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        root = source_groups.ROOT
        self.addCleanup(setattr, source_groups, 'ROOT', root)
        source_groups.ROOT = self.folder

    def groups(self, **texts):
        """Of sources that are given as name=text, the names in groups; h_NAME is the header NAME.h."""
        for name, text in texts.items():
            path = f'{name[2:]}.h' if name.startswith('h_') else f'{name}.cpp'
            (self.folder / path).write_text(text)
        sources = [self.folder / f'{name}.cpp' for name in texts if not name.startswith('h_')]
        source_groups.read.cache_clear()
        return [''.join(path.stem for path in group) for group in source_groups.groups_of(sources)]

    def test_SourcesThatSayNoNameOfEachOtherShare(self):
        self.assertEqual(['abc'], self.groups(a=keeping('One'), b=keeping('Two'), c='int Three();'))

    def test_TwoThatKeepTheSameNameStandApart(self):
        self.assertEqual(['a', 'b'], self.groups(a=keeping('One'), b=keeping('One')))

    def test_WhatSaysANameThatAnotherKeepsStandsApart(self):
        self.assertEqual(['ac', 'b'], self.groups(a=keeping('One'), b='int x = One();', c='int y;'))

    def test_KeptTypesAndConstantsCountToo(self):
        kept = 'namespace {\nconstexpr int kOne = 1;\nstruct Two {};\nusing Three = int;\n}  // namespace\n'
        self.assertEqual(['a', 'bcd'], self.groups(a=kept, b='kOne', c='Two', d='Three'))

    def test_AHeaderThatSaysAKeptNameComesTooLate(self):
        self.assertEqual(['a', 'b'], self.groups(h_x='class One;', a=keeping('One'), b='#include "x.h"\n'))

    def test_AHeaderThatWasReadBeforeTheNameIsNotReadAgain(self):
        with_header = '#include "x.h"\n'
        self.assertEqual(['ab'], self.groups(h_x='void f(One);', a=with_header + keeping('One'),
                                             b=with_header))

    def test_HeadersOfHeadersCount(self):
        self.assertEqual(['a', 'b'], self.groups(h_x='#include "y.h"\n', h_y='class One;',
                                                 a=keeping('One'), b='#include "x.h"\n'))

    def test_AGroupIsFullAtTen(self):
        texts = {name: 'int x;' for name in 'abcdefghijkl'}
        self.assertEqual(['abcdefghij', 'kl'], self.groups(**texts))


if __name__ == '__main__':
    sys.exit(unittest.main())

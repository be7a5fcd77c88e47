#!/usr/bin/env python3
"""Models that hold what their release does not take: with --tolerant everything that they hold
comes out again, and then stays as it is."""

import glob
import json
import os
import unittest

import misfits
import program
import text_counts
from tolerant_case import TolerantTest

MISFITS = os.environ.get('CORVEL_MISFITS',
                         os.path.join(os.path.dirname(program.ROOT), 'shared', 'misfits'))


class Tolerant(TolerantTest):

    def resave_tolerantly(self, source, target):
        """Gives the status and what was told."""
        result = program.run(['resave', '--tolerant', source, target], self.folder)
        self.assertIn(result.status, (program.DONE, program.WRITTEN_WITH_REPORTS), result.errors)
        return result

    def check_kept(self, spoilt, healthy):
        """Everything of `healthy` comes out of `spoilt`, and the same bytes at the second time."""
        self.write('in.ifc', spoilt)
        result = self.resave_tolerantly('in.ifc', 'out.ifc')
        written = self.read('out.ifc')
        self.assertEqual('', text_counts.difference(text_counts.counts_of(healthy),
                                                    text_counts.counts_of(written)))
        self.resave_tolerantly('out.ifc', 'again.ifc')
        self.assertEqual(written, self.read('again.ifc'))
        return result


class GeneratedMisfits(Tolerant):

    def test_WhateverIsSpoiltEverythingComesOut(self):
        spoilt_models = 0
        for identifier, data in self.models():
            for number, kind in enumerate(misfits.KINDS):
                spoilt = kind(misfits.Spoiler(number), data)
                if spoilt is None:
                    continue
                spoilt_models += 1
                with self.subTest(schema=identifier, kind=kind.__name__):
                    result = self.check_kept(*spoilt)
                    if kind not in misfits.SILENT:
                        self.assertEqual(program.WRITTEN_WITH_REPORTS, result.status)
        self.assertGreater(spoilt_models, len(misfits.KINDS))

    def test_EveryKindAtOnceIsToldByKindAndClass(self):
        for identifier, data in self.models():
            with self.subTest(schema=identifier):
                spoiler, spoilt = misfits.Spoiler(1), data
                for _ in range(20):
                    spoilt, _healthy = misfits.unknown_enumeration(spoiler, spoilt)
                self.write('in.ifc', spoilt)
                result = self.resave_tolerantly('in.ifc', 'out.ifc')
                lines = [line for line in result.errors.splitlines() if 'kept as it stands' in line]
                self.assertEqual(len(lines), len(set(lines)))
                self.assertLess(0, len(lines))
                for line in lines:
                    self.assertRegex(line, r': \w+\. Records: \d+, the first: #\d+ in line \d+ ')

    def test_InfoAndTreeLookIntoSpoiltModels(self):
        for identifier, data in self.models():
            healthy = len(text_counts.counts_of(data).records)
            for kind in (misfits.no_semicolon, misfits.open_string, misfits.schema_draft,
                         misfits.byte_order_mark, misfits.unknown_class, misfits.no_bracket):
                spoilt = kind(misfits.Spoiler(7), data)
                if spoilt is None:
                    continue
                with self.subTest(schema=identifier, kind=kind.__name__):
                    self.write('in.ifc', spoilt[0])
                    info = program.run(['info', '--json', '--tolerant', 'in.ifc'], self.folder)
                    self.assertEqual(program.DONE, info.status, info.errors)
                    self.assertEqual(healthy, json.loads(info.output)['files'][0]['records'])
                    self.write('good.ifc', data)
                    trees = [json.loads(program.run(['tree', '--json', '--tolerant', name],
                                                    self.folder).output)['objects']
                             for name in ('good.ifc', 'in.ifc')]
                    if kind is not misfits.unknown_class:
                        self.assertEqual(*trees)


class GivenMisfits(Tolerant):

    def test_EveryModelThatIsRefusedOpensAndKeepsEverything(self):
        paths = sorted(glob.glob(os.path.join(MISFITS, '*.ifc')))
        if not paths:
            self.skipTest('there are no models that do not fit')
        if len(program.built_releases()) < 9:
            self.skipTest('not all releases are built')
        for path in paths:
            with self.subTest(model=os.path.basename(path)):
                with open(path, 'rb') as file:
                    data = file.read()
                self.check_kept(data, data)


if __name__ == '__main__':
    unittest.main()

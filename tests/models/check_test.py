#!/usr/bin/env python3
"""What `corvel check` finds in whole models is what check_truth.py finds."""

import json
import os
import re
import unittest
from collections import Counter

import schema_facts
from check_truth import Truth
from program import REAL_MODELS, ModelTest, built_releases, identifier_of, run, sample_paths

# The slow truth takes seconds a megabyte.
LARGEST = 1_000_000
# Findings that say that the text is not in order, so that the two readers may differ.
UNREADABLE = re.compile(r'CRV\.(syntax|class|arguments|number|header|file|enum|value\.wrong)')


def real_paths():
    if not os.path.isdir(REAL_MODELS):
        return []
    found = [os.path.join(folder, name) for folder, _, names in sorted(os.walk(REAL_MODELS))
             for name in sorted(names) if name.endswith('.ifc')]
    return [path for path in found if os.path.getsize(path) <= LARGEST]


class CheckTest(ModelTest):

    def check(self, *arguments):
        result = run(['check', '--quiet', '--json', *arguments], self.folder)
        self.assertIn(result.status, (0, 4), result.errors)
        return json.loads(result.output)

    def compare(self, path):
        """False: the text of the model is not in order."""
        with open(path, 'rb') as file:
            data = file.read()
        told = self.check(path)['files'][0]
        if any(UNREADABLE.match(one['rule']) for one in told['findings']):
            return False
        truth = Truth(data)
        found = {}
        for one in told['findings']:
            if one['rule'] not in Truth.RULES:
                continue
            # Of an inverse the class of the object counts: schemas name the same relation twice.
            subject = one['subject'].partition(' in ')[0]
            found.setdefault(one['rule'], Counter())[subject] += one['count']
            self.check_places(one, data)
        self.assertEqual(truth.found, found)
        return True

    def check_places(self, finding, data):
        """The record begins in the line that is told."""
        for place in finding['places']:
            if place['record'] is not None:
                line = data.split(b'\n')[place['line'] - 1]
                self.assertIn(b'#%d' % place['record'], line.replace(b' ', b''))


class Samples(CheckTest):

    def test_all_samples(self):
        for path in sample_paths():
            if schema_facts.choose_release(identifier_of(path)) not in built_releases():
                continue
            with self.subTest(os.path.basename(path)):
                self.assertTrue(self.compare(path))

    def test_spoilt_samples(self):
        """Each change breaks a rule, or several."""
        changes = [(rb"IFCLOCALPLACEMENT\(#\d+,", b'IFCLOCALPLACEMENT(#999999999,'),
                   (rb'IFCRELAGGREGATES\((.*),\(#.*?\)\);', rb'IFCRELAGGREGATES(\1,());'),
                   (rb"IFCPROPERTYSINGLEVALUE\('[^']*',", b'IFCPROPERTYSINGLEVALUE($,'),
                   (rb"(IFCPROPERTYSINGLEVALUE\('[^']*',\$,)IFC\w+\([^)]*\)",
                    rb'\1IFCCOUNTMEASURE(1234567.)'),
                   (rb'IFCEXTRUDEDAREASOLID\((.*),[^,]*\);', rb'IFCEXTRUDEDAREASOLID(\1,$);'),
                   (rb'IFCEXTRUDEDAREASOLID\((.*),[^,]*\);', rb'IFCEXTRUDEDAREASOLID(\1,0.);'),
                   (rb'IFCCARTESIANPOINT\(\(.*?\)\)', b'IFCCARTESIANPOINT((1.,2.,3.,4.1234567890123456))'),
                   (rb"IFCRELVOIDSELEMENT\(.*\);", b"IFCDIRECTION((0.,1.));"),
                   (rb"IFCWALL\('.{22}'", b"IFCWALL('short'"),
                   (rb'IFCPROJECT\((.*),\(.*?\),#\d+\);', rb'IFCPROJECT(\1,$,$);'),
                   (rb'(#\d+)( *= *)IFCLOCALPLACEMENT\(.*?,', rb'\1\2IFCLOCALPLACEMENT(\1,'),
                   (rb'IFCRELCONTAINEDINSPATIALSTRUCTURE\((.*)\((#\d+)',
                    rb'IFCRELCONTAINEDINSPATIALSTRUCTURE(\1(\2,\2')]
        for path in sample_paths():
            if schema_facts.choose_release(identifier_of(path)) not in built_releases():
                continue
            with open(path, 'rb') as file:
                data = file.read()
            for pattern, instead in changes:
                with self.subTest(os.path.basename(path), pattern=pattern):
                    spoilt = re.sub(pattern, instead, data)
                    self.write('spoilt.ifc', spoilt)
                    self.assertTrue(self.compare(self.path('spoilt.ifc')))


@unittest.skipUnless(real_paths(), f'no models of other makers in {REAL_MODELS}')
class RealModels(CheckTest):

    def test_models_of_other_makers(self):
        compared = 0
        for path in real_paths():
            if schema_facts.choose_release(identifier_of(path)) not in built_releases():
                continue
            with self.subTest(os.path.relpath(path, REAL_MODELS)):
                compared += self.compare(path)
        self.assertGreater(compared, 3)


if __name__ == '__main__':
    unittest.main()

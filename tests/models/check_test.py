#!/usr/bin/env python3
"""What `corvel check` finds in whole models is what check_truth.py finds."""

import json
import os
import re
import unittest
from collections import Counter

import schema_facts
from check_truth import RELEASES, Truth
from step_text import StepError
from program import REAL_MODELS, ModelTest, built_releases, identifier_of, run, sample_paths

# The slow truth takes seconds a megabyte.
LARGEST = 1_000_000


def real_paths():
    """Sound models of other makers, and those that are not."""
    folders = [REAL_MODELS, os.path.join(os.path.dirname(REAL_MODELS), 'misfits')]
    found = [os.path.join(folder, name) for top in folders for folder, _, names in os.walk(top)
             for name in names if name.endswith('.ifc')]
    return sorted(path for path in found if os.path.getsize(path) <= LARGEST)


class CheckTest(ModelTest):

    def check(self, *arguments):
        result = run(['check', '--quiet', '--json', *arguments], self.folder)
        self.assertIn(result.status, (0, 4), result.errors)
        return json.loads(result.output)

    def compare(self, path):
        """False: the slow reader does not know what is wrong with the text."""
        with open(path, 'rb') as file:
            data = file.read()
        told = self.check(path)['files'][0]
        try:
            truth = Truth(data, told['facts']['release'])
        except StepError:
            return False
        found = {}
        for one in told['findings']:
            if one['rule'] not in Truth.RULES:
                continue
            # Of an inverse the class of the object counts: schemas name the same relation twice.
            subject = one['subject'].partition(' in ')[0]
            found.setdefault(one['rule'], Counter())[subject] += one['count']
            if one['rule'] != 'CRV.number.doubled':  # told under the number that it has got
                self.check_places(one, data)
        self.assertEqual(truth.found, found)
        return True

    def check_places(self, finding, data):
        """The record begins in the line that is told."""
        for place in finding['places']:
            if place['record'] is not None and place['line'] is not None:
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
                   (rb"IFCGRIDAXIS\(('[^']*',#\d+),\.\w\.\)", rb'IFCGRIDAXIS(\1,$)'),
                   (rb'IFCRELVOIDSELEMENT\(.*\);', b'IFCOFFSETCURVE2D(#1,1.,$);'),
                   (rb"IFCRELVOIDSELEMENT\(.*\);", b"IFCDIRECTION((0.,1.));"),
                   (rb"IFCWALL\('.{22}'", b"IFCWALL('short'"),
                   (rb'IFCPROJECT\((.*),\(.*?\),#\d+\);', rb'IFCPROJECT(\1,$,$);'),
                   (rb'(#\d+)( *= *)IFCLOCALPLACEMENT\(.*?,', rb'\1\2IFCLOCALPLACEMENT(\1,'),
                   (rb'IFCRELCONTAINEDINSPATIALSTRUCTURE\((.*)\((#\d+)',
                    rb'IFCRELCONTAINEDINSPATIALSTRUCTURE(\1(\2,\2')]
        made = Counter()
        for path in sample_paths():
            made += self.compare_spoilt(path, changes)
        self.assertEqual({pattern for pattern, _ in changes}, set(made))

    def test_samples_with_misfits(self):
        """What a class, or the text of a file, does not take."""
        changes = [(rb'IFCSLAB\(', b'IFCSPACESHIP('), (rb'\.METRE\.', b'.STONE.'),
                   (rb'IFCDIRECTION\(\(.*?\)\)', b"IFCDIRECTION('up')"),
                   (rb'(IFCMATERIAL\(.*)\);', rb'\1,$,$,$,$);'),
                   (rb'IFCPOLYLINE\(\(#\d+,', b'IFCPOLYLINE((#1,'),
                   (rb"(IFCPROPERTYSINGLEVALUE\('[^']*',\$,)IFC\w+\([^)]*\)",
                    rb'\1IFCINTEGER(-9876543210)'),
                   (rb"(IFCPROPERTYSINGLEVALUE\('[^']*',\$,)IFC\w+\([^)]*\)", rb"\1'bare'"),
                   (rb'\AISO', b'\xef\xbb\xbfISO'), (rb'(#\d+ *= *IFCWALL)', rb'junk\n\1'),
                   (rb'(#\d+ *= *IFCMATERIAL\(.*\);)', rb'\1\n\1'),
                   (rb'#(\d+)( *= *IFCREL(?:ASSOCIATESMATERIAL|DEFINESBYTYPE)\(.*\);)',
                    rb'\g<0>\n#77\1\2')]
        for path in sample_paths():
            if os.path.basename(path) in ('house_IFC2X3.ifc', 'house_IFC4.ifc'):
                made = self.compare_spoilt(path, changes)
                self.assertIn(set(made), (set(), {pattern for pattern, _ in changes}))

    def compare_spoilt(self, path, changes):
        """How often each change was made; nothing where the release of the model was not built."""
        made = Counter()
        if schema_facts.choose_release(identifier_of(path)) not in built_releases():
            return made
        with open(path, 'rb') as file:
            data = file.read()
        for pattern, instead in changes:
            with self.subTest(os.path.basename(path), pattern=pattern):
                spoilt, made[pattern] = re.subn(pattern, instead, data)
                self.write('spoilt.ifc', spoilt)
                self.assertTrue(self.compare(self.path('spoilt.ifc')))
        return +made


@unittest.skipUnless(real_paths(), f'no models of other makers in {REAL_MODELS}')
class RealModels(CheckTest):

    def test_models_of_other_makers(self):
        compared = Counter()
        for path in real_paths():
            # Any release may serve what none has.
            release = schema_facts.choose_release(identifier_of(path))
            if not {release} - {None} <= set(built_releases()) or (
                    release is None and not set(RELEASES) <= set(built_releases())):
                continue
            with self.subTest(os.path.relpath(path, REAL_MODELS)):
                compared[self.compare(path)] += 1
        self.assertGreater(compared[True], 3)
        self.assertLess(compared[False], 3)


if __name__ == '__main__':
    unittest.main()

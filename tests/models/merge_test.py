#!/usr/bin/env python3
"""Models that belong together, merged: every record arrives, every reference leads to its own."""

import glob
import itertools
import os
import re
import unittest
from collections import Counter

import merged_form
import program
import step_text
from program import DONE, ModelTest, REAL_MODELS, SAMPLES, WRITTEN_WITH_REPORTS

_REFERENCE = re.compile(rb'#\d+')
_STRING = re.compile(rb"'(?:[^']|'')*'")
_GUID = re.compile(rb'[0-3][0-9A-Za-z_$]{21}\Z')


class Merge(ModelTest):

    def check(self, paths):
        """Merges files and looks at the result in three ways: as it stands, record by record
        against the inputs, and byte by byte against what the rules say."""
        models = [program.model_of(path) for path in paths]
        self.need_release(models[0].identifier)
        wanted = merged_form.Merged(models)
        status = WRITTEN_WITH_REPORTS if wanted.new_guids else DONE
        written = self.merge([self.copy(path) for path in paths], '--ignore-units', status=status)
        self.check_alone(written, wanted)
        self.check_against_inputs(written, wanted)
        shown, new_guids = wanted.with_placeholders(written)
        self.assert_same_file(wanted.text(), shown)
        self.check_new_guids(new_guids, wanted, written)
        self.check_fixpoint('merged.ifc', {rule for model in models for rule in model.rules})

    def check_alone(self, written, wanted):
        """What holds whatever numbers the records get."""
        result = step_text.StepFile(written)      # fails where a number stands twice
        classes = Counter(record.name for record in result.records.values())
        self.assertEqual(classes['IFCPROJECT'], 1)
        inputs = sum((Counter(model.lines[number].name for number in kept)
                      for model, kept in zip(wanted.models, wanted.kept)), Counter())
        self.assertEqual(inputs - classes, Counter(IFCPROJECT=len(wanted.models) - 1))
        self.assertEqual(classes - inputs, Counter())
        undefined = {number for record in result.records.values()
                     for number in step_text.references_in(record.arguments)
                     if number not in result.records}
        self.assertEqual(undefined, set())

    def check_against_inputs(self, written, wanted):
        """Each record of a source is in the result under the number that the rules give it, and its
        references lead to where the records that it named have gone."""
        lines = dict(re.findall(rb'^#(\d+)=(.*)$', written, re.M))
        lines = {int(number): text for number, text in lines.items()}
        arrived = set()
        for index, (model, numbering) in enumerate(zip(wanted.models, wanted.numbering)):
            self.assertEqual(numbering.keys(), wanted.kept[index])
            for number, result in numbering.items():
                if wanted.sources[result] != (index, number):
                    self.assertEqual(model.lines[number].name, 'IFCPROJECT')
                    self.assertIn(result, wanted.projects)
                    continue
                self.assertNotIn(result, arrived)
                arrived.add(result)
                found = [int(reference[1:]) for reference in
                         _REFERENCE.findall(_STRING.sub(b"''", lines[result]))]
                named = [piece for piece in model.lines[number].pieces if isinstance(piece, int)]
                self.assertEqual(found, [numbering[reference] for reference in named])
        self.assertEqual(arrived, lines.keys())

    def check_new_guids(self, new_guids, wanted, written):
        self.assertEqual(len(new_guids), len(wanted.new_guids))
        for guid in new_guids:
            self.assertRegex(guid, _GUID)
            self.assertEqual(written.count(b"'%s'" % guid), 1)


class Samples(Merge):

    def test_ArchitectureAndStructureOfOneBuilding(self):
        for release in ('IFC2X3', 'IFC4'):
            pair = [os.path.join(SAMPLES, f'office_{part}_{release}.ifc')
                    for part in ('architecture', 'structure')]
            for paths in (pair, pair[::-1]):
                with self.subTest(paths=list(map(os.path.basename, paths))):
                    self.check(paths)

    def test_HouseOfEveryReleaseWithItself(self):
        for path in glob.glob(os.path.join(SAMPLES, 'house_*.ifc')):
            with self.subTest(model=os.path.basename(path)):
                self.check([path, path])

    def test_ThreeModelsWhoseNumbersAllClash(self):
        names = ('house_IFC4', 'office_architecture_IFC4', 'office_structure_IFC4')
        self.check([os.path.join(SAMPLES, name + '.ifc') for name in names])


def real(pattern):
    return sorted(glob.glob(os.path.join(REAL_MODELS, pattern)))


@unittest.skipUnless(os.path.isdir(REAL_MODELS), f'no models of other makers in {REAL_MODELS}')
class RealModels(Merge):

    def check_all(self, sets):
        for paths in sets:
            with self.subTest(paths=list(map(os.path.basename, paths))):
                self.check(paths)

    def both_orders(self, pattern, count):
        paths = real(pattern)
        self.assertEqual(len(paths), count)
        self.check_all([paths, paths[::-1]])

    def test_Duplex(self):
        self.both_orders('duplex/*.ifc', 2)

    def test_RailwaySections(self):
        paths = sorted(real('rfi/*.ifc'), key=os.path.getsize)
        self.assertEqual(len(paths), 3)
        self.check_all([paths[:2], paths])

    def test_BuildingWithOneProjectGuidInAllFiles(self):
        paths = real('pcert/*.ifc')
        self.assertEqual(len(paths), 3)
        self.check_all([*itertools.combinations(paths, 2), paths, paths[::-1]])

    def test_Schependomlaan(self):
        self.both_orders('schependomlaan/*.ifc', 3)

    def test_ModelAndItsSecondVersion(self):
        self.both_orders('tekla/*.ifc', 2)


if __name__ == '__main__':
    unittest.main()

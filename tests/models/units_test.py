#!/usr/bin/env python3
"""Models of different units that were merged say the same in those of the SI as each by itself."""

import math
import os
import re
import unittest
from collections import Counter

import measured_model
import program
import schema_facts
import si_values
import step_text
import validity
import what_stays
from program import ModelTest, REAL_MODELS, SAMPLES

_CONVERTED = ('--units', 'convert')


def sample(name):
    return os.path.join(SAMPLES, f'{name}.ifc')


def in_units(path, length, angle):
    """A sample with other units assigned, the numbers as they were: another building, then."""
    with open(path, encoding='latin-1', newline='') as file:
        text = file.read()
    number = max(int(one) for one in re.findall(r'^#(\d+)\s*=', text, re.M))
    records = []

    def unit(kind, name, factor, base):
        nonlocal number
        number += 3
        records.append(f'#{number}=IFCCONVERSIONBASEDUNIT(#{number - 2},.{kind}UNIT.,\'{name}\','
                       f'#{number - 1});\n'
                       f'#{number - 1}=IFCMEASUREWITHUNIT(IFCRATIOMEASURE({factor}),#{number + 1});\n'
                       f'#{number - 2}=IFCDIMENSIONALEXPONENTS(0,0,0,0,0,0,0);\n'
                       f'#{number + 1}=IFCSIUNIT(*,.{kind}UNIT.,$,.{base}.);\n')
        number += 1
        return f'#{number - 1}'

    units = [unit('LENGTH', *length, 'METRE'), unit('PLANEANGLE', *angle, 'RADIAN')]
    assignment = re.search(r'=\s*IFCUNITASSIGNMENT\s*\(\s*\(([^)]*)\)\s*\)\s*;', text)
    kept = []
    for one in re.findall(r'#\d+', assignment[1]):
        record = re.search(rf'^{one}\s*=(.*?);', text, re.M | re.S)[1]
        if not re.search(r'\.(LENGTH|PLANEANGLE)UNIT\.', record):
            kept.append(one)
    text = text.replace(assignment[0], f'=IFCUNITASSIGNMENT(({",".join([*kept, *units])}));')
    head, _, tail = text.rpartition('ENDSEC;')
    return (head + ''.join(records) + 'ENDSEC;' + tail).encode('latin-1')


FOOT, RADIAN = ('FOOT', 0.3048), ('RADIANS', 1.0)


class Converted(ModelTest):

    def merged(self, names):
        self.merge(names, *_CONVERTED, output='merged.ifc')
        return step_text.read(self.path('merged.ifc'))

    def check_values(self, names):
        """Merges models that lie in the folder."""
        inputs = [step_text.read(self.path(name)) for name in names]
        merged = self.merged(names)
        wanted = sorted(value for one in inputs for value in si_values.Model(one).values())
        self.assertGreater(len(wanted), 5)
        self.assert_same_values(wanted, si_values.Model(merged).values())

    def check_what_stays(self, names):
        """To the last bit, beside a merge that converts nothing."""
        exact = ('--numbers', 'exact')
        told, converted = (
            what_stays.of_file(step_text.StepFile(self.merge(names, *options, *exact)))
            for options in (('--ignore-units',), _CONVERTED))
        self.assertEqual((Counter(), Counter()), (told - converted, converted - told))

    def check(self, names):
        self.check_values(names)
        # A merge may break rules of its own: two objects of one GUID, say.
        self.merge(names, '--ignore-units', output='told.ifc')
        self.assertEqual(self.broken('merged.ifc') - self.broken('told.ifc'), Counter())

    def assert_same_values(self, wanted, found):
        """Units whose sizes are within a billionth of each other count as one."""
        self.assertEqual([one[:3] for one in wanted], [one[:3] for one in found])
        for one, other in zip(wanted, found):
            self.assertTrue(math.isclose(one[3], other[3], rel_tol=1e-9, abs_tol=1e-12),
                            (one, other))

    def broken(self, name):
        return validity.broken_in(self.read(name))


class Units(Converted):

    def need(self, *releases):
        built = program.built_releases()
        return [release for release in releases if release in built]

    def test_FeetIntoMillimetresAndBack(self):
        for release in self.need('IFC2X3'):
            house = self.copy(sample(f'house_{release}'))
            office = self.copy(sample(f'office_architecture_{release}'))
            self.check([office, house])
            self.check([house, office])

    def test_EveryReleaseInFeetAndRadians(self):
        for path in program.sample_paths():
            if not self.need(schema_of(path)):
                continue
            with self.subTest(os.path.basename(path)):
                first = self.write('first.ifc', in_units(path, FOOT, RADIAN))
                self.check([first, self.copy(path)])

    def test_EveryMeasureInEveryKindOfProperty(self):
        for namespace in program.built_releases():
            release = schema_facts.release(namespace)
            self.assertGreater(len(measured_model.measures_of(release)), 60)
            names = [self.write(f'{choice}.ifc', with_measures(namespace, choice))
                     for choice in range(2)]
            for order in (names, names[::-1]):
                with self.subTest(release=namespace, order=order):
                    self.check_values(order)

    def test_WhatHasNoUnitStaysToTheLastBit(self):
        for path in program.sample_paths():
            if not self.need(schema_of(path)):
                continue
            with self.subTest(os.path.basename(path)):
                first = self.write('first.ifc', in_units(path, FOOT, RADIAN))
                self.check_what_stays([first, self.copy(path)])

    def test_WithoutTheOptionNoNumberChanges(self):
        for release in self.need('IFC4'):
            path = sample(f'house_{release}')
            names = [self.write('first.ifc', in_units(path, FOOT, RADIAN)), self.copy(path)]
            self.merge(names, '--ignore-units', output='told.ifc')
            self.merge(names, '--ignore-units', '--units', 'keep', output='kept.ifc')
            self.assertEqual(self.read('told.ifc'), self.read('kept.ifc'))


def with_measures(namespace, choice):
    """A house with a property of each kind for each measure, in other units for each choice."""
    path = sample(f'house_{namespace}')
    with open(path, encoding='latin-1', newline='') as file:
        text = file.read()
    known = step_text.read(path).records
    numbers = {record.name: number for number, record in known.items()}
    records, units = measured_model.records_of(
        schema_facts.release(namespace), max(known), choice,
        f"#{numbers['IFCBUILDING']}", f"#{numbers['IFCOWNERHISTORY']}")
    text = re.sub(r'IFCUNITASSIGNMENT[^;]*;', f'IFCUNITASSIGNMENT(({",".join(units)}));', text)
    head, _, tail = text.rpartition('ENDSEC;')
    return (head + records + 'ENDSEC;' + tail).encode('latin-1')


@unittest.skipUnless(os.path.isdir(REAL_MODELS), f'no models of other makers in {REAL_MODELS}')
class RealModels(Converted):

    def test_FeetMillimetresAndMetres(self):
        names = [os.path.join(REAL_MODELS, *path) for path in (
            ('schependomlaan', 'IFC-staal.ifc'), ('duplex', 'Duplex_Electrical_20121207.ifc'),
            ('duplex', 'Duplex_A_20110907.ifc'))]
        self.need_release('IFC2X3')
        names = [self.copy(name) for name in names]
        for order in (names, names[::-1]):
            self.check_values(order)
            self.check_what_stays(order)


def schema_of(path):
    return schema_facts.choose_release(program.identifier_of(path))


if __name__ == '__main__':
    unittest.main()

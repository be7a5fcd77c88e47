#!/usr/bin/env python3
"""Models that count from different points, and are on one map, stand behind a merge where the map
has them."""

import math
import os
import unittest
from collections import Counter

import halves
import map_models
import program
import validity
from map_models import Measured, Survey, tilted, turned
from program import ModelTest, SAMPLES

# A micrometre.
_TOLERANCE = 1e-6
_HOUSES = ('IFC2X3', 'IFC4', 'IFC4X3_ADD2')
_SURVEYS = (Survey(turned(10.0, (3.0, 4.0, 5.0))),
            Survey(turned(-33.3, (-120.5, 77.25, 2.0)), map_unit='FOOT'),
            Survey(turned(77.0, (1000.0, 2000.0, -4.0)), world=turned(12.0, (5.0, 6.0, 7.0))),
            Survey(world=tilted(3.0, (0.0, 0.0, 100.0)), map_unit='MILLIMETRE'))
_CONVERSIONS = ('IfcCoordinateOperation', 'IfcCoordinateReferenceSystem')


class OnOneMap(ModelTest):

    def inputs(self, sample, surveys=_SURVEYS):
        """The names of the models, and where their products are on the map."""
        model = program.model_of(os.path.join(SAMPLES, sample + '.ifc'))
        self.need_release(model.identifier)
        names = [self.write(f'{place}.ifc', Measured(model.text(), survey).bytes)
                 for place, survey in enumerate(surveys)]
        places = [map_models.MapReader(self.read(name)).products() for name in names]
        for one in places[1:]:
            self.assertLess(map_models.farthest_apart(one, places[0]), _TOLERANCE)
        return names, places[0]

    def check(self, names, places, *options, moves=()):
        """Every product of each model is where it was."""
        with self.subTest(models=names, options=' '.join(options)):
            written = self.merge(names, *options, *moves)
            reader = map_models.MapReader(written)
            found = reader.products()
            self.assertEqual(Counter(one[0] for one in places * len(names)),
                             Counter(one[0] for one in found))
            self.assertLess(map_models.farthest_apart(found, places), _TOLERANCE)
            self.assertEqual(1, self.conversions_in(reader))
            told = validity.broken_in(self.merge(names, *moves, output='told.ifc'))
            inputs = [validity.broken_in(self.read(name)) for name in names]
            self.assertEqual(
                Counter(), validity.newly_broken(validity.broken_in(written), inputs, told))

    def conversions_in(self, reader):
        if reader.release.is_entity('IFCMAPCONVERSION'):
            found = [len(reader.of_class(entity)) for entity in _CONVERSIONS]
        else:
            found = Counter(reader.of(number, 'Name') for number in reader.of_class(
                'IfcPropertySet') if reader.of(number, 'Name').startswith('ePset_')).values()
        self.assertEqual(2, len(found))
        [count] = set(found)
        return count

    def test_EveryProductIsWhereItWas(self):
        for release in _HOUSES:
            with self.subTest(release=release):
                names, places = self.inputs(f'house_{release}')
                self.check(names, places, '--place', 'map')
                self.check(names[::-1], places, '--place', 'map', '--contexts', 'join', '--prune')

    def test_GridsAndAlignmentsAreWhereTheyWere(self):
        for sample in ('office_structure_IFC2X3', 'office_structure_IFC4', 'railway_IFC4X3_ADD2'):
            with self.subTest(sample=sample):
                names, places = self.inputs(sample)
                self.check(names, places, '--place', 'map')

    def test_AFirstModelThatIsShownElsewhereStaysOnTheMap(self):
        for release in ('IFC2X3', 'IFC4'):
            with self.subTest(release=release):
                names, places = self.inputs(f'house_{release}', _SURVEYS[:3])
                if release == 'IFC2X3':
                    # Told offsets are in a foot of 32 bits; the centre is not worse for it.
                    moves = ('--center', '1000,-200,30')
                else:
                    moves = ('--center', '1000,-200,30', '--offset', '1=12345,-678,90')
                self.check(names, places, '--place', 'map', moves=moves)

    def test_OneBuildingIsWhereItWas(self):
        for release in ('IFC2X3', 'IFC4'):
            names, places = self.inputs(f'house_{release}')
            for order in (names, names[::-1]):
                written = self.merge(order, '--one-building')
                reader = map_models.MapReader(written)
                found = reader.products()
                self.assertEqual(sorted(one[0] for one in places), sorted(one[0] for one in found))
                self.assertLess(map_models.farthest_apart(found, places), _TOLERANCE)
                self.assertEqual(1, self.conversions_in(reader))
                self.assertEqual(1, len(reader.of_class('IfcGeometricRepresentationContext')))

    def test_WithoutTheOptionTheyStandBesideEachOther(self):
        names, places = self.inputs('house_IFC4', _SURVEYS[:2])
        found = map_models.MapReader(self.merge(names)).products()
        self.assertGreater(map_models.farthest_apart(found, places), 1.0)

    def test_AnExtractStaysOnTheMap(self):
        [name], places = self.inputs('house_IFC4', _SURVEYS[:1])
        result = program.run(['extract', '--quiet', name, '-o', 'out.ifc', '--select', 'IfcWall',
                              '--offset', '1000,2000,3000', '--place', 'map'], self.folder)
        self.assertEqual((result.status, result.errors), (program.DONE, ''))
        found = map_models.MapReader(self.read('out.ifc')).products()
        self.assertGreater(len(places), len(found))
        self.assertLess(map_models.farthest_apart(found, places), _TOLERANCE)


class ThreeOffices(ModelTest):
    """A building in other length units, angle units and coordinates for each of its parts."""

    def check(self, release):
        self.need_release(release)
        whole, parts = map_models.building_of_offices(release)
        names = [self.write(f'{place}.ifc', part) for place, part in enumerate(parts)]
        joined = self.merge(names, '--one-building')
        wanted, found = halves.tree_of(whole), halves.tree_of(joined)
        self.assertEqual((Counter(), Counter()), (wanted - found, found - wanted))
        reader = map_models.MapReader(joined)
        places = map_models.MapReader(whole).products()
        self.assertEqual(len(places), len(reader.products()))
        elements = [one for one in reader.products() if one[0] in {place[0] for place in places}]
        self.assertLess(map_models.farthest_apart(elements, places), _TOLERANCE)
        for entity in ('IfcProject', 'IfcSite', 'IfcBuilding', 'IfcGeometricRepresentationContext'):
            self.assertEqual(1, len(reader.of_class(entity)), entity)
        self.check_values(whole, joined)
        told = self.merge(names, '--ignore-units', output='told.ifc')
        inputs = [validity.broken_in(part) for part in parts]
        self.assertEqual(Counter(), validity.newly_broken(
            validity.broken_in(joined), inputs, validity.broken_in(told)))

    def check_values(self, whole, joined):
        """Shared ones are there once, so that it is a matter of which there are."""
        wanted, found = map_models.values_of(whole), map_models.values_of(joined)
        for some, others in ((wanted, found), (found, wanted)):
            for one in some:
                self.assertTrue(any(one[:3] == other[:3] and math.isclose(
                    one[3], other[3], rel_tol=1e-9, abs_tol=1e-9) for other in others), one)

    def test_MakeTheBuildingInIFC2X3(self):
        self.check('IFC2X3')

    def test_MakeTheBuildingInIFC4(self):
        self.check('IFC4')

    def test_MakeTheBuildingInIFC4X3(self):
        self.check('IFC4X3_ADD2')


if __name__ == '__main__':
    unittest.main()

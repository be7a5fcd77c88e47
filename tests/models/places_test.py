#!/usr/bin/env python3
"""Every product stands where it stood in its own file, moved by its offset, with the points of its
shape, in the releases and on the grids that web-ifc does not read (for others there is
product_boxes_test.py)."""

import os
import re
import unittest
from collections import Counter

import grid_models
import halves
import program
import schema_facts
import step_text
import written_form
from map_models import house_bytes
from placed_points import PlacesReader
from program import ModelTest, SAMPLES

_OLD = ('IFC2X_FINAL', 'IFC2X2_PLATFORM', 'IFC2X2_FINAL')
_ALL = (*_OLD, 'IFC2X3', 'IFC4', 'IFC4X1', 'IFC4X2', 'IFC4X3_ADD2', 'IFC4X4')
# Where each model is shown, in millimetres.
_OFFSETS = ((0, 0, 0), (12500, -3000.5, 250))
_APART = ((), ('--contexts', 'join'), ('--guids', 'renew', '--stamp'), ('--guids', 'join'),
          ('--prune',), ('--share-equal',), ('--place', 'map'))
# What lets sites, buildings and storeys give way, wherever they stand.
_TREES = (('--tree', 'one'), ('--one-building',))
_UNITS = ('METRE', 'MILLIMETRE', 'FOOT')
_IN_FIRST_UNITS = ('--units', 'convert')


def places_of(data):
    return PlacesReader(data).products()


def by_name(product):
    return product.entity, product.name


def by_guid(product):
    return product.entity, product.guid, product.name


def without_partner(wanted, found, key, shared=False):
    """Products of either side that have none of the other with their place and shape. `shared`: one
    may be the partner of several."""
    if shared:
        return without_like(wanted, found, key), without_like(found, wanted, key)
    left = list(found)
    alone = []
    for product in wanted:
        partner = next((place for place, one in enumerate(left)
                        if key(one) == key(product) and product.is_like(one)), None)
        if partner is None:
            alone.append(product)
        else:
            del left[partner]
    return alone, left


def without_like(some, others, key):
    return [product for product in some
            if not any(key(one) == key(product) and product.is_like(one) for one in others)]


class Places(ModelTest):

    def models(self, release, make, units=_UNITS[:1] * 2):
        """The names of models of one release, made by a function for each of the units."""
        self.need_release(release)
        return [self.write(f'{place}.ifc', make(release, unit)) for place, unit in enumerate(units)]

    def merged(self, names, options, moves=()):
        offsets = []
        for place, offset in enumerate(moves):
            offsets += ['--offset', f'{place + 1}=' + ','.join(map(str, offset))]
        return places_of(self.merge(names, '--ignore-units', *offsets, *options))

    def assert_no_one_alone(self, sides):
        """Tells who they are and where they stand, and not all of their points."""
        told = [[(*by_guid(product), product.points[:3]) for product in side] for side in sides]
        self.assertEqual([[], []], told)

    def levels(self, release):
        facts = schema_facts.release(release)
        return lambda product: (facts.is_a(product.entity, 'IfcSpatialStructureElement')
                                and product.entity != 'IFCSPACE')

    def check_beside_itself(self, release, make):
        names = self.models(release, make)
        wanted = [product.moved(offset) for name, offset in zip(names, _OFFSETS)
                  for product in places_of(self.read(name))]
        is_level = self.levels(release)
        for options in (*_APART, *_TREES):
            with self.subTest(release=release, options=' '.join(options)):
                found = self.merged(names, options, _OFFSETS)
                missing, others = without_partner(wanted, found, by_name)
                gone = [product for product in missing if is_level(product)]
                self.assert_no_one_alone(([one for one in missing if one not in gone], others))
                # All have the GUID of one that stands elsewhere.
                self.assertEqual(
                    ['IFCSITE', 'IFCBUILDING', 'IFCBUILDINGSTOREY', 'IFCBUILDINGSTOREY']
                    if options in _TREES else [], [product.entity for product in gone])

    def check_in_its_place(self, release, make):
        names = self.models(release, make)
        wanted = places_of(self.read(names[0]))
        for options in (('--guids', 'join'), ('--guids', 'join', '--contexts', 'join', '--prune'),
                        ('--one-building',)):
            with self.subTest(release=release, options=' '.join(options)):
                self.assert_no_one_alone(
                    without_partner(wanted, self.merged(names, options), by_guid))

    def check_in_other_units(self, release, make):
        names = self.models(release, make, _UNITS)
        wanted = [product for name in names for product in places_of(self.read(name))]
        for order in (names, names[::-1]):
            with self.subTest(release=release, first=order[0]):
                found = self.merged(order, _IN_FIRST_UNITS)
                self.assert_no_one_alone(without_partner(wanted, found, by_guid))
                joined = self.merged(order, ('--one-building',))
                # What differs in its last digits stays, with a GUID of its own.
                self.assert_no_one_alone(without_partner(wanted, joined, by_name, shared=True))

    def check_halves(self, release, data, seed):
        self.need_release(release)
        model = written_form.Model(step_text.StepFile(data))
        names = [self.write(f'{place}.ifc', half)
                 for place, half in enumerate(halves.Cut(model, seed).halves)]
        wanted = places_of(data)
        is_level = self.levels(release)
        for order in (names, names[::-1]):
            with self.subTest(release=release, order=order):
                found = self.merged(order, ('--one-building',))
                for one in (is_level, lambda product: not is_level(product)):
                    # The second half has other GUIDs and spellings for its levels.
                    key = (lambda product: product.entity) if one is is_level else by_guid
                    self.assert_no_one_alone(without_partner(
                        list(filter(one, wanted)), list(filter(one, found)), key))


class Houses(Places):

    def check(self, check):
        for release in _OLD:
            if release in program.built_releases():
                check(release)

    def test_StandBesideThemselves(self):
        self.check(lambda release: self.check_beside_itself(release, house_bytes))

    def test_StandInTheirOwnPlace(self):
        self.check(lambda release: self.check_in_its_place(release, house_bytes))

    def test_StandWhereTheyStoodInOtherUnits(self):
        self.check(lambda release: self.check_in_other_units(release, house_bytes))

    def test_HalvesStandWhereTheWholeStands(self):
        for seed, release in enumerate(_ALL):
            if release in program.built_releases():
                with open(os.path.join(SAMPLES, f'house_{release}.ifc'), 'rb') as file:
                    self.check_halves(release, file.read(), seed)


class Grids(Places):
    """Columns stand where axes of grids cross, and plates on the columns."""

    def check(self, check):
        for release in _ALL:
            if release in program.built_releases():
                check(release, grid_models.frame_bytes)

    def test_StandBesideThemselves(self):
        self.check(self.check_beside_itself)

    def test_StandInTheirOwnPlace(self):
        self.check(self.check_in_its_place)

    def test_StandWhereTheyStoodInOtherUnits(self):
        self.check(self.check_in_other_units)


    def test_WhatAnotherModelHasOnAGridThatIsOneStandsWhereItStood(self):
        for release in _ALL:
            if release not in program.built_releases():
                continue
            own = grid_models.frame_bytes(release)
            # Columns and plates of its own, and one of them elsewhere.
            other = re.sub(rb"((?:IFCCOLUMN|IFCBUILDINGELEMENTPROXY)\('.)([^']{21})",
                           lambda match: match[1] + match[2][::-1], own)
            other = other.replace(b'(0.25,-0.5,0.75)', b'(0.25,-1.5,0.75)')
            names = [self.write('one.ifc', own), self.write('other.ifc', other)]
            wanted = {product.guid: product for data in (other, own) for product in places_of(data)}
            for options in (('--guids', 'join'), ('--one-building',)):
                with self.subTest(release=release, options=' '.join(options)):
                    self.assert_no_one_alone(without_partner(
                        wanted.values(), self.merged(names, options), by_guid))


class Reader(unittest.TestCase):
    """What stands elsewhere, or has another shape, has no partner."""

    def setUp(self):
        self.data = grid_models.frame_bytes('IFC4')
        self.products = places_of(self.data)

    def changed(self, pattern, text):
        """The names of the products that one change of the text moves."""
        data, count = re.subn(pattern, text, self.data, count=1)
        self.assertEqual(1, count, pattern)
        alone, others = without_partner(self.products, places_of(data), by_guid)
        self.assertEqual([product.guid for product in alone], [product.guid for product in others])
        return Counter(product.name for product in alone)

    def test_AModelIsLikeItself(self):
        self.assertEqual(([], []), without_partner(self.products, places_of(self.data), by_guid))
        self.assertEqual(self.products[:1], without_partner(self.products, self.products[1:],
                                                            by_guid)[0])

    def test_AMovedStoreyMovesWhatIsInIt(self):
        found = self.changed(rb'\(\(0\.,0\.,3\.5\)\)', b'((0.,0.,3.5002))')
        self.assertEqual(1 + len(self.products[4:]) // 2, sum(found.values()))

    def test_AMovedGridMovesWhatIsOnIt(self):
        found = self.changed(rb'\(\(2\.,1\.,0\.\)\)', b'((2.0002,1.,0.))')
        self.assertEqual(len(self.products[4:]) // 2, sum(found.values()))

    def test_AMovedAxisMovesWhatIsOnIt(self):
        found = self.changed(rb'\(\(6\.,-1\.\)\)(.*\n.*)\(\(6\.,12\.\)\)',
                             rb'((6.0002,-1.))\1((6.0002,12.))')
        self.assertEqual({'Axes', 'beside', 'plate of beside', 'along', 'plate of along'},
                         set(found))

    def test_AnAxisTheOtherWayRoundTurnsWhatIsOnIt(self):
        """And moves what stands at an offset from it."""
        found = self.changed(rb"(IFCGRIDAXIS\('11.0',#\d+),\.T\.", rb'\1,.F.')
        self.assertEqual({'Axes', 'told from what', 'plate of told from what'}, set(found))

    def test_AnOffsetFromAnAxisMovesWhatIsOnIt(self):
        for offsets in (rb'(0.2502,-0.5,0.75)', rb'(0.25,-0.5002,0.75)', rb'(0.25,-0.5,0.7502)'):
            self.assertEqual(Counter(['beside', 'plate of beside']),
                             self.changed(rb'\(0\.25,-0\.5,0\.75\)', offsets))

    def test_ADirectionTurnsWhatIsPlacedAlongIt(self):
        self.assertEqual(Counter(['along', 'plate of along'] * 2),
                         self.changed(rb'\(\(0\.6,0\.8,0\.\)\)', b'((0.6001,0.8,0.))'))

    def test_AShapeOfOthersChangesThem(self):
        columns = sum(product.entity == 'IFCCOLUMN' for product in self.products)
        for pattern, text in ((rb',0\.4,0\.3\)', b',0.4002,0.3)'),
                              (rb'\(\(0\.,0\.1,0\.\)\)', b'((0.,0.1002,0.))')):
            found = self.changed(pattern, text)
            self.assertEqual(columns, sum(found.values()))

    def test_AMovedUseOfAShapeChangesOneProduct(self):
        self.assertEqual(Counter(['plain']),
                         self.changed(rb'\(\(0\.,0\.,0\.05\)\)', b'((0.,0.,0.0502))'))

    def test_AnotherClassOrTextInAShapeIsSeen(self):
        self.assertEqual(Counter(['plain']),
                         self.changed(rb"'MappedRepresentation'", b"'MappedRepresentations'"))
        self.assertEqual({'Axes'}, set(self.changed(rb"IFCGRIDAXIS\('B'", b"IFCGRIDAXIS('b'")))

    def test_WhatIsNearerThanTheToleranceIsAtItsPlace(self):
        self.assertEqual(Counter(), self.changed(rb'\(\(2\.,1\.,0\.\)\)', b'((2.00005,1.,0.))'))


if __name__ == '__main__':
    unittest.main()

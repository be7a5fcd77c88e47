#!/usr/bin/env python3
"""Every product stands where it stood in its own file, moved by its offset, and is what it was: its
class, name and type, as web-ifc reads them. See web_ifc_test.py for where that comes from."""

import glob
import json
import os
import subprocess
import sys
import unittest
from typing import NamedTuple

import halves
import program
import web_ifc_test
from program import ModelTest, REAL_MODELS, SAMPLES

_SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'web_ifc', 'product_boxes.js')
_SKIPPED = 77
# Of the size of a product, and in metres.
_TOLERANCE, _LEAST_TOLERANCE = 1e-4, 1e-4

PRUNED = ('--contexts', 'join', '--prune', '--stamp', '--header', 'new')
RENEWED = (*PRUNED, '--guids', 'renew')
ONE_BUILDING = ('--one-building', '--share-equal')
# Where each model is shown, in millimetres.
_UNMOVED = [(0, 0, 0)] * 3
_OFFSETS = [(0, 0, 0), (12500, -3000.5, 250), (-100000, 0.25, 8)]


class Product(NamedTuple):
    entity: str
    guid: str
    name: 'str | None'
    type: 'str | None'
    box: list

    def moved(self, offset):
        return self._replace(box=[value + offset[axis % 3] / 1000
                                  for axis, value in enumerate(self.box)])

    def stands_where(self, other):
        size = max(high - low for low, high in zip(self.box[:3], self.box[3:]))
        tolerance = max(_LEAST_TOLERANCE, _TOLERANCE * size)
        return all(abs(one - two) <= tolerance for one, two in zip(self.box, other.box))


def without_partner(wanted, found, key, shared=False):
    """Products of either side that have none of the other at their place. `shared`: one may be
    the partner of several."""
    places = {}
    for product in found:
        places.setdefault(key(product), []).append(product)
    taken, alone = set(), []
    for product in wanted:
        partner = next((one for one in places.get(key(product), ())
                        if (shared or id(one) not in taken) and product.stands_where(one)), None)
        if partner is None:
            alone.append(product)
        else:
            taken.add(id(partner))
    return alone, [product for product in found if id(product) not in taken]


def by_guid(product):
    return product[:4]


def by_name(product):
    return product.entity, product.name, product.type


class Boxes(ModelTest):
    installed = None

    def boxes(self, names):
        done = subprocess.run(['node', _SCRIPT, self.installed, *map(self.path, names)],
                              capture_output=True, text=True, timeout=600, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return [[Product(*one) for one in json.loads(line)] for line in done.stdout.splitlines()]

    def check(self, paths, choices, key=by_guid, moves=_OFFSETS):
        """Merges the models as each of the choices says. Without moves, one product may stand for
        several."""
        self.need_release(program.identifier_of(paths[0]))
        names = [self.copy(path) for path in paths]
        self.check_names(names, choices, key, moves)

    def check_names(self, names, choices, key, moves):
        offsets = []
        for place, offset in enumerate(moves[:len(names)]):
            offsets += ['--offset', f'{place + 1}=' + ','.join(map(str, offset))]
        outputs = [f'out{place}.ifc' for place in range(len(choices))]
        for options, output in zip(choices, outputs):
            self.merge(names, '--ignore-units', *offsets, *options, output=output)
        read = self.boxes([*names, *outputs])
        wanted = [product.moved(offset) for products, offset in zip(read[:len(names)], moves or _UNMOVED)
                  for product in products]
        self.assertGreater(len(wanted), 10)
        for options, found in zip(choices, read[len(names):]):
            with self.subTest(models=names, options=' '.join(options)):
                self.assertEqual(([], []), without_partner(wanted, found, key, shared=not moves))


class Samples(Boxes):

    def test_ArchitectureAndStructureOfOneBuilding(self):
        for release in ('IFC2X3', 'IFC4'):
            self.check([os.path.join(SAMPLES, f'office_{part}_{release}.ifc')
                        for part in ('architecture', 'structure')],
                       [(), PRUNED, RENEWED, ONE_BUILDING])

    def test_AHouseBesideItself(self):
        for release in ('IFC2X3', 'IFC4', 'IFC4X3_ADD2'):
            path = os.path.join(SAMPLES, f'house_{release}.ifc')
            self.check([path, path], [PRUNED, RENEWED, ONE_BUILDING], by_name)

    def test_AHouseInItsOwnPlace(self):
        for release in ('IFC2X3', 'IFC4'):
            path = os.path.join(SAMPLES, f'house_{release}.ifc')
            self.check([path, path], [ONE_BUILDING], by_guid, moves=())

    def test_HalvesOfAModelStandWhereTheWholeStands(self):
        for seed, release in enumerate(('IFC2X3', 'IFC4', 'IFC4X3_ADD2')):
            model = program.model_of(os.path.join(SAMPLES, f'house_{release}.ifc'))
            self.need_release(model.identifier)
            names = [self.write(f'{place}.ifc', half)
                     for place, half in enumerate(halves.Cut(model, seed).halves)]
            self.merge(names, '--one-building', output='joined.ifc')
            whole, joined = self.boxes([self.write('whole.ifc', model.text()), 'joined.ifc'])
            self.assertEqual(([], []), without_partner(whole, joined, by_guid))

    def test_WhatStandsElsewhereOrIsSomethingElseHasNoPartner(self):
        [products] = self.boxes([self.copy(os.path.join(SAMPLES, 'house_IFC4.ifc'))])
        first, *others = products
        self.assertEqual(([], []), without_partner(products, products[::-1], by_guid))
        for changed in (first.moved((0, 0, 20)), first._replace(name='x'),
                        first._replace(type='x'), first._replace(guid='x')):
            self.assertEqual(([first], [changed]),
                             without_partner(products, [changed, *others], by_guid))


@unittest.skipUnless(os.path.isdir(REAL_MODELS), f'no models of other makers in {REAL_MODELS}')
class RealModels(Boxes):

    def test_PartsOfOneHouse(self):
        self.check(sorted(glob.glob(os.path.join(REAL_MODELS, 'schependomlaan', '*.ifc'))),
                   [PRUNED, ONE_BUILDING], by_name)

    def test_BuildingOfThreeTrades(self):
        self.check(sorted(glob.glob(os.path.join(REAL_MODELS, 'pcert', '*.ifc'))), [RENEWED],
                   by_name)


if __name__ == '__main__':
    Boxes.installed = web_ifc_test.install()
    if Boxes.installed is None:
        sys.exit(_SKIPPED)
    unittest.main()

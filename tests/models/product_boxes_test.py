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
import map_models
import program
import units_test
import web_ifc_test
from program import ModelTest, REAL_MODELS, SAMPLES

_SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'web_ifc', 'product_boxes.js')
_SKIPPED = 77
# Of the size of a product, and in metres. Offsets in feet are that far from those in millimetres.
_TOLERANCE = 1e-4

PRUNED = ('--contexts', 'join', '--prune', '--stamp', '--header', 'new')
RENEWED = (*PRUNED, '--guids', 'renew')
ONE_BUILDING = ('--one-building',)
IN_FIRST_UNITS = ('--units', 'convert')
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

    def stands_where(self, other, tolerance=_TOLERANCE):
        size = max(high - low for low, high in zip(self.box[:3], self.box[3:]))
        tolerance *= max(1.0, size)
        return all(abs(one - two) <= tolerance for one, two in zip(self.box, other.box))


def without_partner(wanted, found, key, shared=False, tolerance=_TOLERANCE):
    """Products of either side that have none of the other at their place. `shared`: one may be
    the partner of several."""
    places = {}
    for product in found:
        places.setdefault(key(product), []).append(product)
    taken, alone = set(), []
    for product in wanted:
        partner = next((one for one in places.get(key(product), ())
                        if (shared or id(one) not in taken) and product.stands_where(one, tolerance)),
                       None)
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

    def check_names(self, names, choices, key, moves, tolerance=_TOLERANCE):
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
                self.assertEqual(([], []), without_partner(wanted, found, key, shared=not moves,
                                                           tolerance=tolerance))


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

    def test_PartsOfThreeOfficesStandWhereTheWholeStands(self):
        for release in ('IFC2X3', 'IFC4', 'IFC4X3_ADD2'):
            with self.subTest(release=release):
                self.need_release(release)
                whole, parts = map_models.building_of_offices(release)
                names = [self.write(f'{place}.ifc', part) for place, part in enumerate(parts)]
                self.merge(names, '--one-building', output='joined.ifc')
                wanted, found = self.boxes([self.write('whole.ifc', whole), 'joined.ifc'])
                self.assertEqual(([], []), without_partner(wanted, found, by_guid))

    def test_WhatStandsElsewhereOrIsSomethingElseHasNoPartner(self):
        [products] = self.boxes([self.copy(os.path.join(SAMPLES, 'house_IFC4.ifc'))])
        first, *others = products
        self.assertEqual(([], []), without_partner(products, products[::-1], by_guid))
        for changed in (first.moved((0, 0, 20)), first._replace(name='x'),
                        first._replace(type='x'), first._replace(guid='x')):
            self.assertEqual(([first], [changed]),
                             without_partner(products, [changed, *others], by_guid))


# A wall below half a space, a profile with an arc, a tube along a line and an arc from one parameter
# to another, a piece of a ring, a mesh: lengths in metres, angles in radians.
_SHAPES = """
#1=IFCPROJECT('0000000000000000000001',$,'p',$,$,$,$,(#5),#2);
#2=IFCUNITASSIGNMENT((#3,#4));
#3=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);
#4=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);
#5=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,#6,$);
#6=IFCAXIS2PLACEMENT3D(#7,$,$);
#7=IFCCARTESIANPOINT((0.,0.,0.));
#8=IFCDIRECTION((0.,0.,1.));
#9=IFCCARTESIANPOINT((0.,0.));
#10=IFCAXIS2PLACEMENT2D(#9,$);
#11=IFCDIRECTION((1.,0.,0.));
#20=IFCRECTANGLEPROFILEDEF(.AREA.,$,#10,2.,0.5);
#21=IFCEXTRUDEDAREASOLID(#20,#6,#8,3.);
#22=IFCCARTESIANPOINT((0.,0.,2.));
#23=IFCDIRECTION((0.5,0.,1.));
#24=IFCAXIS2PLACEMENT3D(#22,#23,$);
#25=IFCPLANE(#24);
#26=IFCHALFSPACESOLID(#25,.F.);
#27=IFCBOOLEANCLIPPINGRESULT(.DIFFERENCE.,#21,#26);
#30=IFCCIRCLE(#10,1.5);
#31=IFCTRIMMEDCURVE(#30,(IFCPARAMETERVALUE(0.5)),(IFCPARAMETERVALUE(2.5)),.T.,.PARAMETER.);
#32=IFCCARTESIANPOINT((-1.20171542332040,0.897708216156));
#33=IFCCARTESIANPOINT((1.31637384283,0.719138307906));
#34=IFCPOLYLINE((#32,#33));
#35=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#31);
#36=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#34);
#37=IFCCOMPOSITECURVE((#35,#36),.F.);
#38=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#37);
#39=IFCEXTRUDEDAREASOLID(#38,#6,#8,0.75);
#40=IFCCIRCLE(#6,2.);
#41=IFCTRIMMEDCURVE(#40,(IFCPARAMETERVALUE(0.25)),(IFCPARAMETERVALUE(1.75)),.T.,.PARAMETER.);
#42=IFCSWEPTDISKSOLID(#41,0.1,$,$,$);
#50=IFCCIRCLEPROFILEDEF(.AREA.,$,#51,0.25);
#51=IFCAXIS2PLACEMENT2D(#52,$);
#52=IFCCARTESIANPOINT((3.,0.));
#53=IFCDIRECTION((0.,1.,0.));
#54=IFCAXIS1PLACEMENT(#7,#53);
#55=IFCREVOLVEDAREASOLID(#50,#6,#54,1.25);
#60=IFCCARTESIANPOINTLIST3D(((0.,0.,0.),(1.,0.,0.),(0.,2.,0.),(0.,0.,3.)));
#61=IFCTRIANGULATEDFACESET(#60,$,.T.,((1,3,2),(1,2,4),(1,4,3),(2,3,4)),$);
"""


def shapes_model():
    records, number = _SHAPES, 100
    for item, kind in ((27, 'Clipping'), (39, 'SweptSolid'), (42, 'AdvancedSweptSolid'),
                       (55, 'SweptSolid'), (61, 'Tessellation')):
        records += (f"#{number}=IFCSHAPEREPRESENTATION(#5,'Body','{kind}',(#{item}));\n"
                    f'#{number + 1}=IFCPRODUCTDEFINITIONSHAPE($,$,(#{number}));\n'
                    f'#{number + 2}=IFCLOCALPLACEMENT($,#6);\n'
                    f"#{number + 3}=IFCBUILDINGELEMENTPROXY('{number:022}',$,'{kind} {number}',$,$,"
                    f'#{number + 2},#{number + 1},$,$);\n')
        number += 4
    return ("ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
            f"FILE_SCHEMA(('IFC4'));\nENDSEC;\nDATA;{records}ENDSEC;\nEND-ISO-10303-21;\n").encode()


class OtherUnits(Boxes):
    """Truth is what web-ifc reads of each file by itself, in metres."""

    def check_converted(self, names):
        self.check_names(names, [IN_FIRST_UNITS, ONE_BUILDING], by_name, moves=(), tolerance=1e-6)

    def test_AHouseInFeetAndAnOfficeInMillimetres(self):
        self.need_release('IFC2X3')
        house, office = (self.copy(os.path.join(SAMPLES, f'{name}_IFC2X3.ifc'))
                         for name in ('house', 'office_architecture'))
        self.check_converted([house, office])
        self.check_converted([office, house])

    def test_MetresAndMillimetres(self):
        self.need_release('IFC4')
        names = [self.copy(os.path.join(SAMPLES, f'{name}_IFC4.ifc'))
                 for name in ('office_architecture', 'house', 'office_structure')]
        self.check_converted(names)

    def test_ShapesInMetresAndRadiansAfterFeetAndDegrees(self):
        self.need_release('IFC4')
        house = os.path.join(SAMPLES, 'house_IFC4.ifc')
        first = self.write('first.ifc', units_test.in_units(house, units_test.FOOT,
                                                            ('DEGREE', 0.017453292519943295)))
        self.check_converted([first, self.write('shapes.ifc', shapes_model())])

    def test_AnAlignmentAfterFeet(self):
        self.need_release('IFC4X3_ADD2')
        railway, house = (os.path.join(SAMPLES, f'{name}_IFC4X3_ADD2.ifc')
                          for name in ('railway', 'house'))
        first = self.write('first.ifc', units_test.in_units(house, units_test.FOOT,
                                                            units_test.RADIAN))
        self.check_converted([first, self.copy(railway)])


@unittest.skipUnless(os.path.isdir(REAL_MODELS), f'no models of other makers in {REAL_MODELS}')
class RealModels(Boxes):

    def test_AHouseInFeetAndMetresAndSteelInMillimetres(self):
        names = [self.copy(os.path.join(REAL_MODELS, *path))
                 for path in (('schependomlaan', 'IFC-staal.ifc'),
                              ('duplex', 'Duplex_Electrical_20121207.ifc'),
                              ('duplex', 'Duplex_A_20110907.ifc'))]
        for turn in (names, names[::-1]):
            self.check_names(turn, [IN_FIRST_UNITS, ONE_BUILDING], by_name, moves=(),
                             tolerance=1e-6)

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

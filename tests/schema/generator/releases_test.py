#!/usr/bin/env python3
"""Facts about the nine releases: how many classes of each sort they give, and which values."""

import os
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
SCHEMA_DIR = os.path.normpath(os.path.join(HERE, '..', '..', '..', 'src', 'schema'))
sys.path.insert(0, SCHEMA_DIR)
sys.dont_write_bytecode = True

# pylint: disable=wrong-import-position
from generator.__main__ import load_schema  # noqa: E402
from generator.bindings import bindings_for  # noqa: E402
from generator.emit_tables import ALL_NAMESPACES  # noqa: E402
from generator.kinds import (attribute_kind, class_test_targets, lives_on,  # noqa: E402
                             used_enumerations, value_kind)
from generator.release import Release  # noqa: E402

RELEASES_DIR = os.path.join(SCHEMA_DIR, 'releases')
OVERRIDES = os.path.join(RELEASES_DIR, 'overrides.txt')


def load(namespace):
    return load_schema(os.path.join(RELEASES_DIR, namespace + '.schema'), OVERRIDES, namespace)


SCHEMAS = {namespace: load(namespace) for namespace in ALL_NAMESPACES}
FIRST_FOUR = ALL_NAMESPACES[:4]
FROM_IFC4 = ALL_NAMESPACES[4:]


def per_release(count):
    return [count(schema) for schema in SCHEMAS.values()]


def kind_of(namespace, entity, attribute):
    schema = SCHEMAS[namespace]
    declared = schema.entities[entity]
    found, = [one for one in declared.attributes if one.name == attribute]
    return attribute_kind(schema, declared, found), found.optional


def table(namespace, name):
    return {value.name: value.number for value in SCHEMAS[namespace].enumerations[name].values}


class Counts(unittest.TestCase):
    """In the order of ALL_NAMESPACES."""

    def test_entities(self):
        self.assertEqual([370, 300, 629, 653, 776, 801, 816, 876, 905],
                         per_release(lambda schema: len(schema.entities)))

    def test_value_classes(self):
        self.assertEqual([79, 97, 100, 100, 114, 114, 114, 114, 113],
                         per_release(lambda schema: len(schema.value_types())))

    def test_registry_rows(self):
        rows = [Release(schema, bindings_for(schema), 4, '').class_names()
                for schema in SCHEMAS.values()]
        self.assertEqual([449, 397, 729, 753, 890, 915, 930, 990, 1018], [len(row) for row in rows])
        self.assertEqual([449, 397, 729, 753, 890, 915, 930, 990, 1018],
                         [len({name.upper() for name in row}) for row in rows])

    def test_selects(self):
        self.assertEqual([22, 18, 41, 45, 59, 59, 59, 60, 61],
                         per_release(lambda schema: len(schema.selects) - len(schema.shared)))
        self.assertEqual(78, len({name for schema in SCHEMAS.values() for name in schema.selects
                                  if name not in schema.shared}))

    def test_enumerations(self):
        self.assertEqual([116, 49, 160, 163, 206, 209, 215, 243, 257],
                         per_release(lambda schema: len(used_enumerations(schema))))

    def test_classes_that_live_on_their_members(self):
        living = [[entity.name for entity in schema.entities.values() if lives_on(schema, entity)]
                  for schema in SCHEMAS.values()]
        self.assertEqual([58, 49, 84, 86, 79, 84, 85, 85, 85], [len(names) for names in living])
        self.assertEqual(126, len(set().union(*living)))

    def test_classes_that_attributes_refer_to(self):
        targets = {(namespace if name != 'IfcUnit' else 'IFC', name)
                   for namespace, schema in SCHEMAS.items() for name in class_test_targets(schema)}
        self.assertEqual(201, len(class_test_targets(SCHEMAS['IFC4X1'])))
        self.assertEqual(1589, len(targets))

    def test_distinct_tables(self):
        """By name and order of the values; the tables of boolean and logical are shared."""
        tables = {(name, tuple(value.name for value in schema.enumerations[name].values))
                  for schema in SCHEMAS.values() for name in used_enumerations(schema)}
        self.assertEqual(623, len(tables))
        self.assertEqual(338, len({name for name, _ in tables}))


class Enumerations(unittest.TestCase):
    def test_only_two_have_values_that_are_read_only(self):
        found = {(namespace, name): [value.name for value in enumeration.values if value.read_only]
                 for namespace, schema in SCHEMAS.items()
                 for name, enumeration in schema.enumerations.items()
                 if any(value.read_only for value in enumeration.values)}
        both = ['DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT',
                'DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_RIGHT']
        wanted = {(namespace, 'IfcDoorStyleOperationEnum'): both for namespace in ALL_NAMESPACES
                  if namespace not in ('IFC2X_FINAL', 'IFC4X3_ADD2')}
        wanted['IFC4X3_ADD2', 'IfcDoorTypeOperationEnum'] = both
        self.assertEqual(wanted, found)

    def test_inserted_door_values_have_the_numbers_5_and_6(self):
        for namespace in ALL_NAMESPACES:
            if namespace == 'IFC4X3_ADD2':
                continue
            numbers = table(namespace, 'IfcDoorStyleOperationEnum')
            self.assertEqual([4, 5, 6, 7, 19], [numbers[name] for name in (
                'DOUBLE_DOOR_SINGLE_SWING_OPPOSITE_RIGHT',
                'DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT',
                'DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_RIGHT', 'DOUBLE_SWING_LEFT', 'NOTDEFINED')])

    def test_door_types(self):
        for namespace in ('IFC4', 'IFC4X1', 'IFC4X2'):
            self.assertEqual([n for n in range(22) if n not in (5, 6)],
                             list(table(namespace, 'IfcDoorTypeOperationEnum').values()))
        numbers = table('IFC4X3_ADD2', 'IfcDoorTypeOperationEnum')
        self.assertEqual(list(range(27)), list(numbers.values()))
        self.assertEqual([5, 6, 7], [numbers[name] for name in (
            'DOUBLE_DOOR_SINGLE_SWING_OPPOSITE_RIGHT', 'DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT',
            'DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_RIGHT')])
        self.assertEqual(list(range(25)),
                         list(table('IFC4X4', 'IfcDoorTypeOperationEnum').values()))

    def test_derived_units_share_one_numbering(self):
        skipped = {'IFC2X_FINAL': [1, 23] + list(range(33, 53)),
                   'IFC2X2_PLATFORM': [1, 23, 44, 46, 49], 'IFC2X2_FINAL': [1, 22, 44, 46, 49],
                   'IFC2X3': [1, 22, 44, 46, 49]}
        shared = {}
        for namespace in ALL_NAMESPACES:
            numbers = table(namespace, 'IfcDerivedUnitEnum')
            self.assertEqual([n for n in range(54) if n not in skipped.get(namespace, [22])],
                             sorted(numbers.values()), namespace)
            self.assertEqual('USERDEFINED', list(numbers)[-1])
            for name, number in numbers.items():
                self.assertEqual(number, shared.setdefault(name, number), name)
        self.assertEqual([22, 23, 53], [shared[name] for name in (
            'MOMENTORINERTIAUNIT', 'MOMENTOFINERTIAUNIT', 'USERDEFINED')])

    def test_unit_tables_are_the_same_in_all_releases(self):
        for name, first, last, count in (('IfcSIPrefix', 'EXA', 'ATTO', 16),
                                         ('IfcSIUnitName', 'AMPERE', 'WEBER', 30),
                                         ('IfcUnitEnum', 'ABSORBEDDOSEUNIT', 'USERDEFINED', 30)):
            for namespace in ALL_NAMESPACES:
                numbers = table(namespace, name)
                self.assertEqual(table('IFC4', name), numbers)
                self.assertEqual((0, count - 1, count),
                                 (numbers[first], numbers[last], len(numbers)))
        self.assertEqual((10, 15), (table('IFC2X3', 'IfcSIPrefix')['MILLI'],
                                    table('IFC2X3', 'IfcSIUnitName')['METRE']))

    def test_last_prefix_is_atto_but_in_the_alphabetical_release(self):
        self.assertEqual(['ATTO'] * 7 + ['TERA', 'ATTO'],
                         [list(table(namespace, 'IfcSIPrefix'))[-1]
                          for namespace in ALL_NAMESPACES])

    def test_all_other_numbers_count_up_from_0(self):
        with_rules = {'IfcDerivedUnitEnum', 'IfcSIPrefix', 'IfcDoorTypeOperationEnum'}
        for schema in SCHEMAS.values():
            for name, enumeration in schema.enumerations.items():
                if name not in with_rules:
                    self.assertEqual(list(range(len(enumeration.values))),
                                     [value.number for value in enumeration.values], name)

    def test_enumeration_that_no_attribute_holds_gets_no_table(self):
        self.assertIn('IfcBearingTypeDisplacementEnum', SCHEMAS['IFC4X2'].enumerations)
        self.assertNotIn('IfcBearingTypeDisplacementEnum', used_enumerations(SCHEMAS['IFC4X2']))


    def test_numbers_of_values(self):
        """value_counts.txt was not made from the facts."""
        wanted, found = {}, {}
        with open(os.path.join(HERE, 'value_counts.txt'), encoding='ascii') as file:
            for line in file:
                if not line.startswith('#'):
                    name, counts = line.split()
                    wanted[name] = {int(count) for count in counts.split('/')}
        for schema in SCHEMAS.values():
            for name in used_enumerations(schema):
                found.setdefault(name, set()).add(len(schema.enumerations[name].values))
        self.assertEqual(wanted, found)


class Kinds(unittest.TestCase):
    def test_names_of_roots(self):
        for namespace in ALL_NAMESPACES:
            optional = namespace not in ('IFC2X_FINAL', 'IFC2X2_PLATFORM')
            for attribute in ('Name', 'Description'):
                kind, is_optional = kind_of(namespace, 'IfcRoot', attribute)
                self.assertEqual(('text', optional), (kind.scalar, is_optional))
            kind, _ = kind_of(namespace, 'IfcRoot', 'GlobalId')
            self.assertEqual('guid', kind.scalar)

    def test_owner_histories_are_optional_from_ifc4(self):
        self.assertEqual([False] * 4 + [True] * 5,
                         [kind_of(namespace, 'IfcRoot', 'OwnerHistory')[1]
                          for namespace in ALL_NAMESPACES])

    def test_counts_are_integers_in_one_release(self):
        for namespace in ALL_NAMESPACES:
            wanted = 'integer' if namespace == 'IFC4X3_ADD2' else 'count'
            self.assertEqual(wanted, value_kind(SCHEMAS[namespace], 'IfcCountMeasure').scalar)
            self.assertEqual(wanted, kind_of(namespace, 'IfcQuantityCount', 'CountValue')[0].scalar
                             if namespace != 'IFC2X_FINAL' else wanted)
            self.assertEqual('count', value_kind(SCHEMAS[namespace], 'IfcNumericMeasure').scalar)

    def test_null_style_is_a_class_where_a_select_admits_it(self):
        self.assertEqual(['IFC2X2_FINAL', 'IFC2X3', 'IFC4', 'IFC4X1', 'IFC4X2'],
                         [namespace for namespace in ALL_NAMESPACES
                          if 'IfcNullStyle' in SCHEMAS[namespace].value_types()])
        self.assertEqual('nothing', value_kind(SCHEMAS['IFC4'], 'IfcNullStyle').scalar)

    def test_booleans_are_plain_up_to_ifc2x3_and_values_from_ifc4(self):
        for namespace in FIRST_FOUR:
            self.assertTrue(kind_of(namespace, 'IfcFaceBound', 'Orientation')[0].plain)
        for namespace in FROM_IFC4:
            self.assertFalse(kind_of(namespace, 'IfcFaceBound', 'Orientation')[0].plain)
        for namespace in ALL_NAMESPACES:
            self.assertFalse(kind_of(namespace, 'IfcGridAxis', 'SameSense')[0].plain)
        for namespace in ('IFC4', 'IFC4X1', 'IFC4X2'):
            kind, _ = kind_of(namespace, 'IfcRelInterferesElements', 'ImpliedOrder')
            self.assertEqual(('logical', True), (kind.scalar, kind.plain))

    def test_lists(self):
        for namespace, entity, attribute, scalar, depth in (
                ('IFC2X3', 'IfcDirection', 'DirectionRatios', 'real', 1),
                ('IFC4', 'IfcDirection', 'DirectionRatios', 'real', 1),
                ('IFC4', 'IfcCartesianPointList3D', 'CoordList', 'real', 2),
                ('IFC4', 'IfcTriangulatedFaceSet', 'CoordIndex', 'integer', 2),
                ('IFC4', 'IfcBSplineSurface', 'ControlPointsList', 'reference', 2),
                ('IFC2X_FINAL', 'IfcAsset', 'AssetRisks', 'enumeration', 1),
                ('IFC2X2_FINAL', 'IfcPixelTexture', 'Pixel', 'text', 1),
                ('IFC2X3', 'IfcPixelTexture', 'Pixel', 'binary', 1),
                ('IFC4', 'IfcPixelTexture', 'Pixel', 'binary', 1),
                ('IFC2X3', 'IfcSite', 'RefLatitude', 'integer', 1),
                ('IFC4X4', 'IfcLogicalVoxelData', 'Values', 'logical', 1)):
            kind, _ = kind_of(namespace, entity, attribute)
            self.assertEqual((scalar, depth), (kind.scalar, kind.depth), (namespace, attribute))

    def test_colours_of_the_oldest_release_are_lists(self):
        schema = SCHEMAS['IFC2X_FINAL']
        kinds = [attribute_kind(schema, entity, attribute) for entity in schema.entities.values()
                 for attribute in entity.attributes if attribute.type.name == 'IfcColorRGB']
        self.assertEqual(5, len(kinds))
        for kind in kinds:
            self.assertEqual(('real', 1), (kind.scalar, kind.depth))

    def test_projects_live_on_their_contexts_up_to_ifc2x3(self):
        self.assertEqual([True] * 4 + [False] * 5,
                         [lives_on(schema, schema.entities['IfcProject']) is not None
                          for schema in SCHEMAS.values()])

    def test_lists_of_lists_keep_nothing_alive(self):
        surface = SCHEMAS['IFC4'].entities['IfcBSplineSurface']
        self.assertIn('LIST [2:?] OF LIST [2:?] OF IfcCartesianPoint',
                      [str(attribute.type) for attribute in surface.attributes])
        self.assertIsNone(lives_on(SCHEMAS['IFC4'], surface))

    def test_trimmed_curves_live_on_their_first_trim(self):
        for schema in SCHEMAS.values():
            self.assertEqual('Trim1', lives_on(schema, schema.entities['IfcTrimmedCurve']).name)


class Shapes(unittest.TestCase):
    """What makes plain empty bases enough for the selects."""

    def test_no_class_reaches_a_select_by_two_paths(self):
        for schema in SCHEMAS.values():
            for name in list(schema.entities) + schema.value_types():
                reached, waiting = [], [name]
                while waiting:
                    one = waiting.pop()
                    above = schema.selects_admitting(one)
                    reached += above
                    waiting += above
                    if one in schema.entities and schema.entities[one].supertype:
                        waiting.append(schema.entities[one].supertype)
                self.assertEqual(len(set(reached)), len(reached), (schema.namespace, name))

    def test_generated_text_is_the_same_on_every_run(self):
        schema, again = load('IFC2X2_PLATFORM'), load('IFC2X2_PLATFORM')
        self.assertEqual(Release(schema, bindings_for(schema), 4, 'x').files(),
                         Release(again, bindings_for(again), 4, 'x').files())


if __name__ == '__main__':
    unittest.main()

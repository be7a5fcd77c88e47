#!/usr/bin/env python3
"""Every product has the type, the property values and the material that it had in its own file,
whatever is asked for beyond the plain fold."""

import os
import unittest
from collections import Counter

import halves
import program
import schema_facts
import step_text
from map_models import MapReader
from program import ModelTest, SAMPLES
from step_text import Absent, Reference, Typed

# Which of their arguments are objects, and which is what is said of them.
_SAYING = {'IfcRelDefinesByType': 'RelatingType',
           'IfcRelDefinesByProperties': 'RelatingPropertyDefinition',
           'IfcRelAssociatesMaterial': 'RelatingMaterial'}
# Of what is said. A shape of the type is in the shapes of the products.
_NO_FACTS = {'GlobalId', 'OwnerHistory', 'RepresentationMaps'}
# Fewer than any number is written with.
_DIGITS = 9
_DOUBLING = ((), ('--contexts', 'join'), ('--tree', 'one'), ('--guids', 'renew'), ('--prune',),
             ('--share-equal', '--stamp', '--header', 'new'))
_JOINING = (('--guids', 'join'), ('--guids', 'join', '--prune', '--contexts', 'join'),
            ('--one-building',))


class FactsReader(MapReader):

    def facts(self):
        """(class, GUID, name, type, properties, material) of each product with something said of
        it. None of them depends on numbers of records or GUIDs of relations."""
        said = {}
        for relation, attribute in _SAYING.items():
            if not self.release.is_entity(relation.upper()):
                continue
            for number in self.of_class(relation):
                for one in self.of(number, 'RelatedObjects'):
                    said.setdefault(one.number, {}).setdefault(relation, []).extend(
                        step_text.references_in([self.argument(number, attribute)]))
        return [(self.file.records[number].name, self.of(number, 'GlobalId'),
                 self.of(number, 'Name'),
                 *(tuple(sorted(map(self.words, said[number].get(relation, ()))))
                   for relation in _SAYING))
                for number in self.of_class('IfcProduct') if number in said]

    def argument(self, number, attribute):
        names = [one.name for one in self.release.attributes_of(self.file.records[number].name)]
        return self.file.records[number].arguments[names.index(attribute)]

    def words(self, number):
        """All that something says and leads to."""
        words = []
        self.enter(Reference(number), words)
        return ' '.join(words)

    def enter(self, value, words):
        if isinstance(value, Reference):
            record = self.file.records[value.number]
            words.append(record.name)
            names = [one.name for one in self.release.attributes_of(record.name)]
            for name, argument in zip(names, record.arguments):
                if name not in _NO_FACTS:
                    self.enter(argument, words)
        elif isinstance(value, list):
            for one in value:
                self.enter(one, words)
        elif isinstance(value, Typed):
            words.append(value.name)
            self.enter(value.arguments, words)
        elif isinstance(value, float):
            words.append(f'{value:.{_DIGITS}g}')
        elif not isinstance(value, Absent):
            words.append(repr(value))


def facts_of(data):
    return Counter(FactsReader(data).facts())


def without_guids(facts):
    return Counter([(entity, *rest) for entity, _, *rest in facts.elements()])


class Facts(ModelTest):

    def merged(self, names, *options):
        return facts_of(self.merge(names, '--ignore-units', *options))

    def assert_same(self, wanted, found):
        self.assertEqual((Counter(), Counter()), (wanted - found, found - wanted))

    def houses(self):
        for path in program.sample_paths():
            release = schema_facts.choose_release(program.identifier_of(path))
            if os.path.basename(path).startswith('house') and release in program.built_releases():
                yield path

    def test_HousesBesideThemselvesHaveTheirFactsTwice(self):
        for place, path in enumerate(self.houses()):
            name = self.copy(path)
            own = without_guids(facts_of(self.read(name)))
            self.assertGreater(len(own), 10)
            # Each option has a release or two.
            for options in (_DOUBLING[place % len(_DOUBLING)], _DOUBLING[-1 - place % 3]):
                with self.subTest(model=name, options=options):
                    self.assert_same(own + own, without_guids(self.merged([name] * 2, *options)))

    def test_HousesThatBecameOneHaveTheirFactsOnce(self):
        for path in self.houses():
            name = self.copy(path)
            own = facts_of(self.read(name))
            for options in _JOINING:
                with self.subTest(model=name, options=options):
                    self.assert_same(own, self.merged([name] * 2, *options))

    def test_PartsOfABuildingHaveTheFactsOfBoth(self):
        for release in ('IFC2X3', 'IFC4'):
            if release not in program.built_releases():
                continue
            names = [self.copy(os.path.join(SAMPLES, f'office_{part}_{release}.ifc'))
                     for part in ('architecture', 'structure')]
            wanted = sum((facts_of(self.read(name)) for name in names), Counter())
            for options in (*_DOUBLING, *_JOINING):
                with self.subTest(release=release, options=options):
                    self.assert_same(wanted, self.merged(names, *options))

    def test_HalvesHaveTheFactsOfTheWhole(self):
        for seed, path in enumerate(self.houses()):
            model = program.model_of(path)
            names = [self.write(f'{place}.ifc', half)
                     for place, half in enumerate(halves.Cut(model, seed).halves)]
            wanted = facts_of(model.text())
            for order in (names, names[::-1]):
                with self.subTest(model=os.path.basename(path), order=order):
                    self.assert_same(wanted, self.merged(order, '--one-building'))


class Reader(unittest.TestCase):
    """What is said otherwise is seen."""

    def changed(self, old, new):
        """How many products of each class have something else said of them behind a change."""
        with open(os.path.join(SAMPLES, 'house_IFC4.ifc'), 'rb') as file:
            data = file.read()
        self.assertIn(old, data)
        own = facts_of(data)
        other = facts_of(data.replace(old, new, 1))
        return Counter(fact[0] for fact in own - other)

    def test_AnotherNameOfAType(self):
        self.assertEqual({'IFCSLAB': 2}, self.changed(b"#30,'Decke 280'", b"#30,'Decke 281'"))

    def test_AnotherMaterialInALayer(self):
        self.assertEqual({'IFCWALLSTANDARDCASE': 8, 'IFCWALL': 4},
                         self.changed(b"IFCMATERIAL('Gips'", b"IFCMATERIAL('Holz'"))

    def test_AnotherNumberInAQuantity(self):
        self.assertEqual({'IFCWALLSTANDARDCASE': 1},
                         self.changed(b"('GrossVolume',$,$,8.3709,$)",
                                      b"('GrossVolume',$,$,8.3708,$)"))

    def test_AnotherValueOfAProperty(self):
        self.assertEqual({'IFCWALLSTANDARDCASE': 1},
                         self.changed(b"IFCLABEL('AW-355')", b"IFCLABEL('AW-356')"))

    def test_AProductThatLeavesARelation(self):
        self.assertEqual({'IFCSLAB': 1}, self.changed(b'(#633,#2670),#198', b'(#2670),#198'))


if __name__ == '__main__':
    unittest.main()

#!/usr/bin/env python3
"""Models whose equal objects are written once say what they said: each reference still leads to
something equal, about which the same is said, and no bound of the schema is broken by it."""

import os
import re
import unittest

import program
import schema_facts
from program import ModelTest, REAL_MODELS
from resave_test import index_rows

LISTS = os.path.join(os.path.dirname(REAL_MODELS), 'federation')
# As the lists call the releases.
NAMES = {'IFC2X_FINAL': '2x', 'IFC2X2_PLATFORM': '2x2p', 'IFC2X2_FINAL': '2x2', 'IFC2X3': '2x3',
         'IFC4': '4', 'IFC4X1': '4x1', 'IFC4X2': '4x2', 'IFC4X3_ADD2': '4x3', 'IFC4X4': '4x4'}
# Records in the form of the program, one to a line.
RECORD = re.compile(rb'^#(\d+)=(\w+)\((.*)\);$', re.MULTILINE)
REFERENCE = re.compile(rb"'(?:[^']|'')*'|#(\d+)")
LARGEST = 5_000_000                   # bytes of a model
# What is described by records that only point at it: class and attribute.
DESCRIBING = re.compile(
    r'IFC\w*(STYLEDITEM|OCCURRENCE)\.Item|IFCPRESENTATIONLAYER\w+\.AssignedItems|IFC\w+\.MappedTo|'
    r'IFC\w*PROPERTIES\.(Material|ProfileDefinition)|IFC\w+\.(RepresentedMaterial|'
    r'ClassifiedMaterial|RelatedResourceObjects|RelatedMaterials|RelatingMaterial)')


class Written:
    """A written model, and what its records say."""

    def __init__(self, data, known, facts):
        self.records = {int(number): (name.decode(), arguments)
                        for number, name, arguments in RECORD.findall(data)}
        self.references = {number: [int(found) for found in REFERENCE.findall(arguments) if found]
                           for number, (_, arguments) in self.records.items()}
        self._known = known
        self._described = {}
        self.said = {}
        for number in self.records:
            self._spell(number)
        self.describing = {}
        for number, (name, arguments) in self.records.items():
            for place in self._described_by(name, facts):
                for found in REFERENCE.findall((split(arguments) + [b''] * place)[place]):
                    if found:
                        self.describing.setdefault(int(found), set()).add(self.said[number])

    def _described_by(self, name, facts):
        if name not in self._described:
            self._described[name] = [
                place for place, attribute in enumerate(facts.attributes_of(name) or ())
                if DESCRIBING.fullmatch(f'{name}.{attribute.name}')
                and not name.startswith('IFCREL')]
        return self._described[name]

    def _spell(self, number):
        """A number for all that a record says, the same for records that say the same."""
        waiting = [number]
        while waiting:
            number = waiting[-1]
            missing = [referred for referred in self.references[number]
                       if referred not in self.said and referred in self.records
                       and referred not in waiting]
            if missing:
                waiting += missing
                continue
            waiting.pop()
            name, arguments = self.records[number]
            text = name.encode() + REFERENCE.sub(
                lambda found: b'@%d' % self.said.get(int(found.group(1)), -1)
                if found.group(1) else found.group(), arguments)
            self.said[number] = self._known.setdefault(text, len(self._known))


class Bounds:
    """Who may be referred to once only, in one release."""

    def __init__(self, release, facts):
        self._facts = facts
        self._chains = {}
        self.places = []
        path = os.path.join(LISTS, 'inverses.txt')
        if not os.path.exists(path):
            return
        with open(path, encoding='ascii') as file:
            for line in file:
                inverse, _, place, rest = line.split(None, 3)
                for bound in rest.split(' ; '):
                    limits, _, names = bound.split()
                    if not limits.endswith('?') and NAMES[release] in names.split(','):
                        self.places.append((inverse.split('.')[0], *place.split('.'),
                                            int(limits[-1])))

    def broken_in(self, written):
        """The numbers of those that are referred to more often, with the place."""
        broken = set()
        counts = {}
        for number, (name, _) in written.records.items():
            for place in self._places_of(name):
                for referred in self._members(written, number, place[3]):
                    target = written.records.get(referred)
                    if target and place[0].upper() in self._chain(target[0]):
                        counts.setdefault((referred, place[:3]), []).append(number)
        for (referred, place), referring in counts.items():
            most = next(bound for *start, bound in self.places if tuple(start) == place)
            if len(set(referring)) > most:
                broken.add((referred, place))
        return broken

    def _places_of(self, name):
        chain = self._chain(name)
        for described, describing, attribute, _ in self.places:
            if describing.upper() in chain:
                names = [one.name for one in self._facts.attributes_of(name)]
                if attribute in names:
                    yield described, describing, attribute, names.index(attribute)

    def _chain(self, name):
        if name not in self._chains:
            chain = set()
            at = next((entity for entity in self._facts.entities if entity.upper() == name), None)
            while at:
                chain.add(at.upper())
                at = self._facts.entities[at][0]
            self._chains[name] = chain
        return self._chains[name]

    @staticmethod
    def _members(written, number, place):
        arguments = split(written.records[number][1])
        if place >= len(arguments):
            return ()
        return [int(found) for found in REFERENCE.findall(arguments[place]) if found]


def split(arguments):
    """The arguments of a record, as they are written."""
    parts, depth, begin = [], 0, 0
    for token in re.finditer(rb"'(?:[^']|'')*'|[(),]", arguments):
        sign = token.group()
        if sign == b'(':
            depth += 1
        elif sign == b')':
            depth -= 1
        elif sign == b',' and depth == 0:
            parts.append(arguments[begin:token.start()])
            begin = token.end()
    return parts + [arguments[begin:]]


class Shared(ModelTest):

    def check(self, path):
        identifier = program.identifier_of(path)
        self.need_release(identifier)
        name = self.copy(path)
        exact = ('--numbers', 'exact')
        plain_bytes = self.written(name, 'plain.ifc', *exact)
        shared_bytes = self.written(name, 'shared.ifc', '--share-equal', *exact)
        self.assert_same_file(shared_bytes,
                              self.written('shared.ifc', 'again.ifc', '--share-equal', *exact))
        told = self.written(name, 'told.ifc', '--share-equal')
        self.assert_same_file(told, self.written('told.ifc', 'again.ifc', '--share-equal'))
        known = {}
        release = schema_facts.choose_release(identifier)
        facts = schema_facts.Release(release)
        plain, shared = (Written(plain_bytes, known, facts), Written(shared_bytes, known, facts))
        self.check_references(plain, shared)
        bounds = Bounds(release, facts)
        self.assertLessEqual(bounds.broken_in(shared), bounds.broken_in(plain))
        return plain, shared

    def written(self, name, output, *options):
        result = program.run(['resave', '--quiet', name, output, *options], self.folder)
        self.assertIn(result.status, (program.DONE, program.WRITTEN_WITH_REPORTS), result.errors)
        return self.read(output)

    def check_references(self, plain, shared):
        """Each leads to what says the same, and about which the same is said."""
        self.assertLessEqual(set(shared.records), set(plain.records))
        self.assertEqual(set(plain.said.values()), set(shared.said.values()))
        stands_for = {}
        waiting = [(number, number) for number in shared.records]
        while waiting:
            before, now = waiting.pop()
            self.assertEqual(plain.said[before], shared.said[now], (before, now))
            self.assertEqual(plain.describing.get(before), shared.describing.get(now),
                             (before, now))
            old, new = plain.references[before], shared.references[now]
            self.assertEqual(len(old), len(new), (before, now))
            self.assertEqual(self.repeated_members(plain, before),
                             self.repeated_members(shared, now), (before, now))
            for one, other in zip(old, new):
                if one in plain.records and stands_for.setdefault(one, other) != other:
                    self.fail(f'#{one} became #{stands_for[one]} and #{other}')
                if one in plain.records and one not in shared.records:
                    waiting.append((one, other))
                    stands_for[one] = other
            if len(waiting) > 10 * len(plain.records):
                self.fail('the references of what went lead in circles')

    # What holds nothing twice, of the classes that hold most.
    DISTINCT = re.compile(r'IFC(POLYLOOP|FACE|CLOSEDSHELL|OPENSHELL|CONNECTEDFACESET|PROPERTYSET|'
                          r'ELEMENTQUANTITY|SHAPEREPRESENTATION|GEOMETRICSET|GEOMETRICCURVESET|'
                          r'DERIVEDUNIT|UNITASSIGNMENT|PRESENTATIONLAYERASSIGNMENT)$')

    def repeated_members(self, written, number):
        if not self.DISTINCT.match(written.records[number][0]):
            return 0
        references = written.references[number]
        return len(references) - len(set(references))


class Samples(Shared):

    def test_SamplesSayTheSameInFewerRecords(self):
        for path in program.sample_paths():
            with self.subTest(model=os.path.basename(path)):
                plain, shared = self.check(path)
                self.assertLess(len(shared.records), len(plain.records))


@unittest.skipUnless(index_rows(), f'no models of other makers in {REAL_MODELS}')
class RealModels(Shared):

    def test_ModelsOfOtherMakersSayTheSame(self):
        for row in index_rows():
            path = os.path.join(REAL_MODELS, row['path'])
            plain = row['path'].endswith('.ifc') and int(row['bytes']) <= LARGEST
            if row['outcome'] == 'reads' and plain:
                with self.subTest(model=row['path']):
                    self.check(path)


if __name__ == '__main__':
    unittest.main()

#!/usr/bin/env python3
"""Known changes of models, and what a comparison tells of them: exactly these."""

import itertools
import json
import os
import random
import unittest

import program
from known_changes import ANY, CHANGES, Expected, Text, a_description, moved, numbers_in
from prepared_changes import PREPARED, expected_of
from program import ModelTest, SAMPLES

DIFFERENT = 4


class Diff(ModelTest):

    def told(self, before, after):
        """The changes as JSON has them, with a status that fits."""
        self.write('before.ifc', before)
        self.write('after.ifc', after)
        ended = program.run(['diff', '--json', 'before.ifc', 'after.ifc'], self.folder)
        self.assertIn(ended.status, (program.DONE, DIFFERENT), ended.errors)
        told = json.loads(ended.output)
        self.assertEqual(told['equal'], ended.status == program.DONE)
        return told

    def check(self, expected, told):
        """All that is expected is told, and nothing else."""
        self.assertEqual(expected.removed, {one['guid'] for one in told['removed']})
        self.assertEqual(expected.added, {one['guid'] for one in told['added']})
        self.assertEqual(expected.renamed, {one['before']['guid']: one['after']['guid']
                                            for one in told['renamed']})
        found, moves = {}, {}
        for one in told['changed']:
            guid = one['before']['guid']
            for change in one['changes']:
                if change['kind'] == 'place':
                    self.assertEqual(0, change['movement']['degrees'])
                    moves[guid] = sum(part * part for part in change['movement']['by']) ** 0.5
                else:
                    found.setdefault(guid, set()).add(
                        (change['path'], change['before'], change['after']))
        self.assertEqual(set(expected.moved), set(moves))
        for guid, length in expected.moved.items():
            self.assertAlmostEqual(length, moves[guid], 6)
        self.assertEqual(set(expected.changed), set(found))
        for guid, wanted in expected.changed.items():
            self.assert_like(wanted, found[guid])

    def assert_like(self, wanted, found):
        def is_like(want, got):
            return want == got or (want == ANY and got is not None)

        def order(entry):
            return tuple(str(part) for part in entry)

        self.assertEqual(len(wanted), len(found), (wanted, found))
        for want, got in zip(sorted(wanted, key=order), sorted(found, key=order)):
            self.assertTrue(all(map(is_like, want, got)), (wanted, found))


def samples(start):
    """Those of a kind in the releases of this build, as the test case has to find out."""
    return [path for path in program.sample_paths() if os.path.basename(path).startswith(start)]


class KnownChanges(Diff):

    def elements(self, text):
        contained = itertools.chain.from_iterable(
            numbers_in(text.records[at][1][4])
            for at in text.of_class('IFCRELCONTAINEDINSPATIALSTRUCTURE'))
        return sorted(set(contained))

    def for_each_sample(self, check, paths=None):
        for path in paths or samples('house_') + samples('office_architecture'):
            with self.subTest(model=os.path.basename(path)):
                self.need_release(program.identifier_of(path))
                check(path)

    def test_EachKindOfChangeIsToldAndNothingElse(self):
        made = set()

        def check(path):
            before = Text(path).written()
            for change in CHANGES:
                with self.subTest(change=change.__name__):
                    text, expected = Text(path), Expected()
                    if not any(change(text, number, expected, random.Random(1))
                               for number in self.elements(text)):
                        continue
                    made.add(change)
                    self.check(expected, self.told(before, text.written(random.Random(2))))

        self.for_each_sample(check, samples('house_IFC4.') + samples('office_architecture'))
        self.assertEqual(set(), set(CHANGES) - made, 'these were never made')

    def test_ManyChangesAtOnceAreToldOneByOne(self):
        def check(path):
            before = Text(path).written()
            for seed in range(2):
                with self.subTest(seed=seed):
                    chance = random.Random(f'{os.path.basename(path)}{seed}')
                    text, expected = Text(path), Expected()
                    self.change_some(text, expected, chance)
                    self.check(expected, self.told(before, text.written(chance)))

        self.for_each_sample(check)

    def test_LogicalValuesAndListsOfListsAreToldMemberByMember(self):
        def check(path):
            for put, pairs, is_old in PREPARED:
                if not is_old and 'IFC2X3' in path:
                    continue
                for at, (before, after) in enumerate(pairs(Text(path).metres)):
                    with self.subTest(put=put.__name__, pair=at):
                        self.check_pair(path, put, before, after)

        self.for_each_sample(check, samples('house_IFC2X3.') + samples('office_architecture_IFC4'))

    def check_pair(self, path, put, before, after):
        """What is the same is not told, and what differs is, whatever the numbers."""
        texts, expected = (Text(path), Text(path), Text(path)), Expected()
        number = self.shaped_element(texts[0])
        for text, values in zip(texts, (before, after, before)):
            put(text, number, values)
        for change in expected_of(before, after):
            expected.change(texts[0].guid(number), *change)
        self.assertTrue(expected.changed)
        chance = random.Random(4)
        told = self.told(texts[0].written(), texts[1].written(chance))
        self.check(expected, told)
        self.assertTrue(self.told(texts[0].written(), texts[2].written(chance))['equal'])

    def shaped_element(self, text):
        """One with a shape that no other object has."""
        for number in self.elements(text):
            shape = text.records[number][1][6]
            users = sum(shape in arguments for _, arguments in text.records.values())
            if shape.startswith('#') and users == 1:
                return number
        raise AssertionError('no object has a shape of its own')

    def change_some(self, text, expected, chance):
        """One change of each of some objects, none of which stands on another."""
        numbers = self.elements(text)
        chance.shuffle(numbers)
        made = 0
        for number in numbers:
            change = chance.choice(CHANGES)
            if change is moved and expected.moved:
                continue
            made += change(text, number, expected, chance)
            if made == 12:
                break
        self.assertLess(4, made)

    def test_AMovedStoreyIsOneMoveOfAllThatStandsOnIt(self):
        def check(path):
            text, expected = Text(path), Expected()
            before = text.written()
            storey = text.of_class('IFCBUILDINGSTOREY')[-1]
            self.assertTrue(moved(text, storey, expected, None))
            told = self.told(before, text.written())
            self.check(expected, told)
            self.assertLess(2, len(expected.moved))
            self.assertEqual([len(expected.moved)], [len(one['numbers']) for one in told['common']])

        self.for_each_sample(check)

    def test_AnObjectThatIsGoneIsRemovedAndOneThatComesIsAdded(self):
        def check(path):
            text, expected = Text(path), Expected()
            before = text.written()
            number = text.of_class('IFCFURNISHINGELEMENT', 'IFCCOVERING', 'IFCBEAM', 'IFCSLAB')[0]
            expected.removed.add(text.guid(number))
            for at, (name, arguments) in list(text.records.items()):
                if not name.startswith('IFCREL') or number not in numbers_in(','.join(arguments)):
                    continue
                members = [one for one in numbers_in(arguments[4]) if one != number]
                if members and f'#{number}' not in arguments:
                    arguments[4] = '(' + ','.join(f'#{one}' for one in members) + ')'
                else:
                    del text.records[at]
                    if name == 'IFCRELDEFINESBYPROPERTIES':  # else nobody would have them
                        del text.records[numbers_in(arguments[5])[0]]
            del text.records[number]
            after = text.written(random.Random(3))
            self.check(expected, self.told(before, after))
            expected.added, expected.removed = expected.removed, set()
            self.check(expected, self.told(after, before))

        self.for_each_sample(check)


class Merges(Diff):
    """Of all that an input holds nothing has changed but what the fold does to it."""

    def inputs(self, release, chance):
        paths = [path for path in program.sample_paths() if f'_{release}.' in path]
        texts = [Text(chance.choice(paths))]
        alike = [path for path in paths if Text(path).metres == texts[0].metres]
        texts += [Text(chance.choice(alike)) for _ in range(chance.randint(1, 2))]
        for text in texts[1:]:  # two exports of one building may be among them
            for number in chance.sample(KnownChanges.elements(self, text), 2):
                a_description(text, number, Expected(), chance)
        return [self.write(f'in{i}.ifc', text.written(chance if i else None))
                for i, text in enumerate(texts)]

    def test_WhatAMergeMakesOfEachInputIsWhatTheFoldSays(self):
        for release, seed in itertools.product(('IFC2X3', 'IFC4'), range(5)):
            with self.subTest(release=release, seed=seed):
                self.need_release(release)
                names = self.inputs(release, random.Random(f'{release}{seed}'))
                merged = self.merge(names)
                self.check_first(self.told(self.read(names[0]), merged))
                for name in names[1:]:
                    self.check_later(self.told(self.read(name), merged))

    def test_WhatIsConvertedIsWhereAndAsLargeAsItWas(self):
        names = [os.path.join(SAMPLES, f'{name}_IFC4.ifc') for name in ('office_architecture',
                                                                       'house')]
        names = [self.copy(name) for name in names]
        merged = self.merge(names, '--units', 'convert')
        self.check_first(self.told(self.read(names[0]), merged))
        told = self.told(self.read(names[1]), merged)
        contexts = [one for one in told['changed'] if 'Context' in one['before']['class']]
        told['changed'] = [one for one in told['changed'] if one not in contexts]
        self.check_later(told)
        # A number without a type.
        self.assertLessEqual({change['path'] for one in contexts for change in one['changes']},
                             {'Precision', 'TrueNorth', 'WorldCoordinateSystem.Axis',
                              'WorldCoordinateSystem.RefDirection'})

    def check_first(self, told):
        self.assertEqual(([], [], []), (told['removed'], told['renamed'], told['changed']))
        self.assertEqual(told['before']['objects'], told['same'])

    def check_later(self, told):
        """Its project gives way to the first one, whether they have one GUID or not."""
        self.assertEqual([], told['renamed'])
        self.assertLessEqual({one['class'] for one in told['removed']}, {'IfcProject'})
        for one in told['changed']:
            if one['before']['class'] == 'IfcProject':
                continue
            self.assertEqual([('part of', 'IfcProject')],
                             [(change['path'], change['before'].split()[0])
                              for change in one['changes']])


if __name__ == '__main__':
    unittest.main()

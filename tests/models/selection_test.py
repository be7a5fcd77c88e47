#!/usr/bin/env python3
"""Parts of models, merged: what is kept arrives whole, what is dropped is gone, nothing dangles."""

import glob
import os
import unittest
from collections import Counter

import program
import schema_facts
import step_text
import written_form
from program import DONE, ModelTest, REAL_MODELS, SAMPLES
from scene import Scene
from step_text import Absent, Reference

# What a kept object must not lose, by the class of the relation: the place of what it relates to.
_KEPT_WITH = {'IFCRELDEFINESBYPROPERTIES': 5, 'IFCRELDEFINESBYTYPE': 5, 'IFCRELASSOCIATESMATERIAL': 5}


class Output:
    """A file that was written, by the GUIDs of its objects."""

    def __init__(self, written, scenes):
        guids = Counter(guid for scene in scenes for guid in scene.model.guids.values())
        self.ambiguous = {guid for guid, count in guids.items() if count > 1}
        self.model = written_form.Model(step_text.StepFile(written))
        self.numbers = {guid: number for number, guid in self.model.guids.items()}
        [self.project] = [number for number, line in self.model.lines.items()
                          if line.name == 'IFCPROJECT']
        self.users = {}
        for number, line in self.model.lines.items():
            for piece in line.pieces:
                if isinstance(piece, int):
                    self.users.setdefault(piece, []).append(number)
        self.twins = {id(scene.model): {} for scene in scenes}
        self.compared = {}

    def why_not(self, model, number, twin):
        """None when an object has come whole to its twin. What it shares with objects before it is
        one record here too, and is not walked again."""
        return same_tree(model, number, self.model, twin, self.twins[id(model)])

    def is_copy(self, model, number, other):
        """Whether a record could be what another has become: two of a model may say the same."""
        pair = (id(model), number, other)
        if pair not in self.compared:
            self.compared[pair] = same_tree(model, number, self.model, other, {}) is None
        return self.compared[pair]

    def twin_of(self, model, number):
        """Where an object of an input has come to; None: nowhere. There is one project."""
        if model.lines[number].name == 'IFCPROJECT':
            return self.project
        return self.numbers.get(model.guids[number])

    def is_known_by_its_guid(self, model, number):
        """Of objects with one GUID all but the first get new ones."""
        return (model.lines[number].name == 'IFCPROJECT'
                or model.guids[number] not in self.ambiguous)


def same_tree(left, start, right, other, pairs):
    """None when all that two records lead to is the same; otherwise where it is not. `pairs` has the
    twins that are known and takes the others."""
    open_ = [(start, other)]
    while open_:
        number, twin = open_.pop()
        if number in pairs:
            if pairs[number] != twin:
                return f'#{number} is #{pairs[number]} and #{twin}'
            continue
        pairs[number] = twin
        one, two = left.lines[number], right.lines[twin]
        if one.name != two.name or len(one.pieces) != len(two.pieces):
            return f'#{number} {one}, #{twin} {two}'
        for piece, copy in zip(one.pieces, two.pieces):
            if isinstance(piece, int) and isinstance(copy, int):
                open_.append((piece, copy))
            elif not same_value(piece, copy):
                return f'#{number} {one}, #{twin} {two}'
    return None


def same_value(left, right):
    """A number that was only whole after rounding has two forms."""
    if left == right:
        return True
    try:
        return float(left) == float(right)
    except (TypeError, ValueError):
        return False


class Selection(ModelTest):

    def merge_parts(self, paths, options, kept):
        """Merges; `kept` has the numbers of the kept objects of each file."""
        names = [self.copy(path) for path in paths]
        written = self.merge(names, '--ignore-units', *options)
        scenes = [Scene(program.model_of(path)) for path in paths]
        output = Output(written, scenes)
        self.check_alone(written, output, scenes)
        for scene, numbers in zip(scenes, kept):
            self.check_kept(scene, numbers, output)
        self.check_dropped(scenes, kept, output)
        return output

    def check_alone(self, written, output, scenes):
        undefined = {number for record in output.model.file.records.values()
                     for number in step_text.references_in(record.arguments)
                     if number not in output.model.lines}
        self.assertEqual(undefined, set())
        missing = set().union(*(absent_references(scene.model) for scene in scenes))
        self.assertLessEqual(absent_references(output.model), missing)
        self.write('written.ifc', written)
        self.resave('written.ifc', status=DONE, output='again.ifc')

    def check_kept(self, scene, numbers, output):
        model, kept = scene.model, set(numbers)
        relations = relations_of(model, kept)
        for number in numbers:
            if not output.is_known_by_its_guid(model, number):
                continue
            twin = output.twin_of(model, number)
            self.assertIsNotNone(twin, f'#{number}={model.lines[number].name}')
            if model.lines[number].name != 'IFCPROJECT':
                self.assertIsNone(output.why_not(model, number, twin))
                self.check_chain(scene, number, output)
            for relation in relations.get(number, ()):
                self.check_relation(model, relation, twin, output)

    def check_chain(self, scene, number, output):
        """Up to where no relation leads on, each step is there, whoever else is not."""
        while number in scene.links:
            relation, parent = scene.links[number]
            if not output.is_known_by_its_guid(scene.model, parent):
                return
            twin, upper = (output.twin_of(scene.model, one) for one in (number, parent))
            self.assertIsNotNone(upper, f'what #{number} hangs on, #{parent}')
            name = scene.model.lines[relation].name
            self.assertTrue(any(output.model.lines[user].name == name
                                and upper in output.model.lines[user].pieces
                                for user in output.users[twin]), f'#{relation}')
            number = parent

    def check_relation(self, model, relation, twin, output):
        name = model.lines[relation].name
        related = model.file.records[relation].arguments[_KEPT_WITH[name]]
        if not isinstance(related, Reference):
            return
        found = [output.model.file.records[user].arguments[_KEPT_WITH[name]]
                 for user in output.users.get(twin, ()) if output.model.lines[user].name == name]
        self.assertTrue(
            any(output.is_copy(model, related.number, one.number)
                for one in found if isinstance(one, Reference)),
            f'#{relation}, whose #{related.number} is not there as it was')

    def check_dropped(self, scenes, kept, output):
        """A dropped object is there only when something kept hangs on it or needs it."""
        wanted = set()
        for scene, numbers in zip(scenes, kept):
            model = scene.model
            for number in self.needed_by(scene, numbers):
                wanted.add(model.guids.get(number))
        objects = {output.model.guids[number] for number in Scene(output.model).objects
                   if number != output.project} & scenes_guids(scenes)
        self.assertEqual(objects - wanted, set())

    @staticmethod
    def needed_by(scene, numbers):
        needed, open_ = set(), list(numbers)
        while open_:
            number = open_.pop()
            if number in needed:
                continue
            needed.add(number)
            open_ += [piece for piece in scene.model.lines[number].pieces
                      if isinstance(piece, int) and scene.model.lines[number].name != 'IFCPROJECT']
            if number in scene.links:
                open_.append(scene.links[number].parent)
            open_ += scene.filled_by(number)
        return needed | set(scene.of_class('IFCPROJECT'))


def scenes_guids(scenes):
    """Without those that were made for the output."""
    return {guid for scene in scenes for guid in scene.model.guids.values()}


def absent_references(model):
    """Class and place of mandatory references that some record lacks."""
    found = set()
    for record in model.file.records.values():
        if not model.release.is_entity(record.name):
            continue
        for place, attribute in enumerate(model.release.attributes_of(record.name)):
            if attribute.kind.name != schema_facts.REFERENCE or attribute.optional:
                continue
            given = record.arguments[place:place + 1] or [Absent('$')]
            if isinstance(given[0], Absent) or (isinstance(given[0], Reference)
                                                and given[0].number not in model.lines):
                found.add((record.name, place))
    return found


def relations_of(model, kept):
    """Object -> the relations that it must not lose."""
    found = {}
    for number, line in model.lines.items():
        if line.name in _KEPT_WITH:
            for piece in line.pieces:
                if piece in kept:
                    found.setdefault(piece, []).append(number)
    return found


def numbers(objects):
    return ','.join(f'#{number}' for number in objects)


class Scenarios(Selection):
    """The parts that are merged of a set of models: each method takes the paths of the set."""

    def scenes(self, paths):
        self.need_release(program.identifier_of(paths[0]))
        return [Scene(program.model_of(path)) for path in paths]

    def everything(self, scene):
        return scene.objects

    def merge_selected(self, paths, parts):
        options = [option for index, part in enumerate(parts, 1)
                   for option in ('--select', f'{index}:{numbers(part)}')]
        return self.merge_parts(paths, options, parts)

    def one_storey(self, paths):
        scenes = self.scenes(paths)
        parts = []
        for scene in scenes:
            storeys = [(len(scene.below(storey)), storey)
                       for storey in scene.of_class('IfcBuildingStorey')]
            parts.append(scene.below(max(storeys)[1]) if storeys else scene.objects)
        self.merge_selected(paths, parts)

    def one_class(self, paths):
        parts = []
        for scene in self.scenes(paths):
            classes = {}
            for number in scene.objects:
                if scene.model.release.is_a(scene.model.lines[number].name, 'IfcElement'):
                    classes.setdefault(scene.model.lines[number].name, []).append(number)
            parts.append(max(classes.values(), key=len))
        options = [option for index, (scene, part) in enumerate(zip(self.scenes(paths), parts), 1)
                   for option in ('--select', f'{index}:{scene.model.lines[part[0]].name}')]
        self.merge_parts(paths, options, parts)

    def one_element(self, paths):
        parts = [[[number for number in scene.objects
                   if scene.model.release.is_a(scene.model.lines[number].name, 'IfcElement')][0]]
                 for scene in self.scenes(paths)]
        options = [option for index, (scene, part) in enumerate(zip(self.scenes(paths), parts), 1)
                   for option in ('--select', f'{index}:{scene.model.guids[part[0]]}')]
        self.merge_parts(paths, options, parts)

    def all_but_one(self, paths):
        scenes = self.scenes(paths)
        dropped = [[number for number in scene.objects
                    if scene.model.release.is_a(scene.model.lines[number].name, 'IfcElement')][-1]
                   for scene in scenes]
        options = [option for index, number in enumerate(dropped, 1)
                   for option in ('--inactive', f'{index}:#{number}')]
        self.merge_parts(paths, options, [
            [number for number in scene.objects if number not in (drop, *scene.below(drop))]
            for scene, drop in zip(scenes, dropped)])

    def nothing(self, paths):
        self.scenes(paths)
        names = [self.copy(path) for path in paths]
        result = program.run(['merge', '--quiet', *names, '-o', 'none.ifc', '--mode', 'selected'],
                             self.folder)
        self.assertEqual(result.status, program.NOTHING_WRITTEN)
        self.assertNotIn('none.ifc', os.listdir(self.folder))

    def hidden_walls(self, paths):
        """With their openings, which follow them."""
        scenes = self.scenes(paths)
        hidden = [[number for number in scene.objects
                   if scene.model.lines[number].name in ('IFCWALL', 'IFCWALLSTANDARDCASE')]
                  for scene in scenes]
        options = [option for index, walls in enumerate(hidden, 1) if walls
                   for option in ('--hide', f'{index}:{numbers(walls)}')]
        if not options:
            return
        kept = []
        for scene, walls in zip(scenes, hidden):
            gone = set(walls)
            gone |= {number for number in scene.of_class('IfcOpeningElement')
                     if number in scene.links and scene.links[number].parent in gone}
            kept.append([number for number in scene.objects if number not in gone])
        self.merge_parts(paths, options, kept)

    def no_openings(self, paths):
        scenes = self.scenes(paths)
        self.merge_parts(paths, ['--delete-openings'], [
            [number for number in scene.objects
             if scene.model.lines[number].name != 'IFCOPENINGELEMENT'] for scene in scenes])

    def all_of_them(self, paths):
        for scenario in (self.one_storey, self.one_class, self.one_element, self.all_but_one,
                         self.nothing, self.hidden_walls, self.no_openings):
            with self.subTest(scenario.__name__, models=list(map(os.path.basename, paths))):
                scenario(paths)


class Samples(Scenarios):

    def test_ArchitectureAndStructureOfOneBuilding(self):
        for release in ('IFC2X3', 'IFC4'):
            self.all_of_them([os.path.join(SAMPLES, f'office_{part}_{release}.ifc')
                              for part in ('architecture', 'structure')])

    def test_HousesOfTwoSets(self):
        for release in ('IFC2X3', 'IFC4'):
            self.all_of_them([os.path.join(SAMPLES, f'{name}_{release}.ifc')
                              for name in ('house', 'office_structure')])


@unittest.skipUnless(os.path.isdir(REAL_MODELS), f'no models of other makers in {REAL_MODELS}')
class RealModels(Scenarios):

    def set(self, pattern, count):
        paths = sorted(glob.glob(os.path.join(REAL_MODELS, pattern)))
        self.assertEqual(len(paths), count)
        self.all_of_them(paths)

    def test_Duplex(self):
        self.set('duplex/*.ifc', 2)

    def test_BuildingOfThreeTrades(self):
        self.set('pcert/*.ifc', 3)

    def test_Schependomlaan(self):
        self.set('schependomlaan/*.ifc', 3)

    def test_RailwaySections(self):
        """Without the largest: the plain reader takes minutes for it."""
        paths = sorted(glob.glob(os.path.join(REAL_MODELS, 'rfi', '*.ifc')), key=os.path.getsize)
        self.assertEqual(len(paths), 3)
        for scenario in (self.one_class, self.all_but_one):
            with self.subTest(scenario.__name__):
                scenario(paths[:2])


if __name__ == '__main__':
    unittest.main()

"""Cuts a model in two or more that have nothing in common but what all need, as offices would have made
them: other numbers, other GUIDs for the project and its spatial structure, other spellings."""

import random
import re
from collections import Counter

import step_text
import written_form
from scene import Scene

_PIECE = re.compile(rb"'(?:[^']|'')*'|\((?:#\d+,?)+\)|#\d+")
_RECORD = re.compile(rb'^#(\d+)=(\w+)\((.*)\);$', re.M)
# What points at others and is no relation: the place of what it describes among its references.
_POINTERS = {b'IFCSTYLEDITEM': 0, b'IFCPRESENTATIONLAYERASSIGNMENT': 0, b'IFCMAPCONVERSION': 0,
             b'IFCMATERIALDEFINITIONREPRESENTATION': -1}
_GUID_LETTERS = '0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$'


def _references(body):
    return [int(number) for piece in _PIECE.findall(body) if piece[:1] != b"'"
            for number in re.findall(rb'#(\d+)', piece)]


def _without(body, dropped):
    """The arguments without members of lists that are dropped. None when nothing may be left out:
    a list would be empty, or there is one outside of lists."""
    possible = True

    def left(match):
        nonlocal possible
        piece = match[0]
        if piece[:1] == b"'":
            return piece
        kept = [one for one in re.findall(rb'#\d+', piece) if int(one[1:]) not in dropped]
        possible = possible and bool(kept)
        return b'(' + b','.join(kept) + b')' if piece[:1] == b'(' else b''.join(kept)
    changed = _PIECE.sub(left, body)
    return changed if possible else None


class Cut:
    """`model`: a written_form.Model. `halves`: the bytes of all. The same seed cuts models alike that
    differ in their numbers only."""

    def __init__(self, model, seed, count=2):
        self.pick = random.Random(seed)
        self.model = model
        text = model.text()
        self.head, self.tail = text[:_RECORD.search(text).start()], b'ENDSEC;\nEND-ISO-10303-21;\n'
        self.records = {int(number): (name, body) for number, name, body in _RECORD.findall(text)}
        self.spatial = {number for number in model.lines if is_level(model, number)}
        self.elements = {number for number in Scene(model).objects
                         if number not in self.spatial and model.lines[number].name != 'IFCPROJECT'}
        sides = self.sides(count)
        common = self.spatial | {number for number in model.lines
                                 if model.lines[number].name == 'IFCPROJECT'}
        kept = [self.kept(common | side, self.elements - side) for side in sides]
        later = [self.disguised(part, common) for part in kept[1:]]
        self.halves = [self.head + self.text(part) + self.tail for part in [kept[0], *later]]

    def is_a(self, number, entity):
        return self.model.release.is_a(self.model.lines[number].name, entity)

    def sides(self, count):
        """The elements of each part: those that a relation of their own ties stay together."""
        parts = {number: {number} for number in self.elements}
        for number in self.model.lines:
            if not self.is_a(number, 'IfcRelConnects') and not self.is_a(number, 'IfcRelDecomposes'):
                continue
            references = _references(self.records[number][1])
            tied = [one for one in references if one in self.elements]
            if any(one in self.spatial for one in references):
                continue
            for one, other in zip(tied, tied[1:]):
                joined = parts[one] | parts[other]
                for member in joined:
                    parts[member] = joined
        sides = [set() for _ in range(count)]
        groups = {min(group): group for group in parts.values()}
        order = sorted(groups.values(), key=lambda group: min(
            self.model.file.records[number].arguments[0] for number in group))
        self.pick.shuffle(order)
        for place, group in enumerate(order):
            sides[place % count].update(group)
        return sides

    def kept(self, objects, others):
        """Number -> (class, arguments)."""
        kept = {}
        self.keep(objects, kept)
        for number, (name, body) in self.records.items():
            if self.is_a(number, 'IfcRelationship'):
                left = _without(body, others)
                if left is not None:
                    self.keep(_references(left), kept)
                    kept[number] = name, left
        for number, (name, body) in self.records.items():
            if name in _POINTERS:
                described = _references(body)[_POINTERS[name]]
                if name == b'IFCPRESENTATIONLAYERASSIGNMENT':
                    body = _without(body, self.records.keys() - kept.keys())
                elif described not in kept:
                    body = None
                if body is not None:
                    self.keep(_references(body), kept)
                    kept[number] = name, body
        return kept

    def keep(self, numbers, kept):
        """With all that they lead to."""
        open_ = list(numbers)
        while open_:
            number = open_.pop()
            if number not in kept:
                kept[number] = self.records[number]
                open_ += _references(self.records[number][1])

    def disguised(self, kept, common):
        numbers = list(range(1, 3 * len(kept) + 1))
        self.pick.shuffle(numbers)
        renumbered = dict(zip(sorted(kept), numbers))
        for number in common & kept.keys():
            name, body = kept[number]
            guid = '0' + ''.join(self.pick.choice(_GUID_LETTERS) for _ in range(21))
            body = b"'" + guid.encode() + body[23:]
            if name == b'IFCBUILDINGSTOREY':
                body = re.sub(rb"('[^']*',(?:#\d+|\$),)'([ -~]*?)'(?=,)", self.respelled, body, count=1)
            kept[number] = name, body

        def renumber(match):
            return match[0] if match[0][:1] == b"'" else re.sub(
                rb'#(\d+)', lambda one: b'#%d' % renumbered[int(one[1])], match[0])
        return {renumbered[number]: (name, _PIECE.sub(renumber, body))
                for number, (name, body) in kept.items()}

    def respelled(self, match):
        name = match[2]
        if b'\\' not in name:
            name = name.swapcase()
        return match[1] + b"' " + name.replace(b' ', b'  ') + b" '"

    @staticmethod
    def text(records):
        return b''.join(b'#%d=%s(%s);\n' % (number, *records[number]) for number in sorted(records))


def is_level(model, number):
    """Whether it is a site, a building, a storey or the like. Rooms are as good as elements."""
    name = model.lines[number].name
    return (model.release.is_a(name, 'IfcSpatialStructureElement')
            and not model.release.is_a(name, 'IfcSpace'))


def tree_of(data):
    """How often there is a product of a class below what it hangs on, up to the project. Elements
    are told by their GUIDs, the spatial structure by its names, however they are spelled."""
    model = written_form.Model(step_text.StepFile(data))
    scene = Scene(model)

    def told(number):
        line, arguments = model.lines[number], model.file.records[number].arguments
        if line.name == 'IFCPROJECT':
            return line.name
        if is_level(model, number):
            name = arguments[2] if isinstance(arguments[2], str) else ''
            return line.name, ' '.join(name.casefold().split())
        return line.name, arguments[0]

    def chain(number):
        steps = [told(number)]
        while number in scene.links:
            number = scene.links[number].parent
            steps.append(told(number))
        return tuple(steps)
    return Counter(chain(number) for number in scene.objects)

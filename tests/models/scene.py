"""The objects of a model as a viewer lists them, and what each of them hangs on."""

from typing import NamedTuple

from step_text import Reference

# Class of the relation: the places of what it relates to and of what hangs on that.
_RELATIONS = {'IFCRELAGGREGATES': (4, 5), 'IFCRELNESTS': (4, 5),
              'IFCRELCONTAINEDINSPATIALSTRUCTURE': (5, 4), 'IFCRELVOIDSELEMENT': (4, 5)}


class Link(NamedTuple):
    """Why an object hangs on another."""
    relation: int
    parent: int


class Scene:
    """`objects`: the numbers of projects and products. `links`: object -> Link, of those that a
    relation hangs on another."""

    def __init__(self, model):
        self.model = model
        lines = model.lines
        self.objects = sorted(
            number for number, line in lines.items()
            if line.name == 'IFCPROJECT' or model.release.is_a(line.name, 'IfcProduct'))
        self.links = {}
        self.fillings = {}
        for number in sorted(lines):
            if lines[number].name in _RELATIONS:
                self._relate(number)
            elif lines[number].name == 'IFCRELFILLSELEMENT':
                opening, element = model.file.records[number].arguments[4:6]
                self.fillings.setdefault(element.number, []).append(opening.number)

    def _relate(self, relation):
        record = self.model.file.records[relation]
        upper, lower = (record.arguments[place] for place in _RELATIONS[record.name])
        if not isinstance(upper, Reference):
            return
        for member in lower if isinstance(lower, list) else [lower]:
            if isinstance(member, Reference):
                self.links.setdefault(member.number, Link(relation, upper.number))

    def filled_by(self, number):
        """The openings that an element stands in."""
        return self.fillings.get(number, [])

    def of_class(self, name):
        return [number for number in self.objects if self.model.lines[number].name == name.upper()]

    def below(self, number):
        """All objects that hang on one by whatever way."""
        found, last = {number}, None
        while last != len(found):
            last = len(found)
            found |= {child for child, link in self.links.items() if link.parent in found}
        return sorted((found - {number}) & set(self.objects))

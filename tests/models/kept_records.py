"""Which records of a model arrive in a merge when every object of it counts.

A record is kept when it is an object (the project, a product), when an object refers to it by
whatever way, or when it hangs together with such a record over records that are neither. What hangs
on nothing that is kept is dropped, and so is what cannot exist, such as a relation without members,
with what it alone used.
"""

import functools
import re

import schema_facts
from step_text import Absent, Reference

_LEAST = re.compile(r'(?:LIST|SET|ARRAY|BAG) \[([1-9]\d*):')


@functools.cache
def _lives_on(release, name):
    """The places of mandatory lists of references that must have a member, one for each class of
    the line of ancestors whose record needs it. Only the class's own list counts, so there is one
    at most: that of the class itself or of the nearest ancestor that has one."""
    place, result = 0, None
    for entity, lines in _line_of_ancestors(release, name):
        found = None
        for offset, line in enumerate(lines):
            expression = line.split(': ', 1)[1]
            least = _LEAST.match(expression)
            inner = expression.rsplit(' OF ', 1)
            if (found is None and least and ' OF ' not in inner[0]
                    and (inner[-1] in release.entities or inner[-1] in release.selects)):
                found = place + offset
        result = found if found is not None else result
        place += len(lines)
    return result


def _line_of_ancestors(release, upper_name):
    names = {name.upper(): name for name in release.entities}
    name, line = names[upper_name], []
    while name is not None:
        supertype, lines = release.entities[name]
        line.append((name, lines))
        name = supertype
    return line[::-1]


def _reach(starts, neighbours, allowed):
    """All that can be reached from some records over allowed ones, the first ones included."""
    reached, open_ = set(starts), list(starts)
    while open_:
        for number in neighbours(open_.pop()):
            if number not in reached and allowed(number):
                reached.add(number)
                open_.append(number)
    return reached


@functools.cache
def _needs(release, name):
    """The places of mandatory references."""
    return [place for place, (_, optional, kind) in enumerate(release.attributes_of(name))
            if kind.name == schema_facts.REFERENCE and not optional]


def _cannot_exist(release, record, gone):
    """Without a member of a list that must have one, or without a mandatory reference."""
    if not release.is_entity(record.name):
        return False
    given = dict(enumerate(record.arguments))
    members = given.get(_lives_on(release, record.name))
    if isinstance(members, list) and all(_is_gone(member, gone) for member in members):
        return True
    return any(isinstance(given.get(place), Reference) and given[place].number in gone
               for place in _needs(release, record.name))


def _is_gone(member, gone):
    return isinstance(member, Absent) or isinstance(member, Reference) and member.number in gone


def _drop(number, children, parents, saved, gone):
    """With what only dropped records refer to."""
    gone.add(number)
    for child in children[number]:
        if child not in saved and child not in gone and parents[child] <= gone:
            _drop(child, children, parents, saved, gone)


def kept_records(model):
    """The numbers of the records that stay."""
    release = model.release
    children = {number: [piece for piece in line.pieces if isinstance(piece, int)]
                for number, line in model.lines.items()}
    parents = {number: set() for number in model.lines}
    for number, references in children.items():
        for reference in references:
            parents[reference].add(number)
    saved = _reach([number for number, line in model.lines.items()
                    if line.name == 'IFCPROJECT' or release.is_a(line.name, 'IfcProduct')],
                   children.__getitem__, lambda number: True)
    gone, before = set(), None
    while before != len(gone):
        before = len(gone)
        for number, record in model.file.records.items():
            if number not in saved and number not in gone and _cannot_exist(release, record, gone):
                _drop(number, children, parents, saved, gone)
    return _reach(saved, lambda number: [*children[number], *parents[number]],
                  lambda number: number not in gone)

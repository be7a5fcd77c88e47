"""In which order the members of a class are declared, and which source holds its functions."""

from dataclasses import dataclass

from .kinds import attribute_kind


@dataclass(frozen=True)
class Member:
    name: str
    type: str
    default: str    # '' for a list
    size: int       # bytes that it takes
    alignment: int


def members_of(schema, entity):
    """The members of an entity's own attributes, in declaration order."""
    members = []
    for attribute in entity.attributes:
        kind = attribute_kind(schema, entity, attribute)
        default = kind.default if kind.depth == 0 else ''
        members.append(Member(attribute.name, kind.member_type(), default, kind.size(),
                              min(kind.size(), 8)))
        if attribute.optional:
            members.append(Member(attribute.name + 'Present', 'bool', 'false', 1, 1))
    return members


def packed(members, offset):
    """`members` in an order that leaves few gaps, and the offset behind the last one.

    `offset` is where the supertype's own part ends: compilers that follow the Itanium rules let a
    subtype begin in its padding, so that the flags of a chain of classes fill whole words."""
    order, waiting = [], list(members)
    while waiting:
        fitting = [member for member in waiting if offset % member.alignment == 0]
        chosen = max(fitting or waiting, key=lambda member: member.alignment)
        offset += -offset % chosen.alignment + chosen.size
        order.append(chosen)
        waiting.remove(chosen)
    return order, offset


class Layout:
    """The order of the members of every entity."""

    POINTER = 8     # of the virtual table, at the beginning of every entity

    def __init__(self, schema):
        self.schema = schema
        self.orders, self.ends = {}, {}
        for name in schema.entities:
            self.lay_out(name)

    def lay_out(self, name):
        if name in self.orders:
            return
        entity = self.schema.entities[name]
        begin = self.POINTER
        if entity.supertype:
            self.lay_out(entity.supertype)
            begin = self.ends[entity.supertype]
        members = members_of(self.schema, entity)
        self.orders[name], self.ends[name] = packed(members, begin)


class Shards:
    """Cuts the entities into `count` parts of like weight, each a run of the tree in depth-first
    order, so that few classes are needed by more than one part."""

    def __init__(self, schema, count):
        self.count = count
        order = depth_first(schema)
        weights = {name: 4 + len(schema.supertypes_of(name)) + len(schema.entities[name].attributes)
                   for name in order}
        total, reached = sum(weights.values()), 0
        self.parts = [[] for _ in range(count)]
        self.part_of = {}
        for name in order:
            part = min(reached * count // total, count - 1) if total else 0
            self.parts[part].append(name)
            self.part_of[name] = part
            reached += weights[name]
        needed = {above for name in order for above in schema.supertypes_of(name)
                  if self.part_of[above] != self.part_of[name]}
        self.common = [name for name in order if name in needed]

    def own_declarations(self, part):
        """The classes whose declaration only this part needs."""
        common = set(self.common)
        return [name for name in self.parts[part] if name not in common]


def depth_first(schema):
    subtypes = {}
    for name in sorted(schema.entities):
        subtypes.setdefault(schema.entities[name].supertype, []).append(name)
    order, waiting = [], subtypes.get(None, [])[::-1]
    while waiting:
        name = waiting.pop()
        order.append(name)
        waiting += subtypes.get(name, [])[::-1]
    return order

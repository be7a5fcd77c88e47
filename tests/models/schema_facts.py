"""What the classes of a release hold, read from the tables of facts for the tests' own use.

The generator of the program reads the same tables with code of its own, and the differences between
the tables and the classes, which it takes from overrides.txt, stand here once more by hand.
"""

import functools
import os
import re
from typing import NamedTuple

_RELEASES = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', 'src', 'schema',
                         'releases')

_EXACT = {'IFC2X2_PLATFORM': 'IFC2X2_PLATFORM', 'IFC2X2_FINAL': 'IFC2X2_FINAL', 'IFC2X3': 'IFC2X3',
          'IFC4': 'IFC4', 'IFC4X1': 'IFC4X1', 'IFC4X2': 'IFC4X2', 'IFC4X3': 'IFC4X3_ADD2',
          'IFC4X3_ADD2': 'IFC4X3_ADD2', 'IFC4X4': 'IFC4X4'}


def choose_release(identifier):
    """The release that a schema identifier is read with, or None."""
    if identifier in _EXACT:
        return _EXACT[identifier]
    if identifier.startswith('IFC2X'):
        return 'IFC2X_FINAL'
    return 'IFC4X3_ADD2' if identifier.startswith('IFC4X3') else None


# Kinds of values. A reference leads to an entity or holds a typed value, as its targets say.
REFERENCE, REAL, COUNT, INTEGER, BINARY, TEXT, GUID = (
    'reference', 'real', 'count', 'integer', 'binary', 'text', 'GUID')
BOOLEAN, LOGICAL = 'boolean', 'logical'   # of a type with a class: may be absent
ENUMERATION, LIST, NOTHING = 'enumeration', 'list', 'nothing'


class Kind(NamedTuple):
    name: str
    targets: frozenset = frozenset()  # REFERENCE: upper-case names of the classes it may be of
    values: tuple = ()                # ENUMERATION: what can be read, in the order of the table
    read_only: frozenset = frozenset()  # ENUMERATION: those of them that are written as $
    of: 'Kind | None' = None          # LIST


class Attribute(NamedTuple):
    name: str
    optional: bool
    kind: Kind


_SCALARS = {'REAL': REAL, 'NUMBER': COUNT, 'INTEGER': INTEGER, 'BINARY': BINARY, 'STRING': TEXT}
_TRUTH = {'BOOLEAN': ('T', 'F'), 'LOGICAL': ('T', 'F', 'U')}
_OPPOSITE = ('DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT', 'DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_RIGHT')
_AGGREGATE = re.compile(r'(?:LIST|SET|ARRAY|BAG)(?: \[\S+\])? OF (.+)\Z')


class Release:
    """`attributes_of` for a class, entity or value, by its upper-case name."""

    def __init__(self, namespace):
        self.namespace = namespace
        self.entities = {}            # name -> (supertype or None, [(name, optional, type)])
        self.types = {}               # name -> type
        self.enumerations = {}        # name -> [value]
        self.selects = {}             # name -> [member]
        self._read_facts(os.path.join(_RELEASES, namespace + '.schema'))
        self._names = {name.upper(): name for name in self.entities}
        self._value_names = {name.upper(): name for name in self.types if self._has_class(name)}
        if 'IfcNullStyle' in self.enumerations and self._has_class('IfcNullStyle'):
            self._value_names['IFCNULLSTYLE'] = 'IfcNullStyle'
        self._door_rows()

    def _read_facts(self, path):
        body = None
        with open(path, encoding='ascii') as file:
            for line in file:
                words = line.split()
                if not words or line.startswith('#') or words[0] == 'schema':
                    continue
                if line.startswith('  '):
                    body.append(line.strip())
                elif words[0] == 'type':
                    self.types[words[1]] = line.split(' = ', 1)[1].strip()
                elif words[0] == 'enumeration':
                    body = self.enumerations[words[1]] = []
                elif words[0] == 'select':
                    body = self.selects[words[1]] = []
                else:
                    body = []
                    words = [word for word in words if word not in ('entity', 'abstract')]
                    supertype = words[2] if words[1:2] == ['<'] else None
                    self.entities[words[0]] = (supertype, body)

    def _door_rows(self):
        """Two values that no published table has: read in all releases, written in one."""
        self._read_only = {}
        name = 'IfcDoorStyleOperationEnum'
        if self.namespace == 'IFC4X3_ADD2':
            name = 'IfcDoorTypeOperationEnum'
        rows = self.enumerations[name]
        after = rows.index('DOUBLE_DOOR_SINGLE_SWING_OPPOSITE_RIGHT') + 1
        rows[after:after] = _OPPOSITE
        if self.namespace != 'IFC2X_FINAL':
            self._read_only[name] = frozenset(_OPPOSITE)

    # Classes --------------------------------------------------------------------------------------

    def is_entity(self, upper_name):
        return upper_name in self._names

    def is_value(self, upper_name):
        return upper_name in self._value_names

    @functools.cache
    def attributes_of(self, upper_name):
        """All attributes of an entity, those of its supertypes first."""
        attributes, name = [], self._names[upper_name]
        while name is not None:
            name, own = self.entities[name][0], [
                self._attribute(name, line) for line in self.entities[name][1]]
            attributes[:0] = own
        return attributes

    @functools.cache
    def value_kind(self, upper_name):
        """What stands in the brackets of a typed value."""
        name = self._value_names[upper_name]
        return Kind(NOTHING) if name == 'IfcNullStyle' else self._kind(name)

    def is_a(self, upper_name, ancestor):
        name = self._names.get(upper_name)
        while name is not None and name != ancestor:
            name = self.entities[name][0]
        return name is not None

    def _attribute(self, entity, line):
        name, expression = line.split(': ', 1)
        optional = expression.startswith('OPTIONAL ')
        if entity == 'IfcRoot' and name in ('Name', 'Description'):
            optional = self.namespace not in ('IFC2X_FINAL', 'IFC2X2_PLATFORM')
        return Attribute(name, optional, self._kind(expression.removeprefix('OPTIONAL ')))

    @functools.cache
    def _kind(self, expression):
        aggregate = _AGGREGATE.match(expression)
        if aggregate:
            return Kind(LIST, of=self._kind(aggregate.group(1)))
        if expression in _SCALARS:
            return Kind(_SCALARS[expression])
        if expression in _TRUTH:
            return Kind(ENUMERATION, values=_TRUTH[expression])
        if expression == 'IfcGloballyUniqueId':
            return Kind(GUID)
        if expression in self.enumerations:
            return Kind(ENUMERATION, values=tuple(self.enumerations[expression]),
                        read_only=self._read_only.get(expression, frozenset()))
        if expression in self.entities or expression in self.selects:
            return Kind(REFERENCE, targets=frozenset(self._targets(expression)))
        if expression in ('IfcBoolean', 'IfcLogical'):
            return Kind(BOOLEAN if expression == 'IfcBoolean' else LOGICAL)
        return self._kind(self.types[expression])

    def _targets(self, name):
        """The upper-case names of all classes that an entity or select stands for."""
        if name in self.selects:
            for member in self.selects[name]:
                yield from self._targets(member)
        elif name in self.entities:
            for entity in self.entities:
                if self.is_a(entity.upper(), name):
                    yield entity.upper()
        else:
            yield name.upper()

    def _has_class(self, name):
        return any(name in members for members in self.selects.values())


@functools.cache
def release(namespace):
    return Release(namespace)

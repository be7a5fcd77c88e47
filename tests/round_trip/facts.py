"""What a release holds, as far as a reader of its files can tell.

A second opinion beside the generator of the classes: it shares the texts of facts with it
(src/schema/releases/*.schema), the list of releases and nothing else, so that a misreading on one
side shows.
"""

import re
from pathlib import Path

SOURCE_FOLDER = Path(__file__).parents[2] / 'src'
RELEASES = tuple(re.findall(r'^CORVEL_RELEASE\((\w+)\)$',
                            (SOURCE_FOLDER / 'step' / 'releases.inc').read_text(encoding='ascii'),
                            re.MULTILINE))
OLDEST_TWO = RELEASES[:2]

SIMPLE_TYPES = {'REAL', 'INTEGER', 'NUMBER', 'STRING', 'BOOLEAN', 'LOGICAL', 'BINARY'}

FACTS_FOLDER = SOURCE_FOLDER / 'schema' / 'releases'

# Two values that no text has. They are read wherever the table stands, and written in the oldest
# release only: elsewhere they come out as an absent value.
OPPOSITE_PANELS = ('DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT',
                   'DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_RIGHT')


class Attribute:
    def __init__(self, line):
        self.name, optional, self.type = re.fullmatch(r'(\w+): (OPTIONAL )?(.+)', line).groups()
        self.optional = bool(optional)


class Release:
    """Tables by name as the schema writes it. `classes` are the names that a file may use."""

    def __init__(self, namespace):
        self.namespace = namespace
        self.own_attributes = {}    # entity -> its own attributes
        self.supertype = {}         # entity -> entity or None
        self.types = {}             # defined type -> type text
        self.enumerations = {}      # name -> values in the order of the table
        self.selects = {}           # name -> members
        self.read_only_values = {}  # enumeration -> values that are never written
        for declaration in self._declarations():
            self._enter(*declaration)
        self._apply_differences()
        admitted = {member for members in self.selects.values() for member in members}
        # A type has a class when a select admits it; so has the null style.
        self.value_classes = sorted((set(self.types) | self._null_style()) & admitted)
        self.entities = sorted(self.own_attributes)
        self.classes = self.entities + self.value_classes
        self._admitted = {}

    def _declarations(self):
        """(keyword, name, what stands behind the name, the indented lines)"""
        head, body = None, []
        for line in (FACTS_FOLDER / f'{self.namespace}.schema').read_text().splitlines():
            if not line or line.startswith('#'):
                continue
            if line.startswith(' '):
                body.append(line.strip())
                continue
            if head:
                yield (*head, body)
            keyword, name, rest = re.fullmatch(
                r'(?:abstract )?(\w+) (\w+)(?: [<=] (.+))?', line).groups()
            head, body = (keyword, name, rest), []
        yield (*head, body)

    def _enter(self, keyword, name, rest, body):
        if keyword == 'entity':
            self.supertype[name] = rest
            self.own_attributes[name] = [Attribute(line) for line in body]
        elif keyword == 'type':
            self.types[name] = rest
        elif keyword == 'enumeration':
            self.enumerations[name] = body
        elif keyword == 'select':
            self.selects[name] = body

    def _apply_differences(self):
        """Where the classes differ from the published text."""
        if self.namespace in OLDEST_TWO:
            for attribute in self.own_attributes['IfcRoot']:
                if attribute.name in ('Name', 'Description'):
                    attribute.optional = False
        widened = []
        if 'IfcDoorStyleOperationEnum' in self.enumerations:
            widened.append('IfcDoorStyleOperationEnum')
        if self.namespace == 'IFC4X3_ADD2':
            widened.append('IfcDoorTypeOperationEnum')
        for name in widened:
            values = self.enumerations[name]
            before = values.index('DOUBLE_DOOR_SINGLE_SWING_OPPOSITE_RIGHT')
            values[before + 1:before + 1] = OPPOSITE_PANELS
            if self.namespace != 'IFC2X_FINAL':
                self.read_only_values[name] = set(OPPOSITE_PANELS)

    def _null_style(self):
        return {'IfcNullStyle'} & set(self.enumerations)

    def attributes(self, entity):
        """All explicit attributes, those of the topmost supertype first."""
        above = self.supertype[entity]
        return (self.attributes(above) if above else []) + self.own_attributes[entity]

    def subtypes(self, entity):
        return [name for name in self.entities if self.supertype[name] == entity]

    def admitted(self, target):
        """The classes whose objects an attribute of the entity or select `target` accepts."""
        if target not in self._admitted:
            found = self._find_admitted(target)
            # The engine takes a unit assignment for a unit, see the interface IFC::IfcUnit.
            if target == 'IfcUnit':
                found |= self._find_admitted('IfcUnitAssignment')
            self._admitted[target] = [name for name in self.classes if name in found]
        return self._admitted[target]

    def _find_admitted(self, target):
        if target in self.selects:
            return set().union(*map(self._find_admitted, self.selects[target]))
        if target in self.own_attributes:
            return {target}.union(*map(self._find_admitted, self.subtypes(target)))
        return {target}

    def innermost(self, type_text):
        """Follows the names of defined types to a simple type, an enumeration or an aggregate."""
        while type_text in self.types:
            type_text = self.types[type_text]
        return type_text

"""The facts of one release as objects, and the parser of the .schema form."""

import re
from dataclasses import dataclass, field

SIMPLE_TYPES = ('REAL', 'INTEGER', 'NUMBER', 'STRING', 'BOOLEAN', 'LOGICAL', 'BINARY')
NAME = re.compile(r'[A-Za-z]\w*\Z')
AGGREGATE = re.compile(r'(LIST|SET|ARRAY|BAG)(?: \[(\S+):(\S+)\])? OF (.+)\Z')


class SchemaError(Exception):
    """The facts or the overrides hold something that has no rule; the text says what and where."""


@dataclass(frozen=True)
class TypeExpression:
    """A simple type, the name of a declared one, or an aggregate of another expression."""
    name: str = ''                    # 'REAL', 'IfcLabel'; empty for an aggregate
    aggregate: str = ''               # 'LIST', 'SET', 'ARRAY', 'BAG'
    low: str = ''                     # bounds as written; '' where none are given
    high: str = ''
    of: 'TypeExpression | None' = None

    def __str__(self):
        if not self.aggregate:
            return self.name
        bounds = f' [{self.low}:{self.high}]' if self.low else ''
        return f'{self.aggregate}{bounds} OF {self.of}'


@dataclass(frozen=True)
class Attribute:
    name: str
    optional: bool
    type: TypeExpression


@dataclass
class Entity:
    name: str
    abstract: bool
    supertype: 'str | None'
    attributes: list = field(default_factory=list)  # own explicit ones, in order


@dataclass
class EnumerationValue:
    name: str
    number: int
    read_only: bool = False           # accepted when read, unknown when written


@dataclass
class Enumeration:
    name: str
    values: list                      # EnumerationValue, in the order of the table


@dataclass
class Schema:
    """One release. All tables are keyed by the name as the schema writes it."""
    namespace: str
    entities: dict = field(default_factory=dict)      # -> Entity
    types: dict = field(default_factory=dict)         # -> TypeExpression
    enumerations: dict = field(default_factory=dict)  # -> Enumeration
    selects: dict = field(default_factory=dict)       # -> list of member names
    shared: set = field(default_factory=set)          # selects that are a class of namespace IFC
    valueless: set = field(default_factory=set)       # types whose values hold nothing

    def is_subtype(self, name, ancestor):
        """Whether the entity `name` is `ancestor` or derives from it."""
        while name is not None and name != ancestor:
            name = self.entities[name].supertype
        return name is not None

    def supertypes_of(self, name):
        """The chain above an entity, the topmost first."""
        chain = []
        while (name := self.entities[name].supertype) is not None:
            chain.insert(0, name)
        return chain

    def selects_admitting(self, name):
        """The selects that list `name` itself, in alphabetical order."""
        return [select for select in sorted(self.selects) if name in self.selects[select]]

    def value_types(self):
        """The defined types that have a class: those that a select admits."""
        return [name for name in sorted(set(self.types) | self.valueless)
                if self.selects_admitting(name)]


def parse_type(text, where):
    match = AGGREGATE.match(text)
    if match:
        aggregate, low, high, of = match.groups()
        return TypeExpression('', aggregate, low or '', high or '', parse_type(of, where))
    if not NAME.match(text):
        raise SchemaError(f'{where}: "{text}" is no type')
    return TypeExpression(text)


class Parser:
    """Reads the .schema form. Indented lines belong to the declaration above them."""

    def __init__(self, text, namespace, file_name):
        self.schema = Schema(namespace)
        self.file_name = file_name
        self.body = None              # takes the indented lines of the current declaration
        for number, line in enumerate(text.splitlines(), 1):
            self.where = f'{file_name}:{number}'
            if not line.strip() or line.startswith('#'):
                continue
            if line.startswith('  '):
                self.read_indented(line.strip())
            else:
                self.read_declaration(line.strip())

    def read_indented(self, line):
        if self.body is None:
            raise SchemaError(f'{self.where}: "{line}" belongs to no declaration')
        self.body(line)

    def read_declaration(self, line):
        self.body = None
        match = re.match(r'(abstract entity|entity|enumeration|select|type|schema) (\w+)'
                         r'(?: (<|=) (.+))?\Z', line)
        if not match:
            raise SchemaError(f'{self.where}: no rule for "{line}"')
        keyword, name, mark, rest = match.groups()
        if mark != {'type': '='}.get(keyword, mark and '<' if 'entity' in keyword else None):
            raise SchemaError(f'{self.where}: no rule for "{line}"')
        if keyword == 'schema':
            return
        self.refuse_second(name)
        if keyword == 'type':
            self.schema.types[name] = parse_type(rest, self.where)
        elif keyword == 'enumeration':
            enumeration = self.schema.enumerations[name] = Enumeration(name, [])
            self.body = lambda value: self.add_value(enumeration, value)
        elif keyword == 'select':
            self.body = self.schema.selects.setdefault(name, []).append
        else:
            entity = Entity(name, keyword.startswith('abstract'), rest)
            self.schema.entities[name] = entity
            self.body = lambda attribute: self.add_attribute(entity, attribute)

    def refuse_second(self, name):
        schema = self.schema
        for table in (schema.entities, schema.types, schema.enumerations, schema.selects):
            if name in table:
                raise SchemaError(f'{self.where}: {name} is declared twice')

    def add_value(self, enumeration, value):
        enumeration.values.append(EnumerationValue(value, len(enumeration.values)))

    def add_attribute(self, entity, line):
        match = re.match(r'(\w+): (OPTIONAL )?(.+)\Z', line)
        if not match:
            raise SchemaError(f'{self.where}: "{line}" is no attribute')
        name, optional, text = match.groups()
        entity.attributes.append(Attribute(name, bool(optional), parse_type(text, self.where)))


def check_names(schema):
    """Every name that the facts use is declared, and nothing inherits from itself."""
    known = (set(schema.entities) | set(schema.types) | set(schema.enumerations)
             | set(schema.selects) | schema.valueless)

    def check_type(expression, where):
        while expression.aggregate:
            expression = expression.of
        if expression.name not in SIMPLE_TYPES and expression.name not in known:
            raise SchemaError(f'{where}: {expression.name} is declared nowhere')

    for name, expression in schema.types.items():
        check_type(expression, name)
    for name, enumeration in schema.enumerations.items():
        if not enumeration.values:
            raise SchemaError(f'{name} has no values')
    for name, members in schema.selects.items():
        for member in members:
            if member not in known:
                raise SchemaError(f'{name}: {member} is declared nowhere')
    for entity in schema.entities.values():
        seen, above = {entity.name}, entity.supertype
        while above is not None:
            if above not in schema.entities:
                raise SchemaError(f'{entity.name}: its supertype {above} is no entity')
            if above in seen:
                raise SchemaError(f'{entity.name} is its own supertype')
            seen.add(above)
            above = schema.entities[above].supertype
        for attribute in entity.attributes:
            check_type(attribute.type, f'{entity.name}.{attribute.name}')


def parse_schema(text, namespace, file_name='schema'):
    """The facts as they stand, before any override."""
    schema = Parser(text, namespace, file_name).schema
    check_names(schema)
    return schema

"""What an attribute, or the value of a defined type, is in C++.

A kind is a scalar and the number of lists around it. Whatever has no rule is refused here, so that
a new release can't be generated with an attribute that is read in some accidental way.
"""

from dataclasses import dataclass

from .model import SchemaError

GUID = 'IfcGloballyUniqueId'

# The scalars, each with its C++ type and default. The default of an enumeration is its last row.
SCALARS = {
    'reference': ('IFC::IfcEntity*', 'nullptr'),
    'real': ('double', '0.0'),
    'count': ('double', '0.0'),          # read as a real, written with six digits
    'integer': ('std::int32_t', '0'),
    'binary': ('std::int32_t', '0'),
    'text': ('corvel::ModelText', 'corvel::kEmptyWide'),
    'guid': ('const char*', 'corvel::kEmptyNarrow'),
    'boolean': ('std::int32_t', '1'),    # false
    'logical': ('std::int32_t', '2'),    # unknown
    'enumeration': ('std::int32_t', None),
    'nothing': (None, None),
}
SIMPLE = {'REAL': 'real', 'INTEGER': 'integer', 'NUMBER': 'count', 'STRING': 'text',
          'BOOLEAN': 'boolean', 'LOGICAL': 'logical', 'BINARY': 'binary'}
# The scalars that a list, and a list of lists, may hold.
IN_LISTS = {'reference', 'real', 'integer', 'binary', 'text', 'boolean', 'logical', 'enumeration'}
IN_LISTS_OF_LISTS = {'reference', 'real', 'integer'}


@dataclass(frozen=True)
class Kind:
    scalar: str                # a key of SCALARS
    depth: int = 0             # 0: the scalar itself; 1: a list; 2: a list of lists
    target: str = ''           # the class of a reference, the name of an enumeration
    plain: bool = False        # a boolean or logical without a value class: has no absent form
    default: str = ''          # of the scalar, as C++
    values_refer: bool = False  # a reference to a value may in turn lead to entities

    def member_type(self):
        if self.depth == 0:
            return SCALARS[self.scalar][0]
        if self.scalar == 'reference':
            inner = 'corvel::EntityList'
        else:
            inner = f'corvel::List<{SCALARS[self.scalar][0]}>'
        return inner if self.depth == 1 else f'corvel::List<{inner}>'

    def size(self):
        """Bytes of the member. Lists are 16, aligned as pointers."""
        if self.depth:
            return 16
        return 4 if SCALARS[self.scalar][0] == 'std::int32_t' else 8


def is_reference(schema, name):
    return name in schema.entities or name in schema.selects


def holds_references(schema, name):
    """True for a select of a value that refers to entities (IfcPropertySetDefinitionSet)."""
    if name in schema.types:
        expression = schema.types[name]
        return expression.aggregate and is_reference(schema, expression.of.name)
    return any(holds_references(schema, member) for member in schema.selects.get(name, ()))


def scalar_kind(schema, expression, where):
    """The kind of what stands inside all aggregates; a defined type gives that of its own type."""
    name = expression.name
    if name in SIMPLE:
        if name == 'NUMBER':
            raise SchemaError(f'{where}: there is no rule for a plain NUMBER')
        return make_kind(SIMPLE[name], plain=True)
    if is_reference(schema, name):
        return make_kind('reference', target=name, values_refer=holds_references(schema, name))
    if name in schema.enumerations:
        last = schema.enumerations[name].values[-1].number
        return Kind('enumeration', 0, name, False, str(last))
    if name in schema.valueless:
        raise SchemaError(f'{where}: {name} has no value that could be held')
    return defined_kind(schema, name, where)


def make_kind(scalar, **more):
    return Kind(scalar, default=SCALARS[scalar][1], **more)


def defined_kind(schema, name, where):
    """The kind of a defined type. Widths, bounds and rules of the type play no part."""
    expression, plain = schema.types[name], not schema.selects_admitting(name)
    if name == GUID:
        return make_kind('guid')
    if expression.aggregate:
        inner = expression.of
        if inner.aggregate:
            raise SchemaError(f'{where}: there is no rule for {name}, a type of nested aggregates')
        kind = scalar_kind(schema, inner, where)
        return wrapped(kind, 1, where, str(expression))
    if expression.name == 'NUMBER':
        return make_kind('count')
    kind = scalar_kind(schema, expression, where)
    if kind.scalar in ('reference', 'enumeration'):
        raise SchemaError(f'{where}: there is no rule for {name}, which renames {expression.name}')
    return Kind(kind.scalar, kind.depth, kind.target, kind.plain and plain, kind.default)


def wrapped(kind, depth, where, text):
    """`kind` inside `depth` lists."""
    admitted = IN_LISTS if depth == 1 else IN_LISTS_OF_LISTS if depth == 2 else ()
    if kind.depth or kind.scalar not in admitted:
        raise SchemaError(f'{where}: there is no rule for {text}')
    if kind.plain and kind.scalar in ('boolean', 'logical'):
        raise SchemaError(f'{where}: there is no rule for a list of plain {kind.scalar}s')
    return Kind(kind.scalar, depth, kind.target, False, kind.default, kind.values_refer)


def attribute_kind(schema, entity, attribute):
    where = f'{schema.namespace} {entity.name}.{attribute.name}'
    expression, depth = attribute.type, 0
    while expression.aggregate:
        expression, depth = expression.of, depth + 1
    kind = scalar_kind(schema, expression, where)
    if kind.depth and kind.scalar == 'reference':
        raise SchemaError(f'{where}: there is no rule for {expression.name} held by value')
    if depth:
        return wrapped(kind, depth, where, str(attribute.type))
    if kind.scalar == 'guid' and attribute.optional:
        raise SchemaError(f'{where}: there is no rule for an optional {GUID}')
    return kind


def value_kind(schema, name):
    """What the class of a defined type holds."""
    if name in schema.valueless:
        return Kind('nothing')
    kind = defined_kind(schema, name, f'{schema.namespace} {name}')
    if kind.scalar in ('boolean', 'logical'):  # `$` inside the brackets of the value is an error
        return Kind(kind.scalar, kind.depth, plain=True, default=kind.default)
    return kind


def lives_on(schema, entity):
    """The first own attribute whose members the entity needs: a mandatory list of references, one
    level deep, that must have a member. None if there is none."""
    for attribute in entity.attributes:
        expression = attribute.type
        if (expression.aggregate and not attribute.optional
                and is_reference(schema, expression.of.name)
                and expression.low.isdigit() and int(expression.low) >= 1):
            return attribute
    return None


def class_test_targets(schema):
    """The classes that some attribute, or the value of some defined type, refers to."""
    targets = set()
    for entity in schema.entities.values():
        for attribute in entity.attributes:
            kind = attribute_kind(schema, entity, attribute)
            if kind.scalar == 'reference':
                targets.add(kind.target)
    for name in schema.value_types():
        kind = value_kind(schema, name)
        if kind.scalar == 'reference':
            targets.add(kind.target)
    return sorted(targets)


def used_enumerations(schema):
    """The enumerations that some attribute holds, in alphabetical order."""
    used = {attribute_kind(schema, entity, attribute).target
            for entity in schema.entities.values() for attribute in entity.attributes
            if attribute_kind(schema, entity, attribute).scalar == 'enumeration'}
    return sorted(used)

"""The constants that describe the classes: types, attributes, classes (see step/class_facts.h)."""

from .kinds import attribute_kind, is_reference, value_kind
from .model import SIMPLE_TYPES, Attribute, SchemaError, TypeExpression

VALUE_KINDS = {'real': 'kReal', 'count': 'kNumber', 'integer': 'kInteger', 'binary': 'kBinary',
               'text': 'kText', 'guid': 'kGuid', 'boolean': 'kBoolean', 'logical': 'kLogical',
               'enumeration': 'kEnumeration'}
TABLES_OF_SIMPLE_TYPES = {'BOOLEAN': 'corvel::kBooleanDataType',
                          'LOGICAL': 'corvel::kLogicalDataType'}
LARGEST_BOUND = 254     # 255 stands for none


def attribute_tables(schema):
    """The body of attributes.cpp."""
    lines = ['using enum corvel::Aggregate::Kind;', 'using enum corvel::ValueKind;', '']
    lines += type_constants(schema)
    for name in class_names(schema):
        lines += attribute_constants(schema, name)
    return lines + [''] + class_constants(schema)


def class_names(schema):
    """In the order that ReleaseClasses::Find asks for."""
    return sorted(list(schema.entities) + schema.value_types(), key=str.upper)


def own_attributes(schema, name):
    """(attribute, kind) of what the class itself declares."""
    if name in schema.entities:
        entity = schema.entities[name]
        return [(attribute, attribute_kind(schema, entity, attribute))
                for attribute in entity.attributes]
    kind = value_kind(schema, name)
    if kind.scalar == 'nothing':
        return []
    return [(Attribute('value', False, TypeExpression(name)), kind)]


# --- Types ----------------------------------------------------------------------------------------
def innermost(expression):
    """The expression without its aggregates, and these, the outermost first."""
    aggregates = []
    while expression.aggregate:
        aggregates.append(expression)
        expression = expression.of
    return expression, aggregates


def declared_types(schema):
    """The names of all types that attributes have and of those that they are made of, each behind
    its base."""
    order = []

    def add(name):
        if name in order:
            return
        if name in schema.types:
            add(innermost(schema.types[name])[0].name)
        order.append(name)

    used = {innermost(attribute.type)[0].name for name in class_names(schema)
            for attribute, _ in own_attributes(schema, name)}
    for name in [name for name in SIMPLE_TYPES if name in used] + sorted(used):
        add(name)
    return order


def type_constants(schema):
    return [f'static constexpr corvel::TypeFacts {type_name(name)}{{{type_fields(schema, name)}}};'
            for name in declared_types(schema)]


def type_name(name):
    return f'k{name}Type'


def type_fields(schema, name):
    fields = [f'"{name}"']
    if name in schema.types:
        base, aggregates = innermost(schema.types[name])
        where = f'{schema.namespace} {name}'
        fields += [f'&{type_name(base.name)}'] + [aggregate(one, where) for one in aggregates]
    elif is_reference(schema, name):
        fields += ['nullptr', '{}', 'nullptr', f'&is{name}']
    elif name in schema.enumerations:
        fields += ['nullptr', '{}', f'&k{name}']
    elif name in TABLES_OF_SIMPLE_TYPES:
        fields += ['nullptr', '{}', f'&{TABLES_OF_SIMPLE_TYPES[name]}']
    return ', '.join(fields)


def bound(text, expression, where):
    if not text.isdigit() or int(text) > LARGEST_BOUND:
        raise SchemaError(f'{where}: there is no rule for the bounds of {expression}')
    return text


def aggregate(expression, where):
    """`{kList, 1, 3}`; without the second bound where there is none."""
    fields = [f'k{expression.aggregate.capitalize()}']
    if expression.low:
        fields.append(bound(expression.low, expression, where))
        if expression.high != '?':
            fields.append(bound(expression.high, expression, where))
    return '{' + ', '.join(fields) + '}'


# --- Attributes -----------------------------------------------------------------------------------
def attribute_constants(schema, name):
    own = own_attributes(schema, name)
    if not own:
        return []
    lines = ['', f'static constexpr corvel::AttributeFacts k{name}Attributes[] = {{']
    for attribute, kind in own:
        lines.append(f'    {{{attribute_fields(schema, name, attribute, kind)}}},')
    return lines + ['};']


def attribute_fields(schema, class_name, attribute, kind):
    declared, aggregates = innermost(attribute.type)
    where = f'{schema.namespace} {class_name}.{attribute.name}'
    fields = [f'"{attribute.name}"', f'&{type_name(declared.name)}',
              '{' + ', '.join(aggregate(one, where) for one in aggregates) + '}',
              f'{value_kind_of(schema, kind)}', str(kind.depth),
              f'offsetof({class_name}, {attribute.name})']
    if attribute.optional:
        fields.append(f'offsetof({class_name}, {attribute.name}Present)')
    return ', '.join(fields)


def value_kind_of(schema, kind):
    if kind.scalar == 'reference':
        return 'kSelect' if kind.target in schema.selects else 'kReference'
    return VALUE_KINDS[kind.scalar]


# --- Classes --------------------------------------------------------------------------------------
def class_constants(schema):
    names = class_names(schema)
    number = {name: i for i, name in enumerate(names)}
    lines = [f'static constexpr corvel::ClassFacts kAll[{len(names)}] = {{']
    for name in names:
        entity = schema.entities.get(name)
        supertype = f'&kAll[{number[entity.supertype]}]' if entity and entity.supertype else 'nullptr'
        above = schema.supertypes_of(name) if entity else []
        inherited = sum(len(schema.entities[one].attributes) for one in above)
        own = len(own_attributes(schema, name))
        attributes = f'k{name}Attributes' if own else 'nullptr'
        lines.append(f'    {{"{name}", &typeid({name}), {supertype}, {attributes}, {own}, '
                     f'{inherited}}},')
    return lines + ['};', 'const corvel::ReleaseClasses kClasses{kAll};']

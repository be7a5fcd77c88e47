"""Where the classes differ from the published text: the rules of overrides.txt.

One rule per line, `RULE RELEASES ARGUMENTS -- REASON`, continued by indented lines. RELEASES is
`*`, or names with commas. The rules:

    shared   * IfcUnit                     a select that is an interface of namespace IFC, and no
                                           class of the release
    valueless * IfcNullStyle               an enumeration that is a class without value where a
                                           select admits it
    mandatory R IfcRoot.Name               an attribute that is not optional here
    number   * IfcX A B C ...              the numbers of an enumeration: A 0, B 1, C 2; a release
                                           keeps the order of its own text
    skip     R IfcX 5 6                    numbers that no value of the enumeration has
    insert   R IfcX after A: B C           values that the text lacks
    insert-read-only R IfcX after A: B C   the same, accepted when read and unknown when written

A rule that finds nothing to do in a release that it names is an error; with `*` it is not, since
not every release declares everything.
"""

import re

from .model import EnumerationValue, Attribute, SchemaError


def read_rules(text, file_name):
    """Yields (where, rule, releases, arguments)."""
    lines = []
    for number, line in enumerate(text.splitlines(), 1):
        if not line.strip() or line.startswith('#'):
            continue
        if line.startswith(' ') and lines:
            lines[-1][1] += ' ' + line.strip()
        else:
            lines.append([number, line.strip()])
    for number, line in lines:
        where = f'{file_name}:{number}'
        rule, separator, reason = line.partition(' -- ')
        words = rule.split()
        if not separator or not reason.strip():
            raise SchemaError(f'{where}: a rule needs its reason after " -- "')
        if len(words) < 3:
            raise SchemaError(f'{where}: "{rule}" is no rule')
        yield where, words[0], words[1], words[2:]


def apply_overrides(schema, text, file_name='overrides'):
    appliers = {'shared': share, 'valueless': take_values, 'mandatory': make_mandatory,
                'number': number_values, 'skip': skip_numbers, 'insert': insert_values,
                'insert-read-only': insert_read_only}
    for where, rule, releases, arguments in read_rules(text, file_name):
        if rule not in appliers:
            raise SchemaError(f'{where}: there is no rule "{rule}"')
        if releases != '*' and schema.namespace not in releases.split(','):
            continue
        try:
            done = appliers[rule](schema, arguments)
        except SchemaError as error:
            raise SchemaError(f'{where}: {error}') from None
        if not done and releases != '*':
            raise SchemaError(f'{where}: {schema.namespace} has no {arguments[0]}')


def share(schema, arguments):
    name, = arguments
    if name not in schema.selects:
        return False
    for select, members in schema.selects.items():
        if name in members:
            raise SchemaError(f'{select} admits {name}, which is no class of the release')
    schema.shared.add(name)
    return True


def take_values(schema, arguments):
    name, = arguments
    if name not in schema.enumerations:
        return False
    if schema.selects_admitting(name):
        schema.valueless.add(name)
        del schema.enumerations[name]
    return True


def make_mandatory(schema, arguments):
    entity_name, _, attribute_name = arguments[0].partition('.')
    entity = schema.entities.get(entity_name)
    for i, attribute in enumerate(entity.attributes if entity else []):
        if attribute.name == attribute_name:
            entity.attributes[i] = Attribute(attribute.name, False, attribute.type)
            return attribute.optional
    return False


def number_values(schema, arguments):
    name, *order = arguments
    if name not in schema.enumerations:
        return False
    for value in schema.enumerations[name].values:
        if value.name not in order:
            raise SchemaError(f'{name} has the value {value.name}, which the rule does not number')
        value.number = order.index(value.name)
    return True


def skip_numbers(schema, arguments):
    name, *numbers = arguments
    if name not in schema.enumerations:
        return False
    for skipped in sorted(int(number) for number in numbers):
        for value in schema.enumerations[name].values:
            value.number += value.number >= skipped
    return True


def insert_values(schema, arguments, read_only=False):
    match = re.match(r'(\w+) after (\w+): (.+)\Z', ' '.join(arguments))
    if not match:
        raise SchemaError('expected NAME after VALUE: VALUES')
    name, before, added = match.groups()
    if name not in schema.enumerations:
        return False
    values = schema.enumerations[name].values
    places = [i for i, value in enumerate(values) if value.name == before]
    if not places:
        raise SchemaError(f'{name} has no value {before}')
    place = places[0] + 1
    values[place:place] = [EnumerationValue(value, 0, read_only) for value in added.split()]
    for number, value in enumerate(values):
        value.number = number
    return True


def insert_read_only(schema, arguments):
    return insert_values(schema, arguments, read_only=True)

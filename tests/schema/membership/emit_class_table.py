#!/usr/bin/env python3
"""Writes a table of all classes of one release with the classes and selects that each is to be of.

    emit_class_table.py FACTS NAMESPACE OUT.cpp

Reads the facts by itself, without any part of the generator, so that the table is a second opinion.
"""

import os
import sys

WITHOUT_VALUE = 'IfcNullStyle'  # an enumeration in the facts, a class where a select admits it
SHARED = 'IfcUnit'              # a select in the facts, an interface of all releases here
# Optional in the facts, and always written here.
MANDATORY = {'IFC2X_FINAL': ('IfcRoot.Name', 'IfcRoot.Description'),
             'IFC2X2_PLATFORM': ('IfcRoot.Name', 'IfcRoot.Description')}


def read_facts(path):
    """Entity -> supertype, select -> members, and the names of the defined types."""
    entities, selects, types = {}, {}, set()
    members = None
    with open(path, encoding='ascii') as file:
        for line in file:
            words = line.split()
            if not words:
                continue
            if line.startswith(' '):
                if members is not None:
                    members.append(words[0])
                continue
            members = None
            words = words[words[0] == 'abstract':]
            if words[0] == 'entity':
                entities[words[1]] = words[3] if len(words) > 3 else None
            elif words[0] == 'select' and words[1] != SHARED:
                members = selects.setdefault(words[1], [])
            elif words[0] == 'type':
                types.add(words[1])
    return entities, selects, types


def read_attributes(path):
    """Every word that a type may have, each with what it is: a category, or the text of a type that
    it is made of; and class -> lines of its attributes."""
    types = {word: word for word in ('REAL', 'NUMBER', 'INTEGER', 'BINARY', 'STRING', 'BOOLEAN',
                                     'LOGICAL')}
    attributes, lines = {}, None
    with open(path, encoding='ascii') as file:
        for line in file:
            words = line.split()
            if not words or words[0] == '#':
                continue
            if line.startswith(' '):
                if lines is not None:
                    lines.append(line.strip())
                continue
            words = words[words[0] == 'abstract':]
            lines = attributes.setdefault(words[1], []) if words[0] == 'entity' else None
            types[words[1]] = {'type': line.partition('= ')[2].strip(), 'entity': 'reference'
                               }.get(words[0], words[0])
    return types, attributes


def described(line, types):
    """An attribute with the types that its own is made of, its kind and the depth of its lists.
    Where bounds are left out, any number of members is meant."""
    word, depth = line.split()[-1], line.count(' OF ')
    while types[word].split()[-1] in types and types[word] != word:
        made_of = types[word]
        depth += made_of.count(' OF ')
        word = made_of.split()[-1]
        if types[word] != word:
            line += ' ' + word
    for aggregate in ('LIST', 'SET'):
        line = line.replace(aggregate + ' OF', aggregate + ' [0:?] OF')
    return f'{line} {types[word]} {depth}'


def attribute_text(name, namespace, supertype, types, attributes):
    """Of a value, its only attribute."""
    lines = [supertype] if supertype else []
    own = attributes.get(name, [] if name == WITHOUT_VALUE else ['value: ' + name])
    for line in own:
        if f'{name}.{line.split(":")[0]}' in MANDATORY.get(namespace, ()):
            line = line.replace('OPTIONAL ', '')
        lines.append(described(line, types))
    return ''.join(line + '\\n' for line in lines)


def groups_of(name, entities, selects):
    """Everything that an object of the class `name` is one of: itself, its supertypes, and the
    selects that admit any of these, directly or through other selects."""
    groups, waiting = set(), [name]
    while waiting:
        one = waiting.pop()
        if one in groups:
            continue
        groups.add(one)
        if entities.get(one):
            waiting.append(entities[one])
        waiting += [select for select, members in selects.items() if one in members]
    return groups


def class_table(namespace, facts_path):
    entities, selects, types = read_facts(facts_path)
    type_texts, attributes = read_attributes(facts_path)
    admitted = {member for members in selects.values() for member in members}
    classes = sorted(set(entities) | (types & admitted) | ({WITHOUT_VALUE} & admitted))
    targets = sorted(set(classes) | set(selects))
    number = {target: i for i, target in enumerate(targets)}
    lines = ['#include "schema/membership/class_table.h"', f'#include "{namespace}/classes.h"', '',
             'namespace corvel::test {', '', 'namespace {', '', 'constexpr Target kTargets[] = {']
    lines += [f'    {{"{target}", &IsOfClass<{namespace}::{target}>}},' for target in targets]
    lines += ['};', '']
    for name in classes:
        numbers = sorted(number[group] for group in groups_of(name, entities, selects))
        lines.append(f'constexpr std::uint16_t kOf{name}[] = {{{", ".join(map(str, numbers))}}};')
    lines += ['', 'constexpr ClassRow kClasses[] = {']
    for name in classes:
        text = attribute_text(name, namespace, entities.get(name), type_texts, attributes)
        lines.append(f'    {{"{name.upper()}", u"{name}", kOf{name}, "{text}"}},')
    lines += ['};', '', '}  // namespace', '',
              f'extern const ClassTable k{namespace}Classes{{kTargets, kClasses}};', '',
              '}  // namespace corvel::test', '']
    return '\n'.join(lines)


def main(arguments):
    if len(arguments) != 4:
        sys.exit('usage: emit_class_table.py FACTS NAMESPACE OUT.cpp')
    text = class_table(arguments[2], arguments[1])
    os.makedirs(os.path.dirname(arguments[3]), exist_ok=True)
    with open(arguments[3], 'w', encoding='ascii', newline='\n') as file:
        file.write(text)


if __name__ == '__main__':
    main(sys.argv)

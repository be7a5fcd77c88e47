#!/usr/bin/env python3
"""Writes a table of all classes of one release with the classes and selects that each is to be of.

    emit_class_table.py FACTS NAMESPACE OUT.cpp

Reads the facts by itself, without any part of the generator, so that the table is a second opinion.
"""

import os
import sys

WITHOUT_VALUE = 'IfcNullStyle'  # an enumeration in the facts, a class where a select admits it
SHARED = 'IfcUnit'              # a select in the facts, an interface of all releases here


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


def class_table(namespace, entities, selects, types):
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
    lines += [f'    {{"{name.upper()}", u"{name}", kOf{name}}},' for name in classes]
    lines += ['};', '', '}  // namespace', '',
              f'extern const ClassTable k{namespace}Classes{{kTargets, kClasses}};', '',
              '}  // namespace corvel::test', '']
    return '\n'.join(lines)


def main(arguments):
    if len(arguments) != 4:
        sys.exit('usage: emit_class_table.py FACTS NAMESPACE OUT.cpp')
    text = class_table(arguments[2], *read_facts(arguments[1]))
    os.makedirs(os.path.dirname(arguments[3]), exist_ok=True)
    with open(arguments[3], 'w', encoding='ascii', newline='\n') as file:
        file.write(text)


if __name__ == '__main__':
    main(sys.argv)

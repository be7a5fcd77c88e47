#!/usr/bin/env python3
"""What a published schema demands of a model beyond the classes and types of attributes: inverses with
bounds, UNIQUE rules and lists of unique members.

The texts of the schemas are not part of the repository; what they say stands in express_rules.txt, a
rule a line with its releases. Run by hand with a folder of the texts, this writes the table anew.
"""

import functools
import os
import re
import sys
from typing import NamedTuple

_TABLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'express_rules.txt')
_ENTITY = re.compile(r'^ENTITY (\w+)(.*?)^END_ENTITY', re.M | re.S)
_SECTION = re.compile(r'^\s*(INVERSE|UNIQUE|WHERE|DERIVE)\s*$', re.M)
_INVERSE = re.compile(r'(\w+)\s*:\s*(?:(?:SET|BAG)\s*(?:\[(\d+):(\d+|\?)\])?\s*OF\s+)?(\w+)\s+FOR\s+(\w+)$')
_UNIQUE_LIST = re.compile(r'(\w+)\s*:\s*(?:OPTIONAL\s+)?LIST\s*\[[^\]]*\]\s*OF\s+UNIQUE\s+(\w+)$')


class Inverse(NamedTuple):
    """How many objects may refer to one of `entity` by an attribute of a class and its subtypes."""
    entity: str
    name: str
    referring: str
    attribute: str
    least: int
    most: 'int | None'


class Rules(NamedTuple):
    inverses: list
    unique: list                      # (entity, attributes)
    unique_lists: list                # (entity, attribute)


def rules_in(text):
    """The rules of a schema's text, a line each."""
    text = re.sub(r'\(\*.*?\*\)', '', text, flags=re.S)
    for entity, body in _ENTITY.findall(text):
        head, *sections = _SECTION.split(body)
        for statement in _statements(head.partition(';')[2]):
            if match := _UNIQUE_LIST.match(statement):
                yield f'list {entity} {match[1]}'
        for title, section in zip(sections[::2], sections[1::2]):
            for statement in _statements(section):
                if title == 'INVERSE' and (match := _INVERSE.match(statement)):
                    name, least, most, referring, attribute = match.groups()
                    least, most = (least or '0', most or '?') if 'OF' in statement else ('1', '1')
                    if (least, most) != ('0', '?'):
                        yield f'inverse {entity} {name} {referring} {attribute} {least} {most}'
                elif title == 'UNIQUE' and statement:
                    attributes = statement.partition(':')[2].split(',')
                    yield f'unique {entity} ' + ' '.join(
                        attribute.strip().rpartition('.')[2] for attribute in attributes)


def _statements(text):
    return [' '.join(statement.split()) for statement in text.split(';')]


@functools.cache
def rules_of(release):
    found = Rules([], [], [])
    with open(_TABLE, encoding='ascii') as file:
        for line in file:
            rule, _, releases = line.rstrip('\n').partition(' | ')
            if release not in releases.split():
                continue
            kind, entity, *rest = rule.split()
            if kind == 'list':
                found.unique_lists.append((entity, rest[0]))
            elif kind == 'unique':
                found.unique.append((entity, tuple(rest)))
            else:
                *names, least, most = rest
                found.inverses.append(
                    Inverse(entity, *names, int(least), None if most == '?' else int(most)))
    return found


def table_of(texts):
    """The table for texts by release."""
    releases = {}
    for release, text in texts.items():
        for rule in rules_in(text):
            releases.setdefault(rule, []).append(release)
    return ''.join(f'{rule} | {" ".join(names)}\n' for rule, names in sorted(releases.items()))


def texts_in(folder):
    """By release, in the order of their names."""
    texts = {}
    for name in sorted(os.listdir(folder)):
        if name.endswith('.exp'):
            with open(os.path.join(folder, name), encoding='latin-1') as file:
                texts[name.removesuffix('.exp')] = file.read()
    return texts


def table():
    with open(_TABLE, encoding='ascii') as file:
        return file.read()


if __name__ == '__main__':
    with open(_TABLE, 'w', encoding='ascii') as output:
        output.write(table_of(texts_in(sys.argv[1])))

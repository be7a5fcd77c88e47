"""Counts what a STEP file holds, without knowing anything of classes or of the program.

A file is cut into strings, comments and the rest, and the rest into words. What two files hold is
the same when their counts are: of records by class, of references by the number they name, of
strings by their text and of enumeration values by theirs.
"""

import re
from collections import Counter
from typing import NamedTuple

_PIECE = re.compile(rb"""
    '(?P<string>(?:[^']|'')*)'
  | (?P<comment>/\*.*?\*/)
  | \#(?P<record>[0-9]+)\s*=\s*(?P<name>[A-Za-z_0-9]*)
  | \#(?P<reference>[0-9]+)
  | (?P<number>[-+]?[0-9]+\.?[0-9]*(?:[eE][-+]?[0-9]+)?)
  | \.(?P<enumeration>[A-Za-z][A-Za-z0-9_ ]*)\.
  | (?P<word>[A-Za-z][A-Za-z0-9_]*)
  | (?P<rest>.)
""", re.VERBOSE | re.DOTALL)

_SECTION = re.compile(rb'\bDATA\s*;')


class Counts(NamedTuple):
    records: Counter
    references: Counter
    strings: Counter
    enumerations: Counter


def _plain(string):
    """Without the characters that can be written in several ways. Readers take the byte behind
    `\\X0` for the end of the characters, whatever it is."""
    string = re.sub(rb'\\X[24]\\.*?\\X0.|\\X\\..|\\S\\.|\\P.\\|\\\\|\'\'', b'', string)
    return re.sub(rb'[^ -~]', b'', string)


def counts_of(data):
    """`data`: all bytes of a file, or the records alone. Of two records with one number the later
    one counts under a number that no other has."""
    section = _SECTION.search(data)
    body = data[section.end():] if section else data
    end = body.rfind(b'ENDSEC')
    body = body if end < 0 else body[:end]
    counts = Counts(Counter(), Counter(), Counter(), Counter())
    numbers = set()
    free = max((int(piece['record']) for piece in _PIECE.finditer(body) if piece['record']),
               default=0)
    inside = False
    for piece in _PIECE.finditer(body):
        if piece['record'] is not None:
            inside = True
        if not inside:
            continue
        if piece['record'] is not None:
            number = int(piece['record'])
            if number in numbers:
                number = free = free + 1
            numbers.add(number)
            counts.records[number, piece['name'].upper().replace(b'_', b'')] += 1
        elif piece['rest'] == b';':
            inside = False
        elif piece['reference'] is not None:
            counts.references[int(piece['reference'])] += 1
        elif piece['string'] is not None:
            counts.strings[_plain(piece['string'])] += 1
        elif piece['enumeration'] is not None:
            counts.enumerations[piece['enumeration']] += 1
    return counts


def difference(expected, found):
    """What is missing and what is new, as a text; empty when there is neither. A class whose text
    is mandatory gets an empty one for none."""
    lines = []
    for kind in Counts._fields:
        before, after = getattr(expected, kind), getattr(found, kind)
        if kind == 'strings':
            before, after = before - Counter({b'': before[b'']}), after - Counter({b'': after[b'']})
        if before != after:
            lines.append(f'{kind}: missing {dict(before - after)}, new {dict(after - before)}')
    return '\n'.join(lines)

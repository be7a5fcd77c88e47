#!/usr/bin/env python3
"""Takes the facts of one release out of its published EXPRESS text.

    extract_schema.py SCHEMA.exp OUT.schema

The published texts are not ours to hand on, so the repository holds facts only: the names of the
entities, their supertypes and attributes, the defined types, the values of the enumerations and
the members of the selects. Rules, functions, inverse and derived attributes, comments, widths of
strings and UNIQUE are left out: no class that is generated from the facts depends on them.

The facts are written in a line-based form that generator/model.py reads:

    schema IFC4
    enumeration IfcBenchmarkEnum       select IfcColour          type IfcAreaMeasure = REAL
      GREATERTHAN                        IfcColourSpecification
      LESSTHAN                           IfcPreDefinedColour

    abstract entity IfcFoo < IfcBar
      Items: LIST [1:?] OF IfcLabel
      Description: OPTIONAL IfcText

Names stand in alphabetical order, so that two releases compare line by line; attributes, values
and members keep the order of the text, which has a meaning.
"""

import re
import sys

SIMPLE_TYPES = {'REAL', 'INTEGER', 'NUMBER', 'STRING', 'BOOLEAN', 'LOGICAL', 'BINARY'}
AGGREGATES = {'LIST', 'SET', 'ARRAY', 'BAG'}
TOKEN = re.compile(r"\s+|--[^\n]*|'(?:[^']|'')*'|[A-Za-z]\w*|\d+(?:\.\d*)?(?:[eE][+-]?\d+)?"
                   r"|:=:|:<>:|:=|<>|<=|>=|<\*|\*\*|\|\||.", re.S)


class ExpressError(Exception):
    """The text uses something that this extractor has no rule for."""


def without_block_comments(text):
    """`(* ... *)` nest; a quoted string may hold either mark."""
    kept, depth = [], 0
    for piece in re.split(r"(\(\*|\*\)|'[^'\n]*')", text):
        if piece == '(*':
            depth += 1
        elif piece == '*)' and depth:
            depth -= 1
            kept.append(' ')
        elif not depth:
            kept.append(piece)
    return ''.join(kept)


def tokens_of(text):
    found = (match.group() for match in TOKEN.finditer(without_block_comments(text)))
    return [token for token in found if not token.isspace() and not token.startswith('--')]


class Reader:
    """Reads one schema, token by token."""

    def __init__(self, tokens):
        self.tokens = tokens
        self.at = 0
        self.name = None
        self.entities, self.types, self.enumerations, self.selects = {}, {}, {}, {}

    def peek(self):
        return self.tokens[self.at].upper() if self.at < len(self.tokens) else ''

    def take(self):
        if self.at >= len(self.tokens):
            raise ExpressError('the text ends in the middle of a declaration')
        self.at += 1
        return self.tokens[self.at - 1]

    def expect(self, wanted):
        token = self.take()
        if token.upper() != wanted:
            around = ' '.join(self.tokens[max(0, self.at - 12):self.at])
            raise ExpressError(f'expected {wanted} at the end of "{around}"')

    def take_if(self, wanted):
        if self.peek() != wanted:
            return False
        self.at += 1
        return True

    def skip_past(self, wanted):
        while self.take().upper() != wanted:
            pass

    def read_schema(self):
        self.skip_past('SCHEMA')
        self.name = self.take()
        self.skip_past(';')
        while not self.take_if('END_SCHEMA'):
            keyword = self.take().upper()
            if keyword == 'TYPE':
                self.read_type()
            elif keyword == 'ENTITY':
                self.read_entity()
            elif keyword in ('FUNCTION', 'PROCEDURE', 'RULE', 'CONSTANT'):
                self.skip_body(keyword)
            elif keyword != ';':
                raise ExpressError(f'no rule for a declaration that begins with {keyword}')

    def skip_body(self, keyword):
        depth = 1
        while depth:
            token = self.take().upper()
            depth += (token == keyword) - (token == 'END_' + keyword)

    def read_names(self):
        """`(A, B, C)`"""
        self.expect('(')
        names = [self.take()]
        while self.take_if(','):
            names.append(self.take())
        self.expect(')')
        return names

    def read_type(self):
        name = self.take()
        self.expect('=')
        if self.take_if('ENUMERATION'):
            self.expect('OF')
            self.enumerations[name] = self.read_names()
        elif self.take_if('SELECT'):
            self.selects[name] = self.read_names()
        else:
            self.types[name] = self.read_type_expression()
        self.skip_past('END_TYPE')

    def read_type_expression(self):
        if self.peek() not in AGGREGATES:
            name = self.take()
            if name.upper() not in SIMPLE_TYPES:
                return name
            if self.take_if('('):  # a width: nothing is ever cut
                self.skip_past(')')
                self.take_if('FIXED')
            return name.upper()
        aggregate = self.take().upper()
        bounds = ''
        if self.take_if('['):
            low = self.take()
            self.expect(':')
            bounds = f' [{low}:{self.take()}]'
            self.expect(']')
        self.expect('OF')
        while self.take_if('UNIQUE') or self.take_if('OPTIONAL'):
            pass
        return f'{aggregate}{bounds} OF {self.read_type_expression()}'

    def read_entity(self):
        name = self.take()
        abstract, supertype = self.read_entity_head(name)
        attributes = []
        while self.peek() not in ('DERIVE', 'INVERSE', 'UNIQUE', 'WHERE', 'END_ENTITY'):
            attributes += self.read_attributes(name)
        self.skip_past('END_ENTITY')
        self.entities[name] = (abstract, supertype, attributes)

    def read_entity_head(self, name):
        abstract, supertypes = False, []
        while not self.take_if(';'):
            keyword = self.take().upper()
            if keyword == 'ABSTRACT':
                abstract = True
            elif keyword == 'SUPERTYPE':
                if self.take_if('OF'):
                    self.skip_balanced()
            elif keyword == 'SUBTYPE':
                self.expect('OF')
                supertypes = self.read_names()
            else:
                raise ExpressError(f'{name}: no rule for {keyword} in the head of an entity')
        if len(supertypes) > 1:
            raise ExpressError(f'{name} has more than one supertype')
        return abstract, supertypes[0] if supertypes else None

    def skip_balanced(self):
        depth = 0
        while True:
            token = self.take()
            depth += (token == '(') - (token == ')')
            if depth == 0:
                return

    def read_attributes(self, entity):
        """`Name : OPTIONAL IfcLabel;`, or several names before one colon."""
        names = [self.take()]
        while self.take_if(','):
            names.append(self.take())
        if 'SELF' in (name.upper() for name in names):
            raise ExpressError(f'{entity} redeclares an attribute other than as derived')
        self.expect(':')
        optional = 'OPTIONAL ' if self.take_if('OPTIONAL') else ''
        text = optional + self.read_type_expression()
        self.expect(';')
        return [f'{name}: {text}' for name in names]


def facts_of(text):
    """The facts of an EXPRESS text, as the text of a .schema file."""
    reader = Reader(tokens_of(text))
    reader.read_schema()
    lines = ['# Facts of one release of the schema, taken from its published text by '
             'tools/extract_schema.py.', f'schema {reader.name}', '']
    for keyword, table in (('enumeration', reader.enumerations), ('select', reader.selects)):
        for name in sorted(table):
            lines += [f'{keyword} {name}'] + ['  ' + item for item in table[name]] + ['']
    types = [f'type {name} = {reader.types[name]}' for name in sorted(reader.types)]
    lines += types + [''] if types else []
    for name in sorted(reader.entities):
        abstract, supertype, attributes = reader.entities[name]
        lines.append(('abstract ' if abstract else '') + f'entity {name}'
                     + (f' < {supertype}' if supertype else ''))
        lines += ['  ' + attribute for attribute in attributes] + ['']
    return '\n'.join(lines[:-1]) + '\n'


def main(arguments):
    if len(arguments) != 3:
        sys.exit('usage: extract_schema.py SCHEMA.exp OUT.schema')
    with open(arguments[1], encoding='latin-1') as source:
        text = source.read()
    with open(arguments[2], 'w', encoding='ascii', newline='\n') as target:
        target.write(facts_of(text))


if __name__ == '__main__':
    main(sys.argv)

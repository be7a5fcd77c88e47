"""Values as the text of a STEP physical file (ISO 10303-21).

A Python value stands for what it looks like: str, float, int, bool, list and None are text, real,
integer, logical, list and the absent value. What Python lacks (enumeration, typed value, derived
value) has a class or constant here. Anything with a `number` is written as a reference.
"""

import itertools


class Raw:
    """Text that goes into the file as it stands."""

    __slots__ = ('text',)

    def __init__(self, text):
        self.text = text


class Enum(Raw):
    """An enumeration item: Enum('METRE') is .METRE."""

    __slots__ = ()

    def __init__(self, name):
        super().__init__('.%s.' % name)


class Typed:
    """A value that names its type, as a select of defined types wants it: IFCLABEL('x')."""

    __slots__ = ('name', 'value')

    def __init__(self, name, value):
        self.name = name
        self.value = value


DERIVED = Raw('*')


def real_text(value):
    """A real as exporters write it: up to 15 digits, always a point, exponents such as 1.5E-05."""
    text = '%.15g' % (value + 0.0)  # the sum turns -0.0, which no exporter writes, into 0.0
    if 'e' in text:
        mantissa, exponent = text.split('e')
        return '%s%sE%s' % (mantissa, '' if '.' in mantissa else '.', exponent)
    return text if '.' in text else text + '.'


def _character_group(latin):
    """Gives the function that tells which notation a character needs."""
    def group(character):
        if ' ' <= character <= '~':
            return 'plain'
        # The shifted form must not produce an apostrophe or a backslash: readers disagree on those.
        if latin and '\xa0' <= character <= '\xff' and chr(ord(character) - 128) not in "'\\":
            return 'shifted'
        return 'wide' if character <= '\uffff' else 'widest'
    return group


def string_text(text, latin=False):
    """A string with its apostrophes. `latin` writes Western letters as \\S\\ like older exporters;
    otherwise each run of characters beyond ASCII becomes one \\X2\\ (or \\X4\\) group."""
    parts = []
    for kind, run in itertools.groupby(text, _character_group(latin)):
        run = ''.join(run)
        if kind == 'plain':
            parts.append(run.replace('\\', '\\\\').replace("'", "''"))
        elif kind == 'shifted':
            parts.extend('\\S\\' + chr(ord(character) - 128) for character in run)
        else:
            mark, digits = ('X2', 4) if kind == 'wide' else ('X4', 8)
            codes = ''.join('%0*X' % (digits, ord(character)) for character in run)
            parts.append('\\%s\\%s\\X0\\' % (mark, codes))
    return "'%s'" % ''.join(parts)


def value_text(value, latin=False):
    """The text of one attribute value, lists and typed values with all they hold."""
    if value is None:
        return '$'
    if isinstance(value, Raw):
        return value.text
    if isinstance(value, str):
        return string_text(value, latin)
    if isinstance(value, bool):  # before int, of which it is a kind
        return '.T.' if value else '.F.'
    if isinstance(value, float):
        return real_text(value)
    if isinstance(value, int):
        return str(value)
    if isinstance(value, (list, tuple)):
        return '(%s)' % ','.join(value_text(item, latin) for item in value)
    if isinstance(value, Typed):
        return '%s(%s)' % (value.name.upper(), value_text(value.value, latin))
    return '#%s' % value.number


def header_text(header, release):
    """The part of the file before its first record. `header` is a Header."""
    def strings(values):
        return ','.join(string_text(value) for value in values)
    return '\n'.join([
        'ISO-10303-21;',
        'HEADER;',
        "FILE_DESCRIPTION((%s),'2;1');" % strings(header.description),
        'FILE_NAME(%s,(%s),(%s),%s);' % (
            strings([header.file_name, header.time_stamp]), strings(header.authors),
            strings(header.organizations),
            strings([header.preprocessor, header.system, header.authorization])),
        'FILE_SCHEMA((%s));' % string_text(release),
        'ENDSEC;',
        'DATA;',
        ''])


FOOTER_TEXT = 'ENDSEC;\nEND-ISO-10303-21;\n'


class Header:
    """What a file tells about itself. The time stamp is fixed: equal models are equal bytes."""

    def __init__(self, file_name, system, authors=('',), organizations=('',),
                 description=('ViewDefinition [CoordinationView]',),
                 time_stamp='2024-05-01T10:00:00'):
        self.description = description
        self.file_name = file_name
        self.time_stamp = time_stamp
        self.authors = authors
        self.organizations = organizations
        self.preprocessor = 'Corvel sample maker'
        self.system = system
        self.authorization = ''

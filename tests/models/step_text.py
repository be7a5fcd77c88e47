"""A plain reader of STEP files, made apart from the program and slow on purpose.

It knows the form of the text only: tokens, strings, nested arguments. What a class holds stands in
schema_facts.py, what comes out again in written_form.py.
"""

import re
from collections import Counter
from typing import NamedTuple


class StepError(Exception):
    """The text holds something that this reader has no rule for. Tells where."""


class Reference(NamedTuple):
    number: int


class Enumeration(NamedTuple):
    name: str


class Typed(NamedTuple):
    """A value that names its type, as IFCLABEL('x')."""
    name: str
    arguments: list


class Absent(NamedTuple):
    sign: str                         # '$' or '*'


# A character of a string is one 16-bit unit, or a byte that stood in the file as it is and isn't
# plain ASCII: such a byte is this plus its value, which no unit can be.
RAW_BYTE = 0x10FF00
_EIGHT_BITS = 0x80

_TOKEN = re.compile(rb"""
    (?P<skip>(?:[ \t\r\n\v\f_]|/\*.*?\*/)+)
  | (?P<comma>,)
  | \#(?P<reference>[0-9]+)
  | (?P<real>(?:-[0-9]*|[0-9]+)\.[^,)]*)
  | (?P<integer>-[0-9]*|[0-9]+)
  | '(?P<plain>[^'\\\x80-\xff]*)'(?!')
  | (?P<quote>')
  | \.(?P<enumeration>[^.]*)\.
  | (?P<word>[A-Za-z][A-Za-z0-9_]*)
  | (?P<sign>[()=;$*])
""", re.VERBOSE | re.DOTALL)

_REAL = re.compile(rb'-?[0-9]*\.?[0-9]*(?:[eE][+-]?[0-9]+)?')


class Record(NamedTuple):
    """One line of the DATA section."""
    number: int
    name: str
    arguments: list
    begin: int                        # where its text stands in the file, from "#" up to and
    end: int                          # including ";"


class StepFile:
    """`records` by number in the order of the file, `header` as the arguments of its records, and
    `notes`: how often a rule was needed that readers of this form don't share."""

    def __init__(self, data):
        self.data = data
        self.notes = Counter()
        self.records = {}
        self.iso, position = _read_iso_line(data)
        self.header, position = self._read_header(position)
        self.data_begin = position
        self._read_records(position)

    # Tokens ---------------------------------------------------------------------------------------

    def tokens(self, position):
        """(kind, value, begin, end), without commas, from `position` to the end of the input."""
        data, length = self.data, len(self.data)
        after_comma = False
        while position < length:
            match = _TOKEN.match(data, position)
            if not match:
                raise StepError(f'byte {position}: no token: {data[position:position + 8]!r}')
            begin, position, kind = position, match.end(), match.lastgroup
            if kind == 'skip':
                continue
            if kind == 'comma':
                if after_comma:
                    self.notes['comma after comma'] += 1
                after_comma = True
                continue
            after_comma = False
            if kind == 'reference':
                yield kind, int(match.group(kind)), begin, position
            elif kind == 'plain':
                yield 'string', match.group('plain').decode('ascii'), begin, position
            elif kind == 'quote':
                value, position = self._read_string(position)
                yield 'string', value, begin, position
            elif kind == 'real':
                yield 'real', float(_REAL.match(match.group('real')).group()), begin, position
            elif kind == 'integer':
                text = match.group('integer')
                yield 'integer', 0 if text == b'-' else int(text), begin, position
            elif kind == 'word':
                word = match.group('word').decode('ascii').replace('_', '')
                yield 'word', word, begin, position
            else:
                yield kind, match.group(kind).decode('latin-1'), begin, position

    def _read_string(self, position):
        """The text from behind the opening quote, and the position behind the closing one."""
        data, units, code_page = self.data, [], 'cp1252'
        while True:
            byte = data[position:position + 1]
            if byte == b'':
                raise StepError('the input ends inside a string')
            if byte == b"'":
                if data[position + 1:position + 2] != b"'":
                    return ''.join(map(chr, units)), position + 1
                units.append(ord("'"))
                position += 2
            elif byte == b'\\':
                code_page, position = self._read_directive(position, code_page, units)
            else:
                if byte[0] >= _EIGHT_BITS:
                    self.notes['raw byte'] += 1
                units.append(byte[0] if byte[0] < _EIGHT_BITS else RAW_BYTE + byte[0])
                position += 1

    def _read_directive(self, position, code_page, units):
        """A backslash and what it begins. Gives the code page from here on and where to go on."""
        data = self.data
        directive = data[position + 1:position + 2]
        if directive == b'\\':
            units.append(ord('\\'))
            return code_page, position + 2
        if directive == b'S' and data[position + 2:position + 3] == b'\\':
            units.append(self._decode(data[position + 3] + _EIGHT_BITS, code_page))
            return code_page, position + 4
        if directive == b'P' and data[position + 3:position + 4] == b'\\':
            return f'iso8859_{data[position + 2] - ord("A") + 1}', position + 4
        if directive == b'X' and data[position + 2:position + 3] == b'\\':
            units.append(self._decode(int(data[position + 3:position + 5], 16), code_page))
            return code_page, position + 5
        if data[position + 1:position + 4] in (b'X2\\', b'X4\\'):
            digits = 4 if data[position + 2:position + 3] == b'2' else 8
            return code_page, self._read_units(position + 4, digits, units)
        if directive in (b'S', b'P', b'X'):
            raise StepError(f'byte {position}: unknown directive {data[position:position + 6]!r}')
        units.append(ord('\\'))
        self.notes['lone backslash'] += 1
        return code_page, position + 1

    def _read_units(self, position, width, units):
        """The digits of X2 and X4, so many to a unit. They end at the first backslash, and what
        should be "\\X0\\" is passed over unseen; digits that make no whole unit are dropped."""
        end = self.data.index(b'\\', position)
        digits = self.data[position:end]
        for begin in range(0, len(digits) - width + 1, width):
            value = int(digits[begin:begin + width], 16)
            units.append(value & 0xFFFF)
            if value > 0xFFFF:
                self.notes['X4 unit above 16 bits'] += 1
                units.append(value >> 16)
        return end + 4

    def _decode(self, value, code_page):
        """One byte of a code page; a byte that it doesn't know stays."""
        try:
            return ord(bytes([value]).decode(code_page))
        except UnicodeDecodeError:
            self.notes['byte unknown to its code page'] += 1
            return value

    # Structure ------------------------------------------------------------------------------------

    def _read_header(self, position):
        """Three lists of arguments, and the position behind "DATA;"."""
        tokens = self.tokens(position)
        found = {}
        if next(tokens)[1] != 'HEADER':
            raise StepError('no HEADER behind the first line')
        for kind, value, begin, end in tokens:
            if (kind, value) == ('word', 'DATA'):
                return found, next(tokens)[3]
            if kind == 'word' and value.startswith('FILE'):
                if next(tokens)[1] != '(':
                    raise StepError(f'byte {end}: no bracket behind {value}')
                found[value] = self._read_arguments(tokens, begin)
        raise StepError('no DATA section')

    def _read_records(self, position):
        tokens = self.tokens(position)
        for kind, value, begin, end in tokens:
            if kind != 'reference':
                if (kind, value) == ('word', 'ENDSEC'):
                    return
                if (kind, value) == ('sign', ';'):
                    continue
                raise StepError(f'byte {begin}: a record is expected')
            equal, name, bracket = next(tokens), next(tokens), next(tokens)
            if equal[1] != '=' or name[0] != 'word' or bracket[1] != '(':
                raise StepError(f'#{value}: not of the form #1=NAME(')
            arguments = self._read_arguments(tokens, begin)
            last = next(tokens)
            if last[1] != ';':
                raise StepError(f'#{value}: no ";" at its end')
            if value in self.records:
                raise StepError(f'#{value}: there are two of it')
            self.records[value] = Record(value, name[1], arguments, begin, last[3])
        raise StepError('no ENDSEC')

    def _read_arguments(self, tokens, begin):
        """Nested values up to and including the bracket that closes them."""
        values = []
        for kind, value, _, _ in tokens:
            if kind == 'sign':
                if value == ')':
                    return values
                if value == '(':
                    values.append(self._read_arguments(tokens, begin))
                elif value in '$*':
                    values.append(Absent(value))
                else:
                    raise StepError(f'record at byte {begin}: "{value}" among its values')
            elif kind == 'word':
                if next(tokens)[1] != '(':
                    raise StepError(f'record at byte {begin}: no bracket behind {value}')
                values.append(Typed(value, self._read_arguments(tokens, begin)))
            elif kind == 'reference':
                values.append(Reference(value))
            elif kind == 'enumeration':
                values.append(Enumeration(value))
            else:
                values.append(value)
        raise StepError(f'record at byte {begin}: the input ends inside it')


def _read_iso_line(data):
    """The text of the first line without its ";", and the position behind that."""
    match = re.match(rb'\s*(ISO\b[^;]*);', data)
    if not match:
        raise StepError('the first line is no ISO line')
    return match.group(1), match.end()


def references_in(arguments):
    """The numbers that nested arguments refer to, in order."""
    for value in arguments:
        if isinstance(value, Reference):
            yield value.number
        elif isinstance(value, list):
            yield from references_in(value)
        elif isinstance(value, Typed):
            yield from references_in(value.arguments)


def read(path):
    with open(path, 'rb') as file:
        return StepFile(file.read())

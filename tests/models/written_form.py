"""What the program has to write for a file that it has read, value by value.

This is a slow and plain model of reading and writing, with the facts of the release beside it. A
value comes out as it stood, in the form that the writer gives to numbers and strings; every other
outcome has a name and is counted in `Model.rules`, so that nothing is let through in silence.

Run by hand it tells how often each rule was used: python3 written_form.py FILE...
"""

import sys
from collections import Counter
from typing import NamedTuple

import schema_facts
import step_text
from step_text import Absent, Enumeration, Reference, Typed

_MISSING = Absent('')                 # behind the last argument of a record that is too short
_SMALLEST, _LARGEST = -2 ** 31, 2 ** 31 - 1

_DEFAULTS = {schema_facts.REAL: b'0.', schema_facts.COUNT: b'0', schema_facts.INTEGER: b'0',
             schema_facts.BINARY: b'0', schema_facts.TEXT: b"''", schema_facts.GUID: b"''",
             schema_facts.BOOLEAN: b'.F.', schema_facts.LOGICAL: b'.U.', schema_facts.LIST: b'()'}

# What the program writes and does not read again: a count with an exponent is no number to it, $ no
# value of a mandatory enumeration.
UNREADABLE = frozenset(['count written with an exponent', 'enumeration value that is only read'])
# 991.9999999999999999 is written as 9.92E+02, and that, read again, as 992. .
WHOLE_WHEN_ROUNDED = 'real is whole only after rounding'


class Refusal(Exception):
    """The program gives up the file here. `message` is its report, `number` the record's."""

    def __init__(self, message):
        super().__init__(message)
        self.message = message
        self.number = None


class Line(NamedTuple):
    """A record as it is written: bytes, with an int where the number of a record stands."""
    name: str
    pieces: list


class Model:
    """A file as the program holds it: `lines` by number. `rules` counts what is no plain copy."""

    def __init__(self, file, ignore_enum_errors=False):
        self.file = file
        self.rules = Counter(file.notes)
        self.identifier = _schema_identifier(file.header)
        namespace = schema_facts.choose_release(self.identifier)
        self.release = schema_facts.release(namespace) if namespace else None
        self.ignore_enum_errors = ignore_enum_errors
        self.lines = {}
        self.guids = {}               # number -> GUID, of those that have one
        if not self.release:
            raise Refusal(f': {self.identifier}')
        self.head = _header_text(file)
        for number, record in file.records.items():
            try:
                self.lines[number] = Line(record.name, self._record(record))
            except Refusal as refusal:
                refusal.number = number
                raise

    # Records --------------------------------------------------------------------------------------

    def _record(self, record):
        if self.release.is_value(record.name):
            return self._value(self.release.value_kind(record.name), record.arguments[0])
        if not self.release.is_entity(record.name):
            raise Refusal(f'Entity named: {record.name} not found.')
        attributes = self.release.attributes_of(record.name)
        pieces, given = [], len(record.arguments)
        if given < len(attributes):
            self.rules['short record'] += 1
        if given > len(attributes):
            self.rules['surplus arguments'] += 1
        for place, attribute in enumerate(attributes):
            value = record.arguments[place] if place < given else _MISSING
            pieces += [b',', *self._attribute(attribute, value)]
            if attribute.kind.name == schema_facts.GUID and place == 0:
                self.guids[record.number] = '' if isinstance(value, Absent) else value
        return pieces[1:]

    def _attribute(self, attribute, value):
        kind = attribute.kind
        if not isinstance(value, Absent):
            if kind.name != schema_facts.REFERENCE:
                return self._value(kind, value)
            pieces = self._reference(kind, value)
            if pieces is not None:
                return pieces
            return [b'$' if attribute.optional else b'*']
        if attribute.optional:
            if value.sign == '*':
                self.rules['optional * becomes $'] += 1
            return [b'$']
        if kind.name == schema_facts.REFERENCE:
            if value.sign != '*':
                self.rules['mandatory reference $ becomes *'] += 1
            return [b'*']
        return self._absent_value(kind, value)

    def _absent_value(self, kind, value):
        """A mandatory value that isn't there, or a member of a list that is $."""
        if kind.name == schema_facts.ENUMERATION:
            return self._no_enumeration(kind.values,
                                        'empty argument' if value.sign else 'closing bracket')
        self.rules[f'absent {kind.name} becomes its default'] += 1
        return [_DEFAULTS[kind.name]]

    # Values ---------------------------------------------------------------------------------------

    def _value(self, kind, value):
        return getattr(self, '_write_' + kind.name.lower())(kind, value)

    def _number(self, value):
        if isinstance(value, Typed):
            if len(value.arguments) != 1 or not isinstance(value.arguments[0], float):
                raise step_text.StepError(f'{value} in place of a number')
            self.rules['typed value becomes a plain number'] += 1
            return value.arguments[0]
        if not isinstance(value, (int, float)):
            raise Refusal('Expected: IfcInteger or IfcReal.')
        return value

    def _write_real(self, _, value):
        number = self._number(value)
        if isinstance(number, int):
            self.rules['integer for a real'] += 1
        text = real_text(number)
        if float(text) != number:
            self.rules['real cut to 15 digits'] += 1
        if real_text(float(text)) != text:
            self.rules[WHOLE_WHEN_ROUNDED] += 1
        return [text]

    def _write_count(self, _, value):
        number = self._number(value)
        text = b'%g' % number
        if float(text) != number:
            self.rules['count cut to 6 digits'] += 1
        if b'e' in text:
            self.rules['count written with an exponent'] += 1
        return [text]

    def _write_integer(self, _, value):
        if not isinstance(value, (int, float)):
            raise Refusal('Expected: IfcInteger.')
        number = min(max(int(value), _SMALLEST), _LARGEST)
        if isinstance(value, float):
            self.rules['real for an integer'] += 1
        if number != int(value):
            self.rules['integer held to 32 bits'] += 1
        return [b'%d' % number]

    def _write_binary(self, kind, value):
        if not isinstance(value, int):
            raise Refusal('Expected: IfcBinary.')
        return self._write_integer(kind, value)

    def _write_text(self, _, value):
        if not isinstance(value, str):
            raise Refusal('Expected: String.')
        if '\0' in value:
            self.rules['text ends at a zero'] += 1
        return [text_bytes(value)]

    def _write_guid(self, _, value):
        if not isinstance(value, str):
            raise Refusal('Expected: CharString.')
        if not value.isascii():
            raise step_text.StepError(f'GUID {value!r} is more than ASCII')
        return [text_bytes(value)]

    def _write_boolean(self, _, value):
        return self._enumeration(('T', 'F'), value)

    def _write_logical(self, _, value):
        return self._enumeration(('T', 'F', 'U'), value)

    def _write_enumeration(self, kind, value):
        if isinstance(value, Enumeration) and value.name in kind.read_only:
            self.rules['enumeration value that is only read'] += 1
            return [b'$']
        return self._enumeration(kind.values, value)

    def _enumeration(self, values, value):
        if not isinstance(value, Enumeration):
            return self._no_enumeration(values, _shown_name(value))
        if value.name not in values:
            if not self.ignore_enum_errors:
                raise Refusal(f'does not contain: "{value.name}"')
            self.rules['unknown enumeration value becomes the last one'] += 1
            return _enumeration_text(values[-1])
        return _enumeration_text(value.name)

    def _no_enumeration(self, values, got):
        if not self.ignore_enum_errors:
            raise Refusal(f'Expected: enumeration value. Got: {got}.')
        self.rules['no enumeration becomes its last value'] += 1
        return _enumeration_text(values[-1])

    def _write_list(self, kind, value):
        if not isinstance(value, list):
            raise step_text.StepError(f'{value} in place of a list')
        pieces = [b'(']
        for member in value:
            if kind.of.name == schema_facts.REFERENCE:
                member_pieces = self._member(kind.of, member)
            elif isinstance(member, Absent):
                member_pieces = self._absent_value(kind.of, member)
            else:
                member_pieces = self._value(kind.of, member)
            if member_pieces is not None:
                pieces += [b',', *member_pieces]
        return [b'(', *pieces[2:], b')']

    # References -----------------------------------------------------------------------------------

    def _member(self, kind, value):
        if isinstance(value, Absent):
            self.rules['$ in a list of references is dropped'] += 1
            return None
        return self._reference(kind, value)

    def _reference(self, kind, value):
        """The pieces, or None where the object or value is lost."""
        if isinstance(value, list) and len(value) == 1 and isinstance(value[0], Typed):
            self.rules['brackets around a value are lost'] += 1
            value = value[0]
        if value == []:
            self.rules['empty brackets for a reference are lost'] += 1
            return None
        if isinstance(value, Reference):
            record = self.file.records.get(value.number)
            if record is None:
                self.rules['dangling reference is lost'] += 1
                return None
            if record.name in kind.targets:
                return [value.number]
            self.rules['reference to a wrong class is lost'] += 1
            return None
        if isinstance(value, Typed) and self.release.is_value(value.name):
            pieces = self._typed(value)
            if value.name in kind.targets:
                return pieces
            self.rules['value that the select does not admit is lost'] += 1
            return None
        raise step_text.StepError(f'{value} in place of a reference')

    def _typed(self, value):
        kind = self.release.value_kind(value.name)
        if kind.name == schema_facts.NOTHING or len(value.arguments) != 1:
            raise step_text.StepError(f'{value}: no rule for such a value')
        argument = value.arguments[0]
        if isinstance(argument, Absent):
            if kind.name in (schema_facts.BOOLEAN, schema_facts.LOGICAL):
                raise Refusal('Expected: enumeration value. Got: empty argument.')
            inner = self._absent_value(kind, argument)
        else:
            inner = self._value(kind, argument)
        return [b'%s(' % value.name.encode('ascii'), *inner, b')']

    # The whole ------------------------------------------------------------------------------------

    def text(self):
        """The file that the program writes for this one alone."""
        return self.head + b''.join(
            line_text(number, self.lines[number], lambda reference: reference)
            for number in sorted(self.lines)) + tail_text(self.file)


def _shown_name(value):
    """What the program calls the token that a value begins with."""
    for form, name in ((Typed, 'entity name'), (Reference, 'IdentifierToken'),
                       (str, 'WStringToken'), (int, 'IntegerDataTypeToken'),
                       (float, 'RealDataTypeToken'),
                       (list, 'OpenBracketToken')):
        if isinstance(value, form):
            return name
    raise TypeError(value)


def _enumeration_text(value):
    return [b'.%s.' % value.encode('ascii')]


def real_text(number):
    """A real as the writer forms it."""
    if _SMALLEST <= number <= _LARGEST and number == int(number):
        return b'%d.' % int(number)
    mantissa, exponent = (b'%.14e' % float(number)).split(b'e')
    return mantissa.rstrip(b'0') + b'E' + exponent


def text_bytes(text):
    """A string with its quotes."""
    written = bytearray(b"'")
    for character in text:
        unit = ord(character)
        if unit == 0:
            break
        if unit >= step_text.RAW_BYTE:
            written.append(unit - step_text.RAW_BYTE)
        elif 32 <= unit <= 126:
            written += character.encode('ascii') * (2 if character in "'\\" else 1)
        else:
            written += b'\\X2\\%04X\\X0\\' % unit
    return bytes(written + b"'")


def line_text(number, line, numbering):
    """One record; `numbering` gives the number that is written for one of the source."""
    values = b''.join(b'#%d' % numbering(piece) if isinstance(piece, int) else piece
                      for piece in line.pieces)
    return b'#%d=%s(%s);\n' % (number, line.name.encode('ascii'), values)


def tail_text(file):
    return b'ENDSEC;\nEND-' + file.iso + b';\n'


def _schema_identifier(header):
    return header['FILESCHEMA'][0][0]


def _header_text(file):
    """From the first line to "DATA;". Every field has its place, whatever its record is called."""
    def one(value):
        return text_bytes('' if isinstance(value, Absent) else value)

    def several(values):
        return b'(%s)' % b','.join(map(one, [] if isinstance(values, Absent) else values))

    description, level = file.header['FILEDESCRIPTION'][:2]
    name, time, authors, organizations, *programs = file.header['FILENAME']
    return b'%s;\nHEADER;\nFILE_DESCRIPTION (%s,%s);\nFILE_NAME (%s);\nFILE_SCHEMA ((%s));\n' \
        b'ENDSEC;\n\nDATA;\n' % (
            file.iso, several(description), one(level),
            b','.join([one(name), one(time), several(authors), several(organizations),
                       *map(one, programs[:3])]),
            one(_schema_identifier(file.header)))


def main():
    for path in sys.argv[1:]:
        print(path)
        try:
            rules = Model(step_text.read(path)).rules
        except (Refusal, step_text.StepError) as error:
            print(f'  {error}')
            continue
        for rule, count in sorted(rules.items()):
            print(f'  {count:6} {rule}')


if __name__ == '__main__':
    main()

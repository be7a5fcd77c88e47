"""Values as a file may spell them, each with the text that a written file has for it.

Nothing here looks at the engine: numbers and code pages are Python's own.
"""

import functools
import itertools
import math
import random

INT_MIN, INT_MAX = -2**31, 2**31 - 1


class Field:
    """One value: `given` stands in the input, and `written` must stand in the output."""

    __slots__ = ('given', 'written')

    def __init__(self, given, written):
        self.given = given
        self.written = written

    def __repr__(self):
        return f'{self.given!r} -> {self.written!r}'


def bracketed(members):
    """A list of fields that keep their order."""
    return Field('(' + ','.join([gap() + member.given for member in members]) + ')',
                 '(' + ','.join([member.written for member in members]) + ')')


# What may stand between two tokens, but not behind a number with a point: that takes all up to the
# next "," or ")".
GAPS = (' ', '\n', '\r\n', '\t', '  \n   ', '_', ',', '/**/', '/* #7=IFCX($); */',
        "/* it's * / **/", '/*\n*/ /*\n*/')


def endless_gaps():
    """Mostly nothing. A long round of its own, since it is asked for a million times."""
    rng = random.Random(3)
    return itertools.cycle([rng.choice(GAPS) if rng.random() < 0.02 else ''
                            for _ in range(99991)])


gap = endless_gaps().__next__


# --- Numbers -------------------------------------------------------------------------------------

def written_real(value):
    if INT_MIN <= value <= INT_MAX and value == int(value):
        return f'{int(value)}.'
    mantissa, exponent = f'{value:.14e}'.split('e')
    return f'{mantissa.rstrip("0")}E{exponent}'


def written_count(value):
    return '%g' % value


def saturated(value):
    """A number as a 32-bit integer: what stands behind the point is cut off."""
    return max(INT_MIN, min(INT_MAX, int(value)))


def real_field(given, value):
    return Field(given, written_real(value))


def count_field(given, value):
    return Field(given, written_count(value))


def count_survives(value):
    """Whether a count comes back as it was written: not from an exponent without a point, and not
    as -0, which comes back as an integer."""
    written = written_count(value)
    return written != '-0' and ('e' not in written or '.' in written)


# Spellings of a real value, with the value that they mean.
REAL_SPELLINGS = (
    ('0.', 0.0), ('-0.', -0.0), ('0', 0.0), ('-', 0.0), ('1.', 1.0), ('1', 1.0), ('-12.000', -12.0),
    ('007', 7.0), ('0012.50', 12.5), ('1.5', 1.5), ('1.50000E+00', 1.5), ('1.5e0', 1.5),
    ('1.E3', 1000.0), ('1.e-3', 0.001), ('-1.25E-005', -1.25e-5), ('-.5', -0.5), ('3. ', 3.0),
    ('3.25 \r\n ', 3.25), ('3.25/* a remark */', 3.25), ('6.5 * 7', 6.5), ('1.5.6', 1.5),
    ('1.5E', 1.5), ('1.5E+', 1.5), ('123456789.125', 123456789.125), ('0.1', 0.1),
    ('0.30000000000000004', 0.1 + 0.2), ('1234567.8901234567', 1234567.8901234567),
    ('2147483647', 2147483647.0), ('2147483648', 2147483648.0), ('-2147483648.', -2147483648.0),
    ('-2147483649', -2147483649.0), ('12345678901', 12345678901.0),
    ('123456789012345678901234567890', 123456789012345678901234567890.0),
    ('2147483647.5', 2147483647.5), ('1.E30', 1e30), ('1.E-30', 1e-30), ('1.2E+123', 1.2e123),
    ('1.E-320', 1e-320), ('4.94065645841247E-324', 5e-324), ('1.E-400', 0.0), ('-1.E-400', -0.0),
    ('1.79769313486231E+308', 1.79769313486231e308), ('3.141592653589793', math.pi),
    ('0.333333333333333333333', 1 / 3), ('100000000000000000.', 1e17),
    ('NAN', 0.0), ('nan', 0.0), ('NaN', 0.0), ('N_AN', 0.0),
    ('IFCREAL(2.5)', 2.5), ('IFCLENGTHMEASURE( -1.E2 )', -100.0), ('ANY_WORD\n(\n7.)', 7.0),
)

INTEGER_SPELLINGS = (
    ('0', 0), ('-0', 0), ('-', 0), ('5', 5), ('-5', -5), ('007', 7), ('-2147483648', INT_MIN),
    ('2147483647', INT_MAX), ('2147483648', INT_MAX), ('-2147483649', INT_MIN),
    ('99999999999999999999999', INT_MAX), ('-99999999999999999999999', INT_MIN), ('5.7', 5),
    ('-5.7', -5), ('0.99999', 0), ('1.E3', 1000), ('3.E9', INT_MAX), ('-3.E9 ', INT_MIN),
    ('1.E300', INT_MAX), ('NAN', 0), ('nan', 0),
)

BINARY_SPELLINGS = tuple((given, value) for given, value in INTEGER_SPELLINGS
                         if '.' not in given and 'n' not in given.lower())

COUNT_SPELLINGS = tuple(spelling for spelling in REAL_SPELLINGS if count_survives(spelling[1]))


def random_real(rng):
    """A real of any size in a spelling of many."""
    kind = rng.randrange(6)
    if kind == 0:
        return rng.choice(REAL_SPELLINGS)
    if kind == 1:
        value = float(rng.randrange(-10**rng.randrange(1, 13), 10**rng.randrange(1, 13)))
        return (f'{value:.0f}' if rng.random() < 0.3 else f'{value:.0f}.'), value
    value = rng.uniform(-1, 1) * 10.0 ** rng.randrange(-12, 12)
    if kind == 2:
        given = f'{value:.{rng.randrange(1, 20)}f}'
    elif kind == 3:
        given = f'{value:.{rng.randrange(1, 20)}E}'
    elif kind == 4:
        given = f'{value:.{rng.randrange(1, 20)}e}'
    else:
        given = f'{rng.uniform(-1000, 1000):.3f}'
    return given, float(given)


def random_count(rng):
    while True:
        given, value = random_real(rng)
        if count_survives(value):
            return given, value


# --- Texts ---------------------------------------------------------------------------------------

@functools.lru_cache(None)
def written_unit(unit):
    """One 16-bit unit of a text."""
    if 32 <= unit <= 126:
        return chr(unit) * (2 if chr(unit) in "'\\" else 1)
    return f'\\X2\\{unit:04X}\\X0\\'


def piece(given, *units):
    return Field(given, ''.join(map(written_unit, units)))


def raw_byte(byte):
    """A byte above 127 that stands in the file as it is. Files are put together as Latin-1."""
    return Field(chr(byte), chr(byte))


# Where Windows keeps to earlier editions of ISO 8859 than Python does. 0: no such character.
WINDOWS_DEVIATIONS = {
    'iso8859_7': {0xA1: 0x02BD, 0xA2: 0x02BC, 0xA4: 0, 0xA5: 0, 0xAA: 0},
    'iso8859_8': {0xAF: 0x203E, 0xFD: 0, 0xFE: 0}}


def decoded_byte(byte, page):
    """The character that a byte is in a code page; one that the page lacks stays its number."""
    deviation = WINDOWS_DEVIATIONS.get(page, {}).get(byte)
    if deviation is not None:
        return deviation or byte
    try:
        return ord(bytes([byte]).decode(page))
    except UnicodeDecodeError:
        return byte


def hex_groups(rng, text_units, digits):
    form = ('{:0%dX}' if rng.random() < 0.5 else '{:0%dx}') % digits
    return ''.join(form.format(unit) for unit in text_units)


def long_groups(rng, characters):
    """\\X4\\ : the low half stands first, and the high half only if it is not 0."""
    units = []
    for character in characters:
        units += [character & 0xFFFF] + ([character >> 16] if character >> 16 else [])
    return piece(f'\\X4\\{hex_groups(rng, characters, 8)}\\X0\\', *units)


# Units that a text can hold; the low surrogates stand for raw bytes there.
def random_unit(rng):
    return rng.choice((rng.randrange(1, 0x80), rng.randrange(0x80, 0x250),
                       rng.randrange(0x250, 0xD800), rng.randrange(0xE000, 0x10000)))


def plain_text(rng, length):
    return ''.join(chr(rng.choice((rng.randrange(32, 39), rng.randrange(40, 92),
                                   rng.randrange(93, 127)))) for _ in range(length))


def random_piece(rng):
    """Part of a text that means the same whatever stands around it."""
    kind = rng.randrange(14)
    if kind < 4:
        text = plain_text(rng, rng.randrange(1, 12))
        return piece(text, *map(ord, text))
    if kind == 4:
        return rng.choice((piece("''", 39), piece('\\\\', 92), piece('\\q', 92, ord('q')),
                           piece('\\ ', 92, 32), piece('\\XQ', ord('Q')), piece('\\X ', 32)))
    if kind == 5:
        units = [random_unit(rng) for _ in range(rng.randrange(0, 5))]
        return piece(f'\\X2\\{hex_groups(rng, units, 4)}\\X0\\', *units)
    if kind == 6:
        return long_groups(rng, [random_unit(rng) for _ in range(rng.randrange(0, 3))])
    if kind == 7:  # beyond 16 bits, as two units or as one long group
        character = rng.choice((0x1F600, 0x10FFFF, 0x20001, 0x1D11E))
        if rng.random() < 0.5:
            return long_groups(rng, [character])
        high, low = 0xD800 + (character - 0x10000 >> 10), 0xDC00 + (character - 0x10000 & 0x3FF)
        return piece(f'\\X2\\{high:04X}{low:04X}\\X0\\', high, low)
    if kind == 8:
        byte = rng.randrange(1, 256)
        return piece(f'\\X\\{byte:02X}', decoded_byte(byte, 'cp1252'))
    if kind == 9:
        character = rng.randrange(32, 127)
        return piece(f'\\S\\{chr(character)}', decoded_byte(character + 128, 'cp1252'))
    if kind == 10:
        return raw_byte(rng.randrange(128, 255))
    if kind == 11:
        return rng.choice((piece('\n', 10), piece('\t', 9), piece('\r\n', 13, 10),
                           piece('\x7f', 127), piece('\x01', 1)))
    text = rng.choice((');', '/* */', '#12', '$', '*', ',', 'ENDSEC;', '(', '.T.', '_a_'))
    return piece(text, *map(ord, text))


def joined(pieces):
    return Field("'" + ''.join(p.given for p in pieces) + "'",
                 "'" + ''.join(p.written for p in pieces) + "'")


def random_text(rng):
    pieces = [random_piece(rng) for _ in range(rng.randrange(0, 5))]
    # The letter of a code page lasts to the end of its text.
    if rng.random() < 0.2:
        letter = rng.choice('ABCDEFGHI')
        pieces.append(Field(f'\\P{letter}\\', ''))
        for _ in range(rng.randrange(0, 4)):
            byte = rng.randrange(160, 255)
            unit = decoded_byte(byte, f'iso8859_{ord(letter) - 64}')
            pieces.append(rng.choice((piece(f'\\S\\{chr(byte - 128)}', unit),
                                      piece(f'\\X\\{byte:02x}', unit))))
    return joined(pieces)


def every_text(rng):
    """Each form of each character once."""
    for byte in [*range(1, 39), *range(40, 92), *range(93, 128)]:
        yield joined([piece(chr(byte), byte)])
    for byte in range(128, 256):
        yield joined([raw_byte(byte)])
        yield joined([raw_byte(byte), piece('a', 97), raw_byte(byte)])
    for byte in range(1, 256):
        yield joined([piece(f'\\X\\{byte:02X}', decoded_byte(byte, 'cp1252'))])
    for letter in 'ABCDEFGHI':
        page = f'iso8859_{ord(letter) - 64}'
        for byte in range(160, 256):
            select = Field(f'\\P{letter}\\', '')
            yield joined([select, piece(f'\\S\\{chr(byte - 128)}', decoded_byte(byte, page))])
    for start in range(0x80, 0x10000, 0x40):
        units = [unit for unit in range(start, start + 0x40) if not 0xDC00 <= unit < 0xE000]
        yield joined([piece(f'\\X2\\{hex_groups(rng, units, 4)}\\X0\\', *units)])
    for given, text in (
            (r"it''s", "it's"), (r"''", "'"), (r"''''", "''"), (r'a\\b', r'a\b'), ('', ''),
            # A backslash that begins nothing stays.
            (r'C:\temp', r'C:\temp'), (r'C:\Programs\Sort', r'C:\Programs\Sort'), (r'\P', r'\P'),
            # Digits that make no whole unit are dropped.
            ('\\X2\\\\X0\\', ''), ('\\X4\\\\X0\\', ''), ('\\X2\\00E\\X0\\', ''),
            ('\\X2\\00E900\\X0\\e', '\xe9e'), ('\\X4\\0001F60\\X0\\', ''),
            ('\\X2\\00E9\\X0\\\\X2\\00E8\\X0\\', '\xe9\xe8')):
        yield joined([piece(given, *map(ord, text))])
    # A text ends at its first zero unit.
    yield joined([piece('ab\\X2\\0000\\X0\\cd', *map(ord, 'ab'))])
    yield joined([piece('ab\\X\\00cd', *map(ord, 'ab'))])
    yield joined([piece('x' * 5000, *map(ord, 'x' * 5000))])
    yield joined([piece('\\X2\\' + '00E9' * 3000 + '\\X0\\', *([0xE9] * 3000))])


GUID_CHARACTERS = '0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$'


def random_guid(rng):
    text = ''.join(rng.choice(GUID_CHARACTERS) for _ in range(22))
    if rng.random() < 0.9:
        return joined([piece(text, *map(ord, text))])
    return rng.choice((
        joined([]), joined([piece("it''s", *map(ord, "it's"))]),
        joined([piece('x' * 200, *map(ord, 'x' * 200))]),
        # Only the low byte of each unit is kept, and what is above 126 is written as any text is.
        joined([piece('\\X2\\00E90141\\X0\\', 0xE9, 0x41)]),
        joined([Field('\xc4', written_unit(0xC4))])))

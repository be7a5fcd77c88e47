"""A model made larger: copies of its records under new numbers and GUIDs, around one project."""

import re

_PIECES = re.compile(rb"('(?:[^']|'')*')|#(\d+)|/\*.*?\*/", re.S)
_GUID = re.compile(rb"'[0-3][0-9A-Za-z_$]{21}'\Z")
_PROJECT = re.compile(rb'^\s*#(\d+)\s*=\s*IFCPROJECT\s*\([^;]*;', re.M)
_DIGITS = b'0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$'
_LARGEST_NUMBER = 4294967279


class NotEnlargeable(Exception):
    """The file is no model of the plain form, or is too large or small for the asked size."""


def _parts(data):
    """The text up to the records, the records, and what follows them."""
    start = re.search(rb'\bDATA\s*;\s*', data)
    end = data.rfind(b'ENDSEC')
    if not start or end < start.end():
        raise NotEnlargeable('there is no DATA section')
    return data[:start.end()], data[start.end():end], data[end:]


def _later_guid(guid, copy):
    """Another GUID for each copy: four digits in the middle move on by the number of the copy."""
    value = 0
    for digit in guid[9:13]:
        value = value * 64 + _DIGITS.index(digit)
    value = (value + copy) % 64 ** 4
    moved = bytes(_DIGITS[value >> shift & 63] for shift in (18, 12, 6, 0))
    return guid[:9] + moved + guid[13:]


class _Cut:
    """Records cut where numbers and GUIDs stand."""

    def __init__(self, records):
        self._literals, self.varied, last = [], [], 0
        for match in _PIECES.finditer(records):
            text, number = match.group(1, 2)
            if number or (text and _GUID.match(text)):
                self._literals.append(records[last:match.start()])
                self.varied.append(int(number) if number else text)
                last = match.end()
        self._literals.append(records[last:])

    def filled(self, values):
        pieces = [b''] * (2 * len(self._literals) - 1)
        pieces[::2] = self._literals
        pieces[1::2] = values
        return b''.join(pieces)


class _Copies:
    """All records for the first copy, all but the project for those that follow."""

    def __init__(self, records, first):
        project = _PROJECT.search(records)
        if not project:
            raise NotEnlargeable('there is no IFCPROJECT')
        self._project = int(project.group(1))
        self._whole = _Cut(records)
        self._rest = _Cut(records[:project.start()] + records[project.end():])
        self._first = first
        self.step = max(value for value in self._whole.varied if isinstance(value, int))

    def text(self, copy):
        cut = self._rest if copy else self._whole
        return cut.filled([self._moved(value, copy) for value in cut.varied])

    def _moved(self, value, copy):
        if isinstance(value, bytes):
            return _later_guid(value, copy + self._first)
        return b'#%d' % (value if value == self._project else value + copy * self.step)


def enlarge(source, size, path, first=0):
    """Makes a model of at least `size` bytes of whole copies at `path`; gives its exact size.
    `first` is how many copies of other models stand before: their GUIDs do not come again."""
    with open(source, 'rb') as file:
        head, records, tail = _parts(file.read())
    copies = _Copies(records, first)
    written, copy = 0, 0
    with open(path, 'wb', buffering=1 << 20) as stream:
        written += stream.write(head)
        while copy == 0 or written + len(tail) < size:
            if (copy + 1) * copies.step > _LARGEST_NUMBER:
                raise NotEnlargeable('there are no numbers for so many copies')
            written += stream.write(copies.text(copy))
            copy += 1
        written += stream.write(tail)
    return written

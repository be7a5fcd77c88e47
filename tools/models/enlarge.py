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


class _Copies:
    """The records cut where numbers and GUIDs stand."""

    def __init__(self, records):
        project = _PROJECT.search(records)
        if not project:
            raise NotEnlargeable('there is no IFCPROJECT')
        self._project = int(project.group(1))
        self._literals, self._varied = [], []
        self._first = records  # the only copy with a project
        rest, last = records[:project.start()] + records[project.end():], 0
        for match in _PIECES.finditer(rest):
            text, number = match.group(1, 2)
            if number or (text and _GUID.match(text)):
                self._literals.append(rest[last:match.start()])
                self._varied.append(int(number) if number else text)
                last = match.end()
        self._literals.append(rest[last:])
        self.step = max(value for value in self._varied if isinstance(value, int))

    def text(self, copy):
        """Copy 0 is the model itself."""
        if copy == 0:
            return self._first
        offset = copy * self.step
        pieces = [b''] * (2 * len(self._literals) - 1)
        pieces[::2] = self._literals
        pieces[1::2] = [self._moved(value, copy, offset) for value in self._varied]
        return b''.join(pieces)

    def _moved(self, value, copy, offset):
        if isinstance(value, bytes):
            return _later_guid(value, copy)
        return b'#%d' % (value if value == self._project else value + offset)


def enlarge(source, size, path):
    """Makes a model of at least `size` bytes of whole copies at `path`; gives its exact size."""
    with open(source, 'rb') as file:
        head, records, tail = _parts(file.read())
    copies = _Copies(records)
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

"""A model under construction: records in the order of the file, numbered when they are written."""

import random

from . import layouts
from .step_text import FOOTER_TEXT, header_text, value_text

_GUID_DIGITS = '0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$'

# In these releases the maker always gives names and descriptions, if only empty ones.
_NAMED_RELEASES = ('IFC2X_FINAL', 'IFC2X2_PLATFORM')


def guid_text(bits):
    """128 bits as the 22 characters of a GlobalId: 2 bits in the first, 6 in each other."""
    return _GUID_DIGITS[bits >> 126] + ''.join(
        _GUID_DIGITS[bits >> shift & 63] for shift in range(120, -1, -6))


class Habits:
    """How an exporting program writes what other programs write otherwise."""

    def __init__(self, blank_after_equals=False, line_end='\n', latin=False, number_step=1,
                 first_number=1, whole_first=False):
        self.blank_after_equals = blank_after_equals
        self.line_end = line_end
        self.latin = latin  # \S\ for Western letters
        self.number_step = number_step
        self.first_number = first_number
        self.whole_first = whole_first  # property sets before their properties, and the like


class Record:
    """One record. Its number is settled by Model.number_records; lists may grow until written."""

    __slots__ = ('entity', 'values', 'number')

    def __init__(self, entity, values):
        self.entity = entity
        self.values = values
        self.number = None


class Model:
    """Records of one release. `seed` decides every GUID."""

    def __init__(self, release, seed, habits=None):
        self.release = release
        self.habits = habits or Habits()
        self.records = []
        self.owner_history = None
        self._random = random.Random(seed)

    def has(self, entity):
        """Whether the release has the class."""
        return layouts.has_class(self.release, entity)

    def new_guid(self):
        return guid_text(self._random.getrandbits(128))

    def add(self, entity, **given):
        """Appends a record. Attributes that this release lacks (but another has) are dropped, so
        that one description serves all releases; what nobody gave is absent."""
        attributes = layouts.attributes(self.release, entity)
        unknown = given.keys() - layouts.names_in_any_release(entity)
        if unknown:
            raise ValueError('%s has no %s' % (entity, ', '.join(sorted(unknown))))
        record = Record(entity, [self._value(entity, attribute, given)
                                 for attribute in attributes])
        self.records.append(record)
        return record

    def _value(self, entity, attribute, given):
        value = given.get(attribute.name)
        if value is None:
            value = self._default(entity, attribute)
        if value is None and attribute.required:
            raise ValueError('%s needs %s' % (entity, attribute.name))
        return value

    def _default(self, entity, attribute):
        if attribute.name == 'GlobalId':
            return self.new_guid()
        if attribute.name == 'OwnerHistory':
            return self.owner_history
        if attribute.name in ('Name', 'Description') and self.release in _NAMED_RELEASES:
            return '' if 'GlobalId' in layouts.names_in_any_release(entity) else None
        return None

    def add_whole(self, entity, first_part, **given):
        """Adds a record that refers to parts which are there already. With the habit of
        `whole_first` it goes before the first of them, and its references point forward."""
        record = self.add(entity, **given)
        if self.habits.whole_first:
            self.records.pop()
            self.records.insert(self.records.index(first_part), record)
        return record

    def number_records(self):
        """Gives every record the number that it has in the file."""
        number = self.habits.first_number
        for record in self.records:
            record.number = number
            number += self.habits.number_step
        return number

    def record_text(self, record):
        """One record as a line of the file."""
        habits = self.habits
        return '#%s=%s%s(%s);\n' % (
            record.number, ' ' if habits.blank_after_equals else '', record.entity.upper(),
            ','.join(value_text(value, habits.latin) for value in record.values))

    def file_bytes(self, header):
        """The whole file. Only for models that fit memory."""
        self.number_records()
        text = ''.join([header_text(header, self.release)]
                       + [self.record_text(record) for record in self.records] + [FOOTER_TEXT])
        return text.replace('\n', self.habits.line_end).encode('ascii')

"""What records say that no change of units may touch: texts, whole numbers, classes of what they
refer to, and reals whose type has no unit."""

import re
from collections import Counter

import schema_facts
import si_values
import validity
from step_text import Reference, Typed

# Plain numbers that change with the unit of length all the same, and parameters of curves.
_BY_ROLE = {'Precision', 'Scale', 'CoefficientsX', 'CoefficientsY', 'CoefficientsZ',
            'DistanceAttenuation', 'QuadricAttenuation', 'Attenuation'}
_BY_CURVE = 'IFCPARAMETERVALUE'
_IS_OF_UNITS = re.compile('UNIT|DIMENSIONALEXPONENTS')
_CHANGES = 'a number that may change'


def of_file(file):
    """Of all records but those of units: a merge has more or fewer of these."""
    reader = _Reader(file)
    return Counter(repr(reader.of(record)) for record in file.records.values()
                   if not _IS_OF_UNITS.search(record.name))


class _Reader:
    def __init__(self, file):
        self._records = file.records
        release = schema_facts.choose_release(file.header['FILESCHEMA'][0][0])
        self._release = schema_facts.release(release)
        self._classes = validity.Classes(self._release)
        self._known = {}

    def of(self, record):
        places = self._known.get(record.name)
        if places is None:
            places = self._known[record.name] = self._places_that_stay(record.name)
        return record.name, [self._without_units(argument, stays)
                             for argument, stays in zip(record.arguments, places)]

    def _places_that_stay(self, name):
        if not self._release.is_entity(name):
            return []
        return [one.name not in _BY_ROLE and self._stays(expression.split()[-1])
                for one, expression in zip(self._release.attributes_of(name),
                                           self._classes.expressions(name))]

    @staticmethod
    def _stays(measure):
        return measure.upper() != _BY_CURVE and si_values.unit_of(measure.upper()) is None

    def _without_units(self, value, stays):
        if isinstance(value, Typed):
            return value.name, [self._without_units(one, self._stays(value.name))
                                for one in value.arguments]
        if isinstance(value, float):
            return value.hex() if stays else _CHANGES
        if isinstance(value, Reference):
            return self._records[value.number].name
        if isinstance(value, list):
            return [self._without_units(one, stays) for one in value]
        return value

"""What a model says in units of the SI: every property and quantity with its value.

Made apart from the program: the sizes of units are worked out here once more, and which measure is
in which unit is a table of its own.
"""

import math

import schema_facts
from step_text import Absent, Enumeration, Reference, Typed

_PREFIXES = dict(zip(
    'EXA PETA TERA GIGA MEGA KILO HECTO DECA DECI CENTI MILLI MICRO NANO PICO FEMTO ATTO'.split(),
    (18, 15, 12, 9, 6, 3, 2, 1, -1, -2, -3, -6, -9, -12, -15, -18)))

# By the name of the measure in capitals, without IFC and MEASURE; others are called as their unit.
_OTHER_NAMES = {'POSITIVELENGTH': 'LENGTH', 'NONNEGATIVELENGTH': 'LENGTH',
                'POSITIVEPLANEANGLE': 'PLANEANGLE', 'SECTIONALAREAINTEGRAL': 'SECTIONAREAINTEGRAL',
                'THERMALCONDUCTIVITY': 'THERMALCONDUCTANCE'}
_WITHOUT_UNIT = {'RATIO', 'POSITIVERATIO', 'NORMALISEDRATIO', 'COUNT', 'NUMERIC', 'DESCRIPTIVE',
                 'MONETARY', 'CONTEXTDEPENDENT', 'PH', 'SOUNDPOWERLEVEL', 'SOUNDPRESSURELEVEL',
                 'COMPOUNDPLANEANGLE', 'INTEGERCOUNTRATE'}
_QUANTITIES = {'IFCQUANTITYLENGTH': 'LENGTH', 'IFCQUANTITYAREA': 'AREA',
               'IFCQUANTITYVOLUME': 'VOLUME', 'IFCQUANTITYWEIGHT': 'MASS',
               'IFCQUANTITYTIME': 'TIME'}
# Enough to tell a number from one that was not converted, and less than texts of 15 digits lose.
_DIGITS = 11


def unit_of(measure):
    """'LENGTH' for IFCPOSITIVELENGTHMEASURE; None for what has no unit."""
    if not measure.endswith('MEASURE'):
        return None
    name = measure[len('IFC'):-len('MEASURE')]
    name = _OTHER_NAMES.get(name, name)
    return None if name in _WITHOUT_UNIT else name


class Model:
    def __init__(self, file):
        self.records = file.records
        release = schema_facts.choose_release(file.header['FILESCHEMA'][0][0])
        self.release = schema_facts.release(release)
        self.assigned = {}
        project = next(record for record in self.records.values() if record.name == 'IFCPROJECT')
        assignment = self.get(project, 'UnitsInContext')
        for unit in self.get(self.records[assignment.number], 'Units'):
            record = self.records[unit.number]
            if record.name != 'IFCMONETARYUNIT':
                self.assigned[self.get(record, 'UnitType').name[:-len('UNIT')]] = self.size(unit)

    def get(self, record, attribute):
        names = [one.name for one in self.release.attributes_of(record.name)]
        return record.arguments[names.index(attribute)] if attribute in names else Absent('$')

    def size(self, unit):
        """(factor, offset) of a unit, by its reference."""
        record = self.records[unit.number]
        if record.name == 'IFCSIUNIT':
            name, prefix = self.get(record, 'Name').name, self.get(record, 'Prefix')
            power = {'SQUARE_METRE': 2, 'CUBIC_METRE': 3}.get(name, 1)
            ten = _PREFIXES[prefix.name] if isinstance(prefix, Enumeration) else 0
            return (10.0 ** (ten * power) * (0.001 if name == 'GRAM' else 1.0),
                    273.15 if name == 'DEGREE_CELSIUS' else 0.0)
        if record.name == 'IFCDERIVEDUNIT':
            factors = []
            for element in self.get(record, 'Elements'):
                element = self.records[element.number]
                factors.append(self.size(self.get(element, 'Unit'))[0]
                               ** self.get(element, 'Exponent'))
            return math.prod(factors), 0.0
        measure = self.records[self.get(record, 'ConversionFactor').number]
        factor, offset = self.size(self.get(measure, 'UnitComponent'))
        return factor * self.get(measure, 'ValueComponent').arguments[0], offset

    def in_si(self, measure, value, unit):
        kind = unit_of(measure)
        if isinstance(unit, Reference):
            factor, offset = self.size(unit)
        elif kind is None:
            factor, offset = 1.0, 0.0
        else:
            factor, offset = self.assigned.get(kind, (1.0, 0.0))
        return float(f'{value * factor + offset:.{_DIGITS - 1}e}')

    def values(self):
        """(class, name, measure, value in the SI) of all that has a number, sorted."""
        found = []
        for record in self.records.values():
            if record.name == 'IFCPROPERTYSINGLEVALUE':
                value = self.get(record, 'NominalValue')
                if isinstance(value, Typed) and isinstance(value.arguments[0], float):
                    found.append((record.name, self.get(record, 'Name'), value.name,
                                  self.in_si(value.name, value.arguments[0],
                                             self.get(record, 'Unit'))))
            elif record.name in _QUANTITIES:
                kind = _QUANTITIES[record.name]
                [number] = [one for one in record.arguments if isinstance(one, float)]
                found.append((record.name, self.get(record, 'Name'), kind,
                              self.in_si(f'IFC{kind}MEASURE', number, self.get(record, 'Unit'))))
        return sorted(found)

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
QUANTITIES = {'IFCQUANTITYLENGTH': ('LENGTH', 'LengthValue'),
              'IFCQUANTITYAREA': ('AREA', 'AreaValue'),
              'IFCQUANTITYVOLUME': ('VOLUME', 'VolumeValue'),
              'IFCQUANTITYWEIGHT': ('MASS', 'WeightValue'),
              'IFCQUANTITYTIME': ('TIME', 'TimeValue')}
# Class -> attributes with values, and the attribute with the unit of each.
_PROPERTIES = {
    'IFCPROPERTYSINGLEVALUE': (('NominalValue', 'Unit'),),
    'IFCPROPERTYBOUNDEDVALUE': (('UpperBoundValue', 'Unit'), ('LowerBoundValue', 'Unit'),
                                ('SetPointValue', 'Unit')),
    'IFCPROPERTYLISTVALUE': (('ListValues', 'Unit'),),
    'IFCPROPERTYTABLEVALUE': (('DefiningValues', 'DefiningUnit'),
                              ('DefinedValues', 'DefinedUnit')),
    'IFCPROPERTYENUMERATION': (('EnumerationValues', 'Unit'),),
    'IFCPROPERTYENUMERATEDVALUE': (('EnumerationValues', None),)}


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
        return value * factor + offset

    def values(self):
        """(class, name, measure, value in the SI) of all that has a number, sorted."""
        return sorted(one for record in self.records.values()
                      for one in (*self.of_property(record), *self.of_quantity(record)))

    def of_property(self, record):
        for attribute, unit in _PROPERTIES.get(record.name, ()):
            values = self.get(record, attribute)
            for value in values if isinstance(values, list) else [values]:
                if isinstance(value, Typed) and isinstance(value.arguments[0], float):
                    yield (record.name, self.get(record, 'Name'), value.name,
                           self.in_si(value.name, value.arguments[0], self.unit_of(record, unit)))

    def of_quantity(self, record):
        if record.name in QUANTITIES:
            kind, attribute = QUANTITIES[record.name]
            yield (record.name, self.get(record, 'Name'), kind,
                   self.in_si(f'IFC{kind}MEASURE', self.get(record, attribute),
                              self.get(record, 'Unit')))

    def unit_of(self, record, attribute):
        """What a property chooses is in the unit of what it is chosen from."""
        if attribute is not None:
            return self.get(record, attribute)
        enumeration = self.get(record, 'EnumerationReference')
        if not isinstance(enumeration, Reference):
            return enumeration
        return self.get(self.records[enumeration.number], 'Unit')

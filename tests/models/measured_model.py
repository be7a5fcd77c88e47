"""Models with a property of each kind for each measure of their release, in units of every kind.

Of two models with other numbers `choice` each unit is of another size, and no two units of one
model have one size, so that a value that was taken for another measure's is found."""

import si_values

_SI_NAMES = {
    'ABSORBEDDOSE': 'GRAY', 'AMOUNTOFSUBSTANCE': 'MOLE', 'AREA': 'SQUARE_METRE',
    'DOSEEQUIVALENT': 'SIEVERT', 'ELECTRICCAPACITANCE': 'FARAD', 'ELECTRICCHARGE': 'COULOMB',
    'ELECTRICCONDUCTANCE': 'SIEMENS', 'ELECTRICCURRENT': 'AMPERE', 'ELECTRICRESISTANCE': 'OHM',
    'ELECTRICVOLTAGE': 'VOLT', 'ENERGY': 'JOULE', 'FORCE': 'NEWTON', 'FREQUENCY': 'HERTZ',
    'ILLUMINANCE': 'LUX', 'INDUCTANCE': 'HENRY', 'LENGTH': 'METRE', 'LUMINOUSFLUX': 'LUMEN',
    'LUMINOUSINTENSITY': 'CANDELA', 'MAGNETICFLUX': 'WEBER', 'MAGNETICFLUXDENSITY': 'TESLA',
    'MASS': 'GRAM', 'PLANEANGLE': 'RADIAN', 'POWER': 'WATT', 'PRESSURE': 'PASCAL',
    'RADIOACTIVITY': 'BECQUEREL', 'SOLIDANGLE': 'STERADIAN',
    'THERMODYNAMICTEMPERATURE': 'KELVIN', 'TIME': 'SECOND', 'VOLUME': 'CUBIC_METRE'}
_TEMPERATURES = ('DEGREE_CELSIUS', 'KELVIN')


class Records:
    """Records of a release, by the names of their attributes; what is not told is absent."""

    def __init__(self, release, number):
        self._release = release
        self._number = number
        self.lines = []

    def add(self, entity, **values):
        """The reference of a new record. A class that the release lacks has none."""
        if not self._release.is_entity(entity):
            return '$'
        self._number += 1
        arguments = [values.get(one.name, '$')
                     for one in self._release.attributes_of(entity)]
        self.lines.append(f'#{self._number}={entity}({",".join(arguments)});\n')
        return f'#{self._number}'


def measures_of(release):
    """The types of a release that a property can hold a number of, with the kind of their unit:
    None for those without one."""
    kinds = {word for name in ('IfcUnitEnum', 'IfcDerivedUnitEnum')
             for word in release.enumerations[name]}
    measures = {}
    # pylint: disable-next=protected-access
    for measure in sorted(set(release._targets('IfcValue'))):
        if release.value_kind(measure).name == 'real':
            kind = si_values.unit_of(measure)
            measures[measure] = kind if f'{kind}UNIT' in kinds else None
    return measures


class _Units:
    def __init__(self, records, release, choice):
        self._records = records
        self._choice = choice
        self._exponents = records.add('IFCDIMENSIONALEXPONENTS', **dict.fromkeys(
            ('LengthExponent', 'MassExponent', 'TimeExponent', 'ElectricCurrentExponent',
             'ThermodynamicTemperatureExponent', 'AmountOfSubstanceExponent',
             'LuminousIntensityExponent'), '0'))
        named = set(release.enumerations['IfcUnitEnum'])
        kinds = sorted({kind for kind in measures_of(release).values() if kind})
        self.assigned = {kind: self._named(kind, place) for place, kind in enumerate(kinds)
                         if f'{kind}UNIT' in named}
        ratios = [self._ratio(place) for place in range(len(kinds))]
        self.assigned |= {kind: self._product(kind, ratios[place])
                          for place, kind in enumerate(kinds) if f'{kind}UNIT' not in named}

    def _named(self, kind, place):
        if kind == 'THERMODYNAMICTEMPERATURE':
            return self._records.add('IFCSIUNIT', Dimensions='*', UnitType=f'.{kind}UNIT.',
                                     Name=f'.{_TEMPERATURES[self._choice]}.')
        base = self._records.add('IFCSIUNIT', Dimensions='*', UnitType=f'.{kind}UNIT.',
                                 Name=f'.{_SI_NAMES[kind]}.')
        return self.converted(kind, base, 1.0 + 0.03125 * place + self._choice)

    def converted(self, kind, base, factor):
        measure = self._records.add('IFCMEASUREWITHUNIT',
                                    ValueComponent=f'IFCRATIOMEASURE({factor})',
                                    UnitComponent=base)
        return self._records.add('IFCCONVERSIONBASEDUNIT', Dimensions=self._exponents,
                                 UnitType=f'.{kind}UNIT.', Name=f"'{kind} {factor}'",
                                 ConversionFactor=measure)

    def _ratio(self, place):
        """A unit of length for each derived one, which is its power of -2."""
        metre = self._records.add('IFCSIUNIT', Dimensions='*', UnitType='.LENGTHUNIT.',
                                  Name='.METRE.')
        return self.converted('LENGTH', metre, 2.0 + 0.0625 * place - 0.5 * self._choice)

    def _product(self, kind, length):
        elements = [self._records.add('IFCDERIVEDUNITELEMENT', Unit=unit, Exponent=exponent)
                    for unit, exponent in ((length, '-2'), (self.assigned['MASS'], '1'))]
        return self._records.add('IFCDERIVEDUNIT', Elements=f'({",".join(elements)})',
                                 UnitType=f'.{kind}UNIT.')


def _add_properties(records, measure, other, unit):
    """One of each kind; `other` is the measure that a table leads to."""
    def value(number, of=measure):
        return f'{of}({number})'

    properties = []

    def add(entity, name, **values):
        properties.append(records.add(entity, Name=name, **values))

    for own, name in ((unit, f"'{measure} with a unit'"), ('$', f"'{measure}'")):
        add('IFCPROPERTYSINGLEVALUE', name, NominalValue=value(12.5), Unit=own)
        add('IFCPROPERTYBOUNDEDVALUE', name, UpperBoundValue=value(99.5),
            LowerBoundValue=value(-3.25), SetPointValue=value(0.125), Unit=own)
        add('IFCPROPERTYLISTVALUE', name,
            ListValues=f'({value(1.5)},{value(2.5)},{value(1.5)})', Unit=own)
        add('IFCPROPERTYTABLEVALUE', name, DefiningValues=f'({value(7.5)},{value(8.5)})',
            DefinedValues=f'({value(4.5, other)},{value(5.5, other)})', DefiningUnit=own)
        enumeration = records.add('IFCPROPERTYENUMERATION', Name=name,
                                  EnumerationValues=f'({value(17.5)},{value(18.5)})', Unit=own)
        for reference in (enumeration, '$'):
            add('IFCPROPERTYENUMERATEDVALUE', name, EnumerationValues=f'({value(17.5)})',
                EnumerationReference=reference)
    return properties


def records_of(release, number, choice, product, history):
    """The records behind `number`, and the references of the units to be assigned. The properties
    are those of `product`."""
    records = Records(release, number)
    units = _Units(records, release, choice)
    measures = measures_of(release)
    properties, quantities = [], []
    for measure, other in zip(measures, [*measures][1:] + [*measures][:1]):
        kind = measures[measure]
        unit = units.converted(kind, units.assigned[kind], 1.75) if _can_be_based_on(
            release, kind) else '$'
        properties += _add_properties(records, measure, other, unit)
    for quantity, (kind, attribute) in si_values.QUANTITIES.items():
        for unit in (units.converted(kind, units.assigned[kind], 1.25), '$'):
            quantities.append(records.add(quantity, Name=f"'{kind}'", Unit=unit,
                                          **{attribute: '6.5'}))
    for place, (entity, attribute, members) in enumerate((
            ('IFCPROPERTYSET', 'HasProperties', properties),
            ('IFCELEMENTQUANTITY', 'Quantities', quantities))):
        told = ','.join(member for member in members if member != '$')
        of_all = records.add(entity, GlobalId=f"'{10 * choice + place:022}'",
                             OwnerHistory=history, Name="'Measures'", **{attribute: f'({told})'})
        records.add('IFCRELDEFINESBYPROPERTIES', GlobalId=f"'{10 * choice + place + 5:022}'",
                    OwnerHistory=history, RelatedObjects=f'({product})',
                    RelatingPropertyDefinition=of_all)
    return ''.join(records.lines), list(units.assigned.values())


def _can_be_based_on(release, kind):
    """Temperatures have an offset, and only a unit of a name is one to base another on."""
    return kind not in (None, 'THERMODYNAMICTEMPERATURE') and (
        f'{kind}UNIT' in release.enumerations['IfcUnitEnum'])

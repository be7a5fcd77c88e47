"""Models on maps: makes one that counts from another point than it did, and says where its products
are on the map, by a reader that shares nothing with the program but the text of the file.

A place is ((x, y, z), origin): three axes and a point, in metres."""

import math
import os
import re
import sys

import halves
import program
import schema_facts
import step_text
import written_form
from step_text import Absent, Reference

sys.path.insert(0, os.path.join(program.ROOT, 'tools'))

# pylint: disable-next=wrong-import-position
from models.samples import house_bytes  # noqa: E402

IDENTITY = ((1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0)), (0.0, 0.0, 0.0)
_RECORD = re.compile(rb'^#(\d+)=(\w+)\((.*)\);$', re.M)
_PREFIXES = {'MILLI': 1e-3, 'CENTI': 1e-2, 'DECI': 1e-1, 'KILO': 1e3}
_MAP_WORDS = {'METRE': 1.0, 'MILLIMETRE': 1e-3, 'FOOT': 0.3048}


# --- Places ---------------------------------------------------------------------------------------

def turned(degrees, origin=(0.0, 0.0, 0.0)):
    """About the vertical."""
    cosine, sine = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return ((cosine, sine, 0.0), (-sine, cosine, 0.0), (0.0, 0.0, 1.0)), tuple(origin)


def tilted(degrees, origin=(0.0, 0.0, 0.0)):
    """About the x axis."""
    cosine, sine = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return ((1.0, 0.0, 0.0), (0.0, cosine, sine), (0.0, -sine, cosine)), tuple(origin)


def direct(place, direction):
    return tuple(sum(axis[row] * part for axis, part in zip(place[0], direction))
                 for row in range(3))


def point(place, at):
    return tuple(one + other for one, other in zip(direct(place, at), place[1]))


def inside(outer, inner):
    return tuple(direct(outer, axis) for axis in inner[0]), point(outer, inner[1])


def back(place):
    axes = tuple(zip(*place[0]))
    return axes, tuple(-part for part in direct((axes, None), place[1]))


def times(numbers, factor):
    return tuple(number * factor for number in numbers)


def _unit(vector):
    length = math.sqrt(sum(part * part for part in vector))
    return times(vector, 1.0 / length)


def _cross(one, other):
    return (one[1] * other[2] - one[2] * other[1], one[2] * other[0] - one[0] * other[2],
            one[0] * other[1] - one[1] * other[0])


# --- Reading --------------------------------------------------------------------------------------

class MapReader:
    """Where the products of a model are on the map of its first conversion."""

    def __init__(self, data):
        self.file = step_text.StepFile(data)
        identifier = self.file.header['FILESCHEMA'][0][0]
        self.release = schema_facts.release(schema_facts.choose_release(identifier))
        self.known = {}
        self.places = {}
        self.metres = self.length_unit()
        self.context = min(self.of_class('IfcGeometricRepresentationContext'), default=None,
                           key=lambda number: (self.of(number, 'CoordinateSpaceDimension') != 3,
                                               number))

    def of_class(self, entity):
        return sorted(number for number, record in self.file.records.items()
                      if self.release.is_entity(record.name)
                      and self.release.is_a(record.name, entity)
                      and not record.name.endswith('SUBCONTEXT'))

    def of(self, number, attribute):
        """The value of an attribute; None for an absent one, or where the class has none."""
        record = self.file.records[number]
        if record.name not in self.places:
            attributes = self.release.attributes_of(record.name)
            self.places[record.name] = {one.name: place for place, one in enumerate(attributes)}
        place = self.places[record.name].get(attribute)
        if place is None:
            return None
        value = record.arguments[place]
        value = value.number if isinstance(value, Reference) else value
        return None if isinstance(value, Absent) else value

    def length_unit(self):
        [assignment] = [self.of(number, 'UnitsInContext') for number in self.of_class('IfcProject')]
        units = [one.number for one in self.of(assignment, 'Units')]
        [unit] = [one for one in units if self.of(one, 'UnitType') is not None
                  and self.of(one, 'UnitType').name == 'LENGTHUNIT']
        return self.unit(unit)

    def unit(self, number):
        if self.file.records[number].name == 'IFCSIUNIT':
            prefix = self.of(number, 'Prefix')
            return _PREFIXES[prefix.name] if prefix else 1.0
        factor = self.of(number, 'ConversionFactor')
        return (self.of(factor, 'ValueComponent').arguments[0]
                * self.unit(self.of(factor, 'UnitComponent')))

    def direction(self, number, absent):
        if number is None:
            return absent
        ratios = self.of(number, 'DirectionRatios')
        return _unit(tuple(ratios) + (0.0,) * (3 - len(ratios)))

    def axes(self, number):
        """The place that an axis placement says, in metres."""
        origin = self.of(self.of(number, 'Location'), 'Coordinates')
        z = self.direction(self.of(number, 'Axis'), (0.0, 0.0, 1.0))
        x = self.direction(self.of(number, 'RefDirection'), (1.0, 0.0, 0.0))
        along = sum(one * other for one, other in zip(x, z))
        x = _unit(tuple(one - along * other for one, other in zip(x, z)))
        origin = times(tuple(origin) + (0.0,) * (3 - len(origin)), self.metres)
        return (x, _cross(z, x), z), origin

    def placement(self, number):
        """In the world of the model. One along a line is taken for the place that it counts from:
        how far along the line it is does not change."""
        if number is None:
            return IDENTITY
        if number not in self.known:
            outer = self.of(number, 'PlacementRelTo')
            place = self.placement(outer)
            if self.file.records[number].name == 'IFCLOCALPLACEMENT':
                place = inside(place, self.axes(self.of(number, 'RelativePlacement')))
            self.known[number] = place
        return self.known[number]

    def conversion(self):
        """(place, scale along the axes) from the metres of the model to those of the map."""
        for number in self.of_class('IfcCoordinateOperation'):
            self.context = self.of(number, 'SourceCRS')
            return self.conversion_of(number)
        sets = {self.of(number, 'Name'): self.properties(number)
                for number in self.of_class('IfcPropertySet')
                if self.of(number, 'Name').startswith('ePset_')}
        values = sets['ePset_MapConversion']
        unit = _MAP_WORDS[sets['ePset_ProjectedCRS']['MapUnit']]
        return self.of_values([values.get(name) for name in (
            'Eastings', 'Northings', 'OrthogonalHeight', 'XAxisAbscissa', 'XAxisOrdinate', 'Scale')],
            unit, (1.0, 1.0, 1.0))

    def conversion_of(self, number):
        system = self.of(number, 'TargetCRS')
        unit = self.of(system, 'MapUnit')
        unit = self.metres if unit is None else self.unit(unit)
        if self.file.records[number].name == 'IFCRIGIDOPERATION':
            first, second = (self.of(number, name).arguments[0]
                             for name in ('FirstCoordinate', 'SecondCoordinate'))
            origin = times((first, second, self.of(number, 'Height') or 0.0), unit)
            return (IDENTITY[0], origin), (1.0, 1.0, 1.0)
        factors = tuple(self.of(number, f'Factor{axis}') or self.of(number, f'Scale{axis}') or 1.0
                        for axis in 'XYZ')
        return self.of_values([self.of(number, name) for name in (
            'Eastings', 'Northings', 'OrthogonalHeight', 'XAxisAbscissa', 'XAxisOrdinate', 'Scale')],
            unit, factors)

    def of_values(self, values, unit, factors):
        east, north, height, abscissa, ordinate, scale = values
        angle = math.degrees(math.atan2(ordinate or 0.0, 1.0 if abscissa is None else abscissa))
        scale = 1.0 if scale is None else scale
        return (turned(angle, times((east, north, height or 0.0), unit)),
                times(factors, scale * unit / self.metres))

    def properties(self, number):
        return {self.of(one.number, 'Name'): self.of(one.number, 'NominalValue').arguments[0]
                for one in self.of(number, 'HasProperties')}

    def products(self):
        """GUID, class and four points on the map, in metres, of each product with a placement: the
        origin of its place and what is a metre from it along each axis."""
        conversion, scale = self.conversion()
        world = self.axes(self.of(self.context, 'WorldCoordinateSystem'))

        def on_map(at):
            there = point(world, at)
            return point(conversion, tuple(one * other for one, other in zip(there, scale)))
        found = []
        for number in self.of_class('IfcProduct'):
            placement = self.of(number, 'ObjectPlacement')
            if placement is not None:
                place = self.placement(placement)
                found.append((self.of(number, 'GlobalId'), self.file.records[number].name,
                              [on_map(point(place, at)) for at in ((0.0, 0.0, 0.0), *IDENTITY[0])]))
        return found


def farthest_apart(products, others):
    """Metres between any point of a product and that of the one in `others` that has its GUID and
    class. One that is not there is an error."""
    places = {(guid, entity): points for guid, entity, points in others}
    return max(math.dist(one, other) for guid, entity, points in products
               for one, other in zip(points, places[guid, entity]))


# --- Making ---------------------------------------------------------------------------------------

def _real(number):
    text = repr(float(number)).upper()
    return text if '.' in text else text.replace('E', '.E') if 'E' in text else text + '.'


class Survey:
    """What a model counts from: `start` is its origin as the whole sees it, `world` its world
    coordinate system. `map_unit` is a word of _MAP_WORDS."""

    def __init__(self, start=IDENTITY, world=IDENTITY, map_unit='METRE', system='EPSG:2056'):
        self.start = start
        self.world = world
        self.map_unit = map_unit
        self.system = system


# Where the whole is on the map.
WHOLE = turned(21.7, (2600123.456, 1199876.543, 431.25))
SCALE = 0.99992


class Measured:
    """The model in `data` (as Model.text() gives it, in its own coordinates those of the whole) as
    `survey` has it."""

    def __init__(self, data, survey):
        self.reader = MapReader(data)
        self.survey = survey
        self.metres = self.reader.metres
        self.tail = data[data.rindex(b'ENDSEC;'):]
        self.head = data[:_RECORD.search(data).start()]
        self.records = {int(number): [name, body] for number, name, body in _RECORD.findall(data)}
        self.move()
        self.state_map()
        self.bytes = self.head + b''.join(
            b'#%d=%s(%s);\n' % (number, *self.records[number]) for number in sorted(self.records)
        ) + self.tail

    def add(self, name, text):
        number = max(self.records) + 1
        self.records[number] = [name.encode(), text.encode()]
        return f'#{number}'

    def axes(self, place):
        numbers = [self.add('IFCCARTESIANPOINT', '(%s)' % ','.join(
            map(_real, times(place[1], 1.0 / self.metres))))]
        for axis in (place[0][2], place[0][0]):
            numbers.append(self.add('IFCDIRECTION', '(%s)' % ','.join(map(_real, axis))))
        return self.add('IFCAXIS2PLACEMENT3D', ','.join(numbers))

    def move(self):
        reader = self.reader
        here = back(inside(self.survey.start, self.survey.world))
        outermost = [number for number in reader.of_class('IfcLocalPlacement')
                     if reader.of(number, 'PlacementRelTo') is None]
        for number in outermost:
            place = inside(here, reader.axes(reader.of(number, 'RelativePlacement')))
            self.records[number][1] = b'$,' + self.axes(place).encode()
        lines = [number for number in reader.of_class('IfcLinearPlacement')
                 if self.records[number][1].startswith(b'$')] if self.has('IfcLinearPlacement') else []
        if lines:
            root = self.add('IFCLOCALPLACEMENT', '$,' + self.axes(here))
            for number in lines:
                self.records[number][1] = root.encode() + self.records[number][1][1:]
        for number in reader.of_class('IfcGeometricRepresentationContext'):
            self.measure_context(number, here)

    def has(self, entity):
        return self.reader.release.is_entity(entity.upper())

    def measure_context(self, number, here):
        fields = self.records[number][1].split(b',')
        fields[4] = self.axes(self.survey.world).encode()
        north = self.reader.of(number, 'TrueNorth')
        if north is not None:
            ratios = direct(here, self.reader.direction(north, None))
            fields[5] = self.add('IFCDIRECTION', '(%s,%s)' % (
                _real(ratios[0]), _real(ratios[1]))).encode()
        self.records[number][1] = b','.join(fields)

    def state_map(self):
        unit = _MAP_WORDS[self.survey.map_unit]
        east, north, height = times(point(WHOLE, times(self.survey.start[1], SCALE)), 1.0 / unit)
        axis = direct(WHOLE, self.survey.start[0][0])
        values = [east, north, height, axis[0], axis[1], SCALE * self.metres / unit]
        if self.has('IfcMapConversion'):
            self.state_conversion(values)
        else:
            self.state_properties(values)

    def state_conversion(self, values):
        prefix = '.MILLI.' if self.survey.map_unit == 'MILLIMETRE' else '$'
        unit = self.add('IFCSIUNIT', f'*,.LENGTHUNIT.,{prefix},.METRE.')
        if self.survey.map_unit == 'FOOT':
            size = self.add('IFCDIMENSIONALEXPONENTS', '1,0,0,0,0,0,0')
            factor = self.add('IFCMEASUREWITHUNIT', f'IFCLENGTHMEASURE(0.3048),{unit}')
            unit = self.add('IFCCONVERSIONBASEDUNIT', f"{size},.LENGTHUNIT.,'FOOT',{factor}")
        system = self.add('IFCPROJECTEDCRS', f"'{self.survey.system}',$,'CH1903+','LN02',$,$,{unit}")
        self.add('IFCMAPCONVERSION', ','.join(
            [f'#{self.reader.context}', system, *map(_real, values)]))

    def state_properties(self, values):
        [site] = self.reader.of_class('IfcSite')
        names = ('Eastings', 'Northings', 'OrthogonalHeight', 'XAxisAbscissa', 'XAxisOrdinate',
                 'Scale')
        numbers = [f"'{name}',$,IFCREAL({_real(value)}),$" for name, value in zip(names, values)]
        texts = [f"'Name',$,IFCLABEL('{self.survey.system}'),$",
                 f"'MapUnit',$,IFCLABEL('{self.survey.map_unit}'),$"]
        for place, (name, rows) in enumerate((('ePset_MapConversion', numbers),
                                              ('ePset_ProjectedCRS', texts))):
            self.add_set(site, name, rows, place)

    def add_set(self, site, name, rows, place):
        owner = self.records[site][1].split(b',')[1].decode()
        rows = [self.add('IFCPROPERTYSINGLEVALUE', row) for row in rows]
        guid = '3vMapSurveyOfModel%02d%02d' % (place, len(self.survey.map_unit))
        members = self.add('IFCPROPERTYSET', f"'{guid}',{owner},'{name}',$,({','.join(rows)})")
        relation = '2' + guid[1:]
        self.add('IFCRELDEFINESBYPROPERTIES', f"'{relation}',{owner},$,$,(#{site}),{members}")


# --- One building of several offices --------------------------------------------------------------

_ANGLE = re.compile(rb'(IFCPROPERTYSINGLEVALUE\(.*,IFCPLANEANGLEMEASURE\()([^)]*)\)')
_DEGREE = re.compile(rb'^#(\d+)=IFCCONVERSIONBASEDUNIT\(#\d+,\.PLANEANGLEUNIT\.', re.M)
_RADIAN = re.compile(rb'^#(\d+)=IFCSIUNIT\(\*,\.PLANEANGLEUNIT\.', re.M)
# The units of each office, and what it counts from.
OFFICES = (('MILLIMETRE', True, Survey(turned(10.0, (3.0, 4.0, 5.0)), map_unit='METRE')),
           ('FOOT', False, Survey(turned(-33.3, (-120.5, 77.25, 2.0)), map_unit='FOOT')),
           ('METRE', True, Survey(turned(77.0, (1000.0, 2000.0, -4.0)), map_unit='MILLIMETRE',
                                  world=turned(12.0, (5.0, 6.0, 7.0)))))


def in_radians(data):
    """A model in degrees, in radians."""
    [degree], [radian] = _DEGREE.findall(data), _RADIAN.findall(data)
    data = re.sub(rb'^(#\d+=IFCUNITASSIGNMENT\(.*)#' + degree + rb'\b', rb'\1#' + radian, data,
                  flags=re.M)
    return _ANGLE.sub(lambda match: match[1] + _real(
        float(match[2]) * 0.0174532925199433).encode() + b')', data)


def building_of_offices(release):
    """The bytes of a house, and those of its parts by three offices: each has units and an origin of
    its own, and the whole those of the first."""
    def house(length_unit, has_degrees):
        data = house_bytes(release, length_unit)
        text = written_form.Model(step_text.StepFile(data)).text()
        return text if has_degrees else in_radians(text)

    def model(data):
        return written_form.Model(step_text.StepFile(data))
    parts = []
    for place, (length_unit, has_degrees, survey) in enumerate(OFFICES):
        cut = halves.Cut(model(house(length_unit, has_degrees)), 7, len(OFFICES))
        parts.append(Measured(model(cut.halves[place]).text(), survey).bytes)
    length_unit, has_degrees, survey = OFFICES[0]
    return Measured(house(length_unit, has_degrees), survey).bytes, parts


def values_of(data):
    """(class, name, type, number) of all properties and quantities with a number, in order."""
    found = []
    for record in step_text.StepFile(data).records.values():
        if record.name == 'IFCPROPERTYSINGLEVALUE':
            value = record.arguments[2]
            if not isinstance(value, Absent) and isinstance(value.arguments[0], (int, float)):
                found.append((record.name, record.arguments[0], value.name, value.arguments[0]))
        elif record.name.startswith('IFCQUANTITY'):
            found.append((record.name, record.arguments[0], '', record.arguments[3]))
    return sorted(found)

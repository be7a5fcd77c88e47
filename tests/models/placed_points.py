"""Where the products of a model stand and what their shapes are, in the world of the model and in
metres: the points of each shape, and the axes of grids.

Made apart from the program, for what no other reader of ours takes: models in IFC2X and IFC2X2, and
what stands on a grid. The shape is not worked out. Its records are passed through in the order of
their attributes, in the coordinates that those before them set up.
"""

import math
from typing import NamedTuple

import map_models
import validity
from map_models import MapReader, direct, inside, point, times
from step_text import Absent, Reference, Typed

_POINT_TOLERANCE = 1e-4               # metres
_NUMBER_TOLERANCE = 1e-6              # of directions, parameters and whatever is no length
_LENGTHS = {'IfcLengthMeasure', 'IfcPositiveLengthMeasure', 'IfcNonNegativeLengthMeasure'}
_POINT_LISTS = {'IFCCARTESIANPOINTLIST2D', 'IFCCARTESIANPOINTLIST3D'}
_FRAMES = {'IFCAXIS2PLACEMENT2D', 'IFCAXIS2PLACEMENT3D'}
# What says in which context a shape is drawn is no part of the shape.
_PASSED_OVER = {'ContextOfItems'}


class Placed(NamedTuple):
    """`words`: the classes of the shape's records with all their texts, `points` in metres, one
    coordinate after the other, the first of them where the product stands."""
    entity: str
    guid: str
    name: 'str | None'
    words: tuple
    points: tuple
    numbers: tuple

    def moved(self, offset):
        """`offset` in millimetres."""
        return self._replace(points=tuple(value + offset[place % 3] / 1000
                                          for place, value in enumerate(self.points)))

    def is_like(self, other):
        return self.words == other.words and are_near(self.points, other.points, _POINT_TOLERANCE) \
            and are_near(self.numbers, other.numbers, _NUMBER_TOLERANCE)


def are_near(some, others, tolerance):
    return len(some) == len(others) and all(abs(one - other) <= tolerance
                                            for one, other in zip(some, others))


def _padded(numbers):
    return tuple(numbers) + (0.0,) * (3 - len(numbers))


class _Shape:
    """What a walk over records has found."""

    def __init__(self):
        self.words = []
        self.points = []
        self.numbers = []


class PlacesReader(MapReader):

    def __init__(self, data):
        super().__init__(data)
        self.expressions = validity.Classes(self.release).expressions
        self.plans = {}
        self.grids = {axis: grid for grid in self.of_class('IfcGrid')
                      for axis in self.axes_of(grid)}

    def products(self):
        return [self.placed(number) for number in self.of_class('IfcProduct')]

    def placed(self, number):
        frame = self.placement(self.of(number, 'ObjectPlacement'))
        shape = _Shape()
        self.enter_frame(frame, shape)
        representation = self.of(number, 'Representation')
        if representation is not None:
            self.walk(representation, frame, shape)
        for axis in self.axes_of(number):
            self.walk(axis, frame, shape)
        return Placed(self.file.records[number].name, self.of(number, 'GlobalId'),
                      self.of(number, 'Name'), tuple(shape.words), tuple(shape.points),
                      tuple(shape.numbers))

    def axes_of(self, number):
        """Those of a grid, and none of anything else."""
        return [axis.number for attribute in ('UAxes', 'VAxes', 'WAxes')
                for axis in self.of(number, attribute) or ()]

    # --- Placements -------------------------------------------------------------------------------

    def placement(self, number):
        if number is not None and self.file.records[number].name == 'IFCGRIDPLACEMENT':
            if number not in self.known:
                self.known[number] = self.on_grid(number)
            return self.known[number]
        return super().placement(number)

    def on_grid(self, number):
        at = self.of(number, 'PlacementLocation')
        first = self.of(at, 'IntersectingAxes')[0].number
        outer = self.of(number, 'PlacementRelTo')
        if outer is None:
            outer = self.of(self.grids[first], 'ObjectPlacement')
        origin = self.crossing(at)
        toward = self.of(number, 'PlacementRefDirection')
        if toward is None:
            x = self.line(first)[1]
        elif self.file.records[toward].name == 'IFCDIRECTION':
            x = self.direction(toward, None)
        else:
            x = tuple(one - other for one, other in zip(self.crossing(toward), origin))
        length = math.hypot(x[0], x[1])
        x = (x[0] / length, x[1] / length, 0.0)
        own = (x, (-x[1], x[0], 0.0), (0.0, 0.0, 1.0)), origin
        return inside(self.placement(outer), own)

    def line(self, axis):
        """(point, direction of length 1) of an axis, which is a polyline or a line."""
        curve = self.of(axis, 'AxisCurve')
        if self.file.records[curve].name == 'IFCPOLYLINE':
            corners = [_padded(self.of(one.number, 'Coordinates'))
                       for one in self.of(curve, 'Points')]
            start = corners[0]
            way = tuple(one - other for one, other in zip(corners[-1], start))
        else:
            start = _padded(self.of(self.of(curve, 'Pnt'), 'Coordinates'))
            way = self.direction(self.of(self.of(curve, 'Dir'), 'Orientation'), None)
        way = times(way, 1.0 / math.hypot(*way[:2]))
        if self.of(axis, 'SameSense').name == 'F':
            way = times(way, -1.0)
        return times(start, self.metres), way

    def crossing(self, number):
        """Where two axes of a grid cross, each moved to its left by the offset for it; a third
        offset is a height."""
        offsets = times(self.of(number, 'OffsetDistances'), self.metres)
        lines = []
        for axis, offset in zip(self.of(number, 'IntersectingAxes'), offsets):
            start, way = self.line(axis.number)
            lines.append(((start[0] - way[1] * offset, start[1] + way[0] * offset), way))
        (start, way), (other_start, other_way) = lines
        apart = other_start[0] - start[0], other_start[1] - start[1]
        along = ((apart[0] * other_way[1] - apart[1] * other_way[0])
                 / (way[0] * other_way[1] - way[1] * other_way[0]))
        height = offsets[2] if len(offsets) > 2 else 0.0
        return start[0] + along * way[0], start[1] + along * way[1], height

    # --- Shapes -----------------------------------------------------------------------------------

    def plan(self, name):
        """(attribute, whether its numbers are lengths) of a class."""
        if name not in self.plans:
            attributes = self.release.attributes_of(name)
            self.plans[name] = [
                (one.name, expression.split()[-1] in _LENGTHS)
                for one, expression in zip(attributes, self.expressions(name))]
        return self.plans[name]

    @staticmethod
    def enter_frame(frame, shape):
        shape.points += frame[1]
        for axis in frame[0]:
            shape.numbers += axis

    def walk(self, number, frame, shape):
        record = self.file.records[number]
        name = record.name
        shape.words.append(name)
        if name == 'IFCCARTESIANPOINT':
            self.enter_point(record.arguments[0], frame, shape)
        elif name in _POINT_LISTS:
            for coordinates in record.arguments[0]:
                self.enter_point(coordinates, frame, shape)
        elif name == 'IFCDIRECTION':
            shape.numbers += direct(frame, self.direction(number, None))
        elif name in _FRAMES:
            self.enter_frame(inside(frame, self.axes(number)), shape)
        elif name == 'IFCMAPPEDITEM':
            self.walk_mapped(number, frame, shape)
        else:
            self.walk_arguments(number, frame, shape)

    def enter_point(self, coordinates, frame, shape):
        shape.points += point(frame, times(_padded(coordinates), self.metres))

    def walk_mapped(self, number, frame, shape):
        source = self.of(number, 'MappingSource')
        origin = self.axes(self.of(source, 'MappingOrigin'))
        onto = inside(frame, self.operator(self.of(number, 'MappingTarget')))
        self.walk(self.of(source, 'MappedRepresentation'), inside(onto, map_models.back(origin)),
                  shape)

    def operator(self, number):
        """The place that a transformation says; its axes are as long as it scales."""
        scale = self.of(number, 'Scale')
        scale = 1.0 if scale is None else scale
        z = self.direction(self.of(number, 'Axis3'), (0.0, 0.0, 1.0))
        x = self.direction(self.of(number, 'Axis1'), (1.0, 0.0, 0.0))
        y = (z[1] * x[2] - z[2] * x[1], z[2] * x[0] - z[0] * x[2], z[0] * x[1] - z[1] * x[0])
        origin = self.of(self.of(number, 'LocalOrigin'), 'Coordinates')
        return (tuple(times(axis, scale) for axis in (x, y, z)),
                times(_padded(origin), self.metres))

    def walk_arguments(self, number, frame, shape):
        record = self.file.records[number]
        inner = frame
        position = self.of(number, 'Position')
        if position is not None and self.file.records[position].name in _FRAMES:
            inner = inside(frame, self.axes(position))
            self.enter_frame(inner, shape)
        for (attribute, is_length), value in zip(self.plan(record.name), record.arguments):
            # What bounds a half space has a place of its own, the space has that of the whole.
            is_outside = record.name == 'IFCPOLYGONALBOUNDEDHALFSPACE' and attribute == 'BaseSurface'
            if attribute not in _PASSED_OVER and (inner is frame or attribute != 'Position'):
                self.enter(value, is_length, frame if is_outside else inner, shape)

    def enter(self, value, is_length, frame, shape):
        if isinstance(value, Reference):
            self.walk(value.number, frame, shape)
        elif isinstance(value, list):
            for one in value:
                self.enter(one, is_length, frame, shape)
        elif isinstance(value, Typed):
            shape.words.append(value.name)
            self.enter(value.arguments, value.name in {name.upper() for name in _LENGTHS}, frame,
                       shape)
        elif isinstance(value, float):
            if is_length:
                value *= self.metres
            shape.numbers.append(value)
        elif not isinstance(value, Absent):
            shape.words.append(str(value))

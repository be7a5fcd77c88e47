"""Geometry records. All lengths come in metres and angles in degrees; `units_per_metre` turns the
lengths into the model's unit."""

from .step_text import Enum, Typed
from .solids import cos_sin


class Geometry:
    """Adds geometry to one model. Directions and the origin are shared, as exporters share them;
    every other point is a record of its own."""

    def __init__(self, model, units_per_metre):
        self.model = model
        self.units_per_metre = units_per_metre
        self._shared = {}

    def length(self, metres, axis='x'):
        """A length in the model's unit. `axis` tells along which axis of the element it lies;
        it matters where models are varied."""
        del axis
        return float(metres * self.units_per_metre)

    def _once(self, key, make):
        if key not in self._shared:
            self._shared[key] = make()
        return self._shared[key]

    def point(self, *coordinates):
        """A point of two or three coordinates."""
        if not any(coordinates):
            return self._once(('point', len(coordinates)), lambda: self._new_point(coordinates))
        return self._new_point(coordinates)

    def _new_point(self, coordinates):
        return self.model.add('IfcCartesianPoint', Coordinates=[
            self.length(value, axis) for value, axis in zip(coordinates, 'xyz')])

    def direction(self, *ratios):
        return self._once(('direction', ratios), lambda: self.model.add(
            'IfcDirection', DirectionRatios=[float(ratio) for ratio in ratios]))

    def turned(self, degrees):
        """The horizontal direction at an angle from the x axis; None for the x axis itself."""
        return self.direction(*cos_sin(degrees), 0.0) if degrees % 360 else None

    def axes(self, location=(0.0, 0.0, 0.0), axis=None, reference=None):
        """A 3D placement. An axis and its reference are given both or not at all."""
        if (axis is None) != (reference is None):
            axis = axis or self.direction(0.0, 0.0, 1.0)
            reference = reference or self.direction(1.0, 0.0, 0.0)
        return self.model.add('IfcAxis2Placement3D', Location=self.point(*location), Axis=axis,
                              RefDirection=reference)

    def flat_axes(self, x=0.0, y=0.0):
        return self.model.add('IfcAxis2Placement2D', Location=self.point(x, y),
                              RefDirection=self.direction(1.0, 0.0))

    def placement(self, relative_to, location=(0.0, 0.0, 0.0), degrees=0.0):
        """A local placement, turned about the vertical."""
        return self.model.add('IfcLocalPlacement', PlacementRelTo=relative_to,
                              RelativePlacement=self.axes(location, None, self.turned(degrees)))

    def polyline(self, points, closed=False):
        """A line through points; a closed one ends in the record that it began with."""
        records = [self.point(*point) for point in points]
        return self.model.add('IfcPolyline', Points=records + records[:1] * closed)

    def rectangle(self, width, depth, x=0.0, y=0.0, name=None):
        """A rectangle around (x, y)."""
        return self.model.add('IfcRectangleProfileDef', ProfileType=Enum('AREA'), ProfileName=name,
                              Position=self.flat_axes(x, y), XDim=self.length(width, 'x'),
                              YDim=self.length(depth, 'y'))

    def disc(self, radius, name=None):
        return self.model.add('IfcCircleProfileDef', ProfileType=Enum('AREA'), ProfileName=name,
                              Position=self.flat_axes(), Radius=self.length(radius))

    def area(self, outline, name=None, hole=None):
        """The profile inside an outline, perhaps with a hole."""
        entity = 'IfcArbitraryProfileDefWithVoids' if hole else 'IfcArbitraryClosedProfileDef'
        inner = {'InnerCurves': [self.polyline(hole, closed=True)]} if hole else {}
        return self.model.add(entity, ProfileType=Enum('AREA'), ProfileName=name,
                              OuterCurve=self.polyline(outline, closed=True), **inner)

    def wide_flange(self, width, depth, web, flange, name=None):
        """An I profile; as an outline where the release lacks the parametric one."""
        if self.model.has('IfcIShapeProfileDef'):
            return self.model.add(
                'IfcIShapeProfileDef', ProfileType=Enum('AREA'), ProfileName=name,
                Position=self.flat_axes(), OverallWidth=self.length(width),
                OverallDepth=self.length(depth), WebThickness=self.length(web),
                FlangeThickness=self.length(flange), FilletRadius=self.length(0.012))
        half, edge, inner = width / 2, depth / 2, depth / 2 - flange
        right = [(half, -edge), (half, -inner), (web / 2, -inner), (web / 2, inner), (half, inner),
                 (half, edge)]
        return self.area(right + [(-x, -y) for x, y in right], name)

    def extrusion(self, profile, height, position=None, along=(0.0, 0.0, 1.0)):
        return self.model.add(
            'IfcExtrudedAreaSolid', SweptArea=profile, Position=position or self.axes(),
            ExtrudedDirection=self.direction(*along), Depth=self.length(height, 'z'))

    def brep(self, solid):
        """A faceted boundary representation of (points, faces)."""
        points, faces = solid
        records = [self.model.add('IfcCartesianPoint', Coordinates=[
            self.length(value, axis) for value, axis in zip(point, 'xyz')]) for point in points]
        shell = self.model.add('IfcClosedShell', CfsFaces=[
            self._face(loops, records) for loops in faces])
        return self.model.add('IfcFacetedBrep', Outer=shell)

    def _face(self, loops, points):
        bounds = []
        for index, loop in enumerate(loops):
            polygon = self.model.add('IfcPolyLoop', Polygon=[points[corner] for corner in loop])
            bounds.append(self.model.add('IfcFaceBound' if index else 'IfcFaceOuterBound',
                                         Bound=polygon, Orientation=True))
        return self.model.add('IfcFace', Bounds=bounds)

    def triangulated(self, solid):
        """A triangulated face set of (points, triangles); IFC4 and later."""
        points, faces = solid
        coordinates = self.model.add('IfcCartesianPointList3D', CoordList=[
            [self.length(value, axis) for value, axis in zip(point, 'xyz')] for point in points])
        return self.model.add('IfcTriangulatedFaceSet', Coordinates=coordinates, Closed=True,
                              CoordIndex=[[corner + 1 for corner in face] for face in faces])

    def clipped(self, solid, height, degrees):
        """The solid without what lies above a plane that leans from the height at its start."""
        cosine, sine = cos_sin(degrees)
        plane = self.model.add('IfcPlane', Position=self.axes(
            (0.0, 0.0, height), self.direction(-sine, 0.0, cosine),
            self.direction(cosine, 0.0, sine)))
        half_space = self.model.add('IfcHalfSpaceSolid', BaseSurface=plane, AgreementFlag=False)
        return self.model.add('IfcBooleanClippingResult', Operator=Enum('DIFFERENCE'),
                              FirstOperand=solid, SecondOperand=half_space)

    def arc(self, x, radius, first, last):
        """The part of a circle around (x, 0) between two angles in degrees."""
        basis = self.model.add('IfcCircle', Position=self.flat_axes(x), Radius=self.length(radius))
        return self.model.add(
            'IfcTrimmedCurve', BasisCurve=basis, Trim1=[Typed('IfcParameterValue', float(first))],
            Trim2=[Typed('IfcParameterValue', float(last))], SenseAgreement=True,
            MasterRepresentation=Enum('PARAMETER'))

    def mapped(self, representation_map, location=(0.0, 0.0, 0.0)):
        """One more use of a mapped representation."""
        target = self.model.add('IfcCartesianTransformationOperator3D',
                                LocalOrigin=self.point(*location), Scale=1.0)
        return self.model.add('IfcMappedItem', MappingSource=representation_map,
                              MappingTarget=target)

"""Alignments and what runs along them: the street before the house, a railway, a tunnel."""

import math

from . import solids
from .elements import Elements, count, flag, label, ratio
from .model import Model
from .project import Facts, Project
from .step_text import Enum, Typed

_STEEL, _CONCRETE, _BALLAST, _ROCK = (0.4, 0.4, 0.45), (0.7, 0.7, 0.68), (0.5, 0.45, 0.4), (
    0.55, 0.5, 0.45)

_RADIUS = 300.0
_STRAIGHT, _TRANSITION, _ARC = 80.0, 40.0, 60.0


def _curve_length(elements, metres):
    """A distance along a curve. Releases differ in which kinds of length they admit there."""
    kind = 'IfcNonNegativeLengthMeasure' if elements.model.release == 'IFC4X4' else (
        'IfcLengthMeasure')
    return Typed(kind, elements.geometry.length(metres))


def _linear_placement(elements, curve, along, lateral=0.0, vertical=0.0):
    """A placement at a distance along a curve; every release since IFC4X1 has its own form."""
    model, length = elements.model, elements.geometry.length
    if model.has('IfcAxis2PlacementLinear'):
        axes = _linear_axes(elements, curve, along, lateral, vertical)
        return model.add('IfcLinearPlacement', RelativePlacement=axes)
    distance = model.add('IfcDistanceExpression', DistanceAlong=length(along),
                         OffsetLateral=length(lateral), OffsetVertical=length(vertical),
                         AlongHorizontal=True)
    if model.release == 'IFC4X1':  # the curve stands where other placements name their parent
        return model.add('IfcLinearPlacement', PlacementRelTo=curve, Distance=distance)
    return model.add('IfcLinearPlacement', PlacementMeasuredAlong=curve, Distance=distance)


def _linear_axes(elements, curve, along, lateral=0.0, vertical=0.0):
    length = elements.geometry.length
    point = elements.model.add(
        'IfcPointByDistanceExpression', DistanceAlong=_curve_length(elements, along),
        OffsetLateral=length(lateral), OffsetVertical=length(vertical), BasisCurve=curve)
    return elements.model.add('IfcAxis2PlacementLinear', Location=point)


def street(elements, site):
    """The axis of a street and its station marks, placed along it."""
    model, geometry = elements.model, elements.geometry
    curve = geometry.polyline([(-40.0, -12.0, 0.0), (0.0, -12.5, 0.1), (45.0, -9.0, 0.4)])
    shape = elements.shape([curve], 'Curve3D', 'Axis')
    placement = geometry.placement(site.placement)
    alignment = model.add('IfcAlignment', Name="Rue de l'Étang", ObjectPlacement=placement,
                          Representation=shape, Axis=curve, PredefinedType=Enum('NOTDEFINED'))
    marks = [model.add('IfcReferent', Name='0+%03d' % along,
                       ObjectPlacement=_linear_placement(elements, curve, float(along)),
                       PredefinedType=Enum('STATION'), RestartDistance=geometry.length(along))
             for along in (0, 25, 50, 75)]
    if model.has('IfcRelPositions'):
        model.add('IfcRelPositions', RelatingPositioningElement=alignment, RelatedProducts=marks)
    site.elements += [alignment] + marks


class _Segment:
    """A part of a horizontal alignment: where it starts and which way, and its radii (0: straight).
    `constant` is the clothoid's."""

    def __init__(self, kind, start, degrees, length, radii, constant=0.0):
        self.kind = kind
        self.start = start
        self.degrees = degrees
        self.length = length
        self.radii = radii
        self.constant = constant


def _segments():
    """A straight line, a clothoid and an arc, each starting where the one before ends."""
    constant = math.sqrt(_TRANSITION * _RADIUS)
    # The first terms of the clothoid's series: exact to a tenth of a millimetre at this length.
    x = _TRANSITION - _TRANSITION ** 5 / (40.0 * constant ** 4)
    y = _TRANSITION ** 3 / (6.0 * constant ** 2) - _TRANSITION ** 7 / (336.0 * constant ** 6)
    turn = math.degrees(_TRANSITION / (2.0 * _RADIUS))
    return [_Segment('LINE', (0.0, 0.0), 0.0, _STRAIGHT, (0.0, 0.0)),
            _Segment('CLOTHOID', (_STRAIGHT, 0.0), 0.0, _TRANSITION, (0.0, _RADIUS),
                     round(constant, 9)),
            _Segment('CIRCULARARC', (round(_STRAIGHT + x, 9), round(y, 9)), round(turn, 9), _ARC,
                     (_RADIUS, _RADIUS))]


class Track(Elements):
    """What railway and tunnel share: an alignment, rails and sleepers along it."""

    def alignment(self, place, name):
        """An alignment with its design parameters nested and its curve as shape."""
        add = self.model.add
        placement = self.geometry.placement(place.placement)
        self.curve = self._gradient_curve(self._base_curve())
        shape = self.shape([self.curve], 'Curve3D', 'Axis')
        alignment = add('IfcAlignment', Name=name, ObjectPlacement=placement, Representation=shape,
                        PredefinedType=Enum('NOTDEFINED'))
        horizontal = add('IfcAlignmentHorizontal', Name='H', ObjectPlacement=placement)
        vertical = add('IfcAlignmentVertical', Name='V', ObjectPlacement=placement)
        add('IfcRelNests', RelatingObject=alignment, RelatedObjects=[horizontal, vertical])
        add('IfcRelNests', RelatingObject=horizontal, RelatedObjects=[
            self._design(placement, self._horizontal_parameters(segment))
            for segment in _segments()])
        add('IfcRelNests', RelatingObject=vertical, RelatedObjects=[
            self._design(placement, parameters) for parameters in self._vertical_parameters()])
        place.elements.append(alignment)
        return alignment

    def _design(self, placement, parameters):
        return self.model.add('IfcAlignmentSegment', ObjectPlacement=placement,
                              DesignParameters=parameters)

    def _horizontal_parameters(self, segment):
        length = self.geometry.length
        return self.model.add(
            'IfcAlignmentHorizontalSegment', StartPoint=self.geometry.point(*segment.start),
            StartDirection=segment.degrees, StartRadiusOfCurvature=length(segment.radii[0]),
            EndRadiusOfCurvature=length(segment.radii[1]), SegmentLength=length(segment.length),
            PredefinedType=Enum(segment.kind))

    # (start, length, height at the start, gradient)
    _GRADIENTS = ((0.0, 100.0, 408.5, 0.005), (100.0, 80.0, 409.0, -0.0025))

    def _vertical_parameters(self):
        length = self.geometry.length
        return [self.model.add(
            'IfcAlignmentVerticalSegment', StartDistAlong=length(start),
            HorizontalLength=length(along), StartHeight=length(height), StartGradient=gradient,
            EndGradient=gradient, PredefinedType=Enum('CONSTANTGRADIENT'))
                for start, along, height, gradient in self._GRADIENTS]

    def _base_curve(self):
        return self.model.add('IfcCompositeCurve', SelfIntersect=False, Segments=[
            self._curve_segment(segment.start, segment.degrees, segment.length,
                                self._parent_curve(segment)) for segment in _segments()])

    def _parent_curve(self, segment):
        if segment.kind == 'LINE':
            return self._line()
        if segment.kind == 'CLOTHOID':
            return self.model.add('IfcClothoid', Position=self.geometry.flat_axes(),
                                  ClothoidConstant=self.geometry.length(segment.constant))
        return self.model.add('IfcCircle', Position=self.geometry.flat_axes(),
                              Radius=self.geometry.length(segment.radii[0]))

    def _line(self):
        vector = self.model.add('IfcVector', Orientation=self.geometry.direction(1.0, 0.0),
                                Magnitude=1.0)
        return self.model.add('IfcLine', Pnt=self.geometry.point(0.0, 0.0), Dir=vector)

    def _curve_segment(self, start, degrees, length, parent):
        placement = self.model.add(
            'IfcAxis2Placement2D', Location=self.geometry.point(*start),
            RefDirection=self.geometry.direction(*solids.cos_sin(degrees)))
        return self.model.add(
            'IfcCurveSegment', Transition=Enum('CONTSAMEGRADIENT'), Placement=placement,
            SegmentStart=_curve_length(self, 0.0), SegmentLength=_curve_length(self, length),
            ParentCurve=parent)

    def _gradient_curve(self, base):
        segments = [self._curve_segment((start, height), math.degrees(math.atan(gradient)), along,
                                        self._line())
                    for start, along, height, gradient in self._GRADIENTS]
        return self.model.add('IfcGradientCurve', Segments=segments, SelfIntersect=False,
                              BaseCurve=base)

    def stations(self, alignment, step):
        """Referents nested in the alignment, one at each step."""
        marks = []
        for along in range(0, int(_STRAIGHT + _TRANSITION + _ARC) + 1, step):
            mark = self.model.add(
                'IfcReferent', Name='km 12,%03d' % along, PredefinedType=Enum('STATION'),
                ObjectPlacement=_linear_placement(self, self.curve, float(along)))
            self.properties([mark], 'Pset_Stationing', {
                'Station': Typed('IfcLengthMeasure', self.geometry.length(12000 + along))})
            marks.append(mark)
        self.model.add('IfcRelNests', RelatingObject=alignment, RelatedObjects=marks)

    def rails(self, place):
        """Two rails swept along the curve between cross sections."""
        for side, name in ((0.7525, 'Schiene links'), (-0.7525, 'Rail à droite')):
            profile = self.geometry.wide_flange(0.15, 0.172, 0.0165, 0.03, '60E1')
            ends = [_linear_axes(self, self.curve, along, side, -0.086)
                    for along in (0.0, _STRAIGHT + _TRANSITION + _ARC)]
            body = self.style(self.model.add(
                'IfcSectionedSolidHorizontal', Directrix=self.curve,
                CrossSections=[profile, profile], CrossSectionPositions=ends), _STEEL)
            rail = self.element('IfcRail', name, self.geometry.placement(place.placement),
                                self.shape([body], 'AdvancedSweptSolid'), place,
                                PredefinedType=Enum('RAIL'))
            self.of_material(rail, 'Stahl R260')

    def sleepers(self, place, step):
        """Sleepers of one type, each placed along the curve by itself."""
        body = self.style(self.geometry.brep(solids.box(-0.13, -1.3, -0.2, 0.26, 2.6, 0.2)),
                          _CONCRETE)
        shape = self.representation_map([body], 'Brep')
        kind = self.model.add('IfcTrackElementType', Name='B70', RepresentationMaps=[shape],
                              PredefinedType=Enum('SLEEPER'))
        for index in range(int((_STRAIGHT + _TRANSITION + _ARC) / step) + 1):
            placement = _linear_placement(self, self.curve, index * step, 0.0, -0.172)
            sleeper = self.element(
                'IfcTrackElement', 'Schwelle %d' % (index + 1), placement,
                self.shape([self.geometry.mapped(shape)], 'MappedRepresentation'), place,
                PredefinedType=Enum('SLEEPER'))
            self.of_type(sleeper, kind)
            self.properties([sleeper], 'Einbau', {
                'Nummer': count(index + 1), 'Los': label("Lot n° %d" % (index // 20)),
                'Abstand': ratio(step), 'Geprüft': flag(index % 3 != 0)})


def _track(sample, name, site):
    facts = Facts(name, site, '', [], 'METRE', ('Šimůnek', 'Jiří'), "Voies & Tunnels d'Europe",
                  ('Line Planner', '7'), 0.0, (0.0, 0.0, 0.0))
    project = Project(Model(sample.release, sample.seed), facts)
    return Track(project), project


def railway(sample):
    """A site with a railway; its one part holds the track."""
    track, project = _track(sample, 'Bahnlinie Ü12', 'Areal Süd')
    site = project.site()
    line = project.place('IfcRailway', site, Name='Ligne "12"', PredefinedType=Enum('NOTDEFINED'))
    project.aggregate(site.record, [line.record])
    part = project.place('IfcRailwayPart', line, Name='Gleis 1', UsageType=Enum('LONGITUDINAL'),
                         PredefinedType=Enum('PLAINTRACK'))
    project.aggregate(line.record, [part.record])
    alignment = track.alignment(site, "Axe d'étude")
    track.stations(alignment, 20)
    track.rails(part)
    track.sleepers(part, 3.0)
    bed = track.style(track.geometry.brep(_ballast()), _BALLAST)
    course = track.element('IfcCourse', 'Schotter', track.geometry.placement(part.placement),
                           track.shape([bed], 'Brep'), part, PredefinedType=Enum('BALLASTBED'))
    track.of_material(course, 'Gneis 31,5/50')
    track.finish()
    return project, 'Line Planner 7'


def _ballast():
    """The bed under the straight part: its section swept along x, which is y of the prism."""
    section = [(-2.6, 407.6), (2.6, 407.6), (1.9, 408.1), (-1.9, 408.1)]
    points, faces = solids.prism(section, 0.0, _STRAIGHT)
    return [(z, x, y) for x, y, z in points], faces


def tunnel(sample):
    """A site with a tunnel; its one part holds rings, excavation, bolts and the rock around."""
    track, project = _track(sample, 'Tunnel sous la colline', 'Kopec "Vrch"')
    site = project.site()
    whole = project.place('IfcTunnel', site, Name='Túnel №2', PredefinedType=Enum('RAILWAY'))
    project.aggregate(site.record, [whole.record])
    part = project.place('IfcTunnelPart', whole, (0.0, 0.0, 408.5), Name='Abschnitt 1',
                         UsageType=Enum('LONGITUDINAL'), PredefinedType=Enum('TUNNELSECTION'))
    project.aggregate(whole.record, [part.record])
    track.stations(track.alignment(site, "Axe d'étude"), 20)
    track.rails(part)
    for index in range(12):
        _ring(track, part, 2.0 * index)
    _ground(track, part)
    track.finish()
    return project, 'Line Planner 7'


def _ring(track, part, start):
    """One ring of the lining, which stands across the track, and the bolt above it."""
    geometry = track.geometry
    placement = geometry.placement(part.placement, (start, 0.0, 2.5))
    position = geometry.axes(axis=geometry.direction(1.0, 0.0, 0.0),
                             reference=geometry.direction(0.0, 1.0, 0.0))
    profile = geometry.area(solids.circle(4.3, 16), 'Tübbing', solids.circle(3.9, 16))
    body = track.style(geometry.extrusion(profile, 2.0, position), _CONCRETE)
    ring = track.element('IfcPlate', 'Ring ' + track.next_tag(), placement,
                         track.shape([body], 'SweptSolid'), part, PredefinedType=Enum('LAGGING'))
    track.of_material(ring, 'Beton C50/60')
    track.properties([ring], 'Einbau', {'Schlussstein': label("S'%d" % int(start)),
                                        'Verpresst': flag(True)})
    curve = geometry.polyline([(1.0, 0.0, 4.3), (1.0, 0.0, 8.3)])
    rod = track.model.add('IfcSweptDiskSolid', Directrix=curve, Radius=geometry.length(0.0125),
                          StartParam=0.0, EndParam=1.0)
    bolt = track.element('IfcGroundReinforcementElement', 'Anker', geometry.placement(placement),
                         track.shape([track.style(rod, _STEEL)], 'AdvancedSweptSolid'), part,
                         PredefinedType=Enum('ROCKSUPPORTBOLT'))
    track.of_material(bolt, 'Stahl B500B')


def _ground(track, part):
    """What was dug out and what stayed."""
    geometry = track.geometry
    rock = track.style(geometry.brep(solids.box(0.0, -20.0, -10.0, 24.0, 40.0, 35.0)), _ROCK, 0.8)
    stratum = track.element('IfcSolidStratum', 'Gneis', geometry.placement(part.placement),
                            track.shape([rock], 'Brep'), part)
    track.of_material(stratum, 'Gneis')
    points, faces = solids.drum(4.4, 24.0, 16, 6)
    body = geometry.brep(([(z, x, y + 2.5) for x, y, z in points], faces))
    track.element('IfcUndergroundExcavation', 'Ausbruch', geometry.placement(part.placement),
                  track.shape([body], 'Brep'), part, PredefinedType=Enum('FACEEXCAVATION'))

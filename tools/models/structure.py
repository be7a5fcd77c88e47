"""The engineer's model of the office: grid, footings, piles, columns, beams, slabs, bars."""

import math

from . import plans, solids
from .elements import Elements, flag, label, ratio
from .step_text import Enum, Typed

_CONCRETE, _STEEL = (0.7, 0.7, 0.68), (0.35, 0.4, 0.5)
_SLAB = 0.24


class Structure(Elements):
    """Builds the load-bearing parts on the office's grid."""

    def __init__(self, project):
        super().__init__(project)
        self.column_type = self.model.add(
            'IfcColumnType', Name='HEA 240', PredefinedType=Enum('COLUMN'))
        self.beam_type = self.model.add('IfcBeamType', Name='IPE 300', PredefinedType=Enum('BEAM'))
        self.brace_type = self.model.add('IfcMemberType', Name='RRO 100×5',
                                         PredefinedType=Enum('BRACE'))
        self._steel_properties()

    def _steel_properties(self):
        """Properties of a material: a class of its own in the older releases."""
        figures = {'Streckgrenze': Typed('IfcPressureMeasure', 235000000.0),
                   'Ausdehnung': Typed('IfcThermalExpansionCoefficientMeasure', 1.2e-05)}
        values = [self.model.add('IfcPropertySingleValue', Name=name, NominalValue=figure)
                  for name, figure in figures.items()]
        steel = self.material('Stahl S235')
        if self.model.has('IfcExtendedMaterialProperties'):
            self.model.add('IfcExtendedMaterialProperties', Name='Stahl', Material=steel,
                           ExtendedProperties=values)
        else:
            self.model.add('IfcMaterialProperties', Name='Stahl', Material=steel,
                           Properties=values)

    def _of_steel(self, element, name, profile):
        """Steel of a profile: a profile set where the release has one."""
        if self.model.has('IfcMaterialProfileSet'):
            self.made_of(element, self.once(('profiles', name), self._new_profiles, name, profile))
        else:
            self.of_material(element, 'Stahl S235')

    def _new_profiles(self, name, profile):
        part = self.model.add('IfcMaterialProfile', Name=name, Profile=profile,
                              Material=self.material('Stahl S235'))
        return self.model.add('IfcMaterialProfileSet', Name=name, MaterialProfiles=[part])

    def grid(self, storey):
        """The grid lines, drawn two metres beyond the building."""
        xs, ys = plans.OFFICE_GRID_X, plans.OFFICE_GRID_Y
        across = [self._grid_axis(chr(ord('A') + index), [(x, -2.0), (x, ys[-1] + 2.0)])
                  for index, x in enumerate(xs)]
        along = [self._grid_axis(str(index + 1), [(-2.0, y), (xs[-1] + 2.0, y)])
                 for index, y in enumerate(ys)]
        lines = self.representation([axis.values[1] for axis in across + along], 'Curve2D', 'Axis')
        shape = self.model.add('IfcProductDefinitionShape', Representations=[lines])
        storey.elements.append(self.model.add(
            'IfcGrid', Name='Raster', ObjectPlacement=self.geometry.placement(storey.placement),
            Representation=shape, UAxes=across, VAxes=along, PredefinedType=Enum('RECTANGULAR')))

    def _grid_axis(self, tag, points):
        return self.model.add('IfcGridAxis', AxisTag=tag, SameSense=True,
                              AxisCurve=self.geometry.polyline(points))

    def foundations(self, storey):
        """A pad footing of faces under every column, a pile under each of the outer ones."""
        pads = []
        for x in plans.OFFICE_GRID_X:
            for y in plans.OFFICE_GRID_Y:
                pads.append(self._footing(storey, x, y))
                if y == plans.OFFICE_GRID_Y[0]:
                    self._pile(storey, x, y)
        self.classify(pads, 'Bauteile', 'E1.2', 'Einzelfundament')

    def _footing(self, storey, x, y):
        placement = self.geometry.placement(storey.placement, (x, y, -1.1))
        body = self.style(self.geometry.brep(solids.box(-0.8, -0.8, 0.0, 1.6, 1.6, 0.6)), _CONCRETE)
        footing = self.element('IfcFooting', 'Fundament ' + self.next_tag(), placement,
                               self.shape([body], 'Brep'), storey,
                               PredefinedType=Enum('PAD_FOOTING'))
        self.of_material(footing, 'Beton C25/30')
        self.quantities(footing, GrossVolume=1.6 * 1.6 * 0.6, GrossWeight=3840.0)
        return footing

    def _pile(self, storey, x, y):
        placement = self.geometry.placement(storey.placement, (x, y, -7.1))
        body = self.style(self.geometry.extrusion(self.geometry.disc(0.3, 'Ø600'), 6.0), _CONCRETE)
        pile = self.element('IfcPile', 'Pfahl ' + self.next_tag(), placement,
                            self.shape([body], 'SweptSolid'), storey,
                            PredefinedType=Enum('FRICTION'),
                            ConstructionType=Enum('CAST_IN_PLACE'))
        self.of_material(pile, 'Beton C25/30')
        self._bar(storey, placement)

    def _bar(self, storey, placement):
        """One bar in the pile: a disk swept along a line."""
        radius = 0.01
        curve = self.geometry.polyline([(0.2, 0.0, 0.1), (0.2, 0.0, 5.9)])
        body = self.model.add('IfcSweptDiskSolid', Directrix=curve, StartParam=0.0, EndParam=1.0,
                              Radius=self.geometry.length(radius))
        area = math.pi * radius * radius
        self.element('IfcReinforcingBar', 'Stab', self.geometry.placement(placement),
                     self.shape([body], 'AdvancedSweptSolid'), storey, SteelGrade='B500B',
                     NominalDiameter=self.geometry.length(2 * radius), CrossSectionArea=area,
                     BarLength=self.geometry.length(5.8), BarRole=Enum('MAIN'),
                     PredefinedType=Enum('MAIN'), BarSurface=Enum('TEXTURED'))

    def frame(self, storey, height, next_storey=None):
        """Columns on all points of the grid, beams along it, and the slab on top. The brace
        reaches the next storey, which refers to it."""
        profile = self.geometry.wide_flange(0.24, 0.23, 0.0075, 0.012, 'HEA 240')
        for x in plans.OFFICE_GRID_X:
            for y in plans.OFFICE_GRID_Y:
                self._column(storey, profile, x, y, height - _SLAB - 0.3)
        beam_profile = self.geometry.wide_flange(0.15, 0.3, 0.0071, 0.0107, 'IPE 300')
        for x, next_x in zip(plans.OFFICE_GRID_X, plans.OFFICE_GRID_X[1:]):
            for y in plans.OFFICE_GRID_Y:
                self._beam(storey, beam_profile, (x, y, height - _SLAB - 0.15), next_x - x)
        self._deck(storey, height - _SLAB)
        brace = self._brace(storey, height)
        if next_storey:
            self.model.add('IfcRelReferencedInSpatialStructure', RelatedElements=[brace],
                           RelatingStructure=next_storey.record)

    def _column(self, storey, profile, x, y, height):
        placement = self.geometry.placement(storey.placement, (x, y, 0.0))
        body = self.style(self.geometry.extrusion(profile, height), _STEEL)
        column = self.element('IfcColumn', 'Stütze HEA 240', placement,
                              self.shape([body], 'SweptSolid'), storey,
                              PredefinedType=Enum('COLUMN'))
        self.of_type(column, self.column_type)
        self._of_steel(column, 'HEA 240', profile)
        self.properties([column], 'Pset_ColumnCommon', {
            'Reference': label('HEA 240'), 'LoadBearing': flag(True), 'Auslastung': ratio(0.8125)})
        return column

    def _beam(self, storey, profile, start, length):
        """A beam along x: its profile stands upright across the placement's z axis."""
        position = self.geometry.axes(axis=self.geometry.direction(1.0, 0.0, 0.0),
                                      reference=self.geometry.direction(0.0, 1.0, 0.0))
        placement = self.geometry.placement(storey.placement, start)
        body = self.style(self.geometry.extrusion(profile, length, position), _STEEL)
        beam = self.element('IfcBeam', "Träger 'IPE 300'", placement,
                            self.shape([body], 'SweptSolid'), storey, PredefinedType=Enum('BEAM'))
        self.of_type(beam, self.beam_type)
        self._of_steel(beam, 'IPE 300', profile)
        self.quantities(beam, Length=length, GrossWeight=42.2 * length)
        return beam

    def _deck(self, storey, level):
        width, depth = plans.OFFICE_GRID_X[-1], plans.OFFICE_GRID_Y[-1]
        outline = solids.rectangle(-0.2, -0.2, width + 0.4, depth + 0.4)
        solid = solids.prism(outline, 0.0, _SLAB, solids.rectangle(0.6, 0.6, 1.1, 2.4))
        placement = self.geometry.placement(storey.placement, (0.0, 0.0, level))
        body = self.style(self.geometry.brep(solid), _CONCRETE)
        slab = self.element('IfcSlab', 'Decke C25/30', placement, self.shape([body], 'Brep'),
                            storey, PredefinedType=Enum('FLOOR'))
        self.of_material(slab, 'Beton C25/30')

    def _brace(self, storey, height):
        """A round brace in the first bay, leaning in the plane of the wall."""
        run, rise = plans.OFFICE_GRID_X[1], height - _SLAB
        length = math.hypot(run, rise)
        cosine, sine = round(run / length, 9), round(rise / length, 9)
        position = self.geometry.axes(axis=self.geometry.direction(cosine, 0.0, sine),
                                      reference=self.geometry.direction(-sine, 0.0, cosine))
        body = self.style(self.geometry.extrusion(self._tube(), round(length, 9), position), _STEEL)
        member = self.element('IfcMember', 'Verband', self.geometry.placement(storey.placement),
                              self.shape([body], 'SweptSolid'), storey,
                              PredefinedType=Enum('BRACE'))
        self.of_type(member, self.brace_type)
        self.of_material(member, 'Stahl S235')
        return member

    def _tube(self):
        return self.model.add('IfcRectangleHollowProfileDef', ProfileType=Enum('AREA'),
                              ProfileName='RRO 100×5', Position=self.geometry.flat_axes(),
                              XDim=self.geometry.length(0.1), YDim=self.geometry.length(0.1),
                              WallThickness=self.geometry.length(0.005))

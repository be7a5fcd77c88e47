"""Small models of every release with a grid on each storey and columns on the grids."""

import os
import sys

import program

sys.path.insert(0, os.path.join(program.ROOT, 'tools'))

# pylint: disable=wrong-import-position
from models.elements import Elements  # noqa: E402
from models.model import Model  # noqa: E402
from models.project import Facts, Project  # noqa: E402
from models.step_text import Header  # noqa: E402

_HEIGHT = 3.5
_SEED = 20261122


class Frame(Elements):
    """Columns that stand on a grid in each of the ways that a release has."""

    def __init__(self, release, length_unit):
        facts = Facts('Hall', 'Lot 7', 'Hall', [('Low', 0.0), ('High', _HEIGHT)], length_unit,
                      program=('Plan Drafter', '3.1'), site_turn=12.5,
                      site_location=(15.0, 7.25, 40.0), building_location=(4.0, 6.0, 0.5))
        super().__init__(Project(Model(release, _SEED), facts))
        body = self.geometry.extrusion(self.geometry.rectangle(0.4, 0.3), _HEIGHT)
        self.map = self.model.add(
            'IfcRepresentationMap', MappingOrigin=self.geometry.axes((0.0, 0.1, 0.0)),
            MappedRepresentation=self.representation([body], 'SweptSolid'))
        _, storeys = self.project.building(self.project.site())
        for storey in storeys:
            self.fill(storey)
        self.finish()

    def fill(self, storey):
        place = self.geometry.placement(storey.placement, (2.0, 1.0, 0.0), 30.0)
        rows = [self.axis(str(y), (-1.0, y), (20.0, y)) for y in (0.0, 5.5, 11.0)]
        columns = [self.axis(chr(ord('A') + place), (x, -1.0), (x, 12.0))
                   for place, x in enumerate((0.0, 6.0, 12.0))]
        columns[1].values[2] = False
        across = [self.axis('D', (0.0, 0.0), (11.0, 11.0))]
        storey.elements.append(self.model.add(
            'IfcGrid', Name='Axes', ObjectPlacement=place, UAxes=rows, VAxes=columns,
            WAxes=across))
        self.column(storey, 'plain', self.crossing(rows[0], columns[0]))
        self.column(storey, 'beside', self.crossing(rows[1], columns[1], 0.25, -0.5, 0.75))
        self.column(storey, 'turned', self.crossing(rows[1], columns[2]),
                    self.crossing(rows[2], across[0]))
        self.column(storey, 'told from what', self.crossing(rows[2], columns[2], 0.1, 0.2), None,
                    place)
        if self.model.release.startswith('IFC4'):
            self.column(storey, 'along', self.crossing(across[0], columns[1]),
                        self.geometry.direction(0.6, 0.8, 0.0))

    def axis(self, tag, first, last):
        return self.model.add('IfcGridAxis', AxisTag=tag, SameSense=True,
                              AxisCurve=self.geometry.polyline([first, last]))

    def crossing(self, *axes_and_offsets):
        first, other, *offsets = axes_and_offsets
        return self.model.add(
            'IfcVirtualGridIntersection', IntersectingAxes=[first, other],
            OffsetDistances=[self.geometry.length(offset) for offset in offsets or (0.0, 0.0)])

    def column(self, storey, name, location, toward=None, relative_to=None):
        """With a plate that is placed on the column."""
        placement = self.model.add(
            'IfcGridPlacement', PlacementLocation=location, PlacementRefDirection=toward,
            PlacementRelTo=relative_to)
        self.element('IfcColumn', name, placement, self.shape(
            [self.geometry.mapped(self.map, (0.0, 0.0, 0.05))], 'MappedRepresentation'), storey)
        plate = self.geometry.extrusion(self.geometry.rectangle(0.6, 0.6), 0.05)
        self.element('IfcBuildingElementProxy', 'plate of ' + name,
                     self.geometry.placement(placement, (0.1, 0.0, -0.05), 45.0),
                     self.shape([plate], 'SweptSolid'), storey,
                     CompositionType=None)


def frame_bytes(release, length_unit='METRE'):
    """`length_unit`: one of those of tools/models/project.py. In all of them it is one building."""
    model = Frame(release, length_unit).model
    return model.file_bytes(Header('frame.ifc', 'Plan Drafter 3.1', ('',), ('',)))

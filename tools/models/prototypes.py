"""The kinds of elements that a big model is made of, and how often each occurs.

The shares follow real exports: two thirds of the records are points, loops, bounds and faces of
boundary representations, a fifth are property sets, their properties and relations.
"""

from . import solids
from .architecture import Architecture, Plan, WallPlan
from .project import Place
from .step_text import Raw
from .structure import Structure

# Property sets of the kind that authoring programs attach to everything: the names repeat without
# end, the values partly. `name = value`, the value as it stands in the file but for its holes.
_PROGRAM_SETS = {
    'PSet_Program_Constraints': """
        Base Constraint = IFCLABEL('Level: {word}')
        Base Offset = IFCLENGTHMEASURE({real})
        Top is Attached = IFCBOOLEAN(.F.)
        Unconnected Height = IFCLENGTHMEASURE({real})
        Room Bounding = IFCBOOLEAN(.T.)""",
    'PSet_Program_Identity Data': """
        Mark = IFCTEXT('{tag}')
        Comments = IFCTEXT('{word}, {word}')
        Phase Created = IFCLABEL('Neubau')""",
    'PSet_Program_Dimensions': """
        Length = IFCLENGTHMEASURE({real})
        Area = IFCAREAMEASURE({real})
        Volume = IFCVOLUMEMEASURE({real})""",
    'Kosten': """
        Kostengruppe = IFCIDENTIFIER('{word}')
        Einheitspreis = IFCREAL({real})
        Menge = IFCREAL({real})
        Bemerkung = IFCTEXT('')""",
    'Pset_ManufacturerTypeInformation': """
        ArticleNumber = IFCIDENTIFIER('A-{tag}')
        Manufacturer = IFCLABEL('{word} AG')
        ModelLabel = IFCLABEL('{word}')""",
}

# What measuring programs add to every element.
_QUANTITIES = {name: 1.0 for name in (
    'NetHeight', 'NetWidth', 'Perimeter', 'GrossSurfaceArea', 'NetSurfaceArea', 'CrossSectionArea',
    'NetVolume', 'GrossWeight')}
_QUANTITY_VALUE = 3  # its place among the attributes of a quantity

_METAL, _WOOD = (0.6, 0.6, 0.6), (0.6, 0.4, 0.2)
_FRAME_KINDS = ('column', 'beam', 'footing', 'brace')


class _Gathering:
    """Keeps what relates elements to types and materials apart while a prototype is built."""

    links = None

    def relate(self, relation, key, related, **relating):
        if self.links is None:
            super().relate(relation, key, related, **relating)
        else:
            (attribute, record), = relating.items()
            self.links.append((relation, attribute, record.number, related))

    def next_tag(self):
        return super().next_tag() if self.links is None else '{tag}'

    def quantity(self, name, value):
        record = super().quantity(name, value)
        if self.links is not None and name != 'Count':
            record.values[_QUANTITY_VALUE] = Raw('{real}')
        return record

    def program_sets(self, element, names):
        """Sets that authoring programs attach. Only for elements with holes."""
        for name in names:
            pairs = (line.strip().split(' = ') for line in _PROGRAM_SETS[name].strip().split('\n'))
            self.properties([element], name, {key: Raw(value) for key, value in pairs})


class _Walls(_Gathering, Architecture):
    """The architect's prototypes: methods that build one into a place, or give such a function."""

    _ROOM = ('Raum', 0.2, 0.2, 4.7, 3.9)

    def straight(self, openings, inner=False):
        plan = WallPlan((2.0, 1.0), 9.0, 37.5, openings, inner)
        return lambda storey: self.wall(storey, plan, 3.2, 'Basic Wall:Typ:' + self.next_tag())

    def floor(self, storey):
        plan = Plan(18.0, 11.0, 3.6, [], [], [])
        return self.slab(storey, plan, 'Decke ' + self.next_tag())

    def room(self, storey):
        """A space with the wall that bounds it."""
        wall = self.straight([])(storey)
        space = self.space(storey, self._ROOM, 2.5)
        self.boundary(space, wall, self._ROOM)
        self.project.aggregate(storey.record, [space])
        return space

    def table(self, storey):
        return self.furnish(storey, ('Tisch ' + self.next_tag(), 3.0, 2.0, 15.0))

    def drum(self, corners, rings):
        """Round equipment of many faces."""
        return lambda storey: self._equip(storey, 'Gerät', [self.style(
            self.geometry.brep(solids.drum(0.6, 1.5, corners, rings)), _METAL)], 'Brep')

    def tessellated(self, storey):
        """The like as one triangulated set."""
        solid = solids.triangles(solids.drum(0.6, 1.5, 20, 10))
        return self._equip(storey, 'Armatur', [self.geometry.triangulated(solid)], 'Tessellation')

    def shelf(self, storey):
        """Boards as boxes of their own, each with all its points."""
        boards = [solids.box(-0.5, -0.2, 0.35 * index, 1.0, 0.4, 0.03) for index in range(5)]
        return self._equip(storey, 'Regal', [
            self.style(self.geometry.brep(board), _WOOD) for board in boards], 'Brep')

    def _equip(self, storey, name, bodies, kind):
        placement = self.geometry.placement(storey.placement, (3.0, 2.0, 0.5), 30.0)
        element = self.element('IfcBuildingElementProxy', '%s:%s' % (name, self.next_tag()),
                               placement, self.shape(bodies, kind), storey, ObjectType=name)
        self.of_material(element, 'Stahl verzinkt')
        return element


class _Frame(_Gathering, Structure):
    """The engineer's prototypes."""

    def column(self, storey):
        profile = self.geometry.wide_flange(0.24, 0.23, 0.0075, 0.012, 'HEA 240')
        return self._column(storey, profile, 6.0, 5.5, 3.0)

    def beam(self, storey):
        profile = self.geometry.wide_flange(0.15, 0.3, 0.0071, 0.0107, 'IPE 300')
        return self._beam(storey, profile, (6.0, 5.5, 3.0), 5.5)

    def footing(self, storey):
        return self._footing(storey, 6.0, 5.5)

    def brace(self, storey):
        return self._brace(storey, 3.6)


class Prototypes:
    """All kinds of elements, built by name into any storey."""

    def __init__(self, project):
        self._project = project
        self._walls = _Walls(project)
        self._frame = _Frame(project)
        self.kinds = self._kinds()

    def _kinds(self):
        """Name to (weight, builder). A builder takes a place and gives its main element."""
        kinds = {
            'wall': (8, self._walls.straight([], True)),
            'wall with window': (6, self._walls.straight([('window', 4.0)])),
            'wall with door': (4, self._walls.straight([('door', 4.0)], True)),
            'slab': (3, self._walls.floor),
            'room': (3, self._walls.room),
            'table': (8, self._walls.table),
            'shelf': (5, self._walls.shelf),
            'small drum': (6, self._walls.drum(8, 2)),
            'drum': (6, self._walls.drum(12, 4)),
            'large drum': (4, self._walls.drum(16, 10)),
            'column': (8, self._frame.column),
            'beam': (8, self._frame.beam),
            'footing': (4, self._frame.footing),
            'brace': (2, self._frame.brace),
        }
        if self._project.model.has('IfcTriangulatedFaceSet'):
            kinds['tessellated drum'] = (1, self._walls.tessellated)
        return kinds

    def build_all(self, storey):
        """One of each kind as ordinary elements. Whatever elements share (materials, styles,
        types) exists from then on."""
        for _, build in self.kinds.values():
            build(storey)
        self._walls.finish()
        self._frame.finish()

    def build(self, name, storey, storey_placement):
        """One element of a kind with holes: (records, elements of the storey, links)."""
        model = self._project.model
        first = len(model.records)
        links = self._walls.links = self._frame.links = []
        self._project.geometry.forget_shared()
        place = Place(storey, storey_placement, None, [])
        main = self.kinds[name][1](place)
        self._walls.program_sets(main, self._sets_for(name))
        self._walls.quantities(main, **_QUANTITIES)
        records = model.records[first:]
        del model.records[first:]
        return records, place.elements, links

    @staticmethod
    def _sets_for(name):
        """Which program sets an element of the kind gets: more the more it is edited by hand."""
        names = list(_PROGRAM_SETS)
        if name.startswith('wall'):
            return names
        return names[1:3] if name in _FRAME_KINDS else names[1:4]

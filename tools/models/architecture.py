"""The architect's model of a building: walls with openings, doors and windows, slabs and spaces."""

import math

from . import solids
from .elements import Elements, count, flag, label, ratio
from .step_text import Enum, Typed

_WHITE, _WOOD, _GLASS, _GREY = (0.95, 0.94, 0.9), (0.6, 0.4, 0.2), (0.7, 0.85, 0.9), (0.6, 0.6, 0.6)

_OUTER_LAYERS = [('Putz', 0.02), ('Dämmung', 0.12), ('Béton armé', 0.2), ('Gips', 0.015)]
_INNER_LAYERS = [('Gips', 0.0125), ('Ständerwerk', 0.1), ('Gips', 0.0125)]
_SLAB_LAYERS = [('Parkett', 0.02), ('Estrich', 0.06), ('Béton armé', 0.2)]


class WallPlan:
    """A wall from (x, y) over a length in a direction. Openings are (kind, metres from start)."""

    def __init__(self, start, length, degrees, openings=(), inner=False):
        self.start = start
        self.length = length
        self.degrees = degrees
        self.openings = openings
        self.inner = inner


class Plan:
    """A storey as drawn: outline width and depth, walls, rooms (name, x, y, width, depth) and
    furniture (name, x, y, degrees)."""

    def __init__(self, width, depth, height, walls, rooms, furniture):
        self.width = width
        self.depth = depth
        self.height = height
        self.walls = walls
        self.rooms = rooms
        self.furniture = furniture


class Architecture(Elements):
    """Builds storeys from a plan."""

    def __init__(self, project):
        super().__init__(project)
        self.wall_type = self._element_type('IfcWallType', 'Aussenwand 355')
        self.slab_type = self._element_type('IfcSlabType', 'Decke 280', 'FLOOR')
        self.door_type, self.door_map = self._door_type()
        self.table_map = self.representation_map(
            [self.style(self.geometry.brep(self._table()), _WOOD)], 'Brep')
        self.table_type = self._table_type()

    # Types.

    def _element_type(self, entity, name, kind='STANDARD'):
        if not self.model.has(entity):
            return None
        common = self.property_set('Pset_%sCommon' % entity[3:], {
            'Reference': label(name), 'LoadBearing': flag(True)})
        return self.model.add(entity, Name=name, HasPropertySets=[common],
                              PredefinedType=Enum(kind), ElementType='Système : ' + name)

    @staticmethod
    def _door_parts():
        """Frame and leaf of a door that is 0.9 wide and 2.1 high; its middle is the origin."""
        frame = [(-0.45, 0.0), (-0.4, 0.0), (-0.4, 2.05), (0.4, 2.05), (0.4, 0.0), (0.45, 0.0),
                 (0.45, 2.1), (-0.45, 2.1)]
        return (solids.upright(solids.prism(frame, -0.05, 0.05)),
                solids.box(-0.4, -0.02, 0.01, 0.8, 0.04, 2.03))

    def _door_type(self):
        """A door type with its shape: a style in the older releases, a type in the later ones."""
        items = [self.style(self.geometry.brep(part), _WOOD) for part in self._door_parts()]
        shape = self.representation_map(items, 'Brep')
        parts = self._door_type_parts()
        shared = {'Name': "Porte d'entrée 90\\210", 'RepresentationMaps': [shape],
                  'HasPropertySets': parts, 'OperationType': Enum('SINGLE_SWING_LEFT'),
                  'ParameterTakesPrecedence': False}
        if self.model.has('IfcDoorType'):
            return self.model.add('IfcDoorType', PredefinedType=Enum('DOOR'), **shared), shape
        return self.model.add('IfcDoorStyle', ConstructionType=Enum('WOOD'), Sizeable=False,
                              **shared), shape

    def _door_type_parts(self):
        """Lining and panel, which only door types may have."""
        length = self.geometry.length
        return [self.model.add('IfcDoorLiningProperties', LiningDepth=length(0.1),
                               LiningThickness=length(0.05)),
                self.model.add('IfcDoorPanelProperties', PanelDepth=length(0.04), PanelWidth=0.9,
                               PanelOperation=Enum('SWINGING'), PanelPosition=Enum('LEFT'))]

    @staticmethod
    def _table():
        return solids.box(-0.6, -0.4, 0.0, 1.2, 0.8, 0.74)

    def _table_type(self):
        if not self.model.has('IfcFurnitureType'):
            return None
        return self.model.add(
            'IfcFurnitureType', Name='テーブル 120×80', PredefinedType=Enum('TABLE'),
            AssemblyPlace=Enum('SITE'), RepresentationMaps=[self.table_map])

    # Walls.

    def wall(self, storey, plan, height, name):
        """A wall along its own x axis: swept body, axis line, layers, properties, openings."""
        layers = _INNER_LAYERS if plan.inner else _OUTER_LAYERS
        thickness = sum(metres for _, metres in layers)
        geometry = self.geometry
        placement = geometry.placement(storey.placement, plan.start + (0.0,), plan.degrees)
        profile = geometry.rectangle(plan.length, thickness, plan.length / 2)
        body = self.style(geometry.extrusion(profile, height), _WHITE)
        shape = self.model.add('IfcProductDefinitionShape', Representations=[
            self.representation([geometry.polyline([(0.0, 0.0), (plan.length, 0.0)])], 'Curve2D',
                                'Axis'),
            self.representation([body], 'SweptSolid')])
        entity = 'IfcWall' if plan.inner else 'IfcWallStandardCase'
        wall = self.element(entity, name, placement, shape, storey,
                            ObjectType='Trennwand' if plan.inner else 'Aussenwand',
                            PredefinedType=Enum('STANDARD'))
        self.of_layers(wall, 'Trennwand 125' if plan.inner else 'Aussenwand 355', layers)
        self.of_type(wall, None if plan.inner else self.wall_type)
        self._wall_properties(wall, plan, height, thickness)
        for kind, offset in plan.openings:
            self._opening(storey, wall, placement, thickness, kind, offset)
        return wall

    def _wall_properties(self, wall, plan, height, thickness):
        self.properties([wall], 'Pset_WallCommon', {
            'Reference': label('AW-355' if not plan.inner else 'IW-125'),
            'IsExternal': flag(not plan.inner), 'LoadBearing': flag(not plan.inner),
            'FireRating': label('REI 60'), 'ThermalTransmittance': Typed(
                'IfcThermalTransmittanceMeasure', 0.213456789012345)})
        area = plan.length * height
        self.quantities(wall, Length=plan.length, Width=thickness, Height=height,
                        GrossSideArea=area, GrossVolume=area * thickness)

    def _opening(self, storey, wall, wall_placement, thickness, kind, offset):
        """An opening in the wall and what fills it, each placed relative to the other."""
        geometry = self.geometry
        width, height, sill = (0.9, 2.1, 0.0) if kind == 'door' else (1.2, 1.4, 0.85)
        placement = geometry.placement(wall_placement, (offset, 0.0, sill))
        body = geometry.extrusion(geometry.rectangle(width, thickness + 0.1), height)
        opening = self.element('IfcOpeningElement', 'Öffnung', placement,
                               self.shape([body], 'SweptSolid'), PredefinedType=Enum('OPENING'))
        self.model.add('IfcRelVoidsElement', RelatingBuildingElement=wall,
                       RelatedOpeningElement=opening)
        filling_placement = geometry.placement(placement)
        filling = (self._door if kind == 'door' else self._window)(
            storey, filling_placement, width, height)
        self.model.add('IfcRelFillsElement', RelatingOpeningElement=opening,
                       RelatedBuildingElement=filling)

    def _door(self, storey, placement, width, height):
        swing = self.geometry.arc(-width / 2, width, 0.0, 90.0)
        shape = self.model.add('IfcProductDefinitionShape', Representations=[
            self.representation([swing], 'Curve2D', 'Axis'),
            self.representation([self.geometry.mapped(self.door_map)], 'MappedRepresentation')])
        door = self.element('IfcDoor', 'Tür ' + self.next_tag(), placement, shape, storey,
                            OverallHeight=self.geometry.length(height),
                            OverallWidth=self.geometry.length(width), PredefinedType=Enum('DOOR'),
                            OperationType=Enum('SINGLE_SWING_LEFT'))
        self.of_type(door, self.door_type)
        self.of_material(door, 'Chêne')
        self.properties([door], 'Pset_DoorCommon', {
            'FireRating': label('EI 30'), 'IsExternal': flag(False),
            'SecurityRating': label('RC 2')})
        return door

    def _window(self, storey, placement, width, height):
        frame = solids.upright(solids.prism(
            solids.rectangle(-width / 2, 0.0, width, height), -0.04, 0.04,
            solids.rectangle(-width / 2 + 0.06, 0.06, width - 0.12, height - 0.12)))
        pane = solids.box(-width / 2 + 0.06, -0.012, 0.06, width - 0.12, 0.024, height - 0.12)
        shape = self.shape([self.style(self.geometry.brep(frame), _GREY),
                            self.style(self.geometry.brep(pane), _GLASS, 0.7)], 'Brep')
        window = self.element('IfcWindow', 'Fenêtre ' + self.next_tag(), placement, shape, storey,
                              OverallHeight=self.geometry.length(height),
                              OverallWidth=self.geometry.length(width),
                              PredefinedType=Enum('WINDOW'),
                              PartitioningType=Enum('SINGLE_PANEL'))
        self.made_of(window, self.once('window parts', self._window_materials))
        self.properties([window], 'Pset_WindowCommon', {
            'GlazingAreaFraction': Typed('IfcPositiveRatioMeasure', 0.78),
            'IsExternal': flag(True)})
        self.quantities(window, Area=width * height, Count=1)
        return window

    def _window_materials(self):
        """Frame and pane: a list in the older releases, named constituents in the later ones."""
        materials = {'Rahmen': self.material('Aluminium'), 'Glas': self.material('Verre trempé')}
        if not self.model.has('IfcMaterialConstituentSet'):
            return self.model.add('IfcMaterialList', Materials=list(materials.values()))
        parts = [self.model.add('IfcMaterialConstituent', Name=part, Material=material)
                 for part, material in materials.items()]
        return self.model.add('IfcMaterialConstituentSet', Name='Fenster',
                              MaterialConstituents=parts)

    # Slabs, spaces, furniture.

    def slab(self, storey, plan, name, level=0.0, kind='FLOOR'):
        """A slab under the storey (its top at the level), with a stair hole in all but roofs."""
        hole = None if kind == 'ROOF' else solids.rectangle(0.6, 0.6, 1.1, 2.4)
        thickness = sum(metres for _, metres in _SLAB_LAYERS)
        placement = self.geometry.placement(storey.placement, (0.0, 0.0, level - thickness))
        outline = solids.rectangle(-0.18, -0.18, plan.width + 0.36, plan.depth + 0.36)
        body = self.geometry.extrusion(self.geometry.area(outline, name, hole), thickness)
        slab = self.element('IfcSlab', name, placement,
                            self.shape([self.style(body, _GREY)], 'SweptSolid'), storey,
                            PredefinedType=Enum(kind))
        self.of_layers(slab, 'Decke 280', _SLAB_LAYERS, 'AXIS3')
        self.of_type(slab, None if kind == 'ROOF' else self.slab_type)
        area = (plan.width + 0.36) * (plan.depth + 0.36)
        self.quantities(slab, Depth=thickness, GrossArea=area, GrossVolume=area * thickness)
        self.properties([slab], 'Pset_SlabCommon', {
            'LoadBearing': flag(True), 'PitchAngle': Typed('IfcPlaneAngleMeasure', 0.0),
            'AcousticRating': label("R'w = 53 dB")})
        return slab

    def roof(self, storey, plan):
        """A roof made of one slab."""
        slab = self.slab(storey, plan, 'Dach', plan.height, 'ROOF')
        storey.elements.remove(slab)  # it is there as a part of the roof
        roof = self.element('IfcRoof', 'Toit', self.geometry.placement(storey.placement), None,
                            storey, ShapeType=Enum('FLAT_ROOF'), PredefinedType=Enum('FLAT_ROOF'))
        self.project.aggregate(roof, [slab])

    def stair(self, storey, height):
        """A straight flight through the hole of the slab above: steps drawn from the side."""
        steps = 6
        rise, run = height / steps, 2.4 / steps
        outline = [(2.4, 0.0), (2.4, height)]
        for index in range(steps - 1, -1, -1):
            outline += [(index * run, (index + 1) * rise), (index * run, index * rise)]
        solid = solids.upright(solids.prism(outline, -1.0, 0.0))
        placement = self.geometry.placement(storey.placement, (1.65, 0.6, 0.0), 90.0)
        body = self.style(self.geometry.brep(solid), _GREY)
        stair = self.element('IfcStair', 'Treppe 6 Stg.', placement, self.shape([body], 'Brep'),
                             storey, ShapeType=Enum('STRAIGHT_RUN_STAIR'),
                             PredefinedType=Enum('STRAIGHT_RUN_STAIR'))
        self.of_material(stair, 'Béton armé')

    def flooring(self, storey, room):
        """The floor of a room."""
        name, x, y, width, depth = room
        placement = self.geometry.placement(storey.placement, (x, y, 0.0))
        body = self.geometry.extrusion(
            self.geometry.rectangle(width, depth, width / 2, depth / 2), 0.015)
        covering = self.element('IfcCovering', 'Boden ' + name, placement,
                                self.shape([self.style(body, _WOOD)], 'SweptSolid'), storey,
                                PredefinedType=Enum('FLOORING'))
        self.of_material(covering, 'Parkett')
        return body

    def space(self, storey, room, height):
        """A room: part of the storey, not contained in it."""
        name, x, y, width, depth = room
        placement = self.geometry.placement(storey.placement, (x, y, 0.0))
        body = self.geometry.extrusion(
            self.geometry.rectangle(width, depth, width / 2, depth / 2), height)
        space = self.model.add(
            'IfcSpace', Name=self.next_tag(), LongName=name, ObjectPlacement=placement,
            Representation=self.shape([body], 'SweptSolid'), CompositionType=Enum('ELEMENT'),
            InteriorOrExteriorSpace=Enum('INTERNAL'), PredefinedType=Enum('INTERNAL'))
        self.properties([space], 'Pset_SpaceCommon', {
            'Category': label('🏠 Wohnen'), 'PubliclyAccessible': flag(False)})
        self.quantities(space, NetFloorArea=width * depth, NetVolume=width * depth * height)
        return space

    def boundary(self, space, wall, room):
        """Where the wall bounds the room, as a face of the room's own coordinates."""
        surface = None
        if self.model.release != 'IFC2X_FINAL':  # there the outline is a class of its own
            plane = self.model.add('IfcPlane', Position=self.geometry.axes(
                axis=self.geometry.direction(0.0, -1.0, 0.0),
                reference=self.geometry.direction(1.0, 0.0, 0.0)))
            face = self.model.add(
                'IfcCurveBoundedPlane', BasisSurface=plane, InnerBoundaries=[],
                OuterBoundary=self.geometry.polyline(
                    solids.rectangle(0.0, 0.0, room[3], 2.5), closed=True))
            surface = self.model.add('IfcConnectionSurfaceGeometry', SurfaceOnRelatingElement=face)
        self.model.add('IfcRelSpaceBoundary', Name='1stLevel', RelatingSpace=space,
                       RelatedBuildingElement=wall, ConnectionGeometry=surface,
                       PhysicalOrVirtualBoundary=Enum('PHYSICAL'),
                       InternalOrExternalBoundary=Enum('EXTERNAL'))

    def furnish(self, storey, piece):
        """A table by its type's shape, or a lamp with a shape of its own."""
        name, x, y, degrees = piece
        placement = self.geometry.placement(storey.placement, (x, y, 0.0), degrees)
        if name.startswith('Tisch'):
            shape = self.shape([self.geometry.mapped(self.table_map)], 'MappedRepresentation')
            record = self.element('IfcFurnishingElement', name, placement, shape, storey)
            self.of_type(record, self.table_type)
        else:
            body = self.style(self._lamp(), _WHITE)
            record = self.element('IfcBuildingElementProxy', name, placement,
                                  self.shape([body], 'Tessellation' if self._tessellates
                                             else 'Brep'), storey,
                                  CompositionType=Enum('ELEMENT'), PredefinedType=Enum('ELEMENT'))
        self._maker_properties(record, name)
        return record

    @property
    def _tessellates(self):
        return self.model.has('IfcTriangulatedFaceSet')

    def _lamp(self):
        solid = solids.drum(0.15, 0.5, 6, 2)
        if self._tessellates:
            return self.geometry.triangulated(solids.triangles(solid))
        return self.geometry.brep(solid)

    def _maker_properties(self, record, name):
        """One property of each kind, as a manufacturer's catalogue has them."""
        self.properties([record], 'Hersteller', {
            'Artikel': label('M%s/%s' % (self.next_tag(), name)), 'Gewicht kg': ratio(12.5),
            'Stück': count(1), 'Pfad': label('C:\\Möbel\\' + name),
            'Zustand': self.chosen('Zustand', ['neu', 'gebraucht', "d'époque"], 'neu'),
            'Höhe': self.between('Höhe', 0.68, 0.76),
            'Farben': self.several('Farben', ['Weiß', 'Blé', 'Noir']),
            'Lieferung': self.nested('Lieferung', {'Woche': count(23), 'Ort': label('Genève')})})

    def storey(self, storey, plan):
        """All of a storey; gives its outer walls and spaces."""
        self.slab(storey, plan, 'Bodenplatte')
        walls = [self.wall(storey, wall, plan.height - 0.28, self._wall_name(storey, wall))
                 for wall in plan.walls]
        for before, after in zip(walls, walls[1:4]):
            self.model.add('IfcRelConnectsPathElements', RelatingElement=before,
                           RelatedElement=after, RelatingPriorities=[], RelatedPriorities=[],
                           RelatedConnectionType=Enum('ATSTART'),
                           RelatingConnectionType=Enum('ATEND'))
        spaces = [self.space(storey, room, 2.5) for room in plan.rooms]
        self.project.aggregate(storey.record, spaces)
        for space, room in zip(spaces, plan.rooms):
            self.boundary(space, walls[0], room)
        self.layer('A-FLOR', [self.flooring(storey, room) for room in plan.rooms])
        for piece in plan.furniture:
            self.furnish(storey, piece)
        return walls, spaces

    def _wall_name(self, storey, plan):
        kind = "Mur d'intérieur" if plan.inner else 'Außenwand "Süd"'
        return '%s %s:%s' % (storey.record.values[2], kind, self.next_tag())

    def zone(self, name, spaces):
        zone = self.model.add('IfcZone', Name=name)
        self.model.add('IfcRelAssignsToGroup', Name=name, RelatedObjects=spaces, RelatingGroup=zone)

    def gable_wall(self, storey, plan):
        """A wall cut by the slope of the roof."""
        rise = math.ceil(plan.depth / 4)
        placement = self.geometry.placement(storey.placement, (0.0, 0.0, plan.height))
        profile = self.geometry.rectangle(plan.width, 0.2, plan.width / 2)
        body = self.geometry.clipped(self.geometry.extrusion(profile, rise), 0.4, 5.0)
        wall = self.element('IfcWall', 'Giebel', placement, self.shape([body], 'Clipping'), storey)
        self.of_material(wall, 'Béton armé')
        return wall

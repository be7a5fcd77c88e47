"""The frame of a model: who made it, its units and contexts, and the spatial tree."""

from .geometry import Geometry
from .step_text import DERIVED, Enum, Typed

# Length unit to units per metre.
LENGTH_UNITS = {'METRE': 1.0, 'MILLIMETRE': 1000.0, 'FOOT': 1.0 / 0.3048}

_EARLY = ('IFC2X_FINAL', 'IFC2X2_PLATFORM', 'IFC2X2_FINAL', 'IFC2X3')


class Facts:
    """What a project is called and where it stands. Storeys are (name, elevation in metres)."""

    def __init__(self, name, site, building, storeys, length_unit='METRE', person=('', ''),
                 company='', program=('', ''), site_turn=0.0, site_location=(0.0, 0.0, 0.0),
                 building_location=(0.0, 0.0, 0.0)):
        self.name = name
        self.site = site
        self.building = building
        self.storeys = storeys
        self.length_unit = length_unit
        self.person = person
        self.company = company
        self.program = program
        self.site_turn = site_turn
        self.site_location = site_location
        self.building_location = building_location


class Place:
    """A spatial object with its placement and the growing list of the elements in it."""

    def __init__(self, record, placement, relation, elements):
        self.record = record
        self.placement = placement
        self.relation = relation
        self.elements = elements


class Project:
    """An empty model with its frame. `body` and `axis` are the contexts for shapes."""

    def __init__(self, model, facts, geometry_class=Geometry):
        self.model = model
        self.facts = facts
        self.early = model.release in _EARLY
        self.geometry = geometry_class(model, LENGTH_UNITS[facts.length_unit])
        self.model.owner_history = self._owner_history()
        units = self._units()
        self.root_axes = self.geometry.axes()
        self.contexts, self.body, self.axis = self._contexts()
        self.record = self.model.add(
            'IfcProject', Name=facts.name, LongName=facts.name, Phase='Execution',
            RepresentationContexts=self.contexts, UnitsInContext=units)
        self._places = []

    def _owner_history(self):
        add, facts = self.model.add, self.facts
        address = add('IfcPostalAddress', Purpose=Enum('OFFICE'), Town='Genève', PostalCode='1219',
                      AddressLines=["Rue de l'Étang 7"], Country='Schweiz')
        person = add('IfcPerson', FamilyName=facts.person[0], GivenName=facts.person[1])
        company = add('IfcOrganization', Name=facts.company, Addresses=[address])
        user = add('IfcPersonAndOrganization', ThePerson=person, TheOrganization=company)
        maker = add('IfcOrganization', Name='Corvel', Description='Sample models')
        name, version = facts.program
        program = add('IfcApplication', ApplicationDeveloper=maker, Version=version,
                      ApplicationFullName=name, ApplicationIdentifier=name.replace(' ', ''))
        return add('IfcOwnerHistory', OwningUser=user, OwningApplication=program,
                   State=Enum('READWRITE'), ChangeAction=Enum('ADDED'),
                   LastModifiedDate=1714557600, CreationDate=1714550400)

    def _units(self):
        units = self._length_units()
        units += [self._si('PLANEANGLEUNIT', 'RADIAN'), self._si('TIMEUNIT', 'SECOND'),
                  self._si('MASSUNIT', 'GRAM', 'KILO'),
                  self._si('THERMODYNAMICTEMPERATUREUNIT', 'DEGREE_CELSIUS')]
        exponents = self._dimensions(0)
        units[3] = self._converted('PLANEANGLEUNIT', 'DEGREE', exponents, units[3],
                                   Typed('IfcPlaneAngleMeasure', 0.0174532925199433))
        units.append(self._transmittance())
        units.append(self.model.add(
            'IfcMonetaryUnit', Currency=Enum('EUR') if self.early else 'EUR'))
        return self.model.add('IfcUnitAssignment', Units=units)

    def _length_units(self):
        """Length, area and volume. In feet, all three are conversions of the metric units."""
        prefix = 'MILLI' if self.facts.length_unit == 'MILLIMETRE' else None
        units = [self._si('LENGTHUNIT', 'METRE', prefix), self._si('AREAUNIT', 'SQUARE_METRE'),
                 self._si('VOLUMEUNIT', 'CUBIC_METRE')]
        if self.facts.length_unit != 'FOOT':
            return units
        conversions = (('LENGTHUNIT', 'FOOT', 'IfcLengthMeasure', 0.3048),
                       ('AREAUNIT', 'SQUARE FOOT', 'IfcAreaMeasure', 0.09290304),
                       ('VOLUMEUNIT', 'CUBIC FOOT', 'IfcVolumeMeasure', 0.028316846592))
        return [self._converted(kind, name, self._dimensions(power + 1), unit,
                                Typed(measure, factor))
                for power, ((kind, name, measure, factor), unit)
                in enumerate(zip(conversions, units))]

    def _si(self, kind, name, prefix=None):
        return self.model.add('IfcSIUnit', Dimensions=DERIVED, UnitType=Enum(kind),
                              Prefix=Enum(prefix) if prefix else None, Name=Enum(name))

    def _dimensions(self, length_exponent):
        return self.model.add(
            'IfcDimensionalExponents', LengthExponent=length_exponent, MassExponent=0,
            TimeExponent=0, ElectricCurrentExponent=0, ThermodynamicTemperatureExponent=0,
            AmountOfSubstanceExponent=0, LuminousIntensityExponent=0)

    def _converted(self, kind, name, dimensions, unit, factor):
        measure = self.model.add('IfcMeasureWithUnit', ValueComponent=factor, UnitComponent=unit)
        return self.model.add('IfcConversionBasedUnit', Dimensions=dimensions, UnitType=Enum(kind),
                              Name=name, ConversionFactor=measure)

    def _transmittance(self):
        """Watts per square metre and kelvin."""
        parts = [('MASSUNIT', 'GRAM', 'KILO', 1), ('TIMEUNIT', 'SECOND', None, -3),
                 ('THERMODYNAMICTEMPERATUREUNIT', 'KELVIN', None, -1)]
        elements = [self.model.add('IfcDerivedUnitElement', Unit=self._si(kind, name, prefix),
                                   Exponent=exponent) for kind, name, prefix, exponent in parts]
        return self.model.add('IfcDerivedUnit', Elements=elements, Name='U value',
                              UnitType=Enum('THERMALTRANSMITTANCEUNIT'))

    def _contexts(self):
        """The model context and, where the release has them, its parts for bodies and axes."""
        context = self.model.add(
            'IfcGeometricRepresentationContext', ContextIdentifier='3D', ContextType='Model',
            CoordinateSpaceDimension=3, Precision=1e-05, WorldCoordinateSystem=self.root_axes,
            TrueNorth=self.geometry.direction(0.0, 1.0))
        if not self.model.has('IfcGeometricRepresentationSubContext'):
            return [context], context, context
        body, axis = (self._part_of(context, name, view)
                      for name, view in (('Body', 'MODEL_VIEW'), ('Axis', 'GRAPH_VIEW')))
        return [context], body, axis

    def _part_of(self, context, name, view):
        return self.model.add(
            'IfcGeometricRepresentationSubContext', ContextIdentifier=name, ContextType='Model',
            CoordinateSpaceDimension=DERIVED, Precision=DERIVED, WorldCoordinateSystem=DERIVED,
            TrueNorth=DERIVED, ParentContext=context, TargetView=Enum(view))

    def place(self, entity, parent, location=(0.0, 0.0, 0.0), degrees=0.0, **attributes):
        """A spatial object. The relation that lists its elements comes right behind it, before
        any of them: exporters do so, and its references to them point forward."""
        placement = self.geometry.placement(parent.placement if parent else None, location, degrees)
        record = self.model.add(entity, ObjectPlacement=placement,
                                CompositionType=Enum('ELEMENT'), **attributes)
        elements = []
        relation = self.model.add('IfcRelContainedInSpatialStructure', RelatedElements=elements,
                                  RelatingStructure=record)
        place = Place(record, placement, relation, elements)
        self._places.append(place)
        return place

    def aggregate(self, whole, parts):
        return self.model.add('IfcRelAggregates', RelatingObject=whole, RelatedObjects=parts)

    def site(self):
        """The site, part of the project."""
        facts = self.facts
        site = self.place(
            'IfcSite', None, facts.site_location, facts.site_turn, Name=facts.site,
            LongName='Parzelle Nº 1219', RefLatitude=self._angle(46, 12, 3, 500000),
            RefLongitude=self._angle(6, 8, 52, 250000),
            RefElevation=self.geometry.length(facts.site_location[2]))
        self.aggregate(self.record, [site.record])
        return site

    def _angle(self, *parts):
        """Degrees, minutes, seconds, millionths; the oldest releases have no millionths."""
        exact = self.model.release not in ('IFC2X_FINAL', 'IFC2X2_PLATFORM', 'IFC2X2_FINAL')
        return list(parts if exact else parts[:3])

    def building(self, site):
        """The building on the site and its storeys, from the lowest."""
        facts = self.facts
        building = self.place('IfcBuilding', site, facts.building_location, Name=facts.building,
                              ElevationOfRefHeight=self.geometry.length(0.0))
        self.aggregate(site.record, [building.record])
        storeys = [self.place('IfcBuildingStorey', building, (0.0, 0.0, elevation), Name=name,
                              Elevation=self.geometry.length(elevation))
                   for name, elevation in facts.storeys]
        self.aggregate(building.record, [storey.record for storey in storeys])
        return building, storeys

    def drop_empty_relations(self):
        """Takes out the relations of places that got no elements. Call it when all is placed;
        places that are looked at once are done with."""
        for place in self._places:
            if not place.elements:
                self.model.records.remove(place.relation)
        self._places.clear()

"""Elements with what hangs on them: shapes, styles, property sets, quantities, types, materials."""

from .model import Record
from .step_text import Enum, Typed


def label(value):
    return Typed('IfcLabel', value)


def flag(value):
    return Typed('IfcBoolean', value)


def ratio(value):
    return Typed('IfcReal', float(value))


def count(value):
    return Typed('IfcInteger', value)


class Elements:
    """Builds elements in the model of a project. Relations to types and materials are gathered
    and written by `finish`, one for each type or material."""

    def __init__(self, project):
        self.project = project
        self.model = project.model
        self.geometry = project.geometry
        self._shared = {}
        self._relations = {}
        self._tag = 138584

    def once(self, key, make, *arguments):
        """What `make` gives, made at the first call with the key and shared from then on."""
        if key not in self._shared:
            self._shared[key] = make(*arguments)
        return self._shared[key]

    # Shapes.

    def shape(self, items, kind, identifier='Body', name=None):
        """A product's shape of one representation."""
        return self.model.add('IfcProductDefinitionShape', Name=name, Representations=[
            self.representation(items, kind, identifier)])

    def representation(self, items, kind, identifier='Body'):
        context = self.project.axis if identifier == 'Axis' else self.project.body
        return self.model.add('IfcShapeRepresentation', ContextOfItems=context,
                              RepresentationIdentifier=identifier, RepresentationType=kind,
                              Items=items)

    def representation_map(self, items, kind):
        return self.model.add('IfcRepresentationMap', MappingOrigin=self.geometry.axes(),
                              MappedRepresentation=self.representation(items, kind))

    def style(self, item, colour, transparency=0.0):
        """Colours an item, where the release has styles for items. Equal styles are shared."""
        if self.model.has('IfcStyledItem'):
            style = self.once(('style', colour, transparency), self._new_style, colour,
                              transparency)
            self.model.add('IfcStyledItem', Item=item, Styles=[style])
        return item

    def _new_style(self, colour, transparency):
        add = self.model.add
        red, green, blue = colour
        surface = add('IfcSurfaceStyleRendering', Transparency=transparency,
                      SurfaceColour=add('IfcColourRgb', Red=red, Green=green, Blue=blue),
                      SpecularHighlight=Typed('IfcSpecularExponent', 64.0),
                      ReflectanceMethod=Enum('NOTDEFINED'))
        name = 'Oberfläche %02X%02X%02X' % tuple(int(part * 255) for part in colour)
        style = add('IfcSurfaceStyle', Name=name, Side=Enum('BOTH'), Styles=[surface])
        if self.model.has('IfcPresentationStyleAssignment'):
            return add('IfcPresentationStyleAssignment', Styles=[style])
        return style

    # Elements.

    def layer(self, name, items):
        """Puts items on a drawing layer, where the release has them."""
        if self.model.has('IfcPresentationLayerAssignment'):
            self.model.add('IfcPresentationLayerAssignment', Name=name, AssignedItems=items)

    def next_tag(self):
        self._tag += 37
        return str(self._tag)

    def element(self, entity, name, placement, shape, place=None, **attributes):
        """An element with a tag of its own, in a place of the spatial tree if one is given."""
        record = self.model.add(entity, Name=name, ObjectPlacement=placement,
                                Representation=shape, Tag=self.next_tag(), **attributes)
        if place:
            place.elements.append(record)
        return record

    def relate(self, relation, key, related, **relating):
        """Adds an object to the relation that all objects with the same key share."""
        entry = self._relations.setdefault((relation, key), (relating, []))
        entry[1].append(related)

    def finish(self):
        """Writes the gathered relations. Call it once, when all elements are there."""
        for (relation, _), (relating, related) in self._relations.items():
            self.model.add(relation, RelatedObjects=related, **relating)
        self.project.drop_empty_relations()

    def of_type(self, element, type_record):
        """Makes the type the element's. No type (the release lacks it): nothing happens."""
        if type_record:
            self.relate('IfcRelDefinesByType', type_record, element, RelatingType=type_record)

    # Properties.

    def property_set(self, name, values):
        """A set of single values, given as {name: typed value}. A value that is a record already
        is a property of another kind."""
        properties = [
            value if isinstance(value, Record)
            else self.model.add('IfcPropertySingleValue', Name=key, NominalValue=value)
            for key, value in values.items()]
        return self.model.add_whole('IfcPropertySet', properties[0], Name=name,
                                    HasProperties=properties)

    def chosen(self, name, options, choice):
        """A property whose value is one of an enumeration of labels."""
        enumeration = self.model.add('IfcPropertyEnumeration', Name=name,
                                     EnumerationValues=[label(option) for option in options])
        return self.model.add('IfcPropertyEnumeratedValue', Name=name,
                              EnumerationValues=[label(choice)],
                              EnumerationReference=enumeration)

    def between(self, name, low, high):
        """A property that gives two bounds."""
        return self.model.add('IfcPropertyBoundedValue', Name=name, UpperBoundValue=ratio(high),
                              LowerBoundValue=ratio(low), SetPointValue=ratio((low + high) / 2))

    def several(self, name, values):
        """A property with a list of labels; a complex one where the release has no lists."""
        if self.model.has('IfcPropertyListValue'):
            return self.model.add('IfcPropertyListValue', Name=name,
                                  ListValues=[label(value) for value in values])
        parts = [self.model.add('IfcPropertySingleValue', Name='%d' % index,
                                NominalValue=label(value)) for index, value in enumerate(values)]
        return self.model.add('IfcComplexProperty', Name=name, UsageName='List',
                              HasProperties=parts)

    def nested(self, name, values):
        """A property made of single values."""
        parts = [self.model.add('IfcPropertySingleValue', Name=key, NominalValue=value)
                 for key, value in values.items()]
        return self.model.add_whole('IfcComplexProperty', parts[0], Name=name, UsageName=name,
                                    HasProperties=parts)

    def properties(self, elements, name, values):
        """Gives the elements one more property set."""
        return self.define(elements, self.property_set(name, values))

    def define(self, elements, definition):
        return self.model.add('IfcRelDefinesByProperties', RelatedObjects=elements,
                              RelatingPropertyDefinition=definition)

    def quantities(self, element, **values):
        """Base quantities of an element, by name: GrossArea is an area, NetVolume a volume, and
        what names none of the other kinds is a length. All are given in metres and its powers."""
        self.define([element], self.model.add(
            'IfcElementQuantity', Name='BaseQuantities', MethodOfMeasurement='Corvel rules',
            Quantities=[self.quantity(name, value) for name, value in values.items()]))

    def quantity(self, name, value):
        """One quantity of the kind that its name tells."""
        kind, power = 'Length', 1
        for word, word_power in (('Area', 2), ('Volume', 3), ('Weight', 0), ('Count', 0)):
            if word in name:
                kind, power = word, word_power
        if self.project.facts.length_unit == 'MILLIMETRE' and power > 1:
            power = 0  # such models state areas and volumes in metres
        for _ in range(power):
            value *= self.geometry.units_per_metre
        value = value if kind == 'Count' else float(value)
        return self.model.add('IfcQuantity' + kind, Name=name, **{kind + 'Value': value})

    # Materials.

    def material(self, name):
        return self.once(('material', name),
                         lambda: self.model.add('IfcMaterial', Name=name))

    def made_of(self, element, material):
        """Relates the element to a material, or to a record that tells of several."""
        self.relate('IfcRelAssociatesMaterial', material, element, RelatingMaterial=material)

    def of_material(self, element, name):
        self.made_of(element, self.material(name))

    def of_layers(self, element, name, thicknesses, across='AXIS2'):
        """Layers are (material, metres); the usage of a layer set is made once for each name."""
        usage = self.once(('layers', name), self._new_layers, name, thicknesses, across)
        self.made_of(element, usage)

    def _new_layers(self, name, thicknesses, across):
        layers = [self.model.add('IfcMaterialLayer', Material=self.material(material),
                                 LayerThickness=self.geometry.length(thickness))
                  for material, thickness in thicknesses]
        layer_set = self.model.add('IfcMaterialLayerSet', MaterialLayers=layers, LayerSetName=name)
        total = sum(thickness for _, thickness in thicknesses)
        return self.model.add(
            'IfcMaterialLayerSetUsage', ForLayerSet=layer_set, LayerSetDirection=Enum(across),
            DirectionSense=Enum('POSITIVE'),
            OffsetFromReferenceLine=self.geometry.length(-total / 2))

    def _new_classification(self, system):
        date = '2024-05-01'
        if self.project.early:
            date = self.model.add('IfcCalendarDate', DayComponent=1, MonthComponent=5,
                                  YearComponent=2024)
        return self.model.add('IfcClassification', Source='Corvel', Edition='3', EditionDate=date,
                              Name=system)

    def classify(self, elements, system, code, name):
        """Refers to a class of a classification system; the system is made once."""
        source = self.once(('classification', system), self._new_classification, system)
        reference = self.model.add(
            'IfcClassificationReference', ItemReference=code, Identification=code, Name=name,
            Location='https://example.org/%s/%s' % (system, code), ReferencedSource=source)
        self.model.add('IfcRelAssociatesClassification', Name=system, RelatedObjects=elements,
                       RelatingClassification=reference)

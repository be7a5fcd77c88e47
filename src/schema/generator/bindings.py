"""Which classes of a release implement which interface of namespace IFC, and by which body.

A binding adds one interface to one class as a virtual base and tells, for each operation that the
class overrides, its declaration and the text of its body. The bodies themselves are templates in
src/schema/interfaces/implement_*.h; the text only passes the object's attributes and the classes of
the release on to them. Subtypes inherit a binding. Where releases differ in classes, the choice is
made here by asking the schema; where they differ in attributes only, the template asks the class.
"""

from dataclasses import dataclass

# The simple quantities, each with the attribute that holds its value.
QUANTITY_VALUES = {
    'IfcQuantityArea': 'AreaValue',
    'IfcQuantityCount': 'CountValue',
    'IfcQuantityLength': 'LengthValue',
    'IfcQuantityNumber': 'NumberValue',
    'IfcQuantityTime': 'TimeValue',
    'IfcQuantityVolume': 'VolumeValue',
    'IfcQuantityWeight': 'WeightValue',
}


@dataclass(frozen=True)
class Method:
    """One overridden operation.

    declaration: without `override` and semicolon, such as 'const char* getGlobalId() const'
    call: the statements of the body, such as 'return GlobalId;'
    """
    declaration: str
    call: str


@dataclass(frozen=True)
class Binding:
    """One interface of one class. An interface that is only told by cast has no methods."""
    interface: str
    methods: tuple = ()


def bindings_for(schema):
    """Class name -> bindings, for the classes that the schema has, in order of name."""
    candidates = {
        **_product_bindings(),
        **_property_bindings(),
        **_quantity_bindings(schema),
        **_relation_bindings(schema),
        **_unit_bindings(),
        **_geometry_bindings(),
    }
    return {name: candidates[name] for name in sorted(candidates) if name in schema.entities}


# --- Root, product, project, site -----------------------------------------------------------------
def _product_bindings():
    return {
        'IfcRoot': [Binding('IFC::VirtualIfcRoot', (
            Method('void setRootAttributes(const char* globalId, IFC::IfcEntity* ownerHistory, '
                   'corvel::ModelText name)',
                   'IFC::implement::SetRootAttributes<IfcOwnerHistory>(*this, globalId, '
                   'ownerHistory, name);'),
            Method('const char* getGlobalId() const', 'return GlobalId;'),
            Method('void setGlobalId(const char* globalId)', 'GlobalId = globalId;'),
            Method('corvel::ModelText getName() const', 'return Name;'),
        ))],
        'IfcProduct': [Binding('IFC::VirtualIfcProduct', (
            Method('IFC::IfcEntity* getObjectPlacement() const',
                   'return ObjectPlacementPresent ? ObjectPlacement : nullptr;'),
            Method('IFC::VirtualLocalPlacement* getRootPlacement(corvel::MemoryPool& pool)',
                   'return IFC::implement::ProductRootPlacement<IfcLocalPlacement>(*this, pool);'),
        ))],
        'IfcProject': [Binding('IFC::IfcProjectVirtual', (
            Method('void setProjectName(corvel::ModelText name)',
                   'IFC::implement::SetName<IfcRoot>(*this, name);'),
        ))],
        'IfcSite': [Binding('IFC::IfcSiteVirtual', (
            Method('void clearRepresentation()', 'IFC::implement::ClearRepresentation(*this);'),
        ))],
    }


# --- Properties and quantities --------------------------------------------------------------------
def _prototype(call):
    return Binding('IFC::Prototype',
                   (Method('IFC::IfcEntity* clone(corvel::MemoryPool& pool) const', call),))


_NOT_CLONED = Binding('IFC::Prototype', (
    Method('IFC::IfcEntity* clone(corvel::MemoryPool& /*pool*/) const', 'return nullptr;'),))
_CLONED = _prototype('return IFC::implement::Clone(*this, pool);')


def _cloned_with_list(name, attribute):
    return _prototype(f'return IFC::implement::Clone(*this, &{name}::{attribute}, pool);')


_NAMED_PROPERTY = Binding('IFC::VIfcProperty', (
    Method('corvel::WideString getPropertyName() const', 'return Name.ToWide();'),
    Method('void setPropertyName(corvel::ModelText name)', 'Name = name;'),
))

_SET_NEW_SI_UNIT = Method(
    'IFC::IfcEntity* setNewSIUnit(std::int32_t prefix, std::int32_t unitName, bool hasPrefix, '
    'std::int32_t unitType, corvel::MemoryPool& pool)',
    'return IFC::implement::SetNewSIUnit<IfcSIUnit>(*this, prefix, unitName, hasPrefix, unitType, '
    'pool);')


def _remove_property_by_name(attribute, member_class):
    return Method('IFC::IfcEntity* removePropertyByName(corvel::WideView name)',
                  f'return IFC::implement::RemoveByName<{member_class}>({attribute}, name);')


def _set_nominal_value(operation, argument, value_class, value):
    return Method(
        f'bool {operation}({argument}, corvel::MemoryPool& pool)',
        'return IFC::implement::SetNominalValue(*this, '
        f'IFC::implement::NewInlineValue<{value_class}>({value}, pool));')


def _property_bindings():
    return {
        'IfcProperty': [_NOT_CLONED, _NAMED_PROPERTY],
        'IfcPropertySingleValue': [_CLONED, Binding('IFC::VIfcPropertySingleValue', (
            _set_nominal_value('setNominalValueText', 'corvel::ModelText text', 'IfcIdentifier',
                               'text'),
            _set_nominal_value('setNominalValueBoolean', 'bool value', 'IfcBoolean',
                               'IFC::implement::BooleanRow(value)'),
            _set_nominal_value('setNominalValueReal', 'double value', 'IfcReal', 'value'),
            _SET_NEW_SI_UNIT,
            Method('bool setUnit(IFC::IfcEntity* unit)',
                   'return IFC::implement::SetUnit(*this, unit);'),
        ))],
        'IfcPropertySet': [
            _cloned_with_list('IfcPropertySet', 'HasProperties'),
            Binding('IFC::VirtualIfcPropertySet', (
                Method('void addProperty(IFC::IfcEntity* property, corvel::MemoryPool& pool)',
                       'HasProperties.Append(IFC::implement::Admitted<IfcProperty>(property), '
                       'pool);'),
                _remove_property_by_name('HasProperties', 'IfcProperty'),
                Method('void clearProperties()', 'HasProperties.Clear();'),
            ))],
        'IfcElementQuantity': [
            _cloned_with_list('IfcElementQuantity', 'Quantities'),
            Binding('IFC::VIfcElementQuantitySet', (
                Method('void addQuantity(IFC::IfcEntity* quantity, corvel::MemoryPool& pool)',
                       'Quantities.Append(IFC::implement::Admitted<IfcPhysicalQuantity>(quantity), '
                       'pool);'),
                _remove_property_by_name('Quantities', 'IfcPhysicalQuantity'),
            ))],
    }


def _quantity_bindings(schema):
    bindings = {'IfcPhysicalQuantity': [_NOT_CLONED]}
    # The oldest two releases have no class between: their quantities are prototypes and no more.
    are_properties = 'IfcPhysicalSimpleQuantity' in schema.entities
    for name, attribute in QUANTITY_VALUES.items():
        bindings[name] = [_CLONED]
        if are_properties:
            bindings[name] += [_NAMED_PROPERTY, Binding('IFC::VQuantityProperty', (
                Method('void setQuantityValue(double value)',
                       f'IFC::implement::SetQuantityValue({attribute}, value);'),
                _SET_NEW_SI_UNIT,
            ))]
    return bindings


# --- Relations ------------------------------------------------------------------------------------
def _declares(schema, class_name, attribute_name):
    entity = schema.entities.get(class_name)
    return entity is not None and any(a.name == attribute_name for a in entity.attributes)


def _relation_bindings(schema):
    # Up to IFC2X3 the supertype declares the objects, and they are narrower.
    of_supertype = _declares(schema, 'IfcRelDefines', 'RelatedObjects')
    object_class = 'IfcObject' if of_supertype else 'IfcObjectDefinition'
    bindings = {
        'IfcRelDefinesByProperties': [Binding('IFC::VirtualPropertyRelation', (
            Method('void addRelatedObject(IFC::IfcEntity* object, corvel::MemoryPool& pool)',
                   f'RelatedObjects.Append(IFC::implement::Admitted<{object_class}>(object), '
                   'pool);'),
            Method('void setRelatingProperty(IFC::IfcEntity* propertySet)',
                   'RelatingPropertyDefinition = '
                   'IFC::implement::Admitted<IfcPropertySetDefinition>(propertySet);'),
            Method('void collectRelatedObjects(std::vector<IFC::IfcEntity*>& objects) const',
                   'IFC::implement::AppendMembers(RelatedObjects, objects);'),
            Method('bool removeRelatedObjectByGlobalId(std::string_view globalId)',
                   'return IFC::implement::RemoveByGlobalId(RelatedObjects, globalId);'),
        ))],
    }
    for name, entity in schema.entities.items():
        if entity.supertype == 'IfcRelAssigns':
            bindings[name] = [Binding('IFC::VIfcRelAssigns')]
    return bindings


# --- Units ----------------------------------------------------------------------------------------
_UNIT = Binding('IFC::IfcUnit')
_SET_UNIT_TYPE = Method('void setUnitType(std::int32_t unitType)', 'UnitType = unitType;')


def _unit_bindings():
    return {
        'IfcNamedUnit': [_UNIT, Binding('IFC::VIfcNamedUnit', (
            _SET_UNIT_TYPE,
            Method('corvel::WideString getUnitTypeText() const',
                   'return IFC::implement::EnumText(kIfcUnitEnum, UnitType);'),
        ))],
        'IfcSIUnit': [Binding('IFC::VIfcSIUnit', (
            Method('corvel::WideString getPrefixOrName() const',
                   'return IFC::implement::PrefixOrName(*this, kIfcSIPrefix, kIfcSIUnitName);'),
            Method('corvel::WideString getNameText() const',
                   'return IFC::implement::EnumText(kIfcSIUnitName, Name);'),
            Method('corvel::WideString getPrefixText() const',
                   'return IFC::implement::PrefixText(*this, kIfcSIPrefix);'),
            Method('void setName(std::int32_t name)', 'Name = name;'),
            Method('void setPrefix(std::optional<std::int32_t> prefix)',
                   'IFC::implement::SetPrefix(*this, prefix);'),
        ))],
        'IfcConversionBasedUnit': [Binding('IFC::VIfcConversionBasedUnit', (
            Method('corvel::WideString getUnitName() const', 'return Name.ToWide();'),
            Method('IFC::IfcEntity* setConversion(corvel::ModelText name, double factor, '
                   'IFC::VIfcNamedUnit* unit, corvel::MemoryPool& pool)',
                   'return IFC::implement::SetConversion<IfcReal, IfcMeasureWithUnit>('
                   '*this, name, factor, unit, pool);'),
        ))],
        'IfcDerivedUnit': [_UNIT, Binding('IFC::VIfcDerivedUnit', (
            _SET_UNIT_TYPE,
            Method('IFC::IfcEntity* addElement(IFC::IfcEntity* unit, std::int32_t exponent, '
                   'corvel::MemoryPool& pool)',
                   'return IFC::implement::AddElement<IfcDerivedUnitElement, IfcNamedUnit>('
                   '*this, unit, exponent, pool);'),
        ))],
        'IfcMonetaryUnit': [_UNIT, Binding('IFC::VIfcMonetaryUnit')],
        'IfcUnitAssignment': [_UNIT, Binding('IFC::VirtualIfcUnitAssignment', (
            Method('void addUnit(IFC::IfcUnit* unit, corvel::MemoryPool& pool)',
                   'Units.Append(unit, pool);'),
        ))],
    }


# --- Placements and shapes ------------------------------------------------------------------------
def _geometry_bindings():
    connection = [Binding('IFC::VIfcConnectionGeometry')]
    return {
        'IfcLocalPlacement': [Binding('IFC::VirtualLocalPlacement', (
            Method('void setPlacementRelTo(IFC::IfcEntity* placement)',
                   'IFC::implement::SetOptional(PlacementRelTo, PlacementRelToPresent, '
                   'IFC::implement::Admitted<IfcObjectPlacement>(placement));'),
            Method('IFC::IfcEntity* getPlacementRelTo() const',
                   'return PlacementRelToPresent ? PlacementRelTo : nullptr;'),
            Method('void setRelativePlacement(IFC::IfcEntity* placement)',
                   'RelativePlacement = IFC::implement::Admitted<IfcAxis2Placement>(placement);'),
            Method('IFC::IfcEntity* getRelativePlacement() const', 'return RelativePlacement;'),
            Method('IFC::VirtualLocalPlacement* getRootPlacement()',
                   'return IFC::implement::RootPlacement(*this);'),
        ))],
        'IfcAxis2Placement3D': [Binding('IFC::VirtualIfcAxis2Placement3D', (
            Method('void setAttributes(IFC::IfcEntity* location, IFC::IfcEntity* axis, '
                   'IFC::IfcEntity* refDirection)',
                   'IFC::implement::SetPlacement<IfcCartesianPoint, IfcDirection>('
                   '*this, location, axis, refDirection);'),
            Method('IFC::IfcEntity* getAxis() const', 'return AxisPresent ? Axis : nullptr;'),
            Method('IFC::IfcEntity* getRefDirection() const',
                   'return RefDirectionPresent ? RefDirection : nullptr;'),
        ))],
        'IfcCartesianPoint': [Binding('IFC::VirtualIfcCartesianPoint', (
            Method('void setCoordinates(std::vector<double>&& coordinates, '
                   'corvel::MemoryPool& pool)',
                   'IFC::implement::SetCoordinates(Coordinates, std::move(coordinates), pool);'),
            Method('std::vector<double> getCoordinates() const',
                   'return IFC::implement::Coordinates(Coordinates);'),
        ))],
        'IfcDirection': [Binding('IFC::VirtualIfcDirection', (
            Method('IFC::DirectionRatios getDirectionRatios() const',
                   'return IFC::implement::Ratios(DirectionRatios);'),
            Method('void setDirectionRatios(double x, double y, double z, '
                   'corvel::MemoryPool& pool)',
                   'IFC::implement::SetRatios(DirectionRatios, x, y, z, pool);'),
        ))],
        'IfcExtrudedAreaSolid': [Binding('IFC::VirtualGeometricRepresentation', (
            Method('void scaleDepth(double factor)', 'Depth *= factor;'),
        ))],
        # IfcConnectionPointEccentricity inherits from the first.
        'IfcConnectionPointGeometry': connection,
        'IfcConnectionCurveGeometry': connection,
        'IfcConnectionSurfaceGeometry': connection,
        'IfcConnectionPortGeometry': connection,
        'IfcConnectionVolumeGeometry': connection,
    }

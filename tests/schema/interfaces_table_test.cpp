// Which classes have which interface: every class of every release is made and asked for all of
// them, and the answers are held against what the facts of the release say the class is one of.
#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "class_tables/built_releases.h"
#include "schema/interfaces/interfaces.h"
#include "schema/membership/class_table.h"
#include "schema/record_model.h"

namespace corvel::test {

#define CORVEL_DECLARE_TABLE(release) extern const ClassTable k##release##Classes;
CORVEL_FOR_RELEASES(CORVEL_DECLARE_TABLE)

namespace {

const ClassTable& ClassesOf(SchemaNamespace schema) {
#define CORVEL_RETURN_TABLE(release) \
  if (schema == SchemaNamespace::release) return k##release##Classes;
  CORVEL_FOR_RELEASES(CORVEL_RETURN_TABLE)
  throw std::logic_error("a release that is not built");
}

template <class Interface>
bool Has(IFC::IfcEntity* entity) {
  return EntityCast<Interface>(entity) != nullptr;
}

// An interface, the classes that have it with all their subtypes, and those of these that have it
// not, with no subtypes.
struct Row {
  const char* interfaceName;
  bool (*has)(IFC::IfcEntity* entity);
  std::vector<std::string_view> with;
  std::vector<std::string_view> without = {};
};

const std::vector<std::string_view> kSimpleQuantities{
    "IfcQuantityLength", "IfcQuantityArea", "IfcQuantityVolume", "IfcQuantityCount",
    "IfcQuantityWeight", "IfcQuantityTime", "IfcQuantityNumber"};

std::vector<std::string_view> WithProperty(std::vector<std::string_view> classes) {
  classes.push_back("IfcProperty");
  return classes;
}

std::vector<Row> Table(SchemaNamespace schema) {
  const bool quantitiesAreProperties =
      schema != SchemaNamespace::IFC2X_FINAL && schema != SchemaNamespace::IFC2X2_PLATFORM;
  const std::vector<std::string_view> quantities =
      quantitiesAreProperties ? kSimpleQuantities : std::vector<std::string_view>{};
  return {
      {"VirtualIfcRoot", Has<IFC::VirtualIfcRoot>, {"IfcRoot"}},
      {"VirtualIfcProduct", Has<IFC::VirtualIfcProduct>, {"IfcProduct"}},
      {"Prototype",
       Has<IFC::Prototype>,
       {"IfcProperty", "IfcPropertySet", "IfcElementQuantity", "IfcPhysicalQuantity"}},
      {"VIfcProperty", Has<IFC::VIfcProperty>, WithProperty(quantities)},
      {"VIfcPropertySingleValue", Has<IFC::VIfcPropertySingleValue>, {"IfcPropertySingleValue"}},
      {"VQuantityProperty", Has<IFC::VQuantityProperty>, quantities},
      {"VirtualIfcPropertySet", Has<IFC::VirtualIfcPropertySet>, {"IfcPropertySet"}},
      {"VIfcElementQuantitySet", Has<IFC::VIfcElementQuantitySet>, {"IfcElementQuantity"}},
      {"VirtualPropertyRelation", Has<IFC::VirtualPropertyRelation>, {"IfcRelDefinesByProperties"}},
      {"IfcUnit",
       Has<IFC::IfcUnit>,
       {"IfcNamedUnit", "IfcDerivedUnit", "IfcMonetaryUnit", "IfcUnitAssignment"}},
      {"VIfcNamedUnit", Has<IFC::VIfcNamedUnit>, {"IfcNamedUnit"}},
      {"VIfcSIUnit", Has<IFC::VIfcSIUnit>, {"IfcSIUnit"}},
      {"VIfcConversionBasedUnit", Has<IFC::VIfcConversionBasedUnit>, {"IfcConversionBasedUnit"}},
      {"VIfcDerivedUnit", Has<IFC::VIfcDerivedUnit>, {"IfcDerivedUnit"}},
      {"VIfcMonetaryUnit", Has<IFC::VIfcMonetaryUnit>, {"IfcMonetaryUnit"}},
      {"VirtualIfcUnitAssignment", Has<IFC::VirtualIfcUnitAssignment>, {"IfcUnitAssignment"}},
      {"VirtualLocalPlacement", Has<IFC::VirtualLocalPlacement>, {"IfcLocalPlacement"}},
      {"VirtualIfcAxis2Placement3D", Has<IFC::VirtualIfcAxis2Placement3D>, {"IfcAxis2Placement3D"}},
      {"VirtualIfcCartesianPoint", Has<IFC::VirtualIfcCartesianPoint>, {"IfcCartesianPoint"}},
      {"VirtualIfcDirection", Has<IFC::VirtualIfcDirection>, {"IfcDirection"}},
      {"VirtualGeometricRepresentation",
       Has<IFC::VirtualGeometricRepresentation>,
       {"IfcExtrudedAreaSolid"}},
      {"VIfcRelAssigns", Has<IFC::VIfcRelAssigns>, {"IfcRelAssigns"}, {"IfcRelAssigns"}},
      {"VIfcConnectionGeometry",
       Has<IFC::VIfcConnectionGeometry>,
       {"IfcConnectionGeometry"},
       {"IfcConnectionGeometry"}},
      {"IfcProjectVirtual", Has<IFC::IfcProjectVirtual>, {"IfcProject"}},
      {"IfcSiteVirtual", Has<IFC::IfcSiteVirtual>, {"IfcSite"}},
      {"VirtuaIfcParameterValue", Has<IFC::VirtuaIfcParameterValue>, {}},
  };
}

bool Contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool IsWanted(const ClassTable& classes, const ClassRow& made, const Row& row) {
  if (Contains(row.without, Narrow(made.name))) return false;
  return std::any_of(made.isOf.begin(), made.isOf.end(), [&](std::size_t group) {
    return Contains(row.with, classes.targets[group].name);
  });
}

}  // namespace

class InterfaceTable : public EachRelease {};
RUN_FOR_EACH_RELEASE(InterfaceTable);

TEST_P(InterfaceTable, EveryClassHasTheInterfacesOfItsConceptAndNoOther) {
  const ClassTable& classes = ClassesOf(Schema());
  const std::vector<Row> table = Table(Schema());
  ASSERT_EQ(classes.classes.size(), Model().Factories().count);
  for (const ClassRow& made : classes.classes) {
    IFC::IfcEntity* const entity = Model().Blank(made.key);
    for (const Row& row : table) {
      EXPECT_EQ(IsWanted(classes, made, row), row.has(entity))
          << made.key << " and " << row.interfaceName;
    }
  }
}

// The release has at least one class for each interface that has a row with classes, so that no
// row of the table is idle.
TEST_P(InterfaceTable, EveryInterfaceIsInUse) {
  const ClassTable& classes = ClassesOf(Schema());
  for (const Row& row : Table(Schema())) {
    const bool inUse =
        std::any_of(classes.classes.begin(), classes.classes.end(),
                    [&](const ClassRow& made) { return IsWanted(classes, made, row); });
    EXPECT_EQ(!row.with.empty(), inUse) << row.interfaceName;
  }
}

TEST_P(InterfaceTable, ObjectHasOneEntityPartWhateverTheInterface) {
  IFC::IfcEntity* const property = Add(1, "IFCPROPERTYSINGLEVALUE('name')");
  IFC::IfcEntity* const asProperty = EntityCast<IFC::VIfcPropertySingleValue>(property);
  IFC::IfcEntity* const asPrototype = EntityCast<IFC::Prototype>(property);
  EXPECT_EQ(property, asProperty);
  EXPECT_EQ(property, asPrototype);
  EXPECT_EQ(static_cast<IFC::Prototype*>(EntityCast<IFC::VIfcPropertySingleValue>(property)),
            EntityCast<IFC::Prototype>(property));
}

}  // namespace corvel::test

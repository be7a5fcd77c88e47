// Properties, quantities, their sets and relations as the engine sees them, in every release.
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "schema/interfaces/interfaces.h"
#include "schema/record_model.h"

namespace corvel::test {

using IFC::IfcEntity;

namespace {

// Rows of IfcSIPrefix, IfcSIUnitName and IfcUnitEnum.
constexpr std::int32_t kMilli = 10;
constexpr std::int32_t kMetre = 15;
constexpr std::int32_t kLengthUnit = 15;

}  // namespace

// --- VIfcProperty, VIfcPropertySingleValue -------------------------------------------------------
class PropertyInterface : public EachRelease {
 protected:
  IFC::VIfcPropertySingleValue& AddProperty(const char* record) {
    return AddAs<IFC::VIfcPropertySingleValue>(1, record);
  }
};
RUN_FOR_EACH_RELEASE(PropertyInterface);

TEST_P(PropertyInterface, NameIsReadAndReplaced) {
  IFC::VIfcProperty& property =
      AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCLABEL('x'),$)");
  EXPECT_EQ(u"name", property.getPropertyName());
  property.setPropertyName(u"new");
  EXPECT_EQ(u"new", property.getPropertyName());
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('new','text',IFCLABEL('x'),$)", Written(&property));
}

TEST_P(PropertyInterface, EveryKindOfPropertyHasAName) {
  auto& property = AddAs<IFC::VIfcProperty>(1, "IFCPROPERTYENUMERATEDVALUE('name','text',$,$)");
  EXPECT_EQ(u"name", property.getPropertyName());
  property.setPropertyName(u"new");
  EXPECT_EQ("'new','text'", FirstWritten(2, &property));
}

TEST_P(PropertyInterface, TextValueReplacesTheValue) {
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)");
  EXPECT_TRUE(property.setNominalValueText(u"new", Pool()));
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCIDENTIFIER('new'),$)", Written(&property));
}

TEST_P(PropertyInterface, BooleanValueReplacesTheValue) {
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)");
  EXPECT_TRUE(property.setNominalValueBoolean(true, Pool()));
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCBOOLEAN(.T.),$)", Written(&property));
  EXPECT_TRUE(property.setNominalValueBoolean(false, Pool()));
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCBOOLEAN(.F.),$)", Written(&property));
}

TEST_P(PropertyInterface, RealValueReplacesTheValue) {
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCLABEL('x'),$)");
  EXPECT_TRUE(property.setNominalValueReal(3.0, Pool()));
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(3.),$)", Written(&property));
}

TEST_P(PropertyInterface, ValueThatIsSetIsPresentAndInline) {
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',$,$)");
  property.setNominalValueText(u"new", Pool());
  IFC::ChildQueue children;
  property.collectChildren(children);
  ASSERT_EQ(1u, children.Size());
  EXPECT_TRUE(children[0].entity->inlineValue);
  EXPECT_EQ(0u, children[0].entity->marker);
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCIDENTIFIER('new'),$)", Written(&property));
}

TEST_P(PropertyInterface, NewSIUnitBecomesTheUnit) {
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)");
  IfcEntity* const unit = property.setNewSIUnit(kMilli, kMetre, true, kLengthUnit, Pool());
  EXPECT_EQ(0u, unit->marker);
  unit->SetMarker(2);
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)", Written(unit));
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),#2)", Written(&property));
}

TEST_P(PropertyInterface, NewSIUnitMayHaveNoPrefix) {
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)");
  IfcEntity* const unit = property.setNewSIUnit(kMilli, kMetre, false, kLengthUnit, Pool());
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)", Written(unit));
}

TEST_P(PropertyInterface, EveryClassOfUnitsIsTakenAsUnit) {
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)");
  std::uint32_t number = 1;
  for (const char* const unitClass :
       {"IFCSIUNIT", "IFCCONTEXTDEPENDENTUNIT", "IFCCONVERSIONBASEDUNIT", "IFCDERIVEDUNIT",
        "IFCMONETARYUNIT"}) {
    EXPECT_TRUE(property.setUnit(Add(++number, unitClass))) << unitClass;
    EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),#" + std::to_string(number) + ")",
              Written(&property));
  }
}

TEST_P(PropertyInterface, WhatIsNoUnitTakesTheUnitAway) {
  Add(2, "IFCSIUNIT");
  IfcEntity* const person = Add(3, "IFCPERSON");
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),#2)");
  EXPECT_FALSE(property.setUnit(person));
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)", Written(&property));
}

TEST_P(PropertyInterface, NullTakesTheUnitAway) {
  Add(2, "IFCSIUNIT");
  auto& property = AddProperty("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),#2)");
  EXPECT_FALSE(property.setUnit(nullptr));
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)", Written(&property));
}

// --- VQuantityProperty ---------------------------------------------------------------------------
class QuantityInterface : public EachRelease {};
RUN_FOR_RELEASES(QuantityInterface, IFC2X2_FINAL, IFC4X4);
class OldQuantityInterface : public EachRelease {};
RUN_FOR_RELEASES(OldQuantityInterface, IFC2X_FINAL, IFC2X2_PLATFORM);
class IntegerCountInterface : public EachRelease {};
RUN_FOR_RELEASES(IntegerCountInterface, IFC4X3_ADD2, IFC4X3_ADD2);

// IfcQuantityTime is missing in one release and IfcQuantityNumber in all but one.
constexpr const char* kQuantities[] = {"IFCQUANTITYAREA",   "IFCQUANTITYCOUNT", "IFCQUANTITYLENGTH",
                                       "IFCQUANTITYNUMBER", "IFCQUANTITYTIME",  "IFCQUANTITYVOLUME",
                                       "IFCQUANTITYWEIGHT"};

TEST_P(OldQuantityInterface, QuantitiesAreNoPropertiesButPrototypes) {
  IfcEntity* const quantity = Model().Blank("IFCQUANTITYLENGTH");
  EXPECT_EQ(nullptr, EntityCast<IFC::VIfcProperty>(quantity));
  EXPECT_EQ(nullptr, EntityCast<IFC::VQuantityProperty>(quantity));
  EXPECT_NE(nullptr, EntityCast<IFC::Prototype>(quantity));
}

TEST_P(QuantityInterface, ValueIsReplaced) {
  const bool countsInIntegers = Schema() == SchemaNamespace::IFC4X3_ADD2;
  std::uint32_t number = 0;
  for (const std::string quantity : kQuantities) {
    if (!Model().Has(quantity)) continue;
    // IfcQuantityNumber and, but for the release that counts in integers, IfcQuantityCount hold a
    // NUMBER, which is written without a forced point.
    const bool pointless = quantity == "IFCQUANTITYNUMBER" || quantity == "IFCQUANTITYCOUNT";
    auto& property = AddAs<IFC::VQuantityProperty>(++number, quantity + "('name','text',$,1)");
    property.setQuantityValue(7.0);
    EXPECT_EQ(pointless ? "'name','text',$,7" : "'name','text',$,7.", FirstWritten(4, &property));
    property.setQuantityValue(2.5);
    const std::string written = !pointless                                           ? "2.5E+00"
                                : countsInIntegers && quantity == "IFCQUANTITYCOUNT" ? "2"
                                                                                     : "2.5";
    EXPECT_EQ("'name','text',$," + written, FirstWritten(4, &property));
  }
}

TEST_P(IntegerCountInterface, CountIsCutAndHeldTo32Bits) {
  auto& count = AddAs<IFC::VQuantityProperty>(1, "IFCQUANTITYCOUNT('name','text',$,1)");
  const double infinity = std::numeric_limits<double>::infinity();
  const struct {
    double value;
    const char* written;
  } cases[] = {{2.9, "2"},
               {-2.9, "-2"},
               {1e10, "2147483647"},
               {-1e10, "-2147483648"},
               {2147483647.0, "2147483647"},
               {2147483648.0, "2147483647"},
               {-2147483648.0, "-2147483648"},
               {std::nan(""), "0"},
               {infinity, "2147483647"},
               {-infinity, "-2147483648"}};
  for (const auto& one : cases) {
    count.setQuantityValue(one.value);
    EXPECT_EQ(std::string("'name','text',$,") + one.written, FirstWritten(4, &count)) << one.value;
  }
}

TEST_P(QuantityInterface, NewSIUnitBecomesTheUnit) {
  auto& property = AddAs<IFC::VQuantityProperty>(1, "IFCQUANTITYLENGTH('name','text',$,1.)");
  IfcEntity* const unit = property.setNewSIUnit(kMilli, kMetre, true, kLengthUnit, Pool());
  EXPECT_EQ(0u, unit->marker);
  unit->SetMarker(2);
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)", Written(unit));
  EXPECT_EQ("'name','text',#2,1.", FirstWritten(4, &property));
}

TEST_P(QuantityInterface, NameIsReadAndReplaced) {
  auto& property = AddAs<IFC::VIfcProperty>(1, "IFCQUANTITYLENGTH('name','text',$,1.)");
  EXPECT_EQ(u"name", property.getPropertyName());
  property.setPropertyName(u"new");
  EXPECT_EQ("'new','text',$,1.", FirstWritten(4, &property));
}

// --- Prototype -----------------------------------------------------------------------------------
class PrototypeInterface : public EachRelease {
 protected:
  // Files the record as `number`; its clone must be equal and filed nowhere.
  void ExpectCloned(std::uint32_t number, const std::string& record) {
    auto& original = AddAs<IFC::Prototype>(number, record);
    IfcEntity* const copy = original.clone(Pool());
    ASSERT_NE(nullptr, copy) << record;
    EXPECT_NE(&original, EntityCast<IFC::Prototype>(copy));
    EXPECT_EQ(WideString(original.getClassName()), WideString(copy->getClassName()));
    EXPECT_EQ(0u, copy->marker);
    EXPECT_TRUE(copy->parents.IsEmpty());
    EXPECT_TRUE(copy->mergedParents.IsEmpty());
    EXPECT_EQ(Written(&original), Written(copy));
  }
};
RUN_FOR_EACH_RELEASE(PrototypeInterface);

TEST_P(PrototypeInterface, SingleValueIsCloned) {
  Add(1, "IFCSIUNIT");
  ExpectCloned(2, "IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),#1)");
}

TEST_P(PrototypeInterface, CloneGoesItsOwnWay) {
  auto& original =
      AddAs<IFC::VIfcPropertySingleValue>(1, "IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)");
  auto* const copy = EntityCast<IFC::VIfcPropertySingleValue>(original.clone(Pool()));
  ASSERT_NE(nullptr, copy);
  copy->setPropertyName(u"copy");
  copy->setNominalValueReal(2.0, Pool());
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('name','text',IFCREAL(1.),$)", Written(&original));
  EXPECT_EQ("IFCPROPERTYSINGLEVALUE('copy','text',IFCREAL(2.),$)", Written(copy));
}

TEST_P(PrototypeInterface, CloneIsUnfiledWhateverTheOriginalIs) {
  auto& original = AddAs<IFC::Prototype>(1, "IFCPROPERTYSINGLEVALUE('name')");
  original.visited = true;
  original.visitStamp = 3;
  original.walkResult = 1;
  ParentStore store;
  original.parents.Insert(&original, store);
  original.mergedParents.Insert(&original, store);
  const IfcEntity* const copy = original.clone(Pool());
  EXPECT_EQ(0u, copy->marker);
  EXPECT_EQ(0u, copy->visitStamp);
  EXPECT_FALSE(copy->visited);
  EXPECT_EQ(0u, copy->walkResult);
  EXPECT_TRUE(copy->parents.IsEmpty());
  EXPECT_TRUE(copy->mergedParents.IsEmpty());
  EXPECT_EQ(1u, original.parents.Size());
}

TEST_P(PrototypeInterface, QuantitiesAreCloned) {
  Add(1, "IFCSIUNIT");
  std::uint32_t number = 1;
  for (const std::string quantity : kQuantities) {
    if (Model().Has(quantity)) ExpectCloned(++number, quantity + "('name','text',#1,4)");
  }
}

TEST_P(PrototypeInterface, PropertySetsAndElementQuantitiesAreCloned) {
  Add(1, "IFCPROPERTYSINGLEVALUE('a')");
  Add(2, "IFCPROPERTYSINGLEVALUE('b')");
  Add(3, "IFCQUANTITYAREA('c')");
  ExpectCloned(4, "IFCPROPERTYSET('guid',$,'name','text',(#1,#2))");
  ExpectCloned(5, "IFCELEMENTQUANTITY('guid',$,'name','text','method',(#3))");
}

TEST_P(PrototypeInterface, ClonedSetsHaveListsOfTheirOwn) {
  Add(1, "IFCPROPERTYSINGLEVALUE('a')");
  IfcEntity* const second = Add(2, "IFCPROPERTYSINGLEVALUE('b')");
  auto& original =
      AddAs<IFC::VirtualIfcPropertySet>(3, "IFCPROPERTYSET('guid',$,'name','text',(#1,#2))");
  auto* const copy = EntityCast<IFC::VirtualIfcPropertySet>(original.clone(Pool()));
  ASSERT_NE(nullptr, copy);
  original.removePropertyByName(u"a");
  copy->addProperty(second, Pool());
  original.addProperty(second, Pool());
  EXPECT_EQ("(#2,#2)", Written(&original).substr(Written(&original).find("(#"), 7));
  EXPECT_EQ("(#1,#2,#2)", Written(copy).substr(Written(copy).find("(#"), 10));
}

TEST_P(PrototypeInterface, ClonedElementQuantitiesHaveListsOfTheirOwn) {
  Add(1, "IFCQUANTITYAREA('a')");
  Add(2, "IFCQUANTITYAREA('b')");
  auto& original = AddAs<IFC::VIfcElementQuantitySet>(
      3, "IFCELEMENTQUANTITY('guid',$,'name','text','method',(#1,#2))");
  IfcEntity* const copy = original.clone(Pool());
  ASSERT_NE(nullptr, copy);
  original.removePropertyByName(u"a");
  EXPECT_NE(std::string::npos, Written(&original).find("(#2)"));
  EXPECT_NE(std::string::npos, Written(copy).find("(#1,#2)"));
}

TEST_P(PrototypeInterface, AllOthersAreNotCloned) {
  for (const char* const name :
       {"IFCPROPERTY", "IFCSIMPLEPROPERTY", "IFCPROPERTYENUMERATEDVALUE", "IFCPROPERTYLISTVALUE",
        "IFCPROPERTYBOUNDEDVALUE", "IFCPROPERTYTABLEVALUE", "IFCPROPERTYREFERENCEVALUE",
        "IFCCOMPLEXPROPERTY", "IFCPHYSICALQUANTITY", "IFCPHYSICALSIMPLEQUANTITY",
        "IFCPHYSICALCOMPLEXQUANTITY"}) {
    if (!Model().Has(name)) continue;
    auto* const prototype = EntityCast<IFC::Prototype>(Model().Blank(name));
    ASSERT_NE(nullptr, prototype) << name;
    EXPECT_EQ(nullptr, prototype->clone(Pool())) << name;
  }
}

}  // namespace corvel::test

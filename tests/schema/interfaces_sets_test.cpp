// Sets of properties and what ties them to objects as the engine sees them, in every release.
#include <string>
#include <vector>

#include "schema/interfaces/interfaces.h"
#include "schema/record_model.h"

namespace corvel::test {

using IFC::IfcEntity;

// --- VirtualIfcPropertySet -----------------------------------------------------------------------
class PropertySetInterface : public EachRelease {
 protected:
  // The set with #1 'a', #2 'b', #3 'a'.
  IFC::VirtualIfcPropertySet& AddSet() {
    Add(1, "IFCPROPERTYSINGLEVALUE('a')");
    Add(2, "IFCPROPERTYENUMERATEDVALUE('b')");
    Add(3, "IFCPROPERTYSINGLEVALUE('a')");
    return AddAs<IFC::VirtualIfcPropertySet>(4, "IFCPROPERTYSET('g',$,'n','d',(#1,#2,#3))");
  }
  static std::string Members(const IfcEntity* set) {
    const std::string record = Written(set);
    return record.substr(record.rfind('('), record.size() - 1 - record.rfind('('));
  }
};
RUN_FOR_EACH_RELEASE(PropertySetInterface);

TEST_P(PropertySetInterface, PropertyIsAppended) {
  auto& set = AddSet();
  set.addProperty(Add(5, "IFCCOMPLEXPROPERTY('c')"), Pool());
  EXPECT_EQ("(#1,#2,#3,#5)", Members(&set));
}

TEST_P(PropertySetInterface, FirstPropertyOfAnEmptySetIsAppended) {
  auto& set = AddAs<IFC::VirtualIfcPropertySet>(1, "IFCPROPERTYSET('g',$,'n','d',())");
  set.addProperty(Add(2, "IFCPROPERTYSINGLEVALUE('a')"), Pool());
  EXPECT_EQ("(#2)", Members(&set));
}

TEST_P(PropertySetInterface, WhatIsNoPropertyIsAppendedAsNull) {
  auto& set = AddSet();
  set.addProperty(Add(5, "IFCQUANTITYAREA('a')"), Pool());
  set.addProperty(nullptr, Pool());
  EXPECT_EQ("(#1,#2,#3,*,*)", Members(&set));
}

TEST_P(PropertySetInterface, FirstOfTwoMembersOfOneNameIsRemoved) {
  auto& set = AddSet();
  IfcEntity* const removed = set.removePropertyByName(u"a");
  ASSERT_NE(nullptr, removed);
  EXPECT_EQ(1u, removed->marker);
  EXPECT_EQ("(#2,#3)", Members(&set));
  EXPECT_EQ("'a'", FirstWritten(1, removed));
}

TEST_P(PropertySetInterface, NameIsComparedWhole) {
  auto& set = AddSet();
  for (const char16_t* const name : {u"", u"A", u"ab", u"a "}) {
    EXPECT_EQ(nullptr, set.removePropertyByName(name));
  }
  EXPECT_EQ("(#1,#2,#3)", Members(&set));
}

TEST_P(PropertySetInterface, NullMemberHasNoName) {
  auto& set = AddAs<IFC::VirtualIfcPropertySet>(1, "IFCPROPERTYSET('g',$,'n','d',())");
  set.addProperty(nullptr, Pool());
  set.addProperty(Add(2, "IFCPROPERTYSINGLEVALUE('a')"), Pool());
  EXPECT_EQ(nullptr, set.removePropertyByName(u""));
  EXPECT_NE(nullptr, set.removePropertyByName(u"a"));
  EXPECT_EQ("(*)", Members(&set));
}

TEST_P(PropertySetInterface, ClearedSetLeavesItsMembersAlone) {
  auto& set = AddSet();
  set.clearProperties();
  EXPECT_EQ("()", Members(&set));
  IfcEntity* const property = Model().Find(1);
  EXPECT_EQ("'a'", FirstWritten(1, property));
  set.addProperty(property, Pool());
  EXPECT_EQ("(#1)", Members(&set));
}

// --- VIfcElementQuantitySet ----------------------------------------------------------------------
class ElementQuantityInterface : public PropertySetInterface {
 protected:
  // The set with #1 'a', #2 'b', #3 'a'.
  IFC::VIfcElementQuantitySet& AddQuantities() {
    Add(1, "IFCQUANTITYAREA('a')");
    Add(2, "IFCQUANTITYVOLUME('b')");
    Add(3, "IFCQUANTITYCOUNT('a')");
    return AddAs<IFC::VIfcElementQuantitySet>(
        4, "IFCELEMENTQUANTITY('g',$,'n','d','method',(#1,#2,#3))");
  }
};
RUN_FOR_EACH_RELEASE(ElementQuantityInterface);

TEST_P(ElementQuantityInterface, QuantityIsAppended) {
  auto& set = AddQuantities();
  set.addQuantity(Add(5, "IFCQUANTITYWEIGHT('c')"), Pool());
  EXPECT_EQ("(#1,#2,#3,#5)", Members(&set));
}

TEST_P(ElementQuantityInterface, WhatIsNoQuantityIsAppendedAsNull) {
  auto& set = AddQuantities();
  set.addQuantity(Add(5, "IFCPROPERTYSINGLEVALUE('a')"), Pool());
  set.addQuantity(nullptr, Pool());
  EXPECT_EQ("(#1,#2,#3,*,*)", Members(&set));
}

TEST_P(ElementQuantityInterface, FirstOfTwoMembersOfOneNameIsRemoved) {
  auto& set = AddQuantities();
  IfcEntity* const removed = set.removePropertyByName(u"a");
  ASSERT_NE(nullptr, removed);
  EXPECT_EQ(1u, removed->marker);
  EXPECT_EQ("(#2,#3)", Members(&set));
  EXPECT_EQ(nullptr, set.removePropertyByName(u"c"));
  EXPECT_EQ("(#2,#3)", Members(&set));
}

class ComplexQuantityInterface : public ElementQuantityInterface {};
RUN_FOR_RELEASES(ComplexQuantityInterface, IFC2X2_FINAL, IFC4X4);

TEST_P(ComplexQuantityInterface, ComplexQuantityIsFoundByName) {
  auto& set = AddQuantities();
  set.addQuantity(Add(5, "IFCPHYSICALCOMPLEXQUANTITY('c')"), Pool());
  IfcEntity* const removed = set.removePropertyByName(u"c");
  ASSERT_NE(nullptr, removed);
  EXPECT_EQ(5u, removed->marker);
}

// --- VirtualPropertyRelation ---------------------------------------------------------------------
class PropertyRelationInterface : public EachRelease {
 protected:
  // Relates the set #4 to the walls #1 'a', #2 'b', #3 'a'.
  IFC::VirtualPropertyRelation& AddRelation() {
    Add(1, "IFCWALL('a')");
    Add(2, "IFCWALL('b')");
    Add(3, "IFCWALL('a')");
    Add(4, "IFCPROPERTYSET('set')");
    return AddAs<IFC::VirtualPropertyRelation>(
        5, "IFCRELDEFINESBYPROPERTIES('g',$,'n','d',(#1,#2,#3),#4)");
  }
  // From the list of objects on: "(#1,#2,#3),#4".
  static std::string Related(const IfcEntity* relation) {
    const std::string record = Written(relation);
    const std::size_t start = record.rfind('(');
    return record.substr(start, record.size() - 1 - start);
  }
};
RUN_FOR_EACH_RELEASE(PropertyRelationInterface);

TEST_P(PropertyRelationInterface, ObjectIsAppended) {
  auto& relation = AddRelation();
  relation.addRelatedObject(Add(6, "IFCSLAB"), Pool());
  relation.addRelatedObject(Add(7, "IFCPROJECT"), Pool());
  EXPECT_EQ("(#1,#2,#3,#6,#7),#4", Related(&relation));
}

TEST_P(PropertyRelationInterface, WhatIsNoObjectIsAppendedAsNull) {
  auto& relation = AddRelation();
  relation.addRelatedObject(Add(6, "IFCPERSON"), Pool());
  relation.addRelatedObject(Model().Find(4), Pool());
  relation.addRelatedObject(nullptr, Pool());
  EXPECT_EQ("(#1,#2,#3,*,*,*),#4", Related(&relation));
}

TEST_P(PropertyRelationInterface, PropertySetIsReplaced) {
  auto& relation = AddRelation();
  relation.setRelatingProperty(Add(6, "IFCELEMENTQUANTITY"));
  EXPECT_EQ("(#1,#2,#3),#6", Related(&relation));
}

TEST_P(PropertyRelationInterface, WhatIsNoPropertySetBecomesNull) {
  auto& relation = AddRelation();
  relation.setRelatingProperty(Add(6, "IFCPROPERTYSINGLEVALUE"));
  EXPECT_EQ("(#1,#2,#3),*", Related(&relation));
  relation.setRelatingProperty(Model().Find(4));
  relation.setRelatingProperty(Model().Find(1));
  EXPECT_EQ("(#1,#2,#3),*", Related(&relation));
  relation.setRelatingProperty(Model().Find(4));
  relation.setRelatingProperty(nullptr);
  EXPECT_EQ("(#1,#2,#3),*", Related(&relation));
}

TEST_P(PropertyRelationInterface, ObjectsAreAppendedToTheCollection) {
  auto& relation = AddRelation();
  IfcEntity* const before = Model().Find(4);
  std::vector<IfcEntity*> objects{before};
  relation.collectRelatedObjects(objects);
  EXPECT_EQ((std::vector{before, Model().Find(1), Model().Find(2), Model().Find(3)}), objects);
}

TEST_P(PropertyRelationInterface, FirstOfTwoObjectsOfOneGuidIsRemoved) {
  auto& relation = AddRelation();
  EXPECT_TRUE(relation.removeRelatedObjectByGlobalId("a"));
  EXPECT_EQ("(#2,#3),#4", Related(&relation));
  EXPECT_TRUE(relation.removeRelatedObjectByGlobalId("a"));
  EXPECT_EQ("(#2),#4", Related(&relation));
  EXPECT_FALSE(relation.removeRelatedObjectByGlobalId("a"));
  EXPECT_EQ("(#2),#4", Related(&relation));
}

TEST_P(PropertyRelationInterface, NullObjectHasNoGuid) {
  auto& relation = AddRelation();
  relation.addRelatedObject(nullptr, Pool());
  EXPECT_FALSE(relation.removeRelatedObjectByGlobalId(""));
  EXPECT_EQ("(#1,#2,#3,*),#4", Related(&relation));
}

// --- What the older releases have, and the newer ones -------------------------------------------
class OldPropertyRelationInterface : public PropertyRelationInterface {};
RUN_FOR_RELEASES(OldPropertyRelationInterface, IFC2X_FINAL, IFC2X3);
class TypeRelationInterface : public PropertyRelationInterface {};
RUN_FOR_RELEASES(TypeRelationInterface, IFC2X2_PLATFORM, IFC2X3);
class NewPropertyRelationInterface : public PropertyRelationInterface {};
RUN_FOR_RELEASES(NewPropertyRelationInterface, IFC4, IFC4X4);

TEST_P(TypeRelationInterface, TypeIsNoObject) {
  auto& relation = AddRelation();
  relation.addRelatedObject(Add(6, "IFCWALLTYPE"), Pool());
  EXPECT_EQ("(#1,#2,#3,*),#4", Related(&relation));
}

TEST_P(NewPropertyRelationInterface, TypeIsAnObject) {
  auto& relation = AddRelation();
  relation.addRelatedObject(Add(6, "IFCWALLTYPE"), Pool());
  EXPECT_EQ("(#1,#2,#3,#6),#4", Related(&relation));
}

// The attribute would admit it, the operation does not.
TEST_P(NewPropertyRelationInterface, SetOfPropertySetsBecomesNull) {
  auto& relation = AddRelation();
  relation.setRelatingProperty(Model().Blank("IFCPROPERTYSETDEFINITIONSET"));
  EXPECT_EQ("(#1,#2,#3),*", Related(&relation));
}

TEST_P(OldPropertyRelationInterface, OverridingRelationIsAPropertyRelation) {
  Add(1, "IFCWALL('a')");
  auto& relation =
      AddAs<IFC::VirtualPropertyRelation>(2, "IFCRELOVERRIDESPROPERTIES('g',$,'n','d',(#1),$,())");
  relation.setRelatingProperty(Add(3, "IFCPROPERTYSET"));
  const std::string record = Written(&relation);
  EXPECT_EQ("(#1),#3,())", record.substr(record.find("(#")));
}

}  // namespace corvel::test

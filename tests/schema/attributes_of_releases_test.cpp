// The door to attributes on the classes of the releases: what it says and writes of every class,
// and what it is there for.
#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "class_tables/built_releases.h"
#include "core/entity_cast.h"
#include "schema/attributes.h"
#include "schema/membership/class_table.h"
#include "schema/record_model.h"

namespace corvel::test {

#define CORVEL_DECLARE_TABLE(release) extern const ClassTable k##release##Classes;
CORVEL_FOR_RELEASES(CORVEL_DECLARE_TABLE)

namespace {

const ClassTable& TableOf(SchemaNamespace schema) {
#define CORVEL_RETURN_TABLE(release) \
  if (schema == SchemaNamespace::release) return k##release##Classes;
  CORVEL_FOR_RELEASES(CORVEL_RETURN_TABLE)
  throw std::logic_error("a release that is not built");
}

// --- What is said of a class ---------------------------------------------------------------------

std::string KindOf(const AttributeFacts& facts) {
  constexpr const char* kNames[] = {"reference", "select",  "REAL",       "NUMBER",
                                    "INTEGER",   "BINARY",  "STRING",     "STRING",
                                    "BOOLEAN",   "LOGICAL", "enumeration"};
  return kNames[static_cast<std::size_t>(facts.kind)];
}

// As the table of classes puts it: "Tag: OPTIONAL IfcIdentifier STRING" and so on, a line each.
std::string OwnAttributes(const ClassFacts& facts) {
  std::string text = facts.supertype == nullptr ? "" : std::string(facts.supertype->name) + '\n';
  for (std::size_t i = facts.inheritedCount; i < facts.AttributeCount(); ++i) {
    const AttributeFacts& attribute = facts.Attribute(i);
    text += std::string(attribute.name) + ": " + attribute.Declaration();
    for (const TypeFacts* base = attribute.type->base; base != nullptr; base = base->base) {
      if (base->base != nullptr || base->admitted != nullptr) text += std::string(" ") + base->name;
    }
    text += " " + KindOf(attribute) + " " + std::to_string(attribute.depth) + "\n";
  }
  return text;
}

class EveryClassThroughTheDoor : public EachRelease {
 protected:
  const ReleaseClasses& Classes() { return *Model().Factories().classes; }
};
RUN_FOR_EACH_RELEASE(EveryClassThroughTheDoor);

TEST_P(EveryClassThroughTheDoor, HasTheAttributesOfTheFacts) {
  const ClassTable& table = TableOf(Schema());
  ASSERT_EQ(table.classes.size(), Classes().classes.size());
  for (const ClassRow& row : table.classes) {
    const ClassFacts* const facts = Classes().Find(row.key);
    ASSERT_NE(nullptr, facts) << row.key;
    EXPECT_EQ(row.name, Widen(facts->name));
    EXPECT_EQ(row.attributes, OwnAttributes(*facts)) << row.key;
  }
}

TEST_P(EveryClassThroughTheDoor, IsKnownByItsObjects) {
  for (const ClassRow& row : TableOf(Schema()).classes) {
    const IFC::IfcEntity* const object = Model().Blank(row.key);
    EXPECT_EQ(Classes().Find(row.key), FindFacts(*object)) << row.key;
    EXPECT_EQ(Classes().Find(row.key), FindFacts(*object)) << row.key << " asked again";
  }
}

// --- What is written through the door ------------------------------------------------------------

std::string WrittenThroughTheDoor(const IFC::IfcEntity& object) {
  MemoryOutpoutStream stream;
  StepWriter writer(stream);
  for (const ConstAttribute attribute : AttributesOf(object)) attribute.Write(writer);
  const std::string values = stream.Text();
  return values.substr(0, values.empty() ? 0 : values.size() - 1);
}

// The arguments of the record as the class itself writes them.
std::string WrittenByTheClass(const IFC::IfcEntity& object) {
  const std::string record = Written(&object);
  const std::size_t begin = record.find('(') + 1;
  return record.substr(begin, record.size() - begin - 1);
}

// One object of each class, which others may refer to, and values for any attribute: no two that
// follow each other are alike.
class Filler {
 public:
  Filler(RecordModel& model, const ClassTable& table) : model_(model) {
    for (const ClassRow& row : table.classes) {
      if (row.key == "IFCPROJECT") continue;  // a model has one
      IFC::IfcEntity* const object = model.Add(++filed_, row.key);
      object->inlineValue = !object->isComplexType();
      if (!object->inlineValue) {
        entities_.push_back(object);
      } else if (AttributesOf(*object).size() > 0) {  // IFCNULLSTYLE) cannot be read back
        values_.push_back(object);
      }
    }
  }

  std::uint32_t NextNumber() { return ++filed_; }

  void Fill(IFC::IfcEntity& object) {
    for (const Attribute attribute : AttributesOf(object)) {
      EXPECT_TRUE(Fill(attribute)) << Narrow(object.getClassName()) << '.' << attribute.Name();
    }
  }

 private:
  bool Fill(const Attribute& attribute) {
    switch (attribute.Facts().kind) {
      case ValueKind::kReference:
      case ValueKind::kSelect: return FillWith<IFC::IfcEntity*>(attribute);
      case ValueKind::kReal:
      case ValueKind::kNumber: return FillWith<double>(attribute);
      case ValueKind::kText: return FillWith<ModelText>(attribute);
      case ValueKind::kGuid: return FillWith<const char*>(attribute);
      default: return FillWith<std::int32_t>(attribute);
    }
  }

  template <class Scalar>
  bool FillWith(const Attribute& attribute) {
    const AttributeFacts& facts = attribute.Facts();
    const auto scalar = [&] { return Next<Scalar>(facts); };
    const auto list = [&] { return ListOf<Scalar>(scalar); };
    if (facts.depth == 0) return attribute.Set(scalar());
    if constexpr (std::is_same_v<Scalar, const char*>) {
      return false;
    } else {
      return facts.depth == 1 ? attribute.Set(list()) : attribute.Set(ListOf<List<Scalar>>(list));
    }
  }

  template <class Item, class Next>
  List<Item> ListOf(Next next) {
    List<Item> list;
    for (int i = 0; i < 3; ++i) list.Append(next(), model_.Pool());
    return list;
  }

  template <class Scalar>
  Scalar Next(const AttributeFacts& facts) {
    ++count_;
    if constexpr (std::is_same_v<Scalar, IFC::IfcEntity*>) {
      const std::vector<IFC::IfcEntity*>& targets = TargetsOf(facts);
      return targets.empty() ? nullptr : targets[count_ % targets.size()];
    } else if constexpr (std::is_same_v<Scalar, double>) {
      return static_cast<double>(count_) + 0.5;
    } else if constexpr (std::is_same_v<Scalar, ModelText>) {
      return model_.Pool().InternText(u"It's " + ToWide(count_));
    } else if constexpr (std::is_same_v<Scalar, const char*>) {
      return model_.Pool().InternNarrow("guid" + std::to_string(count_));
    } else {
      return facts.Values() == nullptr ? static_cast<Scalar>(count_)
                                       : NextNumberOf(*facts.Values());
    }
  }

  // Of the values that are written.
  std::int32_t NextNumberOf(const EnumTable& table) {
    while (table.rows[count_ % table.rows.size()].readOnly) ++count_;
    return table.rows[count_ % table.rows.size()].number;
  }

  // Two entities and two values, where there are so many.
  const std::vector<IFC::IfcEntity*>& TargetsOf(const AttributeFacts& facts) {
    const auto [place, isNew] = targetsOf_.try_emplace(&facts.type->Root());
    std::vector<IFC::IfcEntity*>& found = place->second;
    if (!isNew) return found;
    for (const auto* const candidates : {&entities_, &values_}) {
      const std::size_t enough = found.size() + 2;
      for (IFC::IfcEntity* const candidate : *candidates) {
        if (found.size() < enough && facts.Admits(candidate)) found.push_back(candidate);
      }
    }
    return found;
  }

  RecordModel& model_;
  std::uint32_t filed_ = 0;
  std::uint32_t count_ = 0;
  std::vector<IFC::IfcEntity*> entities_;
  std::vector<IFC::IfcEntity*> values_;
  std::map<const TypeFacts*, std::vector<IFC::IfcEntity*>> targetsOf_;
};

TEST_P(EveryClassThroughTheDoor, IsWrittenAsItWritesItself) {
  const ClassTable& table = TableOf(Schema());
  Filler filler(Model(), table);
  for (const ClassRow& row : table.classes) {
    IFC::IfcEntity* const object = Model().Blank(row.key);
    if (AttributesOf(*object).size() == 0) continue;
    object->SetMarker(filler.NextNumber());
    EXPECT_EQ(WrittenByTheClass(*object), WrittenThroughTheDoor(*object)) << "blank " << row.key;
    filler.Fill(*object);
    EXPECT_EQ(WrittenByTheClass(*object), WrittenThroughTheDoor(*object)) << row.key;
  }
}

TEST_P(EveryClassThroughTheDoor, IsReadBackAsItWasFilled) {
  const ClassTable& table = TableOf(Schema());
  Filler filler(Model(), table);
  for (const ClassRow& row : table.classes) {
    IFC::IfcEntity* const object = Model().Blank(row.key);
    if (AttributesOf(*object).size() == 0) continue;
    object->SetMarker(filler.NextNumber());
    filler.Fill(*object);
    const IFC::IfcEntity* const read = Add(filler.NextNumber(), Written(object));
    EXPECT_EQ(WrittenThroughTheDoor(*object), WrittenThroughTheDoor(*read)) << row.key;
  }
}

// --- What it is there for ------------------------------------------------------------------------

class Door : public EachRelease {
 protected:
  static Attribute One(IFC::IfcEntity* object, std::string_view name) {
    return *AttributesOf(*object).Find(name);
  }
};
RUN_FOR_EACH_RELEASE(Door);

// As a conversion of units does it: in lists, in the value behind a select, in types made of it.
TEST_P(Door, LengthsAreScaledWhereverTheyStand) {
  IFC::IfcEntity* const point = Add(1, "IFCCARTESIANPOINT((1.,2.,3.))");
  IFC::IfcEntity* const circle = Add(2, "IFCCIRCLEPROFILEDEF(.AREA.,$,$,4.)");
  IFC::IfcEntity* const length =
      Add(3, "IFCPROPERTYSINGLEVALUE('n',$,IFCPOSITIVELENGTHMEASURE(5.),$)");
  IFC::IfcEntity* const ratio = Add(4, "IFCPROPERTYSINGLEVALUE('n',$,IFCRATIOMEASURE(6.),$)");
  for (IFC::IfcEntity* const object : {point, circle, length, ratio}) {
    ForEachInRecord(*object, [](const Attribute& attribute) {
      if (!attribute.Facts().type->IsOrIsMadeOf("IfcLengthMeasure")) return;
      attribute.ForEach<double>([](double& value) { value *= 1000; });
    });
  }
  EXPECT_EQ("IFCCARTESIANPOINT((1000.,2000.,3000.))", Written(point));
  EXPECT_EQ("4000.", FirstWritten(4, circle).substr(FirstWritten(3, circle).size() + 1));
  EXPECT_EQ("'n',$,IFCPOSITIVELENGTHMEASURE(5000.),$", FirstWritten(4, length));
  EXPECT_EQ("'n',$,IFCRATIOMEASURE(6.),$", FirstWritten(4, ratio));
}

TEST_P(Door, NumbersOfEnumerationsDifferAndNamesDoNot) {
  IFC::IfcEntity* const unit = Add(1, "IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)");
  EXPECT_EQ(AttributeState::kDerived, One(unit, "Dimensions").State());
  EXPECT_EQ("MILLI", One(unit, "Prefix").EnumerationName());
  EXPECT_TRUE(One(unit, "Prefix").SetEnumeration("CENTI"));
  EXPECT_TRUE(One(unit, "Name").SetEnumeration("GRAM"));
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,.CENTI.,.GRAM.)", Written(unit));
  EXPECT_TRUE(One(unit, "Prefix").Clear());
  EXPECT_EQ("IFCSIUNIT(*,.LENGTHUNIT.,$,.GRAM.)", Written(unit));
}

// Objects that no factory makes.
class Stranger final : public IFC::IfcComplexType {};

TEST_P(Door, StaysShutForWhatIsOfNoRelease) {
  Stranger stranger;
  EXPECT_EQ(nullptr, FindFacts(stranger));
  EXPECT_THROW(AttributesOf(stranger), std::logic_error);
  EXPECT_THROW(AttributesOf(std::as_const(stranger)), std::logic_error);
}

class LaterDoor : public Door {};
RUN_FOR_RELEASES(LaterDoor, IFC4, IFC4X4);

TEST_P(LaterDoor, ReferencesInAValueThatStandsInTheRecordAreReached) {
  Add(1, "IFCPROPERTYSET('one')");
  Add(2, "IFCPROPERTYSET('two')");
  IFC::IfcEntity* const relation =
      Add(3, "IFCRELDEFINESBYPROPERTIES('g',$,$,$,(),IFCPROPERTYSETDEFINITIONSET((#1,#2)))");
  std::string names;
  ForEachInRecord(*relation, [&](const Attribute& attribute) {
    names += std::string(attribute.Name()) + ' ';
    attribute.RemoveReferences([](const IFC::IfcEntity* entity) { return entity->marker == 1; });
  });
  EXPECT_EQ(
      "GlobalId OwnerHistory Name Description RelatedObjects RelatingPropertyDefinition value ",
      names);
  EXPECT_EQ("IFCRELDEFINESBYPROPERTIES('g',$,$,$,(),IFCPROPERTYSETDEFINITIONSET((#2)))",
            Written(relation));
}

TEST_P(LaterDoor, ValuesInValuesAreWalkedHoweverDeep) {
  constexpr std::size_t kDeep = 200'000;
  IFC::IfcEntity* const record = Model().Blank("IFCREFERENCE");
  IFC::IfcEntity* innermost = record;
  for (std::size_t i = 0; i < kDeep; ++i) {
    IFC::IfcEntity* const inner = Model().Blank("IFCREFERENCE");
    inner->inlineValue = true;
    ASSERT_TRUE(One(innermost, "InnerReference").Set(inner));
    innermost = inner;
  }
  std::size_t met = 0;
  ForEachInRecord(std::as_const(*record), [&](const ConstAttribute& attribute) {
    if (attribute.Name() == "TypeIdentifier") ++met;
  });
  EXPECT_EQ(kDeep + 1, met);
}

}  // namespace

}  // namespace corvel::test

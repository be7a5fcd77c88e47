// The door to attributes on the small schema in generator/tiny.schema, which has one of every kind.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "TINY/enums.h"
#include "schema/attributes.h"
#include "schema/record_model.h"

namespace TINY {
extern const corvel::FactoryTable kFactories;
}

namespace corvel::test {

namespace {

const ClassFacts& FactsOf(std::string_view className) {
  return *TINY::kFactories.classes->Find(className);
}

const AttributeFacts& FactsOf(std::string_view className, std::string_view attribute) {
  return *FactsOf(className).FindAttribute(attribute);
}

// --- Without an object ---------------------------------------------------------------------------

TEST(AttributeFacts, StandInTheOrderOfTheRecordInheritedOnesFirst) {
  const ClassFacts& optional = FactsOf("TinyOptional");
  ASSERT_EQ(19u, optional.AttributeCount());
  std::vector<std::string> names;
  for (std::size_t i = 0; i < 5; ++i) names.emplace_back(optional.Attribute(i).name);
  EXPECT_EQ((std::vector<std::string>{"GlobalId", "Name", "Part", "Value", "Unit"}), names);
  EXPECT_STREQ("Colour", optional.Attribute(18).name);
}

TEST(AttributeFacts, AreThoseOfTheSupertypeWhereAClassDeclaresNone) {
  EXPECT_EQ(2u, FactsOf("TinyPlainPart").AttributeCount());
  EXPECT_EQ(&FactsOf("TinyRoot", "Name"), &FactsOf("TinyPlainPart").Attribute(1));
  EXPECT_EQ(0u, FactsOf("IfcNullStyle").AttributeCount());
}

TEST(AttributeFacts, ReadAsTheSchemaDeclaresThem) {
  EXPECT_EQ("IfcGloballyUniqueId", FactsOf("TinyRoot", "GlobalId").Declaration());
  EXPECT_EQ("OPTIONAL TinyPositiveLength", FactsOf("TinyOptional", "Length").Declaration());
  EXPECT_EQ("SET [1:?] OF TinyPart", FactsOf("TinyAggregates", "Parts").Declaration());
  EXPECT_EQ("OPTIONAL LIST [1:?] OF LIST [2:3] OF REAL",
            FactsOf("TinyAggregates", "OptionalPoints").Declaration());
  EXPECT_EQ("ARRAY [1:3] OF TinyPositiveLength",
            FactsOf("TinyAggregates", "Lengths").Declaration());
  EXPECT_EQ("BAG [1:?] OF INTEGER", FactsOf("TinyAggregates", "Integers").Declaration());
  EXPECT_EQ("TinyPartSet", FactsOf("TinyPartSet", "value").Declaration());
}

TEST(AttributeFacts, TellSelectsFromReferencesAndTypesFromTheirKind) {
  EXPECT_EQ(ValueKind::kReference, FactsOf("TinyMandatory", "Part").kind);
  EXPECT_EQ(ValueKind::kSelect, FactsOf("TinyMandatory", "Value").kind);
  EXPECT_EQ(ValueKind::kSelect, FactsOf("TinyMandatory", "Unit").kind);
  EXPECT_EQ(ValueKind::kNumber, FactsOf("TinyMandatory", "Number").kind);
  EXPECT_EQ(ValueKind::kReal, FactsOf("TinyMandatory", "Colour").kind);
  EXPECT_EQ(1, FactsOf("TinyMandatory", "Colour").depth);
  EXPECT_EQ(ValueKind::kEnumeration, FactsOf("TinyMandatory", "State").kind);
  EXPECT_EQ(&TINY::kTinyStateEnum, FactsOf("TinyMandatory", "State").Values());
  EXPECT_EQ(&kBooleanDataType, FactsOf("TinyMandatory", "Yes").Values());
  EXPECT_EQ(nullptr, FactsOf("TinyMandatory", "Integer").Values());
}

TEST(AttributeFacts, DefinedTypesLeadToWhatTheyAreMadeOf) {
  const TypeFacts& length = *FactsOf("TinyOptional", "Length").type;
  EXPECT_STREQ("TinyPositiveLength", length.name);
  EXPECT_TRUE(length.IsOrIsMadeOf("TinyPositiveLength"));
  EXPECT_TRUE(length.IsOrIsMadeOf("TinyLength"));
  EXPECT_TRUE(length.IsOrIsMadeOf("REAL"));
  EXPECT_FALSE(length.IsOrIsMadeOf("TinyLabel"));
  EXPECT_STREQ("REAL", length.Root().name);
  const TypeFacts& colour = *FactsOf("TinyMandatory", "Colour").type;
  EXPECT_TRUE(colour.IsOrIsMadeOf("TinyLength"));
  EXPECT_EQ(Aggregate::Kind::kList, colour.aggregate.kind);
  EXPECT_EQ(3, colour.aggregate.low);
  EXPECT_EQ(3, colour.aggregate.high);
}

TEST(AttributeFacts, OneTypeHasOneAddress) {
  EXPECT_EQ(FactsOf("TinyMandatory", "Length").type,
            FactsOf("TinyPositiveLength", "value").type->base);
}

TEST(ClassFacts, AreFoundInTheSpellingOfTheSchemaAndOfFiles) {
  EXPECT_EQ(&FactsOf("TinyRoot"), &FactsOf("TINYROOT"));
  EXPECT_EQ(&FactsOf("TinyRoot"), FactsOf("TinyPart").supertype);
  for (const char* const unknown : {"", "TinyRoo", "TinyRoots", "TinyValue", "ZZ"}) {
    EXPECT_EQ(nullptr, TINY::kFactories.classes->Find(unknown)) << unknown;
  }
  EXPECT_EQ(nullptr, FactsOf("TinyPart").FindAttribute("Nothing"));
}

// --- The values of an object ---------------------------------------------------------------------

class TinyAttributes : public testing::Test {
 protected:
  static Attributes Of(IFC::IfcEntity& object) {
    return {object, FactsOf(Narrow(object.getClassName()))};
  }
  static ConstAttributes OfConst(const IFC::IfcEntity& object) {
    return {object, FactsOf(Narrow(object.getClassName()))};
  }
  static Attribute One(IFC::IfcEntity* object, std::string_view name) {
    return *Of(*object).Find(name);
  }
  // The value of one that has a value of this type.
  template <class T>
  static T Value(IFC::IfcEntity* object, std::string_view name) {
    const T* const value = One(object, name).As<T>();
    if (value == nullptr) throw std::runtime_error(std::string(name) + " has no such value");
    return *value;
  }
  IFC::IfcEntity* Add(std::uint32_t number, std::string_view record) {
    return model_.Add(number, record);
  }
  IFC::IfcEntity* NewValue(std::string_view className) {
    IFC::IfcEntity* const value = model_.Blank(className);
    value->inlineValue = true;
    return value;
  }
  MemoryPool& Pool() { return model_.Pool(); }
  template <class T>
  List<T> ListOf(const std::vector<T>& items) {
    List<T> list;
    list.Assign(items, Pool());
    return list;
  }

 private:
  RecordModel model_{TINY::kFactories};
};

// Puts down what it is given as text.
class Describer {
 public:
  void operator()(double value) { text_ += "real " + std::to_string(value).substr(0, 4) + ' '; }
  void operator()(std::int32_t value) { text_ += "number " + std::to_string(value) + ' '; }
  void operator()(ModelText text) { text_ += "text " + Narrow(text.ToWide()) + ' '; }
  void operator()(const char* guid) { text_ += "guid " + std::string(guid) + ' '; }
  void operator()(const IFC::IfcEntity* entity) {
    text_ += "to " + Narrow(entity->getClassName()) + ' ';
  }
  template <class T>
  void operator()(const List<T>& list) {
    text_ += "( ";
    for (const T& item : list) (*this)(item);
    text_ += ") ";
  }
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
};

std::string Described(const ConstAttributes& attributes) {
  Describer describer;
  for (const ConstAttribute attribute : attributes) attribute.Visit(describer);
  return describer.Text();
}

constexpr std::string_view kMandatory =
    "TINYMANDATORY('g','name',#1,TINYLABEL('x'),#2,1.5,2.,3,4,5,6,'seven','eight','nine',.T.,.F.,"
    ".U.,.T.,.AJAR.,.RIGHT.,.B.,(10,20,30),(0.5,1.,0.25),#3,.T.,.F.)";

TEST_F(TinyAttributes, AreVisitedAsTheyAreHeld) {
  Add(1, "TINYPLAINPART('p','part')");
  Add(2, "TINYUNIT(.LENGTH.)");
  Add(3, "TINYSTYLE('s')");
  EXPECT_EQ(
      "guid g text name to TinyPlainPart to TinyLabel to TinyUnit real 1.50 real 2.00 real 3.00 "
      "number 4 number 5 number 6 text seven text eight text nine number 0 number 1 number 2 "
      "number 0 number 1 number 3 number 2 ( number 10 number 20 number 30 ) "
      "( real 0.50 real 1.00 real 0.25 ) to TinyStyle number 0 number 1 ",
      Described(OfConst(*Add(4, kMandatory))));
}

TEST_F(TinyAttributes, ListsAreVisitedAsListsAndAbsentOnesNotAtAll) {
  Add(1, "TINYPLAINPART('p','part')");
  EXPECT_EQ(
      "guid g text n ( to TinyPlainPart ) ( to TinyInteger ) ( ) ( ( to TinyPlainPart ) ( ) ) "
      "( real 1.00 ) ( ( real 1.00 ) ( ) ) ( number 1 ) ( ( number 1 ) ) ( text a ) ( number 2 ) "
      "( number 0 ) ( number 2 ) ( number 0 ) ",
      Described(OfConst(*Add(2,
                             "TINYAGGREGATES('g','n',(#1),(TINYINTEGER(3)),(),$,((#1),()),$,"
                             "(1.),$,((1.),()),$,(1),$,((1)),$,('a'),$,(2),$,(.T.),$,(.U.),$,"
                             "(.OPEN.),$)"))));
}

bool Same(ModelText left, ModelText right) { return left == right; }
bool Same(const char* left, const char* right) { return std::string_view(left) == right; }
template <class T>
bool Same(const T& left, const T& right) {
  return left == right;
}
template <class T>
bool Same(const List<T>& left, const List<T>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const T& one, const T& other) { return Same(one, other); });
}

TEST_F(TinyAttributes, ThoseOfTwoObjectsAreComparedOneByOne) {
  Add(1, "TINYPLAINPART('p','part')");
  Add(2, "TINYUNIT(.LENGTH.)");
  Add(3, "TINYSTYLE('s')");
  IFC::IfcEntity* const one = Add(4, kMandatory);
  IFC::IfcEntity* const other = Add(5, kMandatory);
  ASSERT_TRUE(One(other, "Hour").Set(std::int32_t{24}));
  ASSERT_TRUE(One(other, "Colour").Set(ListOf<double>({0.5, 1, 0.75})));
  ASSERT_TRUE(One(other, "Style").Clear());
  std::string differing;
  for (std::size_t i = 0; i < Of(*one).size(); ++i) {
    const ConstAttribute left = OfConst(*one)[i];
    const ConstAttribute right = OfConst(*other)[i];
    bool same = left.State() == right.State();
    left.Visit([&](const auto& value) {
      const auto* const there = right.As<std::remove_cvref_t<decltype(value)>>();
      same = there != nullptr && Same(value, *there);
    });
    if (!same) differing += std::string(left.Name()) + ' ';
  }
  EXPECT_EQ("Value Hour Colour Style ", differing);  // each has a typed value of its own
}

TEST_F(TinyAttributes, AbsentAndDerivedAreToldApart) {
  IFC::IfcEntity* const optional = Add(1, "TINYOPTIONAL('g',*,*,$)");
  EXPECT_EQ(AttributeState::kAbsent, One(optional, "Part").State());
  EXPECT_EQ(AttributeState::kAbsent, One(optional, "Value").State());
  EXPECT_EQ(AttributeState::kAbsent, One(optional, "Real").State());
  EXPECT_EQ(AttributeState::kValue, One(optional, "Name").State());
  IFC::IfcEntity* const mandatory = Add(
      2,
      "TINYMANDATORY('g','n',*,$,#77,$,$,$,$,$,$,$,$,$,.T.,$,.T.,$,.OPEN.,.LEFT.,.A.,$,$,$,.T.)");
  EXPECT_EQ(AttributeState::kDerived, One(mandatory, "Part").State());
  EXPECT_EQ(AttributeState::kDerived, One(mandatory, "Value").State());
  EXPECT_EQ(AttributeState::kDerived, One(mandatory, "Unit").State());
  EXPECT_EQ(AttributeState::kValue, One(mandatory, "Real").State());
  EXPECT_EQ(AttributeState::kValue, One(mandatory, "Angle").State());
  EXPECT_EQ(nullptr, One(mandatory, "Part").As<IFC::IfcEntity*>());
}

TEST_F(TinyAttributes, AreGivenInTheTypeThatHoldsThemAndInNoOther) {
  IFC::IfcEntity* const object = Add(1, "TINYOPTIONAL('g','n',$,$,$,1.5,$,3)");
  EXPECT_EQ(1.5, Value<double>(object, "Real"));
  EXPECT_EQ(3.0, Value<double>(object, "Number"));
  EXPECT_EQ(nullptr, One(object, "Length").As<double>());
  EXPECT_EQ(nullptr, One(object, "Real").As<std::int32_t>());
  EXPECT_EQ(nullptr, One(object, "Real").As<List<double>>());
  EXPECT_EQ(nullptr, One(object, "Name").As<const char*>());
  EXPECT_STREQ("g", Value<const char*>(object, "GlobalId"));
}

TEST_F(TinyAttributes, ScalarsAreRewrittenInPlaceThroughAllLists) {
  IFC::IfcEntity* const object =
      Add(1, "TINYAGGREGATES('g','n',(),(),(),$,(),$,(1.,2.),(3.),((4.),(),(5.,6.)),$,(7))");
  for (const Attribute attribute : Of(*object)) {
    attribute.ForEach<double>([](double& value) { value *= 10; });
    attribute.ForEach<std::int32_t>([](std::int32_t& value) { value += 1; });
  }
  EXPECT_EQ(
      "TINYAGGREGATES('g','n',(),(),(),$,(),$,(10.,20.),(30.),((40.),(),(50.,60.)),$,(8),$,(),$,()"
      ",$,(),$,(),$,(),$,(),$)",
      Written(object));
}

TEST_F(TinyAttributes, ReferencesAreRedirectedWhereverTheyStand) {
  Add(1, "TINYPLAINPART('p','old')");
  IFC::IfcEntity* const other = Add(2, "TINYPLAINPART('q','new')");
  IFC::IfcEntity* const lists =
      Add(3, "TINYAGGREGATES('g','n',(#1,#2),(TINYINTEGER(3)),(#1),$,((#1),(#2,#1)))");
  IFC::IfcEntity* const single = Add(4, "TINYOPTIONAL('g','n',#1)");
  for (IFC::IfcEntity* const object : {lists, single}) {
    for (const Attribute attribute : Of(*object)) {
      attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity*& reference) {
        if (reference->marker == 1) reference = other;
      });
    }
  }
  EXPECT_EQ("'g','n',(#2,#2),(TINYINTEGER(3)),(#2),$,((#2),(#2,#2))", FirstWritten(7, lists));
  EXPECT_EQ("'g','n',#2", FirstWritten(3, single));
}

TEST_F(TinyAttributes, RemovedReferencesLeaveTheOthersInOrder) {
  Add(1, "TINYPLAINPART('p','one')");
  Add(2, "TINYPLAINPART('q','two')");
  Add(3, "TINYPLAINPART('r','three')");
  IFC::IfcEntity* const object =
      Add(4, "TINYAGGREGATES('g','n',(#1,#2,#1,#3),(),(#1),$,((#1),(#3,#1,#2)))");
  const auto isFirst = [](const IFC::IfcEntity* entity) { return entity->marker == 1; };
  std::vector<std::size_t> removed;
  for (const Attribute attribute : Of(*object)) {
    if (Refers(attribute.Facts().kind)) removed.push_back(attribute.RemoveReferences(isFirst));
  }
  EXPECT_EQ((std::vector<std::size_t>{2, 0, 1, 0, 2, 0}), removed);
  EXPECT_EQ("'g','n',(#2,#3),(),(),$,((),(#3,#2))", FirstWritten(7, object));
}

TEST_F(TinyAttributes, AReferenceByItselfAndOtherListsAreNotRemovedFrom) {
  Add(1, "TINYPLAINPART('p','one')");
  IFC::IfcEntity* const single = Add(2, "TINYOPTIONAL('g','n',#1,$,$,$,$,$,$,$,$,$,$,$,$,$,$,(5))");
  const auto all = [](const IFC::IfcEntity* /*entity*/) { return true; };
  EXPECT_EQ(0u, One(single, "Part").RemoveReferences(all));
  EXPECT_EQ(0u, One(single, "Angle").RemoveReferences(all));
  EXPECT_EQ("'g','n',#1", FirstWritten(3, single));
}

// --- Replacing -----------------------------------------------------------------------------------

TEST_F(TinyAttributes, ValuesOfEveryKindArePutIntoABlankObject) {
  IFC::IfcEntity* const part = Add(1, "TINYPLAINPART('p','part')");
  IFC::IfcEntity* const unit = Add(2, "TINYUNIT(.LENGTH.)");
  IFC::IfcEntity* const label = NewValue("TINYLABEL");
  ASSERT_TRUE(One(label, "value").Set(Pool().InternText(u"x")));
  IFC::IfcEntity* const object = Add(3, "TINYOPTIONAL");
  EXPECT_TRUE(One(object, "GlobalId").Set(Pool().InternNarrow("g")));
  EXPECT_TRUE(One(object, "Name").Set(Pool().InternText(u"n")));
  EXPECT_TRUE(One(object, "Part").Set(part));
  EXPECT_TRUE(One(object, "Value").Set(label));
  EXPECT_TRUE(One(object, "Unit").Set(unit));
  for (const char* const real : {"Real", "Length", "Number"}) {
    EXPECT_TRUE(One(object, real).Set(1.5)) << real;
  }
  for (const char* const integer : {"Integer", "Binary"}) {
    EXPECT_TRUE(One(object, integer).Set(std::int32_t{7})) << integer;
  }
  EXPECT_TRUE(One(object, "Text").Set(Pool().InternText(u"six")));
  for (const char* const boolean : {"Boolean", "BooleanValue", "Flag", "Logical", "LogicalValue"}) {
    EXPECT_TRUE(One(object, boolean).SetEnumeration("T")) << boolean;
  }
  EXPECT_TRUE(One(object, "State").SetEnumeration("AJAR"));
  EXPECT_TRUE(One(object, "Angle").Set(ListOf<std::int32_t>({1, 2, 3})));
  EXPECT_TRUE(One(object, "Colour").Set(ListOf<double>({1, 2})));
  EXPECT_EQ(
      "TINYOPTIONAL('g','n',#1,TINYLABEL('x'),#2,1.5E+00,1.5E+00,1.5,7,7,'six',.T.,.T.,.T.,.T.,.T.,"
      ".AJAR.,(1,2,3),(1.,2.))",
      Written(object));
  EXPECT_EQ(u"six", Value<ModelText>(object, "Text").ToWide());
  EXPECT_EQ("AJAR", One(object, "State").EnumerationName());
  EXPECT_EQ("T", One(object, "Logical").EnumerationName());
  EXPECT_EQ(3u, Value<List<std::int32_t>>(object, "Angle").size());
}

TEST_F(TinyAttributes, ListsArePutInToo) {
  IFC::IfcEntity* const part = Add(1, "TINYPLAINPART('p','part')");
  IFC::IfcEntity* const object = Add(2, "TINYAGGREGATES('g','n')");
  const EntityList parts = ListOf<IFC::IfcEntity*>({part, part});
  EXPECT_TRUE(One(object, "Parts").Set(parts));
  EXPECT_TRUE(One(object, "OptionalParts").Set(EntityList()));
  EXPECT_TRUE(One(object, "PartGrid").Set(ListOf<EntityList>({parts, EntityList()})));
  EXPECT_EQ("'g','n',(#1,#1),(),(),(),((#1,#1),()),$", FirstWritten(8, object));
}

TEST_F(TinyAttributes, WhatCouldNotBeReadBackIsRefused) {
  IFC::IfcEntity* const part = Add(1, "TINYPLAINPART('p','part')");
  IFC::IfcEntity* const style = Add(2, "TINYSTYLE('s')");
  IFC::IfcEntity* const optional = Add(3, "TINYOPTIONAL('g','n',#1,$,$,2.)");
  const std::string before = Written(optional);
  EXPECT_FALSE(One(optional, "Part").Set(style));
  EXPECT_FALSE(One(optional, "Part").Set(static_cast<IFC::IfcEntity*>(nullptr)));
  EXPECT_FALSE(One(optional, "Value").Set(part));
  EXPECT_FALSE(One(optional, "Real").Set(std::int32_t{3}));
  EXPECT_FALSE(One(optional, "Real").Set(ListOf<double>({3})));
  EXPECT_FALSE(One(optional, "Boolean").Set(std::int32_t{2}));
  EXPECT_FALSE(One(optional, "State").Set(std::int32_t{9}));
  EXPECT_FALSE(One(optional, "State").SetEnumeration("ajar"));
  EXPECT_FALSE(One(optional, "Integer").SetEnumeration("T"));
  EXPECT_FALSE(One(optional, "Text").Set(ModelText()));
  EXPECT_FALSE(One(optional, "GlobalId").Set(static_cast<const char*>(nullptr)));
  EXPECT_EQ(before, Written(optional));
  IFC::IfcEntity* const lists = Add(4, "TINYAGGREGATES('g','n',(#1))");
  EXPECT_FALSE(One(lists, "Parts").Set(ListOf<IFC::IfcEntity*>({part, style})));
  EXPECT_FALSE(One(lists, "Parts").Set(ListOf<IFC::IfcEntity*>({nullptr})));
  EXPECT_FALSE(One(lists, "States").Set(ListOf<std::int32_t>({0, 4})));
  EXPECT_EQ("'g','n',(#1)", FirstWritten(3, lists));
}

TEST_F(TinyAttributes, ClearedOptionalOnesAreAsReadFromAnEmptyRecord) {
  Add(1, "TINYPLAINPART('p','one')");
  IFC::IfcEntity* const object =
      Add(2,
          "TINYOPTIONAL('g','n',#1,TINYLENGTH(2.),$,1.5,2.,3,4,5,'six',.T.,.T.,.T.,.T.,.T.,"
          ".OPEN.,(1,2,3),(1.,1.,1.))");
  for (const Attribute attribute : Of(*object)) {
    EXPECT_EQ(attribute.Facts().IsOptional(), attribute.Clear()) << attribute.Name();
  }
  EXPECT_EQ("TINYOPTIONAL('g','n',$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$,$)", Written(object));
  // A value that comes back without its own is the default.
  for (const Attribute attribute : Of(*object)) {
    if (attribute.Facts().IsOptional()) {
      *(reinterpret_cast<bool*>(dynamic_cast<void*>(object)) + attribute.Facts().flagOffset) = true;
    }
  }
  EXPECT_EQ("TINYOPTIONAL('g','n',*,*,*,0.,0.,0,0,0,'',.F.,.F.,.F.,.U.,.U.,.NOTDEFINED.,(),())",
            Written(object));
}

TEST_F(TinyAttributes, ClearedMandatoryReferencesAreDerivedAndNothingElseCanBeCleared) {
  Add(1, "TINYPLAINPART('p','part')");
  Add(2, "TINYUNIT(.LENGTH.)");
  Add(3, "TINYSTYLE('s')");
  IFC::IfcEntity* const object = Add(4, kMandatory);
  std::string cleared;
  for (const Attribute attribute : Of(*object)) {
    if (attribute.Clear()) cleared += std::string(attribute.Name()) + ' ';
  }
  EXPECT_EQ("Part Value Unit Style ", cleared);
  EXPECT_EQ(
      "TINYMANDATORY('g','name',*,*,*,1.5E+00,2.,3,4,5,6,'seven','eight','nine',.T.,.F.,.U.,.T.,"
      ".AJAR.,.RIGHT.,.B.,(10,20,30),(5.E-01,1.,2.5E-01),*,.T.,.F.)",
      Written(object));
}

TEST_F(TinyAttributes, ANumberThatIsReadAndNotWrittenHasANameAndNoText) {
  IFC::IfcEntity* const object = Add(
      1, "TINYMANDATORY('g','n',$,$,$,$,$,$,$,$,$,$,$,$,.T.,$,.T.,$,.OPEN.,.BOTH.,.A.,$,$,$,.T.)");
  const Attribute door = One(object, "Door");
  EXPECT_EQ(AttributeState::kValue, door.State());
  EXPECT_EQ("BOTH", door.EnumerationName());
  MemoryOutpoutStream stream;
  StepWriter writer(stream);
  door.Write(writer);
  EXPECT_EQ("$,", stream.Text());
}

TEST_F(TinyAttributes, OnlyASingleEnumerationWithAValueHasAName) {
  IFC::IfcEntity* const object = Add(1, "TINYOPTIONAL('g','n')");
  EXPECT_EQ("", One(object, "State").EnumerationName());
  EXPECT_EQ("", One(object, "Name").EnumerationName());
  EXPECT_EQ("", One(Add(2, "TINYAGGREGATES('g','n')"), "States").EnumerationName());
}

}  // namespace

}  // namespace corvel::test

// Two assignments of units, unit by unit.
#include "merge/compare_units.h"

#include <iterator>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "core/entity_cast.h"
#include "merge/unit_texts.h"
#include "schema/interfaces/units.h"
#include "unit_run.h"

namespace corvel {
namespace {

using test::kCentimetre;
using test::kMetre;
using test::kMillimetre;
using test::kSquareMetre;
using test::Units;

constexpr const char* kCubicMetre = "IFCSIUNIT(*,.VOLUMEUNIT.,$,.CUBIC_METRE.)";
constexpr const char* kGram = "IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.)";

TEST(UnitTexts, DotsAndCommasGoWhereverTheyStand) {
  EXPECT_EQ(u"MILLI", WithoutDotsAndCommas(u".MILLI.,"));
  EXPECT_EQ(u"MILLIMETRE", WithoutDotsAndCommas(u".MILLI.,.METRE.,"));
  EXPECT_EQ(u"LENGTHUNIT", WithoutDotsAndCommas(u".LENGTHUNIT."));
  EXPECT_EQ(u"", WithoutDotsAndCommas(u".,"));
  EXPECT_EQ(u"SQUARE_METRE x", WithoutDotsAndCommas(u"SQUARE_METRE x"));
}

TEST(UnitTexts, PrefixesAreComparedWithoutDotsAndCommasAndToTheLetter) {
  EXPECT_TRUE(ComparePrefixes(u".MILLI.,", u"MILLI"));
  EXPECT_TRUE(ComparePrefixes(u"", u".,"));
  EXPECT_FALSE(ComparePrefixes(u".MILLI.,", u"milli"));
  EXPECT_FALSE(ComparePrefixes(u".MILLI.,", u".MILLIMETRE.,"));
  EXPECT_FALSE(ComparePrefixes(u"MILLI", u"MILLI "));
}

TEST(ComparedUnitTypes, AreFiveInTheirOrder) {
  EXPECT_EQ((std::vector<WideView>{u".LENGTHUNIT.", u".VOLUMEUNIT.", u".AREAUNIT.", u".MASSUNIT.",
                                   u".PLANEANGLEUNIT."}),
            std::vector<WideView>(comparedUnitTypes.begin(), comparedUnitTypes.end()));
}

class CompareUnits : public test::UnitRun {
 protected:
  static std::vector<UnitComparison> Compare(const IfcDocument& first, const IfcDocument& other) {
    return CompareUnitAssignments(first.getIfcUnitAssignment(), other.getIfcUnitAssignment(),
                                  other.getFilePath());
  }
  std::vector<UnitComparison> Compare(const std::string& first, const std::string& second) {
    const IfcDocument& a = Add("a.ifc", first);
    return Compare(a, Add("b.ifc", second));
  }
  // As "LENGTHUNIT METRE#1 MILLIMETRE#1 3", different units with " !" behind.
  static std::vector<std::string> Shown(const std::vector<UnitComparison>& rows) {
    std::vector<std::string> lines;
    for (const UnitComparison& row : rows) {
      lines.push_back(
          Narrow(WithoutDotsAndCommas(row.unitType) + u" " + WithoutDotsAndCommas(row.unitLabel) +
                 u"#" + ToWide(row.marker) + u" " + WithoutDotsAndCommas(row.otherLabel) + u"#" +
                 ToWide(row.otherMarker) + u" " + ToWide(static_cast<std::uint32_t>(row.code)) +
                 (row.same ? u"" : u" !")));
    }
    return lines;
  }
};

TEST_F(CompareUnits, ARowHasTheTextsOfTheFile) {
  const auto rows = Compare(Units({kMetre}, 7), Units({kMillimetre}, 12));
  ASSERT_EQ(1u, rows.size());
  EXPECT_EQ(u".LENGTHUNIT.", rows[0].unitType);
  EXPECT_EQ(u".METRE.,", rows[0].unitLabel);
  EXPECT_EQ(7u, rows[0].marker);
  EXPECT_EQ(u".MILLI.,.METRE.,", rows[0].otherLabel);
  EXPECT_EQ(12u, rows[0].otherMarker);
  EXPECT_FALSE(rows[0].same);
  EXPECT_EQ(folder_.Path("b.ifc"), rows[0].filePath);
  EXPECT_EQ(3u, static_cast<std::uint32_t>(rows[0].code));
}

TEST_F(CompareUnits, UnitsOfEveryTypeGetARowFromTheLastToTheFirst) {
  EXPECT_EQ((std::vector<std::string>{"TIMEUNIT SECOND#3 SECOND#2 0", "MASSUNIT GRAM#2 #0 4",
                                      "LENGTHUNIT METRE#1 METRE#1 0"}),
            Shown(Compare(Units({kMetre, kGram, "IFCSIUNIT(*,.TIMEUNIT.,$,.SECOND.)"}),
                          Units({kMetre, "IFCSIUNIT(*,.TIMEUNIT.,$,.SECOND.)"}))));
}

TEST_F(CompareUnits, OtherNameIsTheStrongerDifference) {
  EXPECT_EQ((std::vector<std::string>{"MASSUNIT GRAM#1 KILOSECOND#1 2 !"}),
            Shown(Compare(Units({kGram}), Units({"IFCSIUNIT(*,.MASSUNIT.,.KILO.,.SECOND.)"}))));
}

TEST_F(CompareUnits, PrefixMayBeMissingOnEitherSide) {
  EXPECT_EQ((std::vector<std::string>{"LENGTHUNIT MILLIMETRE#1 METRE#1 3 !"}),
            Shown(Compare(Units({kMillimetre}), Units({kMetre}))));
}

TEST_F(CompareUnits, AUnitTypeThatTheOtherLacksIsNoDifference) {
  const auto rows = Compare(Units({kCubicMetre}), Units({kMetre}));
  EXPECT_EQ((std::vector<std::string>{"VOLUMEUNIT CUBIC_METRE#1 #0 4"}), Shown(rows));
  EXPECT_EQ(u"", rows.at(0).otherLabel);
}

TEST_F(CompareUnits, WhatOnlyTheOtherHasGetsNoRow) {
  EXPECT_EQ((std::vector<std::string>{"LENGTHUNIT METRE#1 METRE#1 0"}),
            Shown(Compare(Units({kMetre}), Units({kMetre, kGram, kSquareMetre}))));
}

// The last one is looked at first; the one before it may still differ.
TEST_F(CompareUnits, ASecondUnitOfTheTypeCanStillDiffer) {
  EXPECT_EQ((std::vector<std::string>{"LENGTHUNIT METRE#1 CENTIMETRE#1 3 !"}),
            Shown(Compare(Units({kMetre}), Units({kCentimetre, kMetre}))));
}

TEST_F(CompareUnits, TheFirstDifferenceEndsTheSearch) {
  EXPECT_EQ((std::vector<std::string>{"LENGTHUNIT METRE#1 CENTIMETRE#2 3 !"}),
            Shown(Compare(Units({kMetre}), Units({kMillimetre, kCentimetre}))));
}

TEST_F(CompareUnits, OfTwoThatAgreeTheFirstOfTheAssignmentIsNamed) {
  EXPECT_EQ((std::vector<std::string>{"LENGTHUNIT METRE#1 METRE#1 0"}),
            Shown(Compare(Units({kMetre}), Units({kMetre, kMetre}))));
}

// A file in metres against one in feet, and the other way round.
TEST_F(CompareUnits, UnitsMadeByConversionAreNotCompared) {
  constexpr const char* kFoot = "IFCCONVERSIONBASEDUNIT($,.LENGTHUNIT.,'FOOT',$)";
  EXPECT_EQ((std::vector<std::string>{"LENGTHUNIT METRE#1 #0 4"}),
            Shown(Compare(Units({kMetre}), Units({kFoot}))));
  EXPECT_EQ((std::vector<std::string>{}), Shown(Compare(Units({kFoot}), Units({kMetre}))));
}

TEST_F(CompareUnits, DerivedUnitsAndCurrenciesAreNotCompared) {
  const std::string others =
      Units({"IFCMONETARYUNIT('EUR')", "IFCDERIVEDUNIT((#9),.LINEARVELOCITYUNIT.,$)",
             "IFCCONTEXTDEPENDENTUNIT(#8,.LENGTHUNIT.,'step')"}) +
      "#8=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n"
      "#9=IFCDERIVEDUNITELEMENT(#10,1);\n#10=" +
      kMetre + ";\n";
  EXPECT_EQ((std::vector<std::string>{}), Shown(Compare(others, others)));
}

TEST_F(CompareUnits, WithoutAnAssignmentThereAreNoRows) {
  const std::string none = std::string("#1=") + kMetre + ";\n";
  EXPECT_EQ((std::vector<std::string>{}), Shown(Compare(Units({kMetre}), none)));
  EXPECT_EQ((std::vector<std::string>{}), Shown(Compare(none, Units({kMetre}))));
}

TEST_F(CompareUnits, AMemberThatIsNotThereIsPassedOver) {
  const std::string broken = std::string("#1=") + kMetre + ";\n#9=IFCUNITASSIGNMENT((#1,#77));\n";
  EXPECT_EQ((std::vector<std::string>{"LENGTHUNIT METRE#1 METRE#1 0"}),
            Shown(Compare(broken, broken)));
}

// The rows as they come out of one walk over all units of the other model for each row.
std::vector<UnitComparison> RowsByPlainWalks(const IfcDocument& first, const IfcDocument& other) {
  std::vector<UnitComparison> rows;
  IFC::ChildQueue units;
  first.getIfcUnitAssignment()->collectChildren(units);
  while (!units.IsEmpty()) {
    IFC::IfcEntity* const unit = units.TakeBack().entity;
    const auto* const si = EntityCast<IFC::VIfcSIUnit>(unit);
    if (si == nullptr) continue;
    IFC::ChildQueue others;
    other.getIfcUnitAssignment()->collectChildren(others);
    UnitMatch match;
    UnitComparison row;
    row.same = CompareOneUnit(others, unit, match);
    row.unitType = UnitTypeText(unit);
    row.unitType.pop_back();
    row.unitLabel = si->getPrefixText() + si->getNameText();
    row.marker = unit->marker;
    row.filePath = other.getFilePath();
    row.code = match.code;
    if (const auto* const found = EntityCast<IFC::VIfcSIUnit>(match.unit)) {
      row.otherLabel = found->getPrefixText() + found->getNameText();
      row.otherMarker = match.unit->marker;
    }
    rows.push_back(row);
  }
  return rows;
}

auto Everything(const UnitComparison& row) {
  return std::tie(row.unitType, row.unitLabel, row.marker, row.otherLabel, row.otherMarker,
                  row.same, row.filePath, row.code);
}

TEST_F(CompareUnits, RowsAreThoseOfAWalkForEachOfThem) {
  constexpr const char* kSome[] = {
      kMetre,       kMillimetre, kMillimetre,
      kCentimetre,  kGram,       "IFCSIUNIT(*,.MASSUNIT.,.KILO.,.GRAM.)",
      kSquareMetre, kCubicMetre, "IFCMONETARYUNIT('EUR')"};
  std::mt19937 random(1);
  const auto some = [&] {
    std::vector<std::string> units;
    for (unsigned left = random() % 8 + 1; left > 0; --left) {
      units.emplace_back(kSome[random() % std::size(kSome)]);
    }
    return Units(units);
  };
  for (int round = 0; round < 150; ++round) {
    models_.clear();
    const std::string first = some();
    const std::string second = some();
    const std::vector<UnitComparison> rows = Compare(first, second);
    const std::vector<UnitComparison> wanted =
        RowsByPlainWalks(*models_[0].document, *models_[1].document);
    ASSERT_EQ(wanted.size(), rows.size()) << first << second;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      ASSERT_EQ(Everything(wanted[i]), Everything(rows[i])) << first << second;
    }
  }
}

// Hands its members out and counts how often.
class CountedAssignment final : public test::GraphNode {
 public:
  const char16_t* getClassName() const override { return u"IfcUnitAssignment"; }
  void collectChildren(IFC::ChildQueue& queue) const override {
    ++walks;
    GraphNode::collectChildren(queue);
  }
  mutable int walks = 0;
};

TEST_F(CompareUnits, EachAssignmentIsWalkedOnceHoweverManyUnitsItHas) {
  CountedAssignment assignments[2];
  for (CountedAssignment& assignment : assignments) {
    IfcDocument& document = Add("a.ifc", Units({kMetre, kGram, kMillimetre}));
    for (int i = 0; i < 200; ++i) assignment.RefersTo(At(document, 1 + (i % 3)));
    document.GetParser().ifcUnitAssignment = &assignment;
  }
  EXPECT_EQ(200u, Compare(*models_[0].document, *models_[1].document).size());
  EXPECT_EQ(1, assignments[0].walks);
  EXPECT_EQ(1, assignments[1].walks);
}

// A unit whose words are what the test says.
class WordUnit final : public test::GraphNode, public IFC::VIfcNamedUnit, public IFC::VIfcSIUnit {
 public:
  WordUnit(WideString type, WideString name) : type_(std::move(type)), name_(std::move(name)) {}
  const char16_t* getClassName() const override { return u"IfcSIUnit"; }
  void setUnitType(std::int32_t) override {}
  WideString getUnitTypeText() const override { return type_; }
  WideString getPrefixOrName() const override { return name_; }
  WideString getNameText() const override { return name_; }
  WideString getPrefixText() const override { return {}; }
  void setName(std::int32_t) override {}
  void setPrefix(std::optional<std::int32_t>) override {}

 private:
  WideString type_;
  WideString name_;
};

struct Comparison {
  bool same = false;
  UnitMatch match;
  std::size_t left = 0;
};

Comparison CompareWith(std::initializer_list<IFC::IfcEntity*> others, IFC::IfcEntity* unit) {
  IFC::ChildQueue queue;
  for (IFC::IfcEntity* const other : others) queue.Append(other, true);
  Comparison outcome;
  outcome.same = CompareOneUnit(queue, unit, outcome.match);
  outcome.left = queue.Size();
  return outcome;
}

TEST(CompareOneUnit, WhatHasNoTypeOrNoNameIsNotLookedFor) {
  WordUnit metre(u".LENGTHUNIT.,", u".METRE.,");
  WordUnit typeless(u"", u".METRE.,");
  WordUnit nameless(u".LENGTHUNIT.,", u"");
  for (WordUnit* const unit : {&typeless, &nameless}) {
    const Comparison outcome = CompareWith({&metre}, unit);
    EXPECT_TRUE(outcome.same);
    EXPECT_EQ(UnitDifference::kNotFound, outcome.match.code);
    EXPECT_EQ(nullptr, outcome.match.unit);
    EXPECT_EQ(1u, outcome.left);
  }
}

TEST(CompareOneUnit, WhatIsNoSiUnitNeverDiffers) {
  WordUnit metre(u".LENGTHUNIT.,", u".METRE.,");
  test::Of<u"IfcWall"> wall;
  for (IFC::IfcEntity* const unit :
       {static_cast<IFC::IfcEntity*>(nullptr), static_cast<IFC::IfcEntity*>(&wall)}) {
    const Comparison outcome = CompareWith({&metre}, unit);
    EXPECT_TRUE(outcome.same);
    EXPECT_EQ(UnitDifference::kNotFound, outcome.match.code);
  }
}

TEST(CompareOneUnit, TheUnitsAreUsedUpFromTheBackUntilOneDiffers) {
  WordUnit metre(u".LENGTHUNIT.,", u".METRE.,");
  WordUnit inch(u".LENGTHUNIT.,", u".INCH.,");
  WordUnit gram(u".MASSUNIT.,", u".GRAM.,");
  const Comparison different = CompareWith({&metre, &gram, &inch, nullptr, &gram}, &metre);
  EXPECT_FALSE(different.same);
  EXPECT_EQ(&inch, different.match.unit);
  EXPECT_EQ(UnitDifference::kOtherName, different.match.code);
  EXPECT_EQ(2u, different.left);
  const Comparison equal = CompareWith({&gram, &metre, &gram}, &metre);
  EXPECT_TRUE(equal.same);
  EXPECT_EQ(&metre, equal.match.unit);
  EXPECT_EQ(UnitDifference::kNone, equal.match.code);
  EXPECT_EQ(0u, equal.left);
}

}  // namespace
}  // namespace corvel

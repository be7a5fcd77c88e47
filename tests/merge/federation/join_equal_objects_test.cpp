// Objects with the GUID and the content of an earlier input's give way to it.
#include "merge/federation/join_equal_objects.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "federated_documents.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::PlannedRecord;
using test::Records;
using test::operator+;

constexpr FederationChoices kJoinGuids{.guids = GuidHandling::kJoin};

std::string Number(std::uint32_t number) { return "#" + std::to_string(number); }

bool IsWritten(const std::string& text, std::uint32_t number) {
  return text.find(Number(number) + "=") != std::string::npos;
}

// The record as it is written, or nothing.
std::string RecordIn(const std::string& text, std::uint32_t number) {
  const std::size_t at = text.find(Number(number) + "=");
  return at == std::string::npos ? "" : text.substr(at, text.find('\n', at) - at);
}

// A model has its numbers from `base` on, and says the same as any other.
class JoinedByGuid : public testing::TestWithParam<SchemaNamespace> {
 protected:
  bool IsIfc4() const { return GetParam() == SchemaNamespace::IFC4; }
  std::string Tag() const { return IsIfc4() ? ",$,$" : ",$"; }

  static PlannedRecord Point(std::uint32_t number, const std::string& numbers) {
    return {number, "IFCCARTESIANPOINT", "(" + numbers + ")"};
  }
  // From `number` on: the placement, its relative one, and the point.
  static Records Placed(std::uint32_t number, const std::string& outer, const std::string& point) {
    return {{number, "IFCLOCALPLACEMENT", outer + "," + Number(number + 1)},
            {number + 1, "IFCAXIS2PLACEMENT3D", Number(number + 2) + ",$,$"},
            Point(number + 2, point)};
  }
  PlannedRecord Wall(std::uint32_t number, const std::string& guid,
                     const std::string& placement = "$", const std::string& shape = "$",
                     const std::string& name = "Wall") const {
    return {number, "IFCWALL",
            "'" + guid + "',$,'" + name + "',$,$," + placement + "," + shape + Tag()};
  }
  PlannedRecord Opening(std::uint32_t number, const std::string& guid,
                        const std::string& name = "O") const {
    return {number, "IFCOPENINGELEMENT", "'" + guid + "',$,'" + name + "',$,$,$,$" + Tag()};
  }
  static PlannedRecord Relation(std::uint32_t number, const char* className,
                                const std::string& guid, const std::string& ends) {
    return {number, className, "'" + guid + "',$,$,$," + ends};
  }
  PlannedRecord Type(std::uint32_t number, const std::string& name) const {
    return {number, "IFCWALLTYPE", "'t',$,'" + name + "',$,$,$,$,$,$,.NOTDEFINED."};
  }

  std::string Of(const Records& one, const Records& other) {
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "", one);
    models.Add(u"b.ifc", "", other);
    return models.Run(kJoinGuids);
  }
  // Of two walls that are #10 and #110 and whatever else: whether they became one.
  bool JoinsWalls(const Records& one, const Records& other) {
    const std::string text = Of(one, other);
    EXPECT_TRUE(IsWritten(text, 10));
    const bool joined = !IsWritten(text, 110);
    const bool renewed = RecordIn(text, 110).find("('w',") == std::string::npos;
    EXPECT_TRUE(joined || renewed) << "what differs gets a GUID of its own\n" << text;
    return joined;
  }
};

INSTANTIATE_TEST_SUITE_P(Releases, JoinedByGuid,
                         testing::Values(SchemaNamespace::IFC2X3, SchemaNamespace::IFC4),
                         [](const auto& release) {
                           return release.param == SchemaNamespace::IFC4 ? "IFC4" : "IFC2X3";
                         });

TEST_P(JoinedByGuid, EqualObjectsAreOneAndOthersGetAGuid) {
  EXPECT_TRUE(JoinsWalls({Wall(10, "w")}, {Wall(110, "w")}));
  EXPECT_FALSE(JoinsWalls({Wall(10, "w")}, {Wall(110, "w", "$", "$", "Other")}));
  EXPECT_TRUE(IsWritten(Of({Wall(10, "w")}, {Wall(110, "v")}), 110));
}

TEST_P(JoinedByGuid, TheOwnerHistoryDoesNotCount) {
  const auto history = [](std::uint32_t number) {
    return Records{{number, "IFCOWNERHISTORY", "$,$,$,.ADDED.,$,$,$," + std::to_string(number)}};
  };
  const auto wall = [this](std::uint32_t number, const std::string& owner) {
    return PlannedRecord{number, "IFCWALL", "'w'," + owner + ",'Wall',$,$,$,$" + Tag()};
  };
  EXPECT_TRUE(JoinsWalls(Records{wall(10, "#20")} + history(20),
                         Records{wall(110, "#120")} + history(120)));
}

TEST_P(JoinedByGuid, AnotherClassIsAnotherObject) {
  EXPECT_FALSE(JoinsWalls({{10, "IFCBEAM", "'w',$,'Wall',$,$,$,$" + Tag()}}, {Wall(110, "w")}));
}

TEST_P(JoinedByGuid, PlacementsCountByTheirPositionInTheWorld) {
  const Records one = Records{Wall(10, "w", "#20")} + Placed(20, "$", "3.,4.,0.");
  const Records shifted = Records{Wall(110, "w", "#120")} + Placed(120, "#130", "1.,4.,0.") +
                          Placed(130, "$", "2.,0.,0.");
  const Records elsewhere = Records{Wall(110, "w", "#120")} + Placed(120, "#130", "1.,4.,0.") +
                            Placed(130, "$", "2.5,0.,0.");
  EXPECT_TRUE(JoinsWalls(one, shifted));
  EXPECT_FALSE(JoinsWalls(one, elsewhere));
  EXPECT_FALSE(JoinsWalls(one, {Wall(110, "w")}));
}

TEST_P(JoinedByGuid, WhatStoodOnThePlacementStandsOnTheOther) {
  const std::string text = Of(Records{Wall(10, "w", "#20")} + Placed(20, "$", "3.,4.,0."),
                              Records{Wall(110, "w", "#120"), Wall(111, "v", "#130")} +
                                  Placed(120, "$", "3.,4.,0.") + Placed(130, "#120", "1.,0.,0."));
  EXPECT_EQ("#130=IFCLOCALPLACEMENT(#20,#131);", RecordIn(text, 130));
  EXPECT_FALSE(IsWritten(text, 120));
}

TEST_P(JoinedByGuid, ShapesCountByValueWhateverTheirNumbers) {
  const auto shape = [](std::uint32_t number, const char* point) {
    return Records{
        {number, "IFCPRODUCTDEFINITIONSHAPE", "$,$,(" + Number(number + 1) + ")"},
        {number + 1, "IFCSHAPEREPRESENTATION",
         Number(number + 4) + ",'Body','Brep',(" + Number(number + 2) + ")"},
        {number + 2, "IFCPOLYLINE", "(" + Number(number + 3) + "," + Number(number + 3) + ")"},
        Point(number + 3, point),
        {number + 4, "IFCGEOMETRICREPRESENTATIONCONTEXT",
         "$,'Model',3,1.E-05," + Number(number + 5) + ",$"},
        {number + 5, "IFCAXIS2PLACEMENT3D", Number(number + 6) + ",$,$"},
        Point(number + 6, "0.,0.,0.")};
  };
  EXPECT_TRUE(JoinsWalls(Records{Wall(10, "w", "$", "#20")} + shape(20, "1.,2.,3."),
                         Records{Wall(110, "w", "$", "#120")} + shape(120, "1.,2.,3.")));
  EXPECT_FALSE(JoinsWalls(Records{Wall(10, "w", "$", "#20")} + shape(20, "1.,2.,3."),
                          Records{Wall(110, "w", "$", "#120")} + shape(120, "1.,2.,4.")));
}

TEST_P(JoinedByGuid, TheTypeIsPartOfTheContent) {
  const auto typed = [this](std::uint32_t number, const char* name) {
    return Records{Wall(number, "w"), Type(number + 1, name),
                   Relation(number + 2, "IFCRELDEFINESBYTYPE", "r",
                            "(" + Number(number) + ")," + Number(number + 1))};
  };
  EXPECT_TRUE(JoinsWalls(typed(10, "T"), typed(110, "T")));
  EXPECT_FALSE(JoinsWalls(typed(10, "T"), typed(110, "S")));
  EXPECT_FALSE(JoinsWalls(typed(10, "T"), {Wall(110, "w")}));
}

TEST_P(JoinedByGuid, AWallAndItsOpeningsAreOneTogetherOrNotAtAll) {
  const auto voided = [this](std::uint32_t number, const char* wall, const char* opening) {
    return Records{
        Wall(number, "w", "$", "$", wall), Opening(number + 1, "o", opening),
        Relation(number + 2, "IFCRELVOIDSELEMENT", "r", Number(number) + "," + Number(number + 1))};
  };
  const std::string equal = Of(voided(10, "W", "O"), voided(110, "W", "O"));
  for (const std::uint32_t gone : {110, 111, 112}) EXPECT_FALSE(IsWritten(equal, gone));
  const std::string otherOpening = Of(voided(10, "W", "O"), voided(110, "W", "P"));
  const std::string otherWall = Of(voided(10, "W", "O"), voided(110, "V", "O"));
  for (const std::uint32_t kept : {110, 111, 112}) {
    EXPECT_TRUE(IsWritten(otherOpening, kept)) << otherOpening;
    EXPECT_TRUE(IsWritten(otherWall, kept)) << otherWall;
  }
}

TEST_P(JoinedByGuid, ADifferenceGoesUpThroughAllWholes) {
  const auto parts = [this](std::uint32_t number, const char* innermost) {
    return Records{Wall(number, "w"), Wall(number + 1, "v"),
                   Wall(number + 2, "u", "$", "$", innermost),
                   Relation(number + 3, "IFCRELAGGREGATES", "r",
                            Number(number) + ",(" + Number(number + 1) + ")"),
                   Relation(number + 4, "IFCRELAGGREGATES", "s",
                            Number(number + 1) + ",(" + Number(number + 2) + ")")};
  };
  EXPECT_TRUE(JoinsWalls(parts(10, "P"), parts(110, "P")));
  EXPECT_FALSE(JoinsWalls(parts(10, "P"), parts(110, "Q")));
}

TEST_P(JoinedByGuid, AStoreyDoesNotDecideAboutItsSpaces) {
  const auto storey = [this](std::uint32_t number, const char* name) {
    return Records{
        {number, "IFCBUILDINGSTOREY", "'l',$,'" + std::string(name) + "',$,$,$,$,$,.ELEMENT.,0."},
        {number + 1, "IFCSPACE",
         std::string("'s',$,'S',$,$,$,$,$,.ELEMENT.,") + (IsIfc4() ? "$,$" : ".INTERNAL.,$")},
        Relation(number + 2, "IFCRELAGGREGATES", "r",
                 Number(number) + ",(" + Number(number + 1) + ")")};
  };
  const std::string text = Of(storey(10, "L"), storey(110, "M"));
  EXPECT_TRUE(IsWritten(text, 110));
  EXPECT_FALSE(IsWritten(text, 111)) << text;
  EXPECT_FALSE(IsWritten(text, 112)) << "its only member is in another whole already\n" << text;
}

TEST_P(JoinedByGuid, PropertySetsAreOneWhateverTheOrderOfTheirProperties) {
  const auto set = [](std::uint32_t number, const std::string& order, const char* value) {
    return Records{
        {number, "IFCPROPERTYSET", "'p',$,'Pset_A',$,(" + order + ")"},
        {number + 1, "IFCPROPERTYSINGLEVALUE", "'A',$,IFCLABEL('" + std::string(value) + "'),$"},
        {number + 2, "IFCPROPERTYSINGLEVALUE", "'B',$,IFCREAL(2.),$"}};
  };
  EXPECT_FALSE(IsWritten(Of(set(10, "#11,#12", "x"), set(110, "#112,#111", "x")), 110));
  EXPECT_TRUE(IsWritten(Of(set(10, "#11,#12", "x"), set(110, "#112,#111", "y")), 110));
}

// IFC2X3 allows a property set to one type.
TEST_P(JoinedByGuid, PropertySetsOfTypesThatDifferAreOneWhereTypesMayShareThem) {
  const auto type = [](std::uint32_t number, const char* name) {
    return Records{
        {number, "IFCWALLTYPE",
         "'t',$,'" + std::string(name) + "',$,$,(" + Number(number + 1) + "),$,$,$,.NOTDEFINED."},
        {number + 1, "IFCPROPERTYSET", "'p',$,'Pset_A',$,(" + Number(number + 2) + ")"},
        {number + 2, "IFCPROPERTYSINGLEVALUE", "'A',$,IFCLABEL('x'),$"}};
  };
  EXPECT_FALSE(IsWritten(Of(type(10, "T"), type(110, "T")), 110));
  EXPECT_FALSE(IsWritten(Of(type(10, "T"), type(110, "T")), 111));
  const std::string text = Of(type(10, "T"), type(110, "S"));
  EXPECT_TRUE(IsWritten(text, 110));
  EXPECT_EQ(!IsIfc4(), IsWritten(text, 111)) << text;
}

TEST_P(JoinedByGuid, WhatStandsOnAGridThatGaveWayStandsOnTheOther) {
  const auto grid = [](std::uint32_t number) {
    const std::string axes = "(" + Number(number + 1) + "),(" + Number(number + 2) + ")";
    return Records{{number, "IFCGRID", "'g',$,'G',$,$,$,$," + axes + ",$"},
                   {number + 1, "IFCGRIDAXIS", "'A'," + Number(number + 3) + ",.T."},
                   {number + 2, "IFCGRIDAXIS", "'1'," + Number(number + 3) + ",.T."},
                   {number + 3, "IFCPOLYLINE", "()"}};
  };
  const Records onGrid = {Wall(120, "v", "#121"),
                          {121, "IFCGRIDPLACEMENT", "#122,$"},
                          {122, "IFCVIRTUALGRIDINTERSECTION", "(#111,#112),(0.,0.)"}};
  Records one = grid(10);
  Records other = grid(110);
  for (Records* const records : {&one, &other}) {
    if (IsIfc4()) records->front().attributes += ",$";
  }
  const std::string text = Of(one, other + onGrid);
  EXPECT_EQ("#122=IFCVIRTUALGRIDINTERSECTION((#11,#12),(0.,0.));", RecordIn(text, 122));
  for (const std::uint32_t gone : {110, 111, 112, 113}) EXPECT_FALSE(IsWritten(text, gone));
}

// A column, and a plate that stands on it.
TEST_P(JoinedByGuid, WhatStandsOnAGridStaysWhenTheGridIsElsewhere) {
  const auto building = [this](std::uint32_t first, const std::string& place) {
    const auto number = [first](std::uint32_t offset) { return Number(first + offset); };
    return Records{{first, "IFCGRID",
                    "'g',$,'G',$,$," + number(20) + ",$,(" + number(1) + "),(" + number(2) + "),$" +
                        (IsIfc4() ? ",$" : "")},
                   {first + 1, "IFCGRIDAXIS", "'A'," + number(3) + ",.T."},
                   {first + 2, "IFCGRIDAXIS", "'1'," + number(3) + ",.T."},
                   {first + 3, "IFCPOLYLINE", "()"},
                   Wall(first + 4, "v", number(5)),
                   {first + 5, "IFCGRIDPLACEMENT", number(6) + ",$"},
                   {first + 6, "IFCVIRTUALGRIDINTERSECTION",
                    "(" + number(1) + "," + number(2) + "),(0.,0.)"},
                   Wall(first + 7, "w", number(30))} +
           Placed(first + 20, "$", place) + Placed(first + 30, number(5), "0.,0.,3.");
  };
  const std::string apart = Of(building(10, "0.,0.,0."), building(110, "0.,0.,1."));
  for (const std::uint32_t there : {110, 114, 117}) EXPECT_TRUE(IsWritten(apart, there)) << apart;
  EXPECT_NE(std::string::npos, RecordIn(apart, 116).find("((#111,#112),")) << apart;

  const std::string joined = Of(building(10, "0.,0.,0."), building(110, "0.,0.,0."));
  for (const std::uint32_t gone : {110, 114, 115, 117}) EXPECT_FALSE(IsWritten(joined, gone));
}

// The release wants an axis to be of a grid. This one is only itself.
TEST_P(JoinedByGuid, AnAxisOfNoGridIsComparedByWhatItSays) {
  const auto wall = [this](std::uint32_t first, const char* tag) {
    return Records{Wall(first, "v", Number(first + 1)),
                   {first + 1, "IFCGRIDPLACEMENT", Number(first + 2) + ",$"},
                   {first + 2, "IFCVIRTUALGRIDINTERSECTION",
                    "(" + Number(first + 3) + "," + Number(first + 3) + "),(0.,0.)"},
                   {first + 3, "IFCGRIDAXIS", "'" + std::string(tag) + "',$,.T."}};
  };
  EXPECT_FALSE(IsWritten(Of(wall(10, "A"), wall(110, "A")), 110));
  EXPECT_TRUE(IsWritten(Of(wall(10, "A"), wall(110, "B")), 110));
}

TEST_P(JoinedByGuid, PropertySetsOfObjectsThatBecameOneAreJoined) {
  const auto defined = [this](std::uint32_t number, const char* guid, const char* property) {
    return Records{
        Wall(number, "w"),
        {number + 1, "IFCPROPERTYSET",
         "'" + std::string(guid) + "',$,'Pset_A',$,(" + Number(number + 2) + ")"},
        {number + 2, "IFCPROPERTYSINGLEVALUE", "'" + std::string(property) + "',$,IFCLABEL('x'),$"},
        Relation(number + 3, "IFCRELDEFINESBYPROPERTIES", guid,
                 "(" + Number(number) + ")," + Number(number + 1))};
  };
  const std::string text = Of(defined(10, "p", "A"), defined(110, "q", "B"));
  EXPECT_NE(std::string::npos, text.find(",'Pset_A',$,(#12,#112));")) << text;
  EXPECT_FALSE(IsWritten(text, 113));
}

TEST_P(JoinedByGuid, RelationsThatDifferInMembersAloneAreUnited) {
  const auto storey = [this](std::uint32_t number, const char* guid, const char* ofRelation) {
    return Records{
        {number, "IFCBUILDINGSTOREY", "'l',$,'L',$,$,$,$,$,.ELEMENT.,0."},
        Wall(number + 1, "w"),
        Wall(number + 2, guid),
        Relation(number + 3, "IFCRELCONTAINEDINSPATIALSTRUCTURE", ofRelation,
                 "(" + Number(number + 1) + "," + Number(number + 2) + ")," + Number(number))};
  };
  for (const char* const relation : {"r", "s"}) {
    const std::string text = Of(storey(10, "x", "r"), storey(110, "y", relation));
    EXPECT_NE(std::string::npos, text.find(",(#11,#12,#112),#10);")) << text;
    EXPECT_FALSE(IsWritten(text, 113));
  }
}

TEST_P(JoinedByGuid, ARelationWithTheGuidOfAnotherGetsOneOfItsOwn) {
  const auto group = [](std::uint32_t number, const char* guid) {
    return Records{{number, "IFCGROUP", "'" + std::string(guid) + "',$,'G',$,$"},
                   {number + 1, "IFCGROUP", "'" + std::string(guid) + "m',$,'G',$,$"},
                   Relation(number + 2, "IFCRELASSIGNSTOGROUP", "r",
                            "(" + Number(number + 1) + "),$," + Number(number))};
  };
  const std::string text = Of(group(10, "g"), group(110, "h"));
  EXPECT_NE(std::string::npos, RecordIn(text, 12).find("('r',"));
  EXPECT_TRUE(IsWritten(text, 112));
  EXPECT_EQ(std::string::npos, RecordIn(text, 112).find("('r',")) << text;
}

TEST_P(JoinedByGuid, EqualMaterialsOfTwoRelationsAreOne) {
  const auto made = [this](std::uint32_t number, const char* wall) {
    return Records{Wall(number, wall),
                   {number + 1, "IFCMATERIAL", IsIfc4() ? "'Brick',$,$" : "'Brick'"},
                   Relation(number + 2, "IFCRELASSOCIATESMATERIAL", wall,
                            "(" + Number(number) + ")," + Number(number + 1))};
  };
  const std::string text = Of(made(10, "w"), made(110, "v"));
  EXPECT_NE(std::string::npos, text.find(",(#10,#110),#11);")) << text;
  EXPECT_FALSE(IsWritten(text, 111));
}

TEST_P(JoinedByGuid, EqualApplicationsAreOne) {
  const auto application = [](std::uint32_t number, const char* version) {
    return Records{
        {number, "IFCORGANIZATION", "$,'Org',$,$,$"},
        {number + 1, "IFCAPPLICATION", Number(number) + ",'" + version + "','App','app'"},
        {number + 2, "IFCOWNERHISTORY", "$," + Number(number + 1) + ",$,.ADDED.,$,$,$,1"},
        {number + 3, "IFCGROUP",
         "'g" + std::to_string(number) + "'," + Number(number + 2) + ",'G',$,$"}};
  };
  const std::string text = Of(application(10, "1"), application(110, "1"));
  EXPECT_FALSE(IsWritten(text, 111));
  EXPECT_FALSE(IsWritten(text, 110));
  EXPECT_NE(std::string::npos, RecordIn(text, 112).find(",#11,")) << text;
  EXPECT_TRUE(IsWritten(Of(application(10, "1"), application(110, "2")), 111));
}

TEST_P(JoinedByGuid, AThirdModelJoinsTheOneThatItIsEqualTo) {
  FederatedDocuments models(GetParam());
  models.Add(u"a.ifc", "", {Wall(10, "w", "$", "$", "One")});
  models.Add(u"b.ifc", "", {Wall(110, "w", "$", "$", "Other")});
  models.Add(u"c.ifc", "", {Wall(210, "w", "$", "$", "Other")});
  const std::string text = models.Run(kJoinGuids);
  EXPECT_TRUE(IsWritten(text, 10));
  EXPECT_TRUE(IsWritten(text, 110));
  EXPECT_FALSE(IsWritten(text, 210));
}

TEST_P(JoinedByGuid, EqualObjectsOfOneModelStayTwo) {
  const std::string text =
      Of({Wall(10, "w"), Wall(11, "w")}, {Wall(110, "w"), Wall(111, "w"), Wall(112, "v")});
  EXPECT_TRUE(IsWritten(text, 10));
  EXPECT_TRUE(IsWritten(text, 11));
  EXPECT_FALSE(IsWritten(text, 110));
  EXPECT_FALSE(IsWritten(text, 111)) << "the second of one model is the second of the other";
}

TEST_P(JoinedByGuid, WhatGoesInACircleEnds) {
  const auto circle = [this](std::uint32_t number) {
    return Records{Wall(number, "w"),
                   Wall(number + 1, "v", Number(number + 3)),
                   Relation(number + 2, "IFCRELAGGREGATES", "r",
                            Number(number) + ",(" + Number(number + 1) + ")"),
                   {number + 3, "IFCLOCALPLACEMENT", Number(number + 3) + ",$"},
                   Relation(number + 4, "IFCRELAGGREGATES", "s",
                            Number(number + 1) + ",(" + Number(number) + ")")};
  };
  EXPECT_FALSE(IsWritten(Of(circle(10), {Wall(113, "x")}), 110));
  EXPECT_TRUE(IsWritten(Of(circle(10), circle(110)), 110)) << "a circle is like nothing else";
}

TEST_P(JoinedByGuid, ALongChainTakesNoStack) {
  constexpr std::uint32_t kCount = 20000;
  const auto chain = [this](std::uint32_t base) {
    Records records = {Wall(base, "w", Number(base + 1))};
    for (std::uint32_t i = 1; i <= kCount; ++i) {
      const std::string outer = i == kCount ? "$" : Number(base + i + 1);
      records.push_back({base + i, "IFCLOCALPLACEMENT", outer + ",$"});
    }
    return records;
  };
  EXPECT_FALSE(IsWritten(Of(chain(10), chain(100010)), 100010));
}

}  // namespace
}  // namespace corvel

// What hangs on objects that others gave way to, whoever chose them.
#include "merge/federation/mend_relations.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/cancellation.h"
#include "federated_documents.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::PlannedRecord;
using test::Records;
using test::operator+;
// Numbers in the model: who gives way, and to whom.
using Pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

bool HasLine(const std::string& text, const std::string& line) {
  return text.find(line + "\n") != std::string::npos;
}

bool HasRecord(const std::string& text, std::uint32_t number) {
  return text.find("#" + std::to_string(number) + "=") != std::string::npos;
}

// Two models, the numbers of the second from #100 on.
class Mended : public testing::TestWithParam<SchemaNamespace> {
 protected:
  bool IsIfc4() const { return GetParam() == SchemaNamespace::IFC4; }

  // A storey, and a wall without a shape.
  PlannedRecord Storey(std::uint32_t number) const {
    return {number, "IFCBUILDINGSTOREY", Root(number) + ",'Level',$,$,$,$,$,.ELEMENT.,0."};
  }
  PlannedRecord Wall(std::uint32_t number, const std::string& shape = "$") const {
    return {number, "IFCWALL",
            Root(number) + ",'Wall',$,$,$," + shape + ",$" + (IsIfc4() ? ",$" : "")};
  }
  PlannedRecord Relation(std::uint32_t number, const char* className,
                         const std::string& ends) const {
    return {number, className, Root(number) + ",$,$," + ends};
  }
  PlannedRecord Contained(std::uint32_t number, const std::string& members,
                          const std::string& storey) const {
    return Relation(number, "IFCRELCONTAINEDINSPATIALSTRUCTURE", "(" + members + ")," + storey);
  }
  PlannedRecord Set(std::uint32_t number, const std::string& properties,
                    const char* name = "Pset_A") const {
    return {number, "IFCPROPERTYSET", Root(number) + ",'" + name + "',$,(" + properties + ")"};
  }
  PlannedRecord Property(std::uint32_t number, const char* name, const char* value) const {
    return {number, "IFCPROPERTYSINGLEVALUE",
            "'" + std::string(name) + "',$,IFCLABEL('" + value + "'),$"};
  }
  PlannedRecord Defined(std::uint32_t number, const std::string& members,
                        const std::string& set) const {
    return Relation(number, "IFCRELDEFINESBYPROPERTIES", "(" + members + ")," + set);
  }
  static std::string Root(std::uint32_t number) { return "'g" + std::to_string(number) + "',$"; }

  std::string Of(const Records& one, const Records& other, const Pairs& pairs) {
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "", one);
    models.Add(u"b.ifc", "", other);
    return models.RunStep([&](FederatedModel& model) {
      const NumberTable& entities = model.Container().entities;
      for (const auto& [gone, survivor] : pairs) {
        model.GiveWay(*entities.Find(gone), *entities.Find(survivor));
      }
      Ticker ticker({});
      EXPECT_TRUE(MendRelations(model, ticker, mended_));
      EXPECT_TRUE(LeaveOutBelongings(model, mended_, ticker, leftOut_));
    });
  }

  MendedRelations mended_;
  std::size_t leftOut_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Releases, Mended,
                         testing::Values(SchemaNamespace::IFC2X3, SchemaNamespace::IFC4),
                         [](const auto& release) {
                           return release.param == SchemaNamespace::IFC4 ? "IFC4" : "IFC2X3";
                         });

TEST_P(Mended, WhereNothingGaveWayNothingChanges) {
  const Records one = {Storey(10), Wall(11), Contained(12, "#11", "#10")};
  const Records other = {Storey(110), Wall(111), Contained(112, "#111", "#110")};
  EXPECT_EQ(Of(one, other, {}), Of(one, other, {}));
  EXPECT_EQ(0u, mended_.deleted.size() + mended_.left + leftOut_);
  EXPECT_TRUE(HasLine(Of(one, other, {}), "#112=IFCRELCONTAINEDINSPATIALSTRUCTURE('g112'," +
                                              std::string(IsIfc4() ? "$" : "*") +
                                              ",$,$,(#111),#110);"));
}

TEST_P(Mended, WhatHungOnTheOneThatGaveWayHangsOnTheOther) {
  const std::string text =
      Of({Storey(10)}, {Storey(110), Wall(111), Contained(112, "#111", "#110")}, {{110, 10}});
  EXPECT_FALSE(HasRecord(text, 110));
  EXPECT_NE(std::string::npos, text.find(",(#111),#10);")) << text;
}

TEST_P(Mended, AMemberOfTwoWholesLeavesTheLaterRelation) {
  const std::string text =
      Of({Storey(10), Storey(20), Wall(11), Contained(12, "#11", "#10")},
         {Storey(110), Wall(111), Wall(121), Contained(112, "#111,#121", "#110")},
         {{111, 11}, {110, 20}});
  EXPECT_NE(std::string::npos, text.find(",(#11),#10);")) << text;
  EXPECT_NE(std::string::npos, text.find(",(#121),#20);")) << text;
  EXPECT_EQ(1u, mended_.left);
  EXPECT_EQ(0u, mended_.deleted.size());
}

TEST_P(Mended, ARelationThatTheLastMemberLeavesGoes) {
  const std::string text =
      Of({Storey(10), Wall(11), Contained(12, "#11", "#10")},
         {Storey(110), Wall(111), Contained(112, "#111", "#110")}, {{111, 11}, {110, 10}});
  EXPECT_TRUE(HasRecord(text, 12));
  EXPECT_FALSE(HasRecord(text, 112));
  EXPECT_EQ(1u, mended_.deleted.size());
}

TEST_P(Mended, WhatAnInputSaysTwiceStays) {
  const std::string text = Of(
      {Storey(10), Storey(20), Wall(11), Contained(12, "#11", "#10"), Contained(22, "#11", "#20")},
      {Storey(110), Wall(111), Contained(112, "#111", "#110")}, {{111, 11}});
  EXPECT_TRUE(HasRecord(text, 12));
  EXPECT_TRUE(HasRecord(text, 22));
  EXPECT_FALSE(HasRecord(text, 112));
}

TEST_P(Mended, APartIsAPartOfTheFirstWholeOnly) {
  const auto aggregates = [this](std::uint32_t number, const char* ends) {
    return Relation(number, "IFCRELAGGREGATES", ends);
  };
  const std::string text =
      Of({Wall(10), Wall(11), aggregates(12, "#10,(#11)")},
         {Wall(110), Wall(111), Wall(121), aggregates(112, "#110,(#111,#121)")}, {{111, 11}});
  EXPECT_NE(std::string::npos, text.find("#10,(#11));")) << text;
  EXPECT_NE(std::string::npos, text.find("#110,(#121));")) << text;
}

TEST_P(Mended, ATypeWithTwoRelationsHasOneWithAllMembers) {
  const auto type = [this](std::uint32_t number) {
    return PlannedRecord{number, "IFCWALLTYPE", Root(number) + ",'T',$,$,$,$,$,$,.NOTDEFINED."};
  };
  const auto typed = [this](std::uint32_t number, const char* ends) {
    return Relation(number, "IFCRELDEFINESBYTYPE", ends);
  };
  const std::string text =
      Of({type(10), Wall(11), Wall(13), typed(12, "(#11,#13),#10")},
         {type(110), Wall(111), Wall(113), typed(112, "(#111,#113),#110")}, {{110, 10}, {111, 11}});
  EXPECT_NE(std::string::npos, text.find(",(#11,#13,#113),#10);")) << text;
  EXPECT_FALSE(HasRecord(text, 112));
  EXPECT_EQ(1u, mended_.united);
}

TEST_P(Mended, AnObjectHasTheTypeThatItHadFirst) {
  const auto type = [this](std::uint32_t number) {
    return PlannedRecord{number, "IFCWALLTYPE", Root(number) + ",'T',$,$,$,$,$,$,.NOTDEFINED."};
  };
  const auto typed = [this](std::uint32_t number, const char* ends) {
    return Relation(number, "IFCRELDEFINESBYTYPE", ends);
  };
  const std::string text = Of({type(10), Wall(11), typed(12, "(#11),#10")},
                              {type(110), Wall(111), typed(112, "(#111),#110")}, {{111, 11}});
  EXPECT_TRUE(HasRecord(text, 12));
  EXPECT_FALSE(HasRecord(text, 112));
  EXPECT_TRUE(HasRecord(text, 110)) << "the type has no relation, and needs none";
}

TEST_P(Mended, ADoorFillsTheOpeningThatItFilledFirst) {
  const auto opening = [this](std::uint32_t number) {
    return PlannedRecord{number, "IFCOPENINGELEMENT",
                         Root(number) + ",$,$,$,$,$,$" + (IsIfc4() ? ",$" : "")};
  };
  const auto voids = [this](std::uint32_t number, const char* ends) {
    return Relation(number, "IFCRELVOIDSELEMENT", ends);
  };
  const auto fills = [this](std::uint32_t number, const char* ends) {
    return Relation(number, "IFCRELFILLSELEMENT", ends);
  };
  const std::string text =
      Of({Wall(10), opening(11), Wall(12), voids(13, "#10,#11"), fills(14, "#11,#12")},
         {Wall(110), opening(111), Wall(112), voids(113, "#110,#111"), fills(114, "#111,#112")},
         {{112, 12}});
  EXPECT_TRUE(HasRecord(text, 14));
  EXPECT_FALSE(HasRecord(text, 114));
  EXPECT_TRUE(HasRecord(text, 113)) << "the other opening is in its wall still";
}

TEST_P(Mended, OfTwoMaterialsTheFirstStaysAndADifferenceIsListed) {
  const auto material = [this](std::uint32_t number, const char* name) {
    return PlannedRecord{number, "IFCMATERIAL",
                         "'" + std::string(name) + (IsIfc4() ? "',$,$" : "'")};
  };
  const auto made = [this](std::uint32_t number, const char* ends) {
    return Relation(number, "IFCRELASSOCIATESMATERIAL", ends);
  };
  for (const char* const name : {"Brick", "Stone"}) {
    mended_ = {};
    const std::string text =
        Of({Wall(10), material(11, "Brick"), made(12, "(#10),#11")},
           {Wall(110), material(111, name), made(112, "(#110),#111")}, {{110, 10}});
    EXPECT_TRUE(HasRecord(text, 12));
    EXPECT_FALSE(HasRecord(text, 112));
    EXPECT_FALSE(HasRecord(text, 111)) << "nothing is of this material any more";
    const std::size_t differences = std::string(name) == "Stone" ? 1 : 0;
    ASSERT_EQ(differences, mended_.differences.size());
    if (differences != 0) {
      EXPECT_EQ("Material of IfcWall 'Wall' (#10)", ToUtf8(mended_.differences[0]));
    }
  }
}

TEST_P(Mended, TheShapeOfWhatGaveWayGoesButNotWhatOthersHaveToo) {
  const Records shapes = {{120, "IFCPRODUCTDEFINITIONSHAPE", "$,$,(#121)"},
                          {121, "IFCSHAPEREPRESENTATION", "#124,'Body','Brep',(#122,#123)"},
                          {122, "IFCCARTESIANPOINT", "(1.,2.,3.)"},
                          {123, "IFCCARTESIANPOINT", "(4.,5.,6.)"},
                          {124, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#125,$"},
                          {125, "IFCAXIS2PLACEMENT3D", "#122,$,$"},
                          {126, "IFCPRESENTATIONLAYERASSIGNMENT", "'l',$,(#123),$"},
                          {127, "IFCSTYLEDITEM", "#123,(),$"},
                          {130, "IFCPRODUCTDEFINITIONSHAPE", "$,$,(#131)"},
                          {131, "IFCSHAPEREPRESENTATION", "#124,'Body','Brep',(#122)"},
                          {132, "IFCCARTESIANPOINT", "(7.,8.,9.)"}};
  const std::string text =
      Of({Wall(10)}, Records{Wall(110, "#120"), Wall(111, "#130")} + shapes, {{110, 10}});
  for (const std::uint32_t gone : {120, 121, 123, 126, 127}) EXPECT_FALSE(HasRecord(text, gone));
  for (const std::uint32_t kept : {122, 124, 125, 130, 131}) EXPECT_TRUE(HasRecord(text, kept));
  EXPECT_TRUE(HasRecord(text, 132)) << "a loose point of its input is no affair of this";
  EXPECT_EQ(5u, leftOut_);
}

// A sub-context that no shape is in belongs to nobody.
TEST_P(Mended, WhatALooseRecordRefersToStays) {
  const Records shape = {{120, "IFCPRODUCTDEFINITIONSHAPE", "$,$,(#121)"},
                         {121, "IFCSHAPEREPRESENTATION", "#124,'Body','Brep',(#122)"},
                         {122, "IFCCARTESIANPOINT", "(1.,2.,3.)"},
                         {124, "IFCGEOMETRICREPRESENTATIONCONTEXT", "$,'Model',3,$,#125,$"},
                         {125, "IFCAXIS2PLACEMENT3D", "#123,$,$"},
                         {123, "IFCCARTESIANPOINT", "(4.,5.,6.)"},
                         {126, "IFCGEOMETRICREPRESENTATIONSUBCONTEXT",
                          "'Axis','Model',*,*,*,*,#124,$,.GRAPH_VIEW.,$"}};
  const std::string text = Of({Wall(10)}, Records{Wall(110, "#120")} + shape, {{110, 10}});
  for (const std::uint32_t gone : {120, 121, 122}) EXPECT_FALSE(HasRecord(text, gone));
  for (const std::uint32_t kept : {123, 124, 125}) EXPECT_TRUE(HasRecord(text, kept));
  EXPECT_NE(std::string::npos, text.find(",#124,$,.GRAPH_VIEW.,$);")) << text;
  EXPECT_EQ(3u, leftOut_);
}

TEST_P(Mended, NothingStandsTwiceInASet) {
  const std::string text = Of({Wall(10), Wall(11)},
                              {Wall(110),
                               Wall(111),
                               Relation(112, "IFCRELASSIGNSTOGROUP", "(#110,#111,#110),$,#113"),
                               {113, "IFCGROUP", Root(113) + ",'G',$,$"}},
                              {{110, 10}, {111, 10}});
  EXPECT_NE(std::string::npos, text.find(",(#10,#10),$,#113);"))
      << "what stands there twice by itself stays, what came to it goes\n"
      << text;
}

TEST_P(Mended, PropertySetsOfOneNameAreJoinedAndTheFirstWins) {
  const std::string text =
      Of({Wall(10), Set(11, "#12,#13"), Property(12, "A", "1"), Property(13, "B", "2"),
          Defined(14, "#10", "#11")},
         {Wall(110), Set(111, "#112,#113,#115"), Property(112, "A", "1"), Property(113, "B", "3"),
          Property(115, "C", "4"), Defined(114, "#110", "#111")},
         {{110, 10}});
  EXPECT_NE(std::string::npos, text.find(",'Pset_A',$,(#12,#13,#115));")) << text;
  for (const std::uint32_t gone : {111, 112, 113, 114}) EXPECT_FALSE(HasRecord(text, gone));
  ASSERT_EQ(1u, mended_.differences.size());
  EXPECT_EQ("Pset_A.B of IfcWall 'Wall' (#10)", ToUtf8(mended_.differences[0]));
  EXPECT_EQ(1u, mended_.propertySets);
}

TEST_P(Mended, PropertySetsOfOtherNamesAreSideBySide) {
  const std::string text =
      Of({Wall(10), Set(11, "#12"), Property(12, "A", "1"), Defined(14, "#10", "#11")},
         {Wall(110), Set(111, "#112", "Pset_B"), Property(112, "A", "2"),
          Defined(114, "#110", "#111")},
         {{110, 10}});
  EXPECT_NE(std::string::npos, text.find("(#10),#11);")) << text;
  EXPECT_NE(std::string::npos, text.find("(#10),#111);")) << text;
  EXPECT_EQ(0u, mended_.propertySets);
}

TEST_P(Mended, ASetThatOthersUseIsCopiedBeforeItGrows) {
  const std::string text = Of(
      {Wall(10), Wall(20), Set(11, "#12"), Property(12, "A", "1"), Defined(14, "#10,#20", "#11")},
      {Wall(110), Set(111, "#112"), Property(112, "C", "4"), Defined(114, "#110", "#111")},
      {{110, 10}});
  EXPECT_NE(std::string::npos, text.find(",'Pset_A',$,(#12));")) << text;
  EXPECT_NE(std::string::npos, text.find(",'Pset_A',$,(#12,#112));")) << text;
  EXPECT_NE(std::string::npos, text.find("(#20),#11);")) << text;
  EXPECT_NE(std::string::npos, text.find("(#10),#116);")) << text;
  EXPECT_FALSE(HasRecord(text, 111));
}

TEST_P(Mended, ALaterSetThatOthersUseStaysWithThem) {
  const std::string text =
      Of({Wall(10), Set(11, "#12"), Property(12, "A", "1"), Defined(14, "#10", "#11")},
         {Wall(110), Wall(120), Set(111, "#112"), Property(112, "C", "4"),
          Defined(114, "#110,#120", "#111")},
         {{110, 10}});
  EXPECT_NE(std::string::npos, text.find(",'Pset_A',$,(#12,#112));")) << text;
  EXPECT_NE(std::string::npos, text.find("(#120),#111);")) << text;
}

TEST_P(Mended, SetsOnManyObjectsAreJoinedOnce) {
  const std::string text = Of(
      {Wall(10), Wall(20), Set(11, "#12"), Property(12, "A", "1"), Defined(14, "#10,#20", "#11")},
      {Wall(110), Wall(120), Set(111, "#112"), Property(112, "C", "4"),
       Defined(114, "#110,#120", "#111")},
      {{110, 10}, {120, 20}});
  EXPECT_NE(std::string::npos, text.find(",'Pset_A',$,(#12,#112));")) << text;
  EXPECT_NE(std::string::npos, text.find("(#10,#20),#11);")) << text;
  EXPECT_FALSE(HasRecord(text, 111));
  EXPECT_FALSE(HasRecord(text, 114));
}

TEST_P(Mended, WhatIsSaidAboutMapsStaysApart) {
  const std::string text = Of({Wall(10), Set(11, "#12", "ePSet_MapConversion"),
                               Property(12, "Eastings", "1"), Defined(14, "#10", "#11")},
                              {Wall(110), Set(111, "#112", "ePSet_MapConversion"),
                               Property(112, "Eastings", "2"), Defined(114, "#110", "#111")},
                              {{110, 10}});
  EXPECT_NE(std::string::npos, text.find("(#10),#111);")) << text;
  EXPECT_EQ(0u, mended_.differences.size());
}

TEST_P(Mended, SetsOfQuantitiesAreJoinedToo) {
  const auto quantities = [this](std::uint32_t number, const char* members) {
    return PlannedRecord{number, "IFCELEMENTQUANTITY", Root(number) + ",'Q',$,$," + members};
  };
  const auto length = [this](std::uint32_t number, const char* name) {
    return PlannedRecord{number, "IFCQUANTITYLENGTH",
                         "'" + std::string(name) + (IsIfc4() ? "',$,$,1.,$" : "',$,$,1.")};
  };
  const std::string text =
      Of({Wall(10), quantities(11, "(#12)"), length(12, "Height"), Defined(14, "#10", "#11")},
         {Wall(110), quantities(111, "(#112,#113)"), length(112, "Height"), length(113, "Width"),
          Defined(114, "#110", "#111")},
         {{110, 10}});
  EXPECT_NE(std::string::npos, text.find(",'Q',$,$,(#12,#113));")) << text;
}

// At each of the ticks in turn.
TEST_P(Mended, ACancelledPassSaysSo) {
  std::size_t cancelled = 0;
  for (bool done = false; !done; ++cancelled) {
    ASSERT_LT(cancelled, 1000u);
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "", {Wall(10)});
    models.Add(u"b.ifc", "", {Wall(110)});
    models.RunStep([&](FederatedModel& model) {
      const NumberTable& entities = model.Container().entities;
      model.GiveWay(*entities.Find(110), *entities.Find(10));
      models.Progress().Forget();
      models.Progress().CancelAt(cancelled);
      Ticker ticker({.callback = test::RecordedProgress::Callback}, {.block = 1});
      mended_ = {};
      done = MendRelations(model, ticker, mended_) &&
             LeaveOutBelongings(model, mended_, ticker, leftOut_);
    });
    EXPECT_EQ(!done, Cancellation::OfProcess().WasConfirmed());
    Cancellation::OfProcess().ForgetAnswer();
  }
  EXPECT_GE(cancelled, 4u * 2u) << "four passes over the two objects that were read";
}

TEST(MendedGroups, OfReleasesThatWantOneRelationAreUnited) {
  for (const SchemaNamespace release : {SchemaNamespace::IFC2X3, SchemaNamespace::IFC4}) {
    FederatedDocuments models(release);
    const auto records = [](const std::string& first) {
      const auto number = static_cast<std::uint32_t>(std::stoul(first));
      return Records{{number, "IFCGROUP", "'g',$,'G',$,$"},
                     {number + 1, "IFCGROUP", "'h',$,'H',$,$"},
                     {number + 2, "IFCRELASSIGNSTOGROUP",
                      "'r',$,$,$,(#" + std::to_string(number + 1) + "),$,#" + first}};
    };
    models.Add(u"a.ifc", "", records("10"));
    models.Add(u"b.ifc", "", records("110"));
    const std::string text = models.RunStep([](FederatedModel& model) {
      const NumberTable& entities = model.Container().entities;
      model.GiveWay(*entities.Find(110), *entities.Find(10));
      Ticker ticker({});
      MendedRelations mended;
      EXPECT_TRUE(MendRelations(model, ticker, mended));
    });
    const bool isUnited = release == SchemaNamespace::IFC2X3;
    EXPECT_EQ(isUnited, text.find(",(#11,#111),$,#10);") != std::string::npos) << text;
    EXPECT_EQ(isUnited, !HasRecord(text, 112));
  }
}

TEST(MendedSets, OfOneRelationAreTiedAnewByThoseThatStay) {
  FederatedDocuments models(SchemaNamespace::IFC4);
  models.Add(u"a.ifc", "",
             {{10, "IFCWALL", "'w',$,'Wall',$,$,$,$,$,$"},
              {11, "IFCPROPERTYSET", "'s',$,'Pset_A',$,(#12)"},
              {12, "IFCPROPERTYSINGLEVALUE", "'A',$,$,$"},
              {14, "IFCRELDEFINESBYPROPERTIES", "'r',$,$,$,(#10),#11"}});
  models.Add(u"b.ifc", "",
             {{110, "IFCWALL", "'w',$,'Wall',$,$,$,$,$,$"},
              {111, "IFCPROPERTYSET", "'t',$,'Pset_A',$,(#112)"},
              {112, "IFCPROPERTYSINGLEVALUE", "'A',$,$,$"},
              {113, "IFCPROPERTYSET", "'u',$,'Pset_B',$,(#112)"},
              {114, "IFCRELDEFINESBYPROPERTIES",
               "'r',$,$,$,(#110),IFCPROPERTYSETDEFINITIONSET((#111,#113))"}});
  const std::string text = models.RunStep([](FederatedModel& model) {
    const NumberTable& entities = model.Container().entities;
    model.GiveWay(*entities.Find(110), *entities.Find(10));
    Ticker ticker({});
    MendedRelations mended;
    EXPECT_TRUE(MendRelations(model, ticker, mended));
  });
  EXPECT_FALSE(HasRecord(text, 114));
  EXPECT_NE(std::string::npos, text.find("(#10),#11);")) << text;
  EXPECT_NE(std::string::npos, text.find("(#10),#113);")) << text;
}

}  // namespace
}  // namespace corvel

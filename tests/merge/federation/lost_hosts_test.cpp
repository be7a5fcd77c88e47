// What cannot be without a host goes with it.
#include "merge/federation/lost_hosts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/cancellation.h"
#include "federated_documents.h"

namespace corvel {
namespace {

using test::FederatedDocuments;
using test::PlannedRecord;
using test::Records;
using Numbers = std::vector<std::uint32_t>;

// Elements of IFC4 have one attribute more than those of IFC2X3.
class Hosts : public testing::TestWithParam<SchemaNamespace> {
 protected:
  bool IsNewer() const { return GetParam() == SchemaNamespace::IFC4; }

  PlannedRecord Element(std::uint32_t number, const char* className) const {
    return {number, className,
            "'g" + std::to_string(number) + "',$,$,$,$,$,$,$" + (IsNewer() ? ",$" : "")};
  }
  PlannedRecord Port(std::uint32_t number) const {
    return {number, "IFCDISTRIBUTIONPORT",
            "'g" + std::to_string(number) + "',$,$,$,$,$,$,$" + (IsNewer() ? ",$,$" : "")};
  }
  static PlannedRecord Relation(std::uint32_t number, const char* className,
                                const std::string& ends) {
    return {number, className, "'r" + std::to_string(number) + "',$,$,$," + ends};
  }

  // #10 has the opening #20, in which #30 stands.
  Records Opened() const {
    return {Element(10, "IFCWALL"), Element(20, "IFCOPENINGELEMENT"),
            Relation(21, "IFCRELVOIDSELEMENT", "#10,#20"),
            Relation(22, "IFCRELFILLSELEMENT", "#20,#30"), Element(30, "IFCPLATE")};
  }

  // The numbers that are left of a first model that came without some of its objects.
  std::string Left(const Records& records, const Numbers& dropped) {
    FederatedDocuments models(GetParam());
    models.Add(u"a.ifc", "", records);
    models.Add(u"b.ifc", "", {});
    for (const std::uint32_t number : dropped) models.At(0, number).marker = IFC::kDeleted;
    text_ = models.RunStep([this](FederatedModel& model) {
      Ticker ticker({});
      EXPECT_TRUE(DeleteWhatLostItsHost(model, ticker, deleted_));
    });
    std::string numbers;
    for (std::size_t at = 0; at < text_.size(); at = text_.find('\n', at) + 1) {
      numbers += text_.substr(at, text_.find('=', at) - at);
    }
    return numbers;
  }

  std::string text_;
  std::size_t deleted_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Releases, Hosts,
                         testing::Values(SchemaNamespace::IFC2X3, SchemaNamespace::IFC4),
                         [](const auto& release) {
                           return release.param == SchemaNamespace::IFC4 ? "IFC4" : "IFC2X3";
                         });

TEST_P(Hosts, AnOpeningInAWallStays) {
  EXPECT_EQ("#1#10#20#21#22#30", Left(Opened(), {}));
  EXPECT_EQ(0u, deleted_);
}

TEST_P(Hosts, AnOpeningGoesWithItsWallAndLeavesWhatStoodInIt) {
  EXPECT_EQ("#1#30", Left(Opened(), {10, 21}));
  EXPECT_EQ(2u, deleted_);
}

TEST_P(Hosts, ARelationWithoutTheWallHoldsNoOpening) {
  EXPECT_EQ("#1#30", Left(Opened(), {10}));
  EXPECT_EQ(3u, deleted_);
}

TEST_P(Hosts, AnOpeningThatNeverHadAHostStays) {
  EXPECT_EQ("#1#20", Left({Element(20, "IFCOPENINGELEMENT")}, {}));
}

TEST_P(Hosts, AnOpeningWithAnotherRelationStays) {
  Records records = Opened();
  records.push_back(Element(40, "IFCWALL"));
  records.push_back(Relation(41, "IFCRELVOIDSELEMENT", "#40,#20"));
  EXPECT_EQ("#1#20#22#30#40#41", Left(records, {10, 21}));
}

TEST_P(Hosts, AProjectionGoesWithItsWall) {
  const Records records = {Element(10, "IFCWALL"), Element(20, "IFCPROJECTIONELEMENT"),
                           Relation(21, "IFCRELPROJECTSELEMENT", "#10,#20")};
  EXPECT_EQ("#1#10#20#21", Left(records, {}));
  EXPECT_EQ("#1", Left(records, {10, 21}));
}

TEST_P(Hosts, APortGoesWithItsElementUpToIfc2x3) {
  const Records records = {Element(10, "IFCBUILDINGELEMENTPROXY"), Port(20),
                           Relation(21, "IFCRELCONNECTSPORTTOELEMENT", "#20,#10")};
  EXPECT_EQ(IsNewer() ? "#1#20" : "#1", Left(records, {10, 21}));
}

TEST_P(Hosts, AGroupGoesWithItsLastMemberUpToIfc2x3) {
  const Records records = {Element(10, "IFCWALL"),
                           {20, "IFCGROUP", "'g20',$,$,$,$"},
                           Relation(21, "IFCRELASSIGNSTOGROUP", "(#10),$,#20")};
  EXPECT_EQ(IsNewer() ? "#1#20" : "#1", Left(records, {10, 21}));
}

TEST_P(Hosts, WhatGoesLeavesTheListsOfOthers) {
  Records records = Opened();
  records.push_back(Relation(50, "IFCRELASSOCIATES", "(#20,#30)"));
  records.push_back(Relation(51, "IFCRELASSOCIATES", "(#20)"));
  EXPECT_EQ("#1#30#50", Left(records, {10, 21}));
  EXPECT_NE(std::string::npos, text_.find(",$,$,(#30));")) << text_;
}

TEST_P(Hosts, WhatStoodOnAnOpeningStandsWhereItStoodWithoutIt) {
  const auto placed = [this](std::uint32_t number, const char* className, const char* placement) {
    PlannedRecord record = Element(number, className);
    record.attributes =
        "'g" + std::to_string(number) + "',$,$,$,$," + placement + ",$,$" + (IsNewer() ? ",$" : "");
    return record;
  };
  const Records records = {placed(10, "IFCWALL", "$"),
                           placed(20, "IFCOPENINGELEMENT", "#60"),
                           Relation(21, "IFCRELVOIDSELEMENT", "#10,#20"),
                           placed(30, "IFCPLATE", "#63"),
                           {60, "IFCLOCALPLACEMENT", "$,#61"},
                           {61, "IFCAXIS2PLACEMENT3D", "#62,$,$"},
                           {62, "IFCCARTESIANPOINT", "(1.,2.,3.)"},
                           {63, "IFCLOCALPLACEMENT", "#60,#64"},
                           {64, "IFCAXIS2PLACEMENT3D", "#65,$,$"},
                           {65, "IFCCARTESIANPOINT", "(10.,20.,30.)"}};
  Left(records, {10, 21});
  const bool isFolded = text_.find("#63=IFCLOCALPLACEMENT($,") != std::string::npos;
  EXPECT_EQ(!IsNewer(), isFolded) << "in IFC2X3 alone a placement needs a product: " << text_;
  EXPECT_EQ(isFolded, text_.find("=IFCCARTESIANPOINT((11.,22.,33.));") != std::string::npos);
  EXPECT_EQ(isFolded, text_.find("#60=") == std::string::npos);
}

TEST_P(Hosts, ACancelledSearchSaysSo) {
  FederatedDocuments models(GetParam());
  models.Add(u"a.ifc", "", Opened());
  models.Add(u"b.ifc", "", {});
  models.RunStep([&](FederatedModel& model) {
    models.Progress().Forget();
    models.Progress().CancelAt(1);
    Ticker ticker({.callback = test::RecordedProgress::Callback}, {.block = 1});
    EXPECT_FALSE(DeleteWhatLostItsHost(model, ticker, deleted_));
  });
  Cancellation::OfProcess().ForgetAnswer();
}

}  // namespace
}  // namespace corvel

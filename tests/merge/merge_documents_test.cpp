// The fold of all documents into the first, its ticks and its log.
#include "merge/merge_documents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "graph_document.h"
#include "merge/merged_parents.h"
#include "step/log/ifc_log.h"
#include "support/model.h"
#include "support/temporary_folder.h"

namespace corvel {
namespace {

using test::Graph;
using test::GraphDocument;
using test::GraphNode;
using test::MergeWorld;
using test::Model;
using test::Of;
using test::TemporaryFolder;
using test::Tick;

using Numbers = std::vector<std::uint32_t>;
using Wall = Of<u"IfcWall">;
using Project = Of<u"IfcProject">;
using Point = Of<u"IfcPoint", GraphNode>;

// A project and points, `count` entities in all, numbered from `firstNumber` on.
void Fill(GraphDocument& document, std::uint32_t firstNumber, std::uint32_t count) {
  document.AddRoot<Project>(firstNumber, "p");
  for (std::uint32_t i = 1; i < count; ++i) document.Add<Point>(firstNumber + i);
}

std::vector<Tick> Ticks(int from, int to, int weight, const WideString& text, bool exact) {
  std::vector<Tick> ticks;
  for (int value = from; value <= to; ++value) ticks.push_back({value, weight, text, exact, 100});
  return ticks;
}
std::vector<Tick> SourceParents(int to) { return Ticks(1, to, 0, u"1/3 ", false); }
std::vector<Tick> DestinationParents(int to) { return Ticks(1, to, 2, u"2/3 ", true); }
std::vector<Tick> Passes(int from, int to) { return Ticks(from, to, 0, u"3/3", false); }

class Fold : public testing::Test {
 protected:
  static IfcDocument* MergeAll(std::initializer_list<GraphDocument*> documents) {
    std::vector<IfcDocument*> all;
    for (GraphDocument* const document : documents) all.push_back(&**document);
    return MergeDocuments(all, {}, {});
  }

  // Three documents of two entities each, of which the last two may be merged.
  void FillThree() {
    Fill(first_, 1, 2);
    Fill(second_, 101, 2);
    Fill(third_, 201, 2);
  }

  MergeWorld world_;
  GraphDocument first_{u"C:\\models\\first.ifc"};
  GraphDocument second_{u"C:\\models\\second.ifc"};
  GraphDocument third_{u"/models/third.ifc"};
};

TEST_F(Fold, SmallModelsTickOnce) {
  Fill(first_, 1, 10);
  Fill(second_, 101, 40);
  first_->MergeDocument(*second_, 0, false);
  EXPECT_EQ(49u, first_.Numbers().size());
  EXPECT_EQ(Passes(1, 1), *world_.progress);
}

TEST_F(Fold, AnEmptySourceTicksNotAtAll) {
  Fill(first_, 1, 10);
  first_->MergeDocument(*second_, 0, false);
  EXPECT_EQ(std::vector<Tick>{}, *world_.progress);
  EXPECT_EQ(MergeStatus::kMerged, first_->mergeStatus);
}

TEST_F(Fold, BothPassesShareOneRunFrom0To100) {
  Fill(first_, 1, 50);
  Fill(second_, 101, 50);
  first_->MergeDocument(*second_, 0, false);
  // 50 entities of the source tick one by one, 99 of the destination after every one of them.
  EXPECT_EQ(Passes(1, 100) + std::vector<Tick>(49, {100, 0, u"3/3", false, 100}), *world_.progress);
}

TEST_F(Fold, AFiftiethOfTheEntitiesTicksOnce) {
  Fill(first_, 1, 100);
  Fill(second_, 1001, 101);
  first_->MergeDocument(*second_, 0, false);
  // The source ticks at its entities 1, 3, 5 ... 101; the destination, 200 by now, at 4, 8 ... 200.
  // 101 entities are one more than a hundred of them.
  EXPECT_EQ(SourceParents(100) + Ticks(100, 100, 0, u"1/3 ", false) + DestinationParents(100) +
                Passes(1, 100) + Passes(100, 100),
            *world_.progress);
}

TEST_F(Fold, DeletedEntitiesTickInTheDestinationOnly) {
  Fill(first_, 1, 50);
  Fill(second_, 101, 10);
  for (std::uint32_t number = 2; number <= 50; ++number) {
    first_.At(number)->marker = IFC::kDeleted;
  }
  second_.At(101)->marker = IFC::kDeleted;
  second_.At(102)->marker = IFC::kDeleted;
  first_->MergeDocument(*second_, 0, false);
  // The first live entity of the source ticks; then 58 entities of the destination do.
  EXPECT_EQ(Passes(1, 59), *world_.progress);
}

TEST_F(Fold, AllDeletedInTheSourceTicksNotAtAll) {
  Fill(first_, 1, 3);
  Fill(second_, 101, 1);
  second_.At(101)->marker = IFC::kDeleted;
  first_->MergeDocument(*second_, 0, false);
  EXPECT_EQ(std::vector<Tick>{}, *world_.progress);
}

TEST_F(Fold, CancelInTheParentsOfTheSourceStopsNothing) {
  Fill(first_, 1, 3);
  Fill(second_, 101, 100);
  world_.progress.CancelAt(10);
  EXPECT_TRUE(first_->MergeDocument(*second_, 0, false));
  EXPECT_EQ(1u, world_.system.boxes.size());
  // 102 entities of the destination tick 51 times.
  EXPECT_EQ(SourceParents(11) + Passes(1, 100) + Passes(100, 100), *world_.progress);
  EXPECT_EQ(102u, first_.Numbers().size());
  EXPECT_EQ(MergeStatus::kMerged, first_->mergeStatus);
}

TEST_F(Fold, CancelInTheParentsOfTheDestinationEndsTheMerge) {
  Fill(first_, 1, 100);
  Fill(second_, 1001, 3);
  world_.progress.CancelAt(99);
  EXPECT_FALSE(first_->MergeDocument(*second_, 0, false));
  EXPECT_EQ(DestinationParents(100), *world_.progress);
  EXPECT_EQ(100u, first_.Numbers().size());
  EXPECT_EQ(nullptr, second_->mainContainer);
  EXPECT_EQ(MergeStatus::kNotMerged, first_->mergeStatus);
}

TEST_F(Fold, CancelInTheSourcesPassLeavesWhatWasAdded) {
  Fill(first_, 1, 3);
  Fill(second_, 101, 60);
  world_.progress.CancelAt(4);
  EXPECT_FALSE(first_->MergeDocument(*second_, 0, false));
  // The project and four points had their turn.
  EXPECT_EQ((Numbers{1, 2, 3, 102, 103, 104, 105}), first_.Numbers());
  EXPECT_EQ(MergeStatus::kNotMerged, first_->mergeStatus);
}

TEST_F(Fold, CancelInTheDestinationsPassLeavesTheProjectsApart) {
  Fill(first_, 1, 60);
  Fill(second_, 101, 3);
  const IFC::IfcEntity* const project = second_.At(101);
  world_.progress.CancelAt(2);
  EXPECT_FALSE(first_->MergeDocument(*second_, 0, false));
  EXPECT_EQ(62u, first_.Numbers().size());
  EXPECT_EQ(101u, project->marker);
  EXPECT_EQ(MergeStatus::kNotMerged, first_->mergeStatus);
}

TEST_F(Fold, CancelAnsweredWithNoGoesOn) {
  Fill(first_, 1, 60);
  Fill(second_, 101, 60);
  world_.system.userMeansToCancel = false;
  world_.progress.CancelAt(70);
  EXPECT_TRUE(first_->MergeDocument(*second_, 0, false));
  EXPECT_EQ(std::vector{test::CancelQuestionBox()}, world_.system.boxes);
  EXPECT_EQ(MergeStatus::kMerged, first_->mergeStatus);
}

TEST_F(Fold, TheFirstDocumentIsTheResult) {
  FillThree();
  EXPECT_EQ(&*first_, MergeAll({&first_, &second_, &third_}));
  EXPECT_EQ((Numbers{1, 2, 102, 202}), first_.Numbers());
  EXPECT_EQ(nullptr, second_->mainContainer);
  EXPECT_EQ(nullptr, third_->mainContainer);
}

TEST_F(Fold, WithNothingToFoldInThereIsNoResult) {
  Fill(first_, 1, 2);
  EXPECT_EQ(nullptr, MergeAll({&first_}));
}

TEST_F(Fold, ChoicesReachTheMerge) {
  first_.AddRoot<Project>(1, "p");
  first_.AddRoot<Of<u"IfcSite">>(2, "s1", u"S");
  second_.AddRoot<Of<u"IfcSite">>(102, "s2", u"S");
  const IFC::IfcEntity* const site = second_.At(102);
  EXPECT_EQ(nullptr, MergeDocuments({&*first_, &*second_}, {1, false}, {}));
  EXPECT_EQ(2u, site->marker);

  GraphDocument again(u"again.ifc");
  again.AddRoot<Of<u"IfcSite">>(103, "s3", u"S");
  const IFC::IfcEntity* const other = again.At(103);
  EXPECT_EQ(nullptr, MergeDocuments({&*first_, &*again}, {1, true}, {}));
  EXPECT_EQ(103u, other->marker);
}

TEST_F(Fold, ACancelledDocumentDoesNotStopTheNext) {
  Fill(first_, 1, 3);
  Fill(second_, 101, 60);
  Fill(third_, 201, 3);
  world_.progress.CancelAt(0);
  EXPECT_EQ(&*first_, MergeAll({&first_, &second_, &third_}));
  EXPECT_EQ((Numbers{1, 2, 3, 202, 203}), first_.Numbers());
}

TEST_F(Fold, ACancelAfterAMergeLeavesItStanding) {
  Fill(first_, 1, 3);
  Fill(second_, 101, 3);
  Fill(third_, 201, 60);
  world_.progress.CancelAt(2);  // one tick of the second document, the second tick of the third
  EXPECT_EQ(&*first_, MergeAll({&first_, &second_, &third_}));
  EXPECT_EQ((Numbers{1, 2, 3, 102, 103, 202}), first_.Numbers());
}

TEST_F(Fold, EachDocumentIsAnnouncedBeforeItsTurn) {
  FillThree();
  std::vector<std::pair<WideString, std::size_t>> announced;
  MergeDocuments({&*first_, &*second_, &*third_}, {}, [&](const IfcDocument& document) {
    announced.emplace_back(document.getFilePath(), first_.Numbers().size());
  });
  EXPECT_EQ((std::vector<std::pair<WideString, std::size_t>>{{u"C:\\models\\second.ifc", 2},
                                                             {u"/models/third.ifc", 3}}),
            announced);
}

TEST_F(Fold, AnObjectWhoseNumberStaysTakenIsToldAndNotFiled) {
  Fill(first_, 1, 3);
  Fill(second_, 1, 3);
  IFC::MainContainer::uniqueMarker = 1;
  first_->MergeDocument(*second_, 0, false);
  // 2 is taken, and so is 3, the next one.
  ASSERT_EQ(1u, world_.system.boxes.size());
  EXPECT_EQ(u"AddEntity. Adding canceled -> Marker exist: 3", world_.system.boxes[0].text);
  EXPECT_EQ((Numbers{1, 2, 3, 4}), first_.Numbers());
  EXPECT_EQ(MergeStatus::kMerged, first_->mergeStatus);
}

// The log file from the first byte to the last, but for the line of date and time.
std::string LogOf(const TemporaryFolder& folder, const std::function<void()>& work) {
  IfcLog& log = IfcLog::Instance();
  log.SetFlushEveryLine(false);  // each flush would leave its margin of blanks
  log.Open(folder.Path("log.ifc"));
  work();
  log.Close();
  const std::string text = folder.Read("log_IFC_LOG.txt");
  const std::string head = "[07-03-2024    09:05:00]\r\n" + std::string(199, ' ') + "\n";
  EXPECT_EQ(head, text.substr(0, head.size()));
  return text.substr(head.size());
}

constexpr char kBegin[] =
    "Procesing EntitiesToDelete"
    "Procesing FillEntitiesGUIDmap"
    "Procesing FillParentsLists"
    "Procesing FillMarkers"
    "Procesing FillEntitiesGUIDmap"
    "Procesing FillParentsLists"
    "Procesing FillMarkers"
    "Merging specific object into one";
constexpr char kEnd[] =
    "Adding new objects mainContainer 0"
    "######## STARTING DUPLICATE CLEANUP ########"
    "######## DONE ########"
    "Processing deletedDuplicatedParents";

TEST_F(Fold, TheLogOfAMergeHoldsItsStages) {
  Fill(first_, 1, 2);
  Fill(second_, 101, 3);
  Fill(third_, 201, 5);
  const TemporaryFolder folder;
  EXPECT_EQ(std::string("Merging second.ifc") + kBegin +
                "Processing 3 EntitiesProcessing mainContainer 4 Entities" + kEnd +
                "Merging third.ifc" + kBegin +
                "Processing 5 EntitiesProcessing mainContainer 8 Entities" + kEnd,
            LogOf(folder, [&] {
              MergeAll({&first_, &second_, &third_});
            }));
}

TEST_F(Fold, TheLogOfAMergeAtALevelEndsBeforeTheCleanup) {
  Fill(first_, 1, 2);
  Fill(second_, 101, 3);
  const TemporaryFolder folder;
  EXPECT_EQ(std::string("Merging second.ifc") + kBegin +
                "Processing 3 EntitiesProcessing mainContainer 4 Entities"
                "Adding new objects mainContainer 0"
                "Merging result: False ",
            LogOf(folder, [&] {
              MergeDocuments({&*first_, &*second_}, {1, false}, {});
            }));
}

TEST_F(Fold, TheLogOfACancelledMergeEndsWhereItWas) {
  Fill(first_, 1, 100);
  Fill(second_, 1001, 3);
  const TemporaryFolder folder;
  world_.progress.CancelAt(0);
  EXPECT_EQ(
      "Merging second.ifc"
      "Procesing EntitiesToDelete"
      "Procesing FillEntitiesGUIDmap"
      "Procesing FillParentsLists"
      "Procesing FillMarkers"
      "Procesing FillEntitiesGUIDmap"
      "Procesing FillParentsLists"
      "Merging result: False ",
      LogOf(folder, [&] {
        MergeAll({&first_, &second_});
      }));
}

TEST_F(Fold, TheLogOfARunWithNothingToMergeHoldsTheResultOnly) {
  const TemporaryFolder folder;
  EXPECT_EQ("Merging result: False ", LogOf(folder, [&] { MergeAll({&first_}); }));
}

TEST(MergeParents, TheTargetInheritsThemTwice) {
  Graph graph;
  ParentStore store;
  Wall& a = graph.Add<Wall>();
  Wall& b = graph.Add<Wall>();
  Wall& c = graph.Add<Wall>();
  Wall& entity = graph.Add<Wall>();
  Wall& target = graph.Add<Wall>();
  entity.parents.Insert(&a, store);
  entity.parents.Insert(&b, store);
  entity.mergedParents.Insert(&c, store);
  target.mergedParents.Insert(&entity, store);
  MergeParents(entity, target, store);
  const auto sorted = [](std::vector<IFC::IfcEntity*> members) {
    std::sort(members.begin(), members.end());
    return members;
  };
  const auto members = [](const ParentSet& set) {
    const auto span = set.Members();
    return std::vector<IFC::IfcEntity*>(span.begin(), span.end());
  };
  EXPECT_EQ(sorted({&a, &b, &entity}), members(target.mergedParents));
  EXPECT_EQ(sorted({&a, &b, &entity}), members(target.parents));
  EXPECT_EQ(sorted({&a, &b}), members(entity.parents));
}

}  // namespace
}  // namespace corvel

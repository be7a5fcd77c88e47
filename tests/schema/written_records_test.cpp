// Records of real classes: what they refer to, and what becomes of them on their way to the file.
#include <string>
#include <vector>

#include "core/child_queue.h"
#include "schema/record_model.h"

namespace corvel::test {

// --- IfcRelAggregates ----------------------------------------------------------------------------
class AggregatesRecord : public EachRelease {
 protected:
  // As "#2, #3 can go".
  static std::vector<std::string> ChildrenOf(const IFC::IfcEntity& entity) {
    IFC::ChildQueue queue;
    entity.collectChildren(queue);
    std::vector<std::string> children;
    for (std::size_t i = 0; i < queue.Size(); ++i) {
      std::string child = "nothing";
      if (queue[i].entity != nullptr) child = "#" + std::to_string(queue[i].entity->marker);
      children.push_back(child + (queue[i].canLose ? " can go" : ""));
    }
    return children;
  }
};
RUN_FOR_EACH_RELEASE(AggregatesRecord);

// From IFC4 on the owner history is optional.
TEST_P(AggregatesRecord, ItRefersToItsHistoryItsWholeAndThenItsParts) {
  for (const std::uint32_t number : {3u, 5u, 4u}) Add(number, "IFCWALL");
  Add(2, "IFCOWNERHISTORY");
  const IFC::IfcEntity* const relation =
      Add(7, "IFCRELAGGREGATES('guid',#2,'name','text',#4,(#5,#3,#5))");
  const bool historyIsOptional = Schema() >= SchemaNamespace::IFC4;
  EXPECT_EQ((std::vector<std::string>{historyIsOptional ? "#2 can go" : "#2", "#4", "#5 can go",
                                      "#3 can go", "#5 can go"}),
            ChildrenOf(*relation));
}

TEST_P(AggregatesRecord, WithoutLivePartsItHasNoReasonToStay) {
  IFC::IfcEntity* const part = Add(3, "IFCWALL");
  Add(4, "IFCWALL");
  const IFC::IfcEntity* const relation =
      Add(7, "IFCRELAGGREGATES('guid',$,'name','text',#4,(#3,#3))");
  EXPECT_FALSE(relation->hasNoLiveMembers());
  part->marker = IFC::kDeleted;
  EXPECT_TRUE(relation->hasNoLiveMembers());
}

// --- IfcDoorStyle --------------------------------------------------------------------------------
constexpr const char* kOppositeDoor =
    "IFCDOORSTYLE('guid',$,'name','text',$,$,$,'tag',"
    ".DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT.,.WOOD.,.T.,.F.)";

// The oldest release writes the two operations that all others only read.
class OldestDoorStyle : public EachRelease {};
RUN_FOR_RELEASES(OldestDoorStyle, IFC2X_FINAL, IFC2X_FINAL);

TEST_P(OldestDoorStyle, AnOppositePanelIsWrittenAsItStands) {
  EXPECT_EQ(
      "IFCDOORSTYLE('guid',*,'name','text',$,$,$,'tag',"
      ".DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT.,.WOOD.,.T.,.F.)",
      Written(Add(1, kOppositeDoor)));
}

class LaterDoorStyle : public EachRelease {};
RUN_FOR_RELEASES(LaterDoorStyle, IFC2X2_PLATFORM, IFC2X3);

TEST_P(LaterDoorStyle, AnOppositePanelIsReadAndNotWritten) {
  EXPECT_EQ("IFCDOORSTYLE('guid',*,'name','text',$,$,$,'tag',$,.WOOD.,.T.,.F.)",
            Written(Add(1, kOppositeDoor)));
}

}  // namespace corvel::test

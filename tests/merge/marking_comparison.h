// One marking run by the engine and by LiteralMarking, and everything compared that either of them
// did.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "graph_document.h"
#include "literal_marking.h"
#include "marker_pairs.h"

namespace corvel::test {

// Both sides of a model. Borrows the document. Fails the test that it runs in.
class MarkingComparison {
 public:
  explicit MarkingComparison(IfcDocument& document)
      : document_(document), plain_(document), literal_(plain_, world_) {
    engineWorld_.progress.Forget();
    engineWorld_.reports.Forget();
  }

  // The tick that is cancelled, and whether the user means it.
  void CancelAt(std::size_t tick, bool userMeansIt) {
    world_.cancelAt = tick;
    world_.userMeansIt = engineWorld_.system.userMeansToCancel = userMeansIt;
    engineWorld_.progress.CancelAt(tick);
  }

  // For what comes before the step that is compared.
  void Mark(PlainObject& object, int marker) {
    object.marker = marker;
    object.original->marker = static_cast<std::uint32_t>(marker);
  }
  void FillParentsLists() {
    literal_.FillParentsLists();
    document_.mainContainer->FillParentsLists();
  }

  using Step = std::function<bool(IfcDocument&)>;
  using LiteralStep = std::function<bool(LiteralMarking&)>;
  void Run(const Step& step, const LiteralStep& literalStep) {
    const bool wanted = literalStep(literal_);
    const bool got = step(document_);
    EXPECT_EQ(wanted, got);
    EXPECT_EQ(world_.ticks, *engineWorld_.progress);
    EXPECT_EQ(static_cast<std::size_t>(world_.questions), engineWorld_.system.boxes.size());
    EXPECT_EQ(world_.reports, *engineWorld_.reports);
    std::map<std::string, int> wantedMarkers, gotMarkers;
    std::map<std::string, std::vector<const IFC::IfcEntity*>> wantedChildren, gotChildren;
    for (const PlainObject& object : plain_.objects) {
      const std::string name = NameOf(object);
      wantedMarkers[name] = object.marker;
      gotMarkers[name] = static_cast<int>(static_cast<std::int32_t>(object.original->marker));
      for (const PlainChild& child : object.children) {
        wantedChildren[name].push_back(child.object == nullptr ? nullptr : child.object->original);
      }
      IFC::ChildQueue children;
      object.original->collectChildren(children);
      for (std::size_t i = 0; i < children.Size(); ++i) {
        gotChildren[name].push_back(children[i].entity);
      }
    }
    EXPECT_EQ(wantedMarkers, gotMarkers);
    EXPECT_EQ(wantedChildren, gotChildren);
  }

  PlainModel& Plain() { return plain_; }
  const MarkingWorld& World() const { return world_; }

 private:
  // A value that stands in a record is told by its place among all that were found.
  std::string NameOf(const PlainObject& object) const {
    std::string name = Narrow(object.className);
    if (object.number != 0) return "#" + std::to_string(object.number) + " " + name;
    for (std::size_t i = 0; i < plain_.objects.size(); ++i) {
      if (&plain_.objects[i] == &object) name += " in a record, object " + std::to_string(i);
    }
    return name;
  }

  MergeWorld engineWorld_;
  MarkingWorld world_;
  IfcDocument& document_;
  PlainModel plain_;
  LiteralMarking literal_;
};

}  // namespace corvel::test

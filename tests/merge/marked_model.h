// A small model while it is marked, for tests that look at every record's fate.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "graph_document.h"
#include "marker_pairs.h"
#include "support/model.h"

namespace corvel::test {

class MarkedModel {
 public:
  explicit MarkedModel(std::string_view records, std::string_view schema = "IFC4")
      : model_(records, "model.ifc", schema) {
    world_.progress.Forget();
    world_.reports.Forget();
  }

  // What goes into DeleteObjects.
  Pairs deletePairs, savePairs;
  bool deleteUnrelated = false;
  bool deleteOpenings = false;
  int fileCount = 1;
  bool DeleteObjects() {
    return model_->DeleteObjects(deletePairs, savePairs, deleteUnrelated, deleteOpenings,
                                 fileCount);
  }

  // For a step alone: nothing decided, parents known.
  MarkedModel& Prepare() {
    model_->mainContainer->ResetAllMarkers();
    model_->mainContainer->FillParentsLists();
    return *this;
  }
  MarkedModel& SetSaved(std::initializer_list<std::uint32_t> numbers) {
    for (const std::uint32_t number : numbers) model_[number]->marker = IFC::kToSave;
    return *this;
  }
  MarkedModel& SetDeleted(std::initializer_list<std::uint32_t> numbers) {
    for (const std::uint32_t number : numbers) model_[number]->marker = IFC::kDeleted;
    return *this;
  }

  // "saved 1 2, deleted 3, undecided 4": every record is in it.
  std::string Marks() {
    std::string saved, deleted, undecided;
    const NumberTable& entities = model_->mainContainer->entities;
    for (auto at = entities.First(); at; at = entities.Next(at.number)) {
      const std::uint32_t marker = at.entity->marker;
      std::string& list = marker == IFC::kToSave    ? saved
                          : marker == IFC::kDeleted ? deleted
                                                    : undecided;
      list += " " + std::to_string(at.number);
      if (marker != IFC::kToSave && marker != IFC::kDeleted && marker != 0) list += "?";
    }
    std::string marks;
    for (const auto& [name, list] :
         {std::pair("saved", &saved), {"deleted", &deleted}, {"undecided", &undecided}}) {
      if (!list->empty()) marks += (marks.empty() ? "" : ", ") + (name + *list);
    }
    return marks;
  }
  // The same of the first value that stands in a record.
  std::uint32_t MarkerOfValueIn(std::uint32_t number) const {
    IFC::ChildQueue children;
    model_[number]->collectChildren(children);
    for (std::size_t i = 0; i < children.Size(); ++i) {
      IFC::IfcEntity* const child = children[i].entity;
      if (child != nullptr && child->inlineValue) return child->marker;
    }
    throw std::runtime_error("no value in #" + std::to_string(number));
  }
  // The records as they would be written after the marking.
  std::string Lines() {
    model_->mainContainer->FillMarkers();
    return model_.Lines();
  }

  const std::vector<Tick>& Ticks() const { return *world_.progress; }
  const std::vector<Report>& Reports() const { return *world_.reports; }
  void CancelAt(std::size_t tick, bool userMeansIt = true) {
    world_.progress.CancelAt(tick);
    world_.system.userMeansToCancel = userMeansIt;
  }
  MergeWorld& World() { return world_; }

  IFC::IfcEntity* operator[](std::uint32_t number) const { return model_[number]; }
  IfcDocument& operator*() { return *model_; }
  IfcDocument* operator->() { return &*model_; }

 private:
  MergeWorld world_;
  Model model_;
};

// Ticks of one kind: values `from` to `to`.
inline std::vector<Tick> TicksFrom(int from, int to, int share, const WideString& prefix,
                                   bool exact, int maximum) {
  std::vector<Tick> ticks;
  for (int value = from; value <= to; ++value)
    ticks.push_back({value, share, prefix, exact, maximum});
  return ticks;
}

// Records `first` to `last`, each a point.
inline std::string Points(unsigned first, unsigned last) {
  std::string records;
  for (unsigned number = first; number <= last; ++number) {
    records += "#" + std::to_string(number) + "=IFCCARTESIANPOINT((0.,0.,0.));\n";
  }
  return records;
}

}  // namespace corvel::test

// One pairwise merge: the working structures of IfcDocument::MergeDocument.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/entity.h"
#include "core/main_container.h"
#include "core/reporting.h"
#include "core/root_interfaces.h"
#include "core/text.h"
#include "core/ticker.h"
#include "merge/merge_status.h"

namespace corvel {

// The model that others are folded into. All of it is borrowed.
struct FoldTarget {
  IFC::MainContainer& container;
  std::set<std::string>&
      generatedGuids;  // every GUID that the fold makes; entities point into them
  const std::unordered_map<std::string, IFC::IfcEntity*>& guidIndex;  // see Parser
  MergeStatus& status;
  WideString path;  // of its file
};

// Folds one container into another. No reference is ever rewritten: an entity that has to go stays
// in memory, outside `entities` of the destination, and takes its survivor's marker; since the
// writer prints markers, all references then name the survivor.
class DocumentMerge {
 public:
  // All is borrowed; `source` lives as long as the destination, whose references lead into it.
  DocumentMerge(FoldTarget destination, IFC::MainContainer& source, WideString sourcePath,
                ErrorReporter showError, ProgressCallback progress);

  // As IfcDocument::MergeDocument, once. Costs as much as the two models have references; what is
  // known of the destination from the fold before is not found out again.
  bool Run(unsigned mergeLevel, bool nameAndGuid);

 private:
  // Two objects of one class and name, one of each model; either may be missing.
  struct SpecificPair {
    IFC::IfcEntity* destination = nullptr;
    IFC::IfcEntity* source = nullptr;
  };

  bool Merge(unsigned mergeLevel, bool nameAndGuid);
  bool Prepare();
  void ChooseSpecificTypes(unsigned mergeLevel);
  bool PassOverSource(Ticker& ticker);
  bool PassOverDestination(Ticker& ticker);
  bool PassOverEach(Ticker& ticker);
  void AddSourceEntity(IFC::IfcEntity* entity);
  bool IsSpecific(const IFC::IfcEntity& entity) const;
  void NoteSpecific(IFC::IfcEntity* entity, IFC::IfcEntity* SpecificPair::*side);
  IFC::IfcEntity* Colliding(IFC::IfcEntity* entity) const;
  void ResolveCollision(IFC::IfcEntity* entity, IFC::IfcEntity* target);
  void AddWithNewGuid(IFC::IfcEntity* entity);
  bool HasNoGuidIndex() const;
  void RedirectChildren(IFC::IfcEntity* entity);
  void RedirectChild(IFC::IfcEntity* child);
  void MergeProjects();
  void MergeSpecificObjects(bool nameAndGuid);
  void CleanUpDuplicates();

  FoldTarget destination_;
  IFC::MainContainer& source_;
  WideString sourcePath_;
  ErrorReporter showError_;
  ProgressCallback progress_;

  std::set<WideString> specificTypes_;
  std::map<WideString, std::map<WideString, SpecificPair>> specificObjects_;
  std::vector<IFC::IfcEntity*> deletedDuplicatedParents_;
  IFC::IfcEntity* sourceProject_ = nullptr;
  IFC::IfcEntity* destinationProject_ = nullptr;
  IFC::ChildQueue queue_;
  std::uint32_t generation_ = 0;
};

}  // namespace corvel

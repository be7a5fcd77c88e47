// One pairwise merge: the working structures of IfcDocument::MergeDocument.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <vector>

#include "core/document.h"
#include "core/entity.h"
#include "core/main_container.h"
#include "core/root_interfaces.h"

namespace corvel {

// Folds one container into another. No reference is ever rewritten: an entity that has to go stays
// in memory, outside `entities` of the destination, and takes its survivor's marker; since the
// writer prints markers, all references then name the survivor.
class DocumentMerge {
 public:
  // `source` is already owned by the destination's list of absorbed containers.
  DocumentMerge(IfcDocument& destination, IFC::MainContainer& source, WideString sourcePath,
                ErrorReporter showError, ProgressCallback progress);

  // As IfcDocument::MergeDocument.
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
  bool PassOverSource();
  bool PassOverDestination();
  bool PassOverProject(const IFC::MainContainer& container, std::size_t count);
  bool PassOverEach(const IFC::MainContainer& container);
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
  bool TickFor(std::size_t count);
  bool Tick();

  IfcDocument& destination_;
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
  std::uint32_t stepCounter_ = 0;
  std::uint32_t stepSize_ = 0;
  int stepNumber_ = 0;
  WideString prefix_;
};

}  // namespace corvel

#include "merge/document_merge.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/entity_cast.h"
#include "merge/duplicate_cleanup.h"
#include "merge/guid_choice.h"
#include "merge/merged_parents.h"
#include "step/log/ifc_log.h"

namespace corvel {

namespace {

constexpr std::size_t kTicksPerPass = 50;

void Log(WideView text) { IfcLog::Instance().LogText(text); }

WideString Decimal(std::size_t number) { return Widen(std::to_string(number)); }

bool IsProject(const IFC::IfcEntity& entity) {
  return WideView(entity.getClassName()) == u"IfcProject";
}

std::string_view GuidOf(IFC::VirtualIfcRoot& root) { return root.getGlobalId(); }

}  // namespace

DocumentMerge::DocumentMerge(FoldTarget destination, IFC::MainContainer& source,
                             WideString sourcePath, ErrorReporter showError,
                             ProgressCallback progress)
    : destination_(std::move(destination)),
      source_(source),
      sourcePath_(std::move(sourcePath)),
      showError_(showError),
      progress_(progress) {}

bool DocumentMerge::Run(unsigned mergeLevel, bool nameAndGuid) {
  const bool merged = Merge(mergeLevel, nameAndGuid);
  if (!destination_.container.HasRunOutOfNumbers()) return merged;
  // Whatever was folded in before: half a model is not to be written.
  destination_.status = MergeStatus::kFailed;
  return false;
}

bool DocumentMerge::Merge(unsigned mergeLevel, bool nameAndGuid) {
  if (!Prepare()) return false;
  ChooseSpecificTypes(mergeLevel);
  const WideString text = u"3/3";
  Ticker ticker({.callback = progress_, .text = &text},
                {.block = source_.entities.Size() / kTicksPerPass, .first = 1});
  if (!PassOverSource(ticker) || !PassOverDestination(ticker)) return false;
  MergeProjects();
  if (!specificTypes_.empty()) {
    // This way out leaves the status as it was, so that the fold counts as failed.
    MergeSpecificObjects(nameAndGuid);
    return true;
  }
  CleanUpDuplicates();
  if (HasNoGuidIndex()) destination_.container.NoteFolded(source_);
  destination_.status = MergeStatus::kMerged;
  return true;
}

// Indexes and true markers for both models. From here on the destination's pools own everything.
bool DocumentMerge::Prepare() {
  IFC::MainContainer& container = destination_.container;
  const auto fail = [this] {
    if (destination_.status == MergeStatus::kNotMerged) {
      destination_.status = MergeStatus::kFailed;
    }
    return false;
  };
  Log(u"Procesing EntitiesToDelete");
  Log(u"Procesing FillEntitiesGUIDmap");
  if (!source_.RefreshEntitiesGUIDmap(sourcePath_)) return fail();
  Log(u"Procesing FillParentsLists");
  source_.RefreshParentsLists({.text = u"1/3 "});
  Log(u"Procesing FillMarkers");
  source_.RefreshMarkers();
  Log(u"Procesing FillEntitiesGUIDmap");
  if (!container.RefreshEntitiesGUIDmap(destination_.path)) return fail();
  Log(u"Procesing FillParentsLists");
  if (container.RefreshParentsLists({.share = 2, .text = u"2/3 ", .exactMode = true}) !=
      Outcome::kComplete) {
    return false;
  }
  Log(u"Procesing FillMarkers");
  container.RefreshMarkers();
  return true;
}

void DocumentMerge::ChooseSpecificTypes(unsigned mergeLevel) {
  Log(u"Merging specific object into one");
  if (mergeLevel >= 1) specificTypes_.insert(u"IfcSite");
  if (mergeLevel > 1) specificTypes_.insert(u"IfcBuilding");
  if (mergeLevel > 2) specificTypes_.insert(u"IfcBuildingStorey");
}

// The first entity ticks in any case.
bool DocumentMerge::PassOverSource(Ticker& ticker) {
  Log(u"Processing " + Decimal(source_.entities.Size()) + u" Entities");
  for (const auto& [number, entity] : source_.entities) {
    if (entity->marker == IFC::kDeleted) continue;
    AddSourceEntity(entity);
    if (destination_.container.HasRunOutOfNumbers() || !ticker.Advance()) return false;
  }
  return true;
}

void DocumentMerge::AddSourceEntity(IFC::IfcEntity* entity) {
  if (sourceProject_ == nullptr && IsProject(*entity)) {
    sourceProject_ = entity;  // the first one only: it gives way to the destination's
  } else if (IsSpecific(*entity)) {
    NoteSpecific(entity, &SpecificPair::source);
  } else if (IFC::IfcEntity* const target = Colliding(entity)) {
    ResolveCollision(entity, target);
  } else {
    destination_.container.AddEntity(entity);
  }
}

bool DocumentMerge::IsSpecific(const IFC::IfcEntity& entity) const {
  return !specificTypes_.empty() && specificTypes_.contains(entity.getClassName());
}

// The last object of a class and name stands for all of them.
void DocumentMerge::NoteSpecific(IFC::IfcEntity* entity, IFC::IfcEntity* SpecificPair::*side) {
  auto* const root = EntityCast<IFC::VirtualIfcRoot>(entity);
  if (root == nullptr) {
    showError_("", u"Unable to cast source entity to IfcRoot", kReportShow);
    return;
  }
  specificObjects_[entity->getClassName()][root->getName().ToWide()].*side = entity;
}

// The entity that the destination's GUID index holds under the GUID of `entity`, or null.
IFC::IfcEntity* DocumentMerge::Colliding(IFC::IfcEntity* entity) const {
  const auto& index = destination_.guidIndex;
  if (index.empty()) return nullptr;
  auto* const root = EntityCast<IFC::VirtualIfcRoot>(entity);
  if (root == nullptr) return nullptr;
  const auto found = index.find(std::string(GuidOf(*root)));
  return found == index.end() ? nullptr : found->second;
}

void DocumentMerge::ResolveCollision(IFC::IfcEntity* entity, IFC::IfcEntity* target) {
  const bool generate = AskedGuidChoice() != kSkipSameGuids && !IsProject(*entity);
  // What nothing refers to is kept with a new GUID in any case.
  if (generate || entity->parents.IsEmpty()) {
    AddWithNewGuid(entity);
    return;
  }
  MergeParents(*entity, *target, destination_.container.Parents());
  destination_.container.NoteChangedReferences();
  destination_.container.OverwriteMarker(entity, target);
  deletedDuplicatedParents_.push_back(entity);
}

void DocumentMerge::AddWithNewGuid(IFC::IfcEntity* entity) {
  IFC::MainContainer& container = destination_.container;
  if (const char* const guid = container.CreateGUID()) {
    // The members of a set stay where they are, so that entities may point into them.
    const std::string& kept = *destination_.generatedGuids.insert(guid).first;
    EntityCast<IFC::VirtualIfcRoot>(entity)->setGlobalId(kept.c_str());
  }
  container.AddEntity(entity);
}

bool DocumentMerge::PassOverDestination(Ticker& ticker) {
  const std::size_t count = destination_.container.entities.Size();
  ticker.StartPass(count / kTicksPerPass);
  Log(u"Processing mainContainer " + Decimal(count) + u" Entities");
  generation_ = IFC::NextVisitGeneration();
  // Where there is nothing else to be found, the project is known.
  if (specificTypes_.empty() && HasNoGuidIndex()) {
    destinationProject_ = destination_.container.FirstProject();
    if (!ticker.Advance(count)) return false;
  } else if (!PassOverEach(ticker)) {
    return false;
  }
  Log(u"Adding new objects mainContainer 0");
  return true;
}

// A deleted project on the way may become a stand-in before its turn comes.
bool DocumentMerge::PassOverEach(Ticker& ticker) {
  for (const auto& [number, entity] : destination_.container.entities) {
    if (entity->marker != IFC::kDeleted) {
      if (destinationProject_ == nullptr && IsProject(*entity)) {
        destinationProject_ = entity;
      } else if (IsSpecific(*entity)) {
        NoteSpecific(entity, &SpecificPair::destination);
      }
      RedirectChildren(entity);
    }
    if (!ticker.Advance()) return false;
  }
  return true;
}

bool DocumentMerge::HasNoGuidIndex() const { return destination_.guidIndex.empty(); }

// Everything below `entity` whose GUID the index holds for another object becomes a stand-in for
// that one. What has been walked once would come out the same again.
void DocumentMerge::RedirectChildren(IFC::IfcEntity* entity) {
  if (HasNoGuidIndex()) return;
  if (entity->visitStamp == generation_) return;
  entity->CollectAllChildren(queue_);
  while (!queue_.IsEmpty()) {
    if (IFC::IfcEntity* const child = queue_.TakeBack().entity) RedirectChild(child);
  }
}

void DocumentMerge::RedirectChild(IFC::IfcEntity* child) {
  if (child->visitStamp == generation_) return;
  child->visitStamp = generation_;
  IFC::IfcEntity* const target = Colliding(child);
  if (target != nullptr && child->marker != target->marker && target->marker != IFC::kDeleted) {
    destination_.container.OverwriteMarker(child, target);
  }
  if (child->marker != IFC::kDeleted) child->CollectAllChildren(queue_);
}

void DocumentMerge::MergeProjects() {
  if (sourceProject_ != nullptr && destinationProject_ != nullptr) {
    destination_.container.OverwriteMarker(sourceProject_, destinationProject_);
    return;
  }
  showError_("", u"Unable to merge projects properly because couldn't find IfcProject entity.",
             kReportShow);
  // With no project to give way to, the source's own is kept like everything else.
  if (sourceProject_ != nullptr) destination_.container.AddEntity(sourceProject_);
}

void DocumentMerge::MergeSpecificObjects(bool nameAndGuid) {
  IFC::MainContainer& container = destination_.container;
  for (auto& [className, byName] : specificObjects_) {
    for (auto& [name, pair] : byName) {
      auto* const there = EntityCast<IFC::VirtualIfcRoot>(pair.destination);
      auto* const here = EntityCast<IFC::VirtualIfcRoot>(pair.source);
      if (there == nullptr && pair.source != nullptr) container.AddEntity(pair.source);
      if (here == nullptr || there == nullptr) continue;
      const bool same = here->getName() == there->getName();
      // Then the source's object stays outside, and references to it lead nowhere.
      if (nameAndGuid && GuidOf(*here) != GuidOf(*there)) continue;
      if (!same) continue;
      MergeParents(*pair.source, *pair.destination, container.Parents());
      container.NoteChangedReferences();
      container.OverwriteMarker(pair.source, pair.destination);
    }
  }
}

void DocumentMerge::CleanUpDuplicates() {
  Log(u"######## STARTING DUPLICATE CLEANUP ########");
  if (!specificTypes_.empty()) {
    for (auto& [className, byName] : specificObjects_) {
      for (auto& [name, pair] : byName) CheckEntityForDuplicates(pair.destination);
    }
  }
  Log(u"######## DONE ########");
  Log(u"Processing deletedDuplicatedParents");
  if (!deletedDuplicatedParents_.empty()) destination_.container.NoteChangedMarkers();
  for (IFC::IfcEntity* const entity : deletedDuplicatedParents_) DeleteDuplicatedParents(*entity);
}

}  // namespace corvel

#include "core/main_container.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "core/cast_of_thread.h"
#include "core/entity_cast.h"
#include "core/guid.h"
#include "platform/platform.h"

namespace IFC {

namespace {

using corvel::Outcome;
using corvel::ToWide;
using corvel::Widen;
using corvel::WideString;
using corvel::WideView;

void ShowBox(const WideString& text) {
  platform::Get().ShowMessageBox(u"Logfile error", text, platform::Buttons::kOk,
                                 platform::Icon::kError);
}

// What AddEntity does with a class beyond filing it.
enum Kind : std::ptrdiff_t { kPlain, kProject, kProduct, kFirstList };

struct ListOfClass {
  WideView className;  // empty: the subtypes of IfcRelAssigns
  std::vector<IfcEntity*> MainContainer::*list;
};

constexpr ListOfClass kLists[] = {
    {u"IfcRelAggregates", &MainContainer::relAggregates},
    {u"IfcRelContainedInSpatialStructure", &MainContainer::relContainedInSpatialStructure},
    {u"IfcRelDefinesByProperties", &MainContainer::relDefinesByProperties},
    {u"IfcRelDefinesByObject", &MainContainer::relDefinesByObject},
    {u"IfcRelDefinesByType", &MainContainer::relDefinesByType},
    {u"IfcDraughtingCalloutRelationship", &MainContainer::draughtingCalloutRelationship},
    {u"IfcRelDecomposes", &MainContainer::relDecomposes},
    {u"IfcDocumentInformationRelationship", &MainContainer::documentInformationRelationship},
    {u"", &MainContainer::relAssigns},
    {u"IfcRelVoidsElement", &MainContainer::relVoidsElement},
    {u"IfcRelFillsElement", &MainContainer::relFillsElement},
    {u"IfcRelSpaceBoundary", &MainContainer::relSpaceBoundary},
    {u"IfcRelConnectsPathElements", &MainContainer::relConnectsPathElements},
    {u"IfcRelAssociatesClassification", &MainContainer::relAssociatesClassification},
    {u"IfcRelAssociatesMaterial", &MainContainer::relAssociatesMaterial},
    {u"IfcRelAssociatesRepresentation", &MainContainer::relAssociatesRepresentation},
    {u"IfcRelAssociatesLayer", &MainContainer::relAssociatesLayer},
    {u"IfcRelAssociatesStyle", &MainContainer::relAssociatesStyle},
    {u"IfcPropertySet", &MainContainer::propertySets},
    {u"IfcMapConversion", &MainContainer::mapConversions},
    {u"IfcMapConversionScaled", &MainContainer::mapConversions},
};

// The class itself counts, not its supertypes; only the subtypes of IfcRelAssigns are one list.
std::ptrdiff_t KindByName(IfcEntity& entity) {
  // One class for records of many names, none of which means anything here.
  if (dynamic_cast<const CarriedEntity*>(&entity) != nullptr) return kPlain;
  const WideView name = entity.getClassName();
  if (name == u"IfcProject") return kProject;
  for (std::size_t i = 0; i < std::size(kLists); ++i) {
    const bool matches = kLists[i].className.empty()
                             ? corvel::EntityCast<VIfcRelAssigns>(&entity) != nullptr
                             : kLists[i].className == name;
    if (matches) return kFirstList + static_cast<std::ptrdiff_t>(i);
  }
  return kPlain;
}

}  // namespace

// It depends on the class alone, so the names are compared once per class.
std::ptrdiff_t MainContainer::SortOf(IfcEntity* entity) {
  static corvel::ClassMemory memory;
  const std::type_info* const dynamicClass = &typeid(*entity);
  if (const std::ptrdiff_t* const known = memory.Find(dynamicClass)) return *known;
  const std::ptrdiff_t kind = KindByName(*entity);
  memory.Remember(dynamicClass, kind);
  return kind;
}

std::ptrdiff_t MainContainer::SortOfProducts() { return kProduct; }

std::uint32_t NextVisitGeneration() {
  static std::atomic<std::uint32_t> generation = 0;
  return generation.fetch_add(1, std::memory_order_relaxed) + 1;
}

std::uint32_t MainContainer::uniqueMarker = 1;
std::uint32_t MainContainer::largestNumber = kLargestNumber;

void MainContainer::ResetUniqueMarker() { uniqueMarker = 1; }

MainContainer::MainContainer(corvel::ErrorReporter showError, corvel::ProgressCallback progress,
                             std::uint64_t poolBlockSize)
    : showError_(showError), progress_(progress), memoryPool_(poolBlockSize) {}

MainContainer::~MainContainer() = default;

corvel::MemoryPool& MainContainer::PoolOfThread(std::size_t index) {
  constexpr std::uint64_t kTextBlock = std::uint64_t{256} << 10;
  while (poolsOfThreads_.size() <= index) {
    poolsOfThreads_.push_back(std::make_unique<corvel::MemoryPool>(kTextBlock));
  }
  return *poolsOfThreads_[index];
}

bool MainContainer::AddEntityByOrginalNumber(IfcEntity* entity, std::uint32_t number) {
  if (entity == nullptr) return false;
  // The usual case: a marker that is free here is free there, and both tables get it at once.
  const bool isSame =
      entity->marker == number && number != kUnfiled && originalEntities.SharesAllWith(entities);
  if (!(isSame ? originalEntities.AddForAll(number, entity)
               : originalEntities.Add(number, entity))) {
    ShowBox(u"AddEntityByOrginalNumber method error: Entity with marker: " + ToWide(number) +
            u" already exists.");
    return false;
  }
  guidsAreIndexed_ = false;
  if (isSame) {
    uniqueMarker = std::max(uniqueMarker, number);
    NoteFiled(entity, SortOf(entity));
  } else {
    AddEntity(entity);
  }
  return true;
}

bool MainContainer::AddUnseen(IfcEntity* entity, std::uint32_t number, std::ptrdiff_t sort) {
  if (!originalEntities.SharesAllWith(entities) || !originalEntities.AddForAll(number, entity)) {
    return false;
  }
  guidsAreIndexed_ = false;
  uniqueMarker = std::max(uniqueMarker, number);
  NoteFiled(entity, sort);
  return true;
}

// Under its own number, or the next one of all containers. The counter itself never comes further
// than one above the largest number: what it would count to next are the reserved values, and 0.
bool MainContainer::File(IfcEntity* entity) {
  if (entity->marker != kUnfiled) {
    uniqueMarker = std::max(uniqueMarker, entity->marker);
  } else if (uniqueMarker > largestNumber) {
    return FileUnderSmallestFree(entity);
  } else {
    entity->SetMarker(uniqueMarker);
    ++uniqueMarker;
  }
  return entities.Add(entity->marker, entity) || FileAfterClash(entity);
}

// A clash is resolved once only.
bool MainContainer::FileAfterClash(IfcEntity* entity) {
  if (uniqueMarker >= largestNumber) return FileUnderSmallestFree(entity);
  ++uniqueMarker;
  entity->SetMarker(uniqueMarker);
  return entities.Add(entity->marker, entity);
}

bool MainContainer::FileUnderSmallestFree(IfcEntity* entity) {
  const std::uint32_t number = entities.SmallestFree();
  if (number <= largestNumber) {
    entity->SetMarker(number);
    return entities.Add(number, entity);
  }
  // Said once: every object that follows would say the same.
  if (!hasRunOutOfNumbers_) {
    showError_("",
               u"All numbers up to #" + ToWide(largestNumber) +
                   u" are in use: there is none left for another object.\n",
               corvel::kReportCollect);
  }
  hasRunOutOfNumbers_ = true;
  return false;
}

void MainContainer::AddEntity(IfcEntity* entity) {
  if (!File(entity)) {
    if (hasRunOutOfNumbers_) return;
    ShowBox(u"AddEntity. Adding canceled -> Marker exist: " + ToWide(entity->marker));
    return;
  }
  NoteFiled(entity, SortOf(entity));
}

void MainContainer::NoteFiled(IfcEntity* entity, std::ptrdiff_t sort) {
  NoteChangedReferences();
  SortIntoList(entity, sort);
}

void MainContainer::SortIntoList(IfcEntity* entity, std::ptrdiff_t sort) {
  if (sort == kPlain) return;
  if (sort == kProject) {
    NoteProject(entity);
  } else if (sort == kProduct) {
    products.push_back(entity);
  } else {
    (this->*kLists[sort - kFirstList].list).push_back(entity);
  }
}

void MainContainer::NoteProject(IfcEntity* entity) {
  projects_.push_back(entity);
  if (ifcTree != nullptr) {
    ShowBox(u"MainContainer::AddEntity. IfcTree already exists.");
    return;
  }
  ifcTree = std::make_unique<IfcTree>();
  ifcTree->root = entity;
  auto* const root = corvel::EntityCast<VirtualIfcRoot>(entity);
  ifcTree->rootGuid = root != nullptr ? std::string(root->getGlobalId())
                                      : std::to_string(reinterpret_cast<std::uintptr_t>(entity));
}

IfcEntity* MainContainer::FirstProject() const {
  IfcEntity* first = nullptr;
  for (IfcEntity* const project : projects_) {
    if (project->marker == kDeleted || !IsFiledHere(*project)) continue;
    if (first == nullptr || project->marker < first->marker) first = project;
  }
  return first;
}

void MainContainer::EraseEntity(std::uint32_t marker) {
  entities.Remove(marker);
  NoteChangedReferences();
}

void MainContainer::OverwriteMarker(IfcEntity* entity, const IfcEntity* target) {
  // Not a change, so the markers stay true.
  if (entity == target) return;
  entity->marker = target->marker;
  NoteChangedMarkers();
}

void MainContainer::FillMarkers() {
  for (const auto& [number, entity] : entities) {
    if (entity->marker == kDeleted) continue;
    if (number != kUnfiled) [[likely]] {
      entity->marker = number;
    } else {
      entity->SetMarker(number);  // refuses
    }
  }
  markersAreTrue_ = true;
}

void MainContainer::RefreshMarkers() {
  if (!markersAreTrue_) FillMarkers();
}

namespace {

void ResetMarker(IfcEntity& entity, std::uint32_t generation, ChildQueue& queue) {
  // Each object once: references may go in circles.
  if (entity.visitStamp == generation) return;
  entity.visitStamp = generation;
  entity.marker = kUnfiled;
  entity.CollectAllChildren(queue);
}

void ResetQueuedMarkers(std::uint32_t generation, ChildQueue& queue) {
  while (!queue.IsEmpty()) {
    if (IfcEntity* const entity = queue.TakeBack().entity) ResetMarker(*entity, generation, queue);
  }
}

}  // namespace

bool MainContainer::ResetAllMarkers() {
  NoteChangedMarkers();
  const std::uint32_t generation = NextVisitGeneration();
  ChildQueue queue;
  for (const auto& [number, entity] : entities) {
    ResetMarker(*entity, generation, queue);
    ResetQueuedMarkers(generation, queue);
  }
  return true;
}

// Once the filed entities have their stamps, the children without one are the others: values in
// records, and what has given way to another entity.
void MainContainer::ResetMarkersAndFillParents() {
  // As FillParentsLists: what is filled is left to RefreshParentsLists.
  if (parentsFilled_) {
    ResetAllMarkers();
    return;
  }
  NoteChangedMarkers();
  const std::uint32_t generation = NextVisitGeneration();
  for (const auto& [number, entity] : entities) {
    entity->visitStamp = generation;
    entity->marker = kUnfiled;
  }
  ChildQueue children;
  ChildQueue others;
  for (const auto& [number, entity] : entities) {
    entity->CollectAllChildren(children);
    while (!children.IsEmpty()) {
      IfcEntity* const child = children.TakeBack().entity;
      if (child == nullptr) continue;
      child->parents.Insert(entity, parentStore_);
      if (child->visitStamp == generation) continue;
      ResetMarker(*child, generation, others);
      ResetQueuedMarkers(generation, others);
    }
  }
  parentsFilled_ = true;
  parentsAreCurrent_ = true;
}

void MainContainer::NoteFolded(const MainContainer& source) {
  markersAreTrue_ = guidsAreIndexed_ = parentsAreCurrent_ = true;
  parentsLack_ = &source;
}

void MainContainer::FillParentsLists() {
  if (!parentsFilled_) EnterParents();
}

Outcome MainContainer::RebuildParentsLists(const ParentsTicks& ticks) {
  if (!TickOverEntities(ticks)) return Outcome::kCancelled;
  EmptyParents(entities.Size());
  EnterParents();
  return Outcome::kComplete;
}

Outcome MainContainer::RefreshParentsLists(const ParentsTicks& ticks) {
  if (!parentsAreCurrent_) return RebuildParentsLists(ticks);
  if (!TickOverEntities(ticks)) return Outcome::kCancelled;
  if (parentsLack_ != nullptr) EnterLackingParents();
  return Outcome::kComplete;
}

// All ticks of a rebuild come before its work, so that a refresh with nothing to do sends the same.
bool MainContainer::TickOverEntities(const ParentsTicks& ticks) {
  const std::size_t count = entities.Size();
  const auto parts = static_cast<std::size_t>(std::max(ticks.to - ticks.from, 1));
  corvel::Ticker ticker(
      {progress_, ticks.share, &ticks.text, ticks.exactMode, ticks.to},
      {.block = count / parts, .valueBefore = ticks.from, .most = ticks.to - ticks.from + 1});
  for (std::size_t done = 0; ticker.Left() <= count - done;) {
    done += ticker.Left();
    if (ticker.Advance(ticker.Left())) continue;
    EmptyParents(done);
    return false;
  }
  return true;
}

void MainContainer::EmptyParents(std::size_t count) {
  NoteChangedReferences();
  for (const auto& [number, entity] : entities) {
    if (count-- == 0) return;
    entity->parents.Clear(parentStore_);
  }
}

void MainContainer::EnterParents() {
  ChildQueue children;
  for (const auto& [number, entity] : entities) EnterParentsOf(entity, children);
  parentsFilled_ = true;
  parentsAreCurrent_ = true;
  parentsLack_ = nullptr;
}

void MainContainer::EnterParentsOf(IfcEntity* entity, ChildQueue& children) {
  entity->CollectAllChildren(children);
  while (!children.IsEmpty()) {
    IfcEntity* const child = children.TakeBack().entity;
    if (child != nullptr) child->parents.Insert(entity, parentStore_);
  }
}

// What was here before refers to nothing that has come since, nor the other way round. The sets of
// the newcomers still hold parents that stayed behind.
void MainContainer::EnterLackingParents() {
  for (const auto& [number, entity] : parentsLack_->entities) {
    if (IsFiledHere(*entity)) entity->parents.Clear(parentStore_);
  }
  ChildQueue children;
  for (const auto& [number, entity] : parentsLack_->entities) {
    if (IsFiledHere(*entity)) EnterParentsOf(entity, children);
  }
  parentsLack_ = nullptr;
}

bool MainContainer::FillEntitiesGUIDmap(const WideString& filePath) {
  entitiesGUIDmap.Clear();
  for (const auto& [number, entity] : originalEntities) {
    if (entity->marker == kDeleted) continue;
    auto* const root = corvel::EntityCast<VirtualIfcRoot>(entity);
    if (root == nullptr) continue;
    if (*root->getGlobalId() == 0) GiveMissingGuid(entity, root);
    EnterGuid(filePath, root);
  }
  guidsAreIndexed_ = true;
  return true;
}

bool MainContainer::RefreshEntitiesGUIDmap(const WideString& filePath) {
  return guidsAreIndexed_ || FillEntitiesGUIDmap(filePath);
}

bool MainContainer::IndexSilently() {
  if (entities.Contains(kUnfiled)) return false;
  corvel::CastOfThread<VirtualIfcRoot> rootOf;
  guidsAreIndexed_ = false;
  entitiesGUIDmap.Clear();
  for (const auto& [number, entity] : originalEntities) {
    if (entity->marker == kDeleted) continue;
    auto* const root = rootOf(*entity);
    if (root == nullptr) continue;
    const char* const guid = root->getGlobalId();
    if (*guid == 0 || !entitiesGUIDmap.Enter(guid, root)) return false;
  }
  guidsAreIndexed_ = true;
  FillMarkers();
  return true;
}

void MainContainer::GiveMissingGuid(IfcEntity* entity, VirtualIfcRoot* root) {
  const std::string guid = corvel::CreateGUID();
  showError_("",
             u"Object " + WideString(entity->getClassName()) +
                 u" has no GUID. Generating new GUID: " + Widen(guid) + u"\n",
             corvel::kReportLog);
  root->setGlobalId(memoryPool_.InternNarrow(guid));
}

void MainContainer::EnterGuid(const WideString& filePath, VirtualIfcRoot* root) {
  const char* const old = root->getGlobalId();
  if (entitiesGUIDmap.Enter(old, root)) return;
  const char* const guid = CreateGUIDForDuplicate(filePath, old, root->marker);
  root->setGlobalId(guid);
  entitiesGUIDmap.Set(guid, root);
  showError_("",
             u"Object with GUID: \"" + Widen(old) +
                 u"\" already exists. Multiple GUIDs are not allowed. New GUID will be created for "
                 u"this object: \"" +
                 Widen(guid) + u"\"\n",
             corvel::kReportLog);
}

const char* MainContainer::CreateGUIDForDuplicate(const WideString& filePath, const char* oldGuid,
                                                  std::uint32_t marker) {
  const std::string guid = corvel::CreateGUID();
  // Not interned: no text of the model equals a GUID that has just been made.
  char* const stored = memoryPool_.AllocNarrow(guid.size());
  std::copy_n(guid.c_str(), guid.size() + 1, stored);
  generatedGUIDs[filePath + ToWide(marker) + Widen(oldGuid)] = guid;
  return stored;
}

const char* MainContainer::CreateGUID() {
  const std::string guid = corvel::CreateGUID();
  if (guid.empty()) {
    showError_("", u"CreateGUID function returned NULL", corvel::kReportShow);
    return nullptr;
  }
  return memoryPool_.InternNarrow(guid);
}

}  // namespace IFC

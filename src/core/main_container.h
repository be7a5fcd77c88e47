// The store of one model: all its entities, their order, and every index on them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/carried.h"
#include "core/entity.h"
#include "core/guid_table.h"
#include "core/memory_pool.h"
#include "core/number_table.h"
#include "core/outcome.h"
#include "core/parent_store.h"
#include "core/reporting.h"
#include "core/root_interfaces.h"
#include "core/ticker.h"

namespace IFC {

// The record of the model's project, made for the first IfcProject.
struct IfcTree {
  IfcEntity* root = nullptr;
  std::string rootGuid;  // of an entity without GUID: its address in decimal
};

// The next generation for IfcEntity::visitStamp, one count for all models of the process: so no
// walk takes the stamp of an earlier one for its own. Any thread may ask.
std::uint32_t NextVisitGeneration();

// The ticks of a walk over the parents lists: one for each part of the entities, of which there are
// `to` - `from` (or one, if that is less), and by rounding one more, which stays at `to`.
struct ParentsTicks {
  int from = 0;  // the first tick says one more
  int to = 100;
  int share = 0;              // as in corvel::Stage
  corvel::WideString text{};  // likewise
  bool exactMode = false;
};

// Two numbers tell an entity here. Its original number is the #number of the source file; it never
// changes, and only `originalEntities` is keyed by it. Its marker is the number under which it is
// filed in `entities` and written; a merge may give it a new one. The entities and their strings
// live in the container's pool and go with it.
class MainContainer {
 public:
  // `poolBlockSize`: bytes of a block of the string store. `showError` is not null. `progress` gets
  // the ticks of the walks below and may be null.
  MainContainer(corvel::ErrorReporter showError, corvel::ProgressCallback progress,
                std::uint64_t poolBlockSize);
  virtual ~MainContainer();
  MainContainer(const MainContainer&) = delete;
  MainContainer& operator=(const MainContainer&) = delete;

  corvel::MemoryPool& Pool() { return memoryPool_; }
  // More of it: what a thread makes that reads records for this container, by the index of the
  // thread. Made when it is first asked for. Not for several threads at once.
  corvel::MemoryPool& PoolOfThread(std::size_t index);
  corvel::ParentStore& Parents() { return parentStore_; }
  // What the objects of the pool hold beside their attributes.
  corvel::CarriedTable& Carried() { return carried_; }

  // Files an entity that was read as record `number`, here and as AddEntity does. False (a message
  // box, nothing changed) when the number is taken; false for null.
  bool AddEntityByOrginalNumber(IfcEntity* entity, std::uint32_t number);
  // As AddEntityByOrginalNumber, for an entity whose marker is `number` and which is not looked at:
  // `sort` is what SortOf gives for its class. False, without a box, when that takes a closer look.
  bool AddUnseen(IfcEntity* entity, std::uint32_t number, std::ptrdiff_t sort);
  // Tells the classes apart that are filed in different ways.
  static std::ptrdiff_t SortOf(IfcEntity* entity);
  // What AddUnseen is given for a product in the place of that.
  static std::ptrdiff_t SortOfProducts();
  // Files an entity, which lives in this pool or in one that lives as long. Its number is its
  // marker. Marker 0 gets the next `uniqueMarker`; a taken marker gets one new number, and if that
  // is taken too a message box tells that the entity is not filed. In place of a new number above
  // `largestNumber` an entity gets the smallest that is free here. When there is none it is not
  // filed, and the container has run out of numbers.
  void AddEntity(IfcEntity* entity);
  // An entity found no number, which has been reported (to be shown with the next report). What is
  // in here is then no whole model any more, and is not to be written.
  bool HasRunOutOfNumbers() const { return hasRunOutOfNumbers_; }
  bool HasEntityWithOrginalNumber(std::uint32_t number) const {
    return originalEntities.Contains(number);
  }
  // Null when no record has the number.
  IfcEntity* GetEntityByOrginalNumber(std::uint32_t number) const {
    return originalEntities.Find(number);
  }
  // Takes the entry out of `entities`; the object and all other entries stay. Silent when missing.
  void EraseEntity(std::uint32_t marker);
  // Makes `entity` a stand-in for `target`: references to it are written with target's number. It
  // stays filed where it is; whoever wants it gone erases it.
  void OverwriteMarker(IfcEntity* entity, const IfcEntity* target);

  // Gives every entity of `entities` the number that it is filed under; deleted ones keep their
  // marker. The number 0 is refused with a message box. Linear in the entities.
  void FillMarkers();
  // As FillMarkers, at no cost while the markers are true.
  void RefreshMarkers();
  // Every entity of `entities` has the number that it is filed under, or is deleted.
  bool MarkersAreTrue() const { return markersAreTrue_; }
  // To be called by whoever sets a marker to anything but the number that its entity is filed
  // under. The operations of this class need no call.
  void NoteChangedMarkers() { markersAreTrue_ = guidsAreIndexed_ = false; }
  // Gives everything reachable from `entities`, typed values included, the marker 0. Linear in the
  // references. Always true.
  bool ResetAllMarkers();
  // ResetAllMarkers and FillParentsLists without `rebuild`, in one walk over the references.
  void ResetMarkersAndFillParents();
  // Enters each entity of `entities` into the parents set of all that it refers to. Linear in the
  // references. A second call does nothing, whatever has changed: see RefreshParentsLists.
  void FillParentsLists();
  // Empties the sets first, and says so with `ticks`. Complete, or cancelled: the sets of those
  // that had their turn are empty then.
  corvel::Outcome RebuildParentsLists(const ParentsTicks& ticks);
  // As RebuildParentsLists, ticks and result included, but what a rebuild would make the same is
  // left as it is.
  corvel::Outcome RefreshParentsLists(const ParentsTicks& ticks);
  // To be called by whoever changes what an entity refers to, or adds to a parents set, once the
  // parents lists are filled. Filing and erasing need no call.
  void NoteChangedReferences() {
    parentsAreCurrent_ = false;
    parentsLack_ = nullptr;
  }
  // Markers, parents lists and GUIDs were current, and all that has happened since is that entities
  // of `source` were filed here, and that some which were not have become stand-ins: the next
  // refresh costs what came. `source` lives as long as this.
  void NoteFolded(const MainContainer& source);
  // Rebuilds `entitiesGUIDmap` from `originalEntities`, in ascending number. An empty GUID and the
  // second holder of a GUID get a new one; both are logged. Always true.
  bool FillEntitiesGUIDmap(const corvel::WideString& filePath);
  // As FillEntitiesGUIDmap, at no cost while that would find the same again. GUIDs of the objects
  // in `originalEntities` are not changed by others meanwhile.
  bool RefreshEntitiesGUIDmap(const corvel::WideString& filePath);
  // RefreshEntitiesGUIDmap and FillMarkers ahead of time, on any thread that has this container for
  // itself. False: a GUID is missing or taken, so that there is something to report; the markers
  // are as they were, and the index is to be filled by the former.
  bool IndexSilently();
  // A new GUID, interned; the pool keeps it. Null (reported) when none could be made.
  const char* CreateGUID();
  // A new GUID for an entity whose GUID is taken, kept in `generatedGUIDs`; the text belongs to the
  // pool. The entity itself is not changed. Empty when none could be made.
  const char* CreateGUIDForDuplicate(const corvel::WideString& filePath, const char* oldGuid,
                                     std::uint32_t marker);

  // Starts the process-wide numbering at 1 again.
  static void ResetUniqueMarker();
  // The next free number, shared by all containers of the process: at least the highest marker
  // that any of them has seen.
  static std::uint32_t uniqueMarker;
  // The largest number that is given to an entity: kLargestNumber, lowered by tests only.
  static std::uint32_t largestNumber;

  corvel::NumberTable entities;  // by marker; every walk is in ascending order
  // By original number. The same as `entities` until that is changed, and held once until then.
  corvel::NumberTable originalEntities{entities};
  corvel::GuidTable entitiesGUIDmap;
  // File path + decimal marker + old GUID, to the new GUID.
  std::unordered_map<corvel::WideString, std::string> generatedGUIDs;
  std::unique_ptr<IfcTree> ifcTree;

  // The first project, by number, of those that are filed here and not deleted. Null without one.
  // Linear in the projects; markers are true.
  IfcEntity* FirstProject() const;

  // Relations by class (subtypes left out, but for relAssigns), in order of filing. What is erased
  // or deleted later stays in here.
  std::vector<IfcEntity*> relAggregates;
  std::vector<IfcEntity*> relContainedInSpatialStructure;
  std::vector<IfcEntity*> relDefinesByProperties;
  std::vector<IfcEntity*> relDefinesByObject;
  std::vector<IfcEntity*> relDefinesByType;
  std::vector<IfcEntity*> draughtingCalloutRelationship;
  std::vector<IfcEntity*> relDecomposes;
  std::vector<IfcEntity*> documentInformationRelationship;
  std::vector<IfcEntity*> relAssigns;  // all subtypes of IfcRelAssigns
  std::vector<IfcEntity*> relVoidsElement;
  std::vector<IfcEntity*> relFillsElement;
  std::vector<IfcEntity*> relSpaceBoundary;
  std::vector<IfcEntity*> relConnectsPathElements;
  std::vector<IfcEntity*> relAssociatesClassification;
  std::vector<IfcEntity*> relAssociatesMaterial;
  std::vector<IfcEntity*> relAssociatesRepresentation;
  std::vector<IfcEntity*> relAssociatesLayer;
  std::vector<IfcEntity*> relAssociatesStyle;
  // Likewise, and what may say where on the map a model is.
  std::vector<IfcEntity*> propertySets;
  std::vector<IfcEntity*> mapConversions;
  // Those of the records that were read, subtypes and all, in order of filing: the container itself
  // knows no product, so these are what AddUnseen was given as such.
  std::vector<IfcEntity*> products;
  bool productsAreListed = false;  // all of them are; to be said by whoever reads

 private:
  bool File(IfcEntity* entity);
  bool FileAfterClash(IfcEntity* entity);
  bool FileUnderSmallestFree(IfcEntity* entity);
  void NoteFiled(IfcEntity* entity, std::ptrdiff_t sort);
  void SortIntoList(IfcEntity* entity, std::ptrdiff_t sort);
  void NoteProject(IfcEntity* entity);
  bool TickOverEntities(const ParentsTicks& ticks);
  void EmptyParents(std::size_t count);
  void EnterParents();
  void EnterLackingParents();
  void EnterParentsOf(IfcEntity* entity, ChildQueue& children);
  bool IsFiledHere(const IfcEntity& entity) const {
    return entities.Find(entity.marker) == &entity;
  }
  void GiveMissingGuid(IfcEntity* entity, VirtualIfcRoot* root);
  void EnterGuid(const corvel::WideString& filePath, VirtualIfcRoot* root);

  corvel::ErrorReporter showError_;
  corvel::ProgressCallback progress_;
  corvel::MemoryPool memoryPool_;
  std::vector<std::unique_ptr<corvel::MemoryPool>> poolsOfThreads_;
  corvel::ParentStore parentStore_;
  corvel::CarriedTable carried_;
  bool parentsFilled_ = false;
  bool hasRunOutOfNumbers_ = false;
  bool parentsAreCurrent_ = false;              // a rebuild would change nothing, but for these:
  const MainContainer* parentsLack_ = nullptr;  // what came from here, null: nothing, is missing
  bool markersAreTrue_ = false;                 // FillMarkers would change nothing
  bool guidsAreIndexed_ = false;                // FillEntitiesGUIDmap would find the same again
  std::vector<IfcEntity*> projects_;            // in order of filing
};

}  // namespace IFC

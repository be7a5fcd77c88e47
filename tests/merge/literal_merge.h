// The merge of two small models, written down as plainly as it can be told: recursion in place of
// visited stamps, maps and sets in place of tables, no short cuts. Slow, and only for models
// without cycles. The engine is held against it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/text.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"
#include "support/test_platform.h"

namespace corvel::test {

struct LiteralEntity {
  int id = 0;
  WideString className;
  bool isRoot = false;
  std::string guid;
  WideString name;
  std::vector<LiteralEntity*> children;  // null where the attribute is
  std::uint32_t marker = 0;
  std::set<LiteralEntity*> parents;
  std::set<LiteralEntity*> mergedParents;
};

struct LiteralContainer {
  std::map<std::uint32_t, LiteralEntity*> entities;
  std::map<std::uint32_t, LiteralEntity*> originalEntities;
  std::map<std::string, LiteralEntity*> entitiesGuidMap;
  std::map<WideString, std::string> generatedGuids;
  bool hasTree = false;
  bool hasRunOutOfNumbers = false;
};

struct LiteralDocument {
  WideString path;
  std::shared_ptr<LiteralContainer> container;
  std::map<std::string, LiteralEntity*> guidIndex;
  std::set<std::string> generatedGuids;
  int mergeStatus = 0;
};

// What is process-wide, what the user does, and what came of it. New GUIDs are asked of the system.
struct LiteralWorld {
  std::uint32_t uniqueMarker = 1;
  std::uint32_t largestNumber = 4294967279u;
  int rememberedGuidChoice = -1;
  bool userWantsNewGuids = true;
  std::size_t cancelAt = std::numeric_limits<std::size_t>::max();
  bool userMeansIt = true;

  int questions = 0;  // about GUIDs
  std::vector<Tick> ticks;
  std::vector<TestPlatform::Box> boxes;
  std::vector<Report> reports;
  // How often each of the rarer roads was taken.
  std::map<std::string, int> roads;
  // Two parents of one number came up where their order matters.
  bool orderIsOpen = false;
};

class LiteralMerge {
 public:
  explicit LiteralMerge(LiteralWorld& world) : world_(world) {}

  void AddEntity(LiteralContainer& container, LiteralEntity* entity);
  bool MergeDocument(LiteralDocument& destination, LiteralDocument& source, unsigned mergeLevel,
                     bool nameAndGuid);

  void DeleteDuplicatedParents(LiteralEntity* entity);
  static void CheckEntityForDuplicates(LiteralEntity* entity);

 private:
  struct Pair {
    LiteralEntity* destination = nullptr;
    LiteralEntity* source = nullptr;
  };
  using SpecificObjects = std::map<WideString, std::map<WideString, Pair>>;

  void SetMarker(LiteralEntity* entity, std::uint32_t value);
  bool ChooseMarker(LiteralContainer& container, LiteralEntity* entity);
  bool TakeSmallestFree(LiteralContainer& container, LiteralEntity* entity);
  bool Fold(unsigned mergeLevel, bool nameAndGuid);
  void FillMarkers(LiteralContainer& container);
  void FillEntitiesGuidMap(LiteralContainer& container, const WideString& path);
  bool FillParentsLists(LiteralContainer& container, int share, const WideString& text, bool flag);
  bool GoesOnAfterTick(const Tick& tick);

  bool PassOverSource();
  void TakeSourceEntity(LiteralEntity* entity);
  void NoteSpecific(LiteralEntity* entity, LiteralEntity* Pair::*side);
  void Collide(LiteralEntity* entity);
  void AddWithNewGuid(LiteralEntity* entity);
  bool PassOverDestination();
  void WalkBelow(LiteralEntity* entity);
  void MergeProjects();
  void MergeSpecificObjects(bool nameAndGuid);
  void MergeParents(LiteralEntity* entity, LiteralEntity* target);
  bool CountDown();
  void Road(const std::string& name) { ++world_.roads[name]; }

  LiteralWorld& world_;

  // Of one merge.
  LiteralDocument* destination_ = nullptr;
  LiteralContainer* sourceContainer_ = nullptr;
  WideString sourcePath_;
  std::set<WideString> specificTypes_;
  SpecificObjects specificObjects_;
  std::vector<LiteralEntity*> deletedDuplicatedParents_;
  LiteralEntity* sourceProject_ = nullptr;
  LiteralEntity* destinationProject_ = nullptr;
  std::int64_t stepCounter_ = 0;
  std::int64_t stepSize_ = 0;
  int stepNumber_ = 0;
};

}  // namespace corvel::test

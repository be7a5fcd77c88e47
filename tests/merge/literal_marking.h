// What is saved of a model and what is deleted, written down as plainly as it can be told:
// recursion, sets and passes over everything, no counters and no short cuts. Slow and only for
// small models. The engine is held against it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/text.h"
#include "merge/document.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"

namespace corvel::test {

struct PlainObject;

struct PlainChild {
  PlainObject* object = nullptr;  // null where the attribute is
  bool canLose = false;
};

// Parents are visited in the order of their numbers.
struct InOrderOfNumber {
  bool operator()(const PlainObject* a, const PlainObject* b) const;
};
using PlainParents = std::set<PlainObject*, InOrderOfNumber>;

struct PlainObject {
  IFC::IfcEntity* original = nullptr;
  std::uint32_t number = 0;  // 0: it stands inside a record
  WideString className;
  std::vector<PlainChild> children;
  // The list that the object cannot do without, when it has one.
  bool livesOnMembers = false;
  std::set<PlainObject*> members;
  bool isPropertyRelation = false;
  std::vector<PlainObject*> relatedObjects;

  int marker = 0;  // 1: to save, -9: deleted
  PlainParents parents;
  bool visited = false;
  unsigned visitStamp = 0;
  int walkResult = 0;  // 0: not known
};

// The model of a document as a plain graph. The document is as before afterwards; it must outlive
// this, and not change.
class PlainModel {
 public:
  explicit PlainModel(IfcDocument& document);
  PlainModel(const PlainModel&) = delete;
  PlainModel& operator=(const PlainModel&) = delete;

  PlainObject* Of(std::uint32_t originalNumber) const;

  std::deque<PlainObject> objects;  // also those that only others lead to
  std::map<std::uint32_t, PlainObject*> entities;
  std::map<std::uint32_t, PlainObject*> originalEntities;
  PlainObject* project = nullptr;

 private:
  PlainObject* Known(IFC::IfcEntity* entity);
  void NoteChildren(PlainObject& object);
  void NoteMembers(PlainObject& object);
  void NoteRelatedObjects(PlainObject& object);

  std::unordered_map<const IFC::IfcEntity*, PlainObject*> known_;
};

// What the user does, and what came of it.
struct MarkingWorld {
  std::size_t cancelAt = std::numeric_limits<std::size_t>::max();
  bool userMeansIt = true;

  std::vector<Tick> ticks;
  int questions = 0;
  std::vector<Report> reports;
  // How often each of the rarer roads was taken.
  std::map<std::string, int> roads;
};

class LiteralMarking {
 public:
  using Pairs = std::vector<MarkerPair>;

  LiteralMarking(PlainModel& model, MarkingWorld& world) : model_(model), world_(world) {}

  bool DeleteObjects(Pairs& deletePairs, Pairs& savePairs, bool deleteUnrelated,
                     bool deleteOpenings, int fileCount);
  void ResetAllMarkers();
  void FillParentsLists();
  void MarkEntitiesAndChildrenToDelete(const Pairs& deletePairs);
  void MarkEntitiesAndChildrenAndParentsToSave(const Pairs& savePairs, const Pairs& deletePairs);
  bool DeleteParentsOfDeleted(int share, const WideString& prefix);
  void RemoveOpeningsFromDeleteList(Pairs& deletePairs);
  bool MarkDependentsToDelete(const Pairs& deletePairs, int share, const WideString& prefix);
  bool RemoveUnsavedEntities(bool hasProgress, int share, const WideString& prefix);
  bool DeleteUnrelatedObjects();

 private:
  bool UpdateProgress(int value, int share, const WideString& text, bool flag, int maximum);
  void Road(const std::string& name) { ++world_.roads[name]; }

  void TurnOpeningsIntoDeleted(Pairs& deletePairs, Pairs& savePairs);
  void MarkReachable(PlainObject* object, std::set<PlainObject*>& reached);
  void MarkToSaveUpward(PlainObject* object, std::set<PlainObject*>& repeated);
  void MarkChildrenToSave(PlainObject* parent);

  static bool HasNoLiveMembers(const PlainObject& object);
  static bool LacksAMandatoryChild(const PlainObject& object);
  static bool AllParentsAreDeleted(const PlainObject& object);
  void DeleteChildrenOf(PlainObject* object);
  void DeleteIfOrphan(PlainObject* object);

  void DeleteWhatASiteHas(PlainObject* site);
  void DeletePropertiesOf(PlainObject* object);
  void DeletePropertySet(PlainObject* set);

  void DecideUnsaved(PlainObject* object);
  int IsLinkedToSaved(PlainObject* object);
  void MarkTreeToDelete(PlainObject* object);

  void VisitParentsAndSave(PlainObject* object);
  void VisitChildrenAndSave(PlainObject* object);

  PlainModel& model_;
  MarkingWorld& world_;
  std::map<PlainObject*, std::uint32_t> parentNumbers_;
  unsigned visitGeneration_ = 1;
};

}  // namespace corvel::test

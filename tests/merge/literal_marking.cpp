#include "literal_marking.h"

#include <algorithm>

namespace corvel::test {

namespace {

constexpr int kDeleted = -9;

bool IsOpening(const PlainObject* object) {
  return object != nullptr && object->className == u"IfcOpeningElement";
}

int PartOf(int whole, int fileCount) { return std::max(whole / fileCount, 1); }

}  // namespace

bool LiteralMarking::UpdateProgress(int value, int share, const WideString& text, bool flag,
                                    int maximum) {
  world_.ticks.push_back({std::min(value, maximum), share, text, flag, maximum});
  if (world_.ticks.size() - 1 != world_.cancelAt) return true;
  ++world_.questions;
  return !world_.userMeansIt;
}

bool LiteralMarking::DeleteObjects(Pairs& deletePairs, Pairs& savePairs, bool deleteUnrelated,
                                   bool deleteOpenings, int fileCount) {
  const int third = PartOf(3, fileCount);
  const int fifth = PartOf(5, fileCount);
  const int tenth = PartOf(10, fileCount);
  if (!UpdateProgress(10, third, u"1/3", false, 10)) return false;
  ResetAllMarkers();
  if (!UpdateProgress(20, third, u"1/3", true, 20)) return false;
  FillParentsLists();
  if (deleteUnrelated) DeleteUnrelatedObjects();
  if (!UpdateProgress(65, fifth, u"1/3", true, 65)) return false;
  if (deleteOpenings) TurnOpeningsIntoDeleted(deletePairs, savePairs);
  MarkEntitiesAndChildrenToDelete(deletePairs);
  MarkEntitiesAndChildrenAndParentsToSave(savePairs, deletePairs);
  if (!UpdateProgress(100, fifth, u"1/3", true, 100)) return false;
  if (!DeleteParentsOfDeleted(fifth, u"2/3")) return false;
  if (!deleteOpenings) RemoveOpeningsFromDeleteList(deletePairs);
  if (!MarkDependentsToDelete(deletePairs, fifth, u"2/3")) return false;
  return RemoveUnsavedEntities(true, tenth, u"3/3");
}

void LiteralMarking::ResetAllMarkers() {
  for (PlainObject& object : model_.objects) object.marker = 0;
}

void LiteralMarking::FillParentsLists() {
  for (const auto& [number, parent] : model_.entities) {
    for (const PlainChild& child : parent->children) {
      if (child.object != nullptr) child.object->parents.insert(parent);
    }
  }
}

void LiteralMarking::TurnOpeningsIntoDeleted(Pairs& deletePairs, Pairs& savePairs) {
  for (const auto& [number, object] : model_.originalEntities) {
    if (IsOpening(object)) deletePairs.push_back({number, number});
  }
  Pairs kept;
  for (const MarkerPair& pair : savePairs) {
    if (!IsOpening(model_.Of(pair.number))) kept.push_back(pair);
  }
  savePairs = kept;
}

void LiteralMarking::MarkEntitiesAndChildrenToDelete(const Pairs& deletePairs) {
  for (const MarkerPair& pair : deletePairs) {
    PlainObject* const object = model_.Of(pair.number);
    if (object == nullptr) continue;
    for (const PlainChild& child : object->children) {
      if (child.object == nullptr || child.object->className == u"IfcOwnerHistory") continue;
      child.object->marker = kDeleted;
    }
    object->marker = kDeleted;
  }
}

void LiteralMarking::MarkEntitiesAndChildrenAndParentsToSave(const Pairs& savePairs,
                                                             const Pairs& deletePairs) {
  for (const Pairs* const pairs : {&deletePairs, &savePairs}) {
    for (const MarkerPair& pair : *pairs) {
      PlainObject* const object = model_.Of(pair.number);
      if (pair.number != pair.parentNumber && object != nullptr) {
        parentNumbers_[object] = pair.parentNumber;
      }
    }
  }
  for (const MarkerPair& pair : savePairs) {
    PlainObject* const object = model_.Of(pair.number);
    if (object == nullptr) continue;
    if (object->marker == kDeleted) Road("saved over deleted");
    std::set<PlainObject*> reached;
    MarkReachable(object, reached);
    std::set<PlainObject*> repeated;
    MarkToSaveUpward(object, repeated);
  }
  parentNumbers_.clear();
}

void LiteralMarking::MarkReachable(PlainObject* object, std::set<PlainObject*>& reached) {
  if (object == nullptr || !reached.insert(object).second) return;
  object->marker = 1;
  for (const PlainChild& child : object->children) MarkReachable(child.object, reached);
}

void LiteralMarking::MarkToSaveUpward(PlainObject* object, std::set<PlainObject*>& repeated) {
  const std::uint32_t number = parentNumbers_[object];
  if (number == 0) return;
  PlainObject* const parent = model_.Of(number);
  if (parent == nullptr || parent->marker > 0) return;
  if (!repeated.insert(parent).second) {
    Road("circle of host parents");
    return;
  }
  if (parent->className == u"IfcProject") {
    Road("up to the project");
    std::set<PlainObject*> reached;
    for (const PlainChild& child : parent->children) MarkReachable(child.object, reached);
  }
  MarkChildrenToSave(parent);
  MarkToSaveUpward(parent, repeated);
  parent->marker = 1;
}

void LiteralMarking::MarkChildrenToSave(PlainObject* parent) {
  for (const PlainChild& child : parent->children) {
    if (child.object == nullptr || child.canLose || child.object->marker == 1) continue;
    child.object->marker = 1;
    MarkChildrenToSave(child.object);
  }
}

bool LiteralMarking::HasNoLiveMembers(const PlainObject& object) {
  return object.livesOnMembers &&
         std::all_of(object.members.begin(), object.members.end(),
                     [](const PlainObject* member) { return member->marker == kDeleted; });
}

bool LiteralMarking::LacksAMandatoryChild(const PlainObject& object) {
  return std::any_of(object.children.begin(), object.children.end(), [](const PlainChild& child) {
    return child.object != nullptr && !child.canLose && child.object->marker == kDeleted;
  });
}

bool LiteralMarking::AllParentsAreDeleted(const PlainObject& object) {
  return std::all_of(object.parents.begin(), object.parents.end(),
                     [](const PlainObject* parent) { return parent->marker == kDeleted; });
}

bool LiteralMarking::DeleteParentsOfDeleted(int share, const WideString& prefix) {
  const std::int64_t block = 2 * (static_cast<std::int64_t>(model_.entities.size()) / 50);
  std::int64_t counter = block;
  int step = 0;
  bool changed = true;
  for (int pass = 1; changed; ++pass) {
    changed = false;
    for (const auto& [number, object] : model_.entities) {
      if (object->marker == 0 && (HasNoLiveMembers(*object) || LacksAMandatoryChild(*object))) {
        Road(HasNoLiveMembers(*object) ? "no member left" : "mandatory child lost");
        if (pass > 1) Road("deleted in a later pass");
        object->marker = kDeleted;
        DeleteChildrenOf(object);
        changed = true;
      }
      --counter;
      if (counter != 0) continue;
      counter = block;
      if (step > 50) continue;
      ++step;
      if (!UpdateProgress(step, share, prefix, false, 50)) return false;
    }
  }
  return true;
}

void LiteralMarking::DeleteChildrenOf(PlainObject* object) {
  for (const PlainChild& child : object->children) {
    if (child.object != nullptr) DeleteIfOrphan(child.object);
  }
}

void LiteralMarking::DeleteIfOrphan(PlainObject* object) {
  if (object->marker == kDeleted) return;
  if (object->marker == 1) {
    if (AllParentsAreDeleted(*object)) Road("saved orphan");
    return;
  }
  if (!AllParentsAreDeleted(*object)) return;
  Road(object->number == 0 ? "orphan in a record" : "orphan");
  object->marker = kDeleted;
  DeleteChildrenOf(object);
}

void LiteralMarking::RemoveOpeningsFromDeleteList(Pairs& deletePairs) {
  Pairs kept;
  for (const MarkerPair& pair : deletePairs) {
    const PlainObject* const host = model_.Of(pair.parentNumber);
    if (IsOpening(model_.Of(pair.number)) && host != nullptr && host->marker != kDeleted) {
      Road("opening taken off the list");
    } else {
      kept.push_back(pair);
    }
  }
  deletePairs = kept;
}

bool LiteralMarking::MarkDependentsToDelete(const Pairs& deletePairs, int share,
                                            const WideString& prefix) {
  const std::int64_t block = static_cast<std::int64_t>(deletePairs.size()) / 50;
  std::int64_t counter = block;
  int step = 50;
  for (const MarkerPair& pair : deletePairs) {
    PlainObject* const object = model_.Of(pair.number);
    if (object != nullptr && object->className == u"IfcSite") {
      DeleteWhatASiteHas(object);
    } else if (object != nullptr) {
      DeletePropertiesOf(object);
    }
    --counter;
    if (counter != 0) continue;
    counter = block;
    if (step > 100) continue;
    ++step;
    if (!UpdateProgress(step, share, prefix, true, 100)) return false;
  }
  return true;
}

void LiteralMarking::DeleteWhatASiteHas(PlainObject* site) {
  const std::vector<PlainChild> children = site->children;
  for (auto child = children.rbegin(); child != children.rend(); ++child) {
    if (child->object == nullptr) continue;
    if (child->object->marker == 1) {
      Road("saved child of a site");
      continue;
    }
    if (child->object->className == u"IfcOwnerHistory") continue;
    child->object->marker = kDeleted;
    DeleteChildrenOf(child->object);
  }
  std::erase_if(site->children, [](const PlainChild& child) {
    return child.object != nullptr && child.object->className == u"IfcProductDefinitionShape";
  });
}

void LiteralMarking::DeletePropertiesOf(PlainObject* object) {
  for (PlainObject* const relation : object->parents) {
    if (relation->className != u"IfcRelDefinesByProperties") continue;
    if (!relation->isPropertyRelation) continue;
    const bool nothingIsLeft =
        std::all_of(relation->relatedObjects.begin(), relation->relatedObjects.end(),
                    [](const PlainObject* related) {
                      return related == nullptr || related->marker == kDeleted;
                    });
    if (!nothingIsLeft) continue;
    relation->marker = kDeleted;
    const std::vector<PlainChild>& children = relation->children;
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      PlainObject* const set = child->object;
      if (set == nullptr || set->marker == kDeleted) continue;
      if (set->className != u"IfcPropertySet" && set->className != u"IfcElementQuantity") continue;
      if (AllParentsAreDeleted(*set)) {
        DeletePropertySet(set);
      } else {
        Road("shared property set");
      }
    }
  }
}

void LiteralMarking::DeletePropertySet(PlainObject* set) {
  Road("property set");
  set->marker = kDeleted;
  std::set<PlainObject*> taken;
  std::vector<PlainChild> queue = set->children;
  while (!queue.empty()) {
    PlainObject* const object = queue.back().object;
    queue.pop_back();
    if (object == nullptr || !AllParentsAreDeleted(*object)) continue;
    if (!taken.insert(object).second) continue;
    queue.insert(queue.end(), object->children.begin(), object->children.end());
    DeleteChildrenOf(object);
  }
}

bool LiteralMarking::RemoveUnsavedEntities(bool hasProgress, int share, const WideString& prefix) {
  const std::int64_t block =
      std::max<std::int64_t>(static_cast<std::int64_t>(model_.entities.size()) / 100, 1);
  std::int64_t counter = block;
  int step = 0;
  ++visitGeneration_;
  for (const auto& [number, object] : model_.entities) {
    if (object->marker == 0) DecideUnsaved(object);
    --counter;
    if (counter != 0) continue;
    counter = block;
    ++step;
    if (step > 100 || !hasProgress) {
      step = 100;
    } else if (!UpdateProgress(step, share, prefix, false, 100)) {
      return false;
    }
  }
  return true;
}

void LiteralMarking::DecideUnsaved(PlainObject* object) {
  if (IsLinkedToSaved(object) == 2) {
    Road("unlinked");
    MarkTreeToDelete(object);
  } else if ((object->className == u"IfcAxis2Placement3D" ||
              object->className == u"IfcConnectionSurfaceGeometry") &&
             !object->parents.empty() && AllParentsAreDeleted(*object)) {
    Road("linked by what it shares alone");
    object->marker = kDeleted;
    DeleteChildrenOf(object);
  }
  ++visitGeneration_;
}

// An object that is being asked about says no to whoever comes back to it.
int LiteralMarking::IsLinkedToSaved(PlainObject* object) {
  if (object == nullptr) return 2;
  if (object->visitStamp == visitGeneration_) {
    return object->walkResult == 0 ? 2 : object->walkResult;
  }
  object->visitStamp = visitGeneration_;
  object->walkResult = 0;
  if (object->marker == kDeleted) return object->walkResult = 2;
  if (object->marker == 1) return object->walkResult = 1;
  for (PlainObject* const parent : object->parents) {
    if (IsLinkedToSaved(parent) == 1) return object->walkResult = 1;
  }
  for (const PlainChild& child : object->children) {
    if (IsLinkedToSaved(child.object) == 1) return object->walkResult = 1;
  }
  return object->walkResult = 2;
}

void LiteralMarking::MarkTreeToDelete(PlainObject* object) {
  if (object == nullptr || object->marker != 0) return;
  object->marker = kDeleted;
  for (PlainObject* const parent : object->parents) MarkTreeToDelete(parent);
  for (const PlainChild& child : object->children) MarkTreeToDelete(child.object);
}

bool LiteralMarking::DeleteUnrelatedObjects() {
  if (model_.project == nullptr) {
    world_.reports.push_back(
        {"", u"Unable to delete unrelated objects because project is NULL", kReportShow});
    return false;
  }
  VisitParentsAndSave(model_.project);
  VisitChildrenAndSave(model_.project);
  return true;
}

void LiteralMarking::VisitParentsAndSave(PlainObject* object) {
  for (PlainObject* const parent : object->parents) {
    if (parent->visited) continue;
    parent->visited = true;
    parent->marker = 1;
    VisitParentsAndSave(parent);
    VisitChildrenAndSave(parent);
  }
}

void LiteralMarking::VisitChildrenAndSave(PlainObject* object) {
  std::vector<PlainChild> queue = object->children;
  while (!queue.empty()) {
    PlainObject* const child = queue.back().object;
    queue.pop_back();
    if (child == nullptr || child->visited) continue;
    child->visited = true;
    child->marker = 1;
    VisitParentsAndSave(child);
    VisitChildrenAndSave(child);
    queue.insert(queue.end(), child->children.begin(), child->children.end());
  }
}

}  // namespace corvel::test

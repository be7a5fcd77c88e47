#include "host/check/model_check.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <string_view>
#include <tuple>
#include <utility>

#include "core/carried.h"
#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "core/ticker.h"
#include "host/check/absent_check.h"
#include "host/check/against.h"
#include "host/check/placement_check.h"
#include "host/check/project_check.h"
#include "host/check/reading_check.h"
#include "host/check/record_places.h"
#include "host/check/relation_check.h"
#include "host/check/report/places_of_model.h"
#include "host/check/value_check.h"
#include "host/hearing.h"
#include "host/model_opening.h"
#include "host/run_checks.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/federated_model.h"
#include "merge/federation/per_class.h"
#include "schema/registry.h"
#include "step/reader/parser.h"
#include "step/streams/line_numbers.h"

namespace corvel::host {

namespace {

constexpr int kHundred = 100;

// One walk over the objects of a model, with all checks that look at each of them.
class ObjectWalk {
 public:
  ObjectWalk(IfcDocument& document, const CheckOrder& order, CheckedModel& checked,
             Findings& findings)
      : container_(*document.mainContainer),
        order_(order),
        checked_(checked),
        findings_(findings),
        facts_(document),
        relations_(FederatedModel({&document}).Release()) {}

  // False: the user cancelled.
  bool Run(Ticker& ticker) {
    for (const auto& [number, entity] : container_.entities) {
      Look(*entity);
      if (!ticker.Advance()) return false;
    }
    checked_.facts = facts_.Finish();
    relations_.Finish(container_, findings_);
    project_.Finish(findings_);
    CheckPlacements(placements_, findings_);
    CheckDoubledGuids(checked_.facts->doubledGuids, findings_);
    return true;
  }

 private:
  struct ClassPlan {
    explicit ClassPlan(const ClassFacts& ofClass)
        : facts(ofClass), values(ofClass), role(ProjectCheck::RoleOf(ofClass)) {}

    const ClassFacts& facts;
    ValueCheck values;
    ProjectCheck::Role role;
    RelationCheck::ClassPlan relations;
    bool isPlacement = false;
    bool isRoot = false;
  };

  // Null for what is of no class.
  ClassPlan* PlanOf(IFC::IfcEntity& entity) {
    return planOf_.Of(entity, [&](const ClassFacts* facts) -> ClassPlan* {
      if (facts == nullptr) return nullptr;
      ClassPlan& plan = plans_.emplace_back(*facts);
      plan.relations = relations_.PlanOf(entity);
      plan.isPlacement = isPlacement_.IsTrueOf(entity);
      plan.isRoot = EntityCast<IFC::VirtualIfcRoot>(&entity) != nullptr;
      return &plan;
    });
  }

  void LookAtGuid(IFC::IfcEntity& entity, const ClassFacts& facts) {
    const std::string_view guid = EntityCast<IFC::VirtualIfcRoot>(&entity)->getGlobalId();
    const auto packed = CheckGuid(entity, facts, guid, findings_);
    if (packed && order_.keepsHolders) {
      checked_.holders.push_back({*packed, entity.marker, &facts});
    }
  }

  void Look(IFC::IfcEntity& entity) {
    facts_.Look(entity);
    ClassPlan* const found = PlanOf(entity);
    if (found == nullptr) return;
    ClassPlan& plan = *found;
    if (plan.isRoot) LookAtGuid(entity, plan.facts);
    if (plan.role != ProjectCheck::Role::kNone) project_.Look(entity, plan.role);
    if (plan.isPlacement) placements_.push_back(&entity);
    if (!plan.relations.IsEmpty()) relations_.Look(entity, plan.relations);
    // What another release has read is told as a class that this one lacks.
    if (entity.carries && IsOfNoClassOfModel(entity)) return;
    plan.values.Look(entity, findings_);
  }

  const IFC::MainContainer& container_;
  const CheckOrder& order_;
  CheckedModel& checked_;
  Findings& findings_;
  ModelFactsWalk facts_;
  RelationCheck relations_;
  ProjectCheck project_;
  ClassQuestion isPlacement_{"IfcObjectPlacement"};
  std::vector<IFC::IfcEntity*> placements_;
  std::deque<ClassPlan> plans_;
  PerClass<ClassPlan*> planOf_;
};

void FindLines(const RecordNotes& notes, CheckedModel& checked) {
  std::vector<FindingPlace*> places;
  std::vector<std::int64_t> offsets;
  RecordPlaces records(notes);
  for (Finding& finding : checked.findings) {
    for (FindingPlace& place : finding.places) {
      if (place.offset >= 0) {
        places.push_back(&place);
        offsets.push_back(place.offset);
      } else if (place.number != 0) {
        records.Want(place.number);
      }
    }
  }
  if (!offsets.empty()) {
    const std::vector<std::uint64_t> lines = FileStream::LinesOf(checked.path, offsets);
    for (std::size_t i = 0; i < places.size(); ++i) places[i]->line = lines[i];
  }
  records.Find(checked.path);
  for (Finding& finding : checked.findings) {
    for (FindingPlace& place : finding.places) {
      if (place.offset < 0) place.line = records.LineOf(place.number);
    }
  }
}

Findings FindingsFor(const CheckOrder& order, const IFC::MainContainer& container,
                     KnownPlaces& known) {
  if (!order.keepsObjects) return {};
  return {container, order.before == nullptr ? nullptr : &known};
}

bool LookAtModel(IfcDocument& document, const CheckOrder& order, CheckedModel& checked) {
  const std::size_t pieces = document.mainContainer->entities.Size() / (kHundred / 2) + 1;
  Ticker ticker({.callback = order.progress}, {.block = pieces});
  const RecordNotes& notes = *document.GetParser().notes.records;
  KnownPlaces known = order.before == nullptr ? KnownPlaces() : PlacesOf(*order.before);
  Findings findings = FindingsFor(order, *document.mainContainer, known);
  CheckReading(document, findings);
  CheckAbsentNumbers(notes, *document.mainContainer, findings);
  if (!ObjectWalk(document, order, checked, findings).Run(ticker)) return false;
  checked.findings = findings.Take();
  FindLines(notes, checked);
  if (order.placesOfFile) {
    checked.places = PlacesOfModel(document, *order.placesOfFile, order.mostPlaces);
  }
  std::sort(checked.holders.begin(), checked.holders.end(), [](const auto& a, const auto& b) {
    return std::tie(a.guid, a.number) < std::tie(b.guid, b.number);
  });
  return true;
}

void ReadAndLook(const CheckOrder& order, CheckedModel& checked) {
  IfcDocument document(true, Hear, order.progress);
  document.ReadTolerantly();
  document.GetParser().notes.records = std::make_unique<RecordNotes>();
  document.KeepWorkFileIn(order.workFolder);
  constexpr int kOneFile = 1;
  std::vector<WideString> heard;
  {
    const Hearing hearing(heard);
    document.OpenFile(checked.path, kOneFile);
  }
  if (!document.IsParsed()) {
    checked.isCancelled = heard.empty() || document.IsCancelled();
    checked.problems = std::move(heard);
    return;
  }
  checked.isCancelled = !LookAtModel(document, order, checked);
}

}  // namespace

CheckedModel CheckModel(const WideString& path, const CheckOrder& order) {
  CheckedModel checked;
  checked.path = path;
  auto trouble = TroubleWithInput(path);
  if (!trouble) trouble = NoModelFile(path, true);
  if (trouble) {
    checked.problems.push_back(std::move(*trouble));
    return checked;
  }
  ReadAndLook(order, checked);
  return checked;
}

}  // namespace corvel::host

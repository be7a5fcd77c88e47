#include "host/check/project_check.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "merge/federation/attribute_values.h"

namespace corvel::host {

namespace {

constexpr char kContexts[] = "RepresentationContexts";
constexpr char kUnits[] = "UnitsInContext";

bool IsGeometric(const IFC::IfcEntity& context) {
  for (const ClassFacts* at = FindFacts(context); at != nullptr; at = at->supertype) {
    if (std::string_view(at->name) == "IfcGeometricRepresentationContext") return true;
  }
  return false;
}

}  // namespace

ProjectCheck::Role ProjectCheck::RoleOf(const ClassFacts& facts) {
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    const std::string_view name = at->name;
    if (name == "IfcProject") return Role::kProject;
    if (name == "IfcContext") return Role::kLibrary;
    if (name == "IfcUnitAssignment") return Role::kUnits;
    if (name == "IfcGeometricRepresentationSubContext") return Role::kSubContext;
    if (name == "IfcRepresentationContext") return Role::kContext;
    if (name == "IfcRepresentation") return Role::kRepresentation;
  }
  return Role::kNone;
}

void ProjectCheck::Look(IFC::IfcEntity& entity, Role role) {
  switch (role) {
    case Role::kProject: projects_.push_back(&entity); [[fallthrough]];
    case Role::kLibrary: listing_.push_back(&entity); break;
    case Role::kUnits: units_.push_back(&entity); break;
    case Role::kContext: contexts_.push_back(&entity); break;
    case Role::kRepresentation: hasRepresentations_ = true; break;
    case Role::kSubContext:
    case Role::kNone: break;
  }
}

bool ProjectCheck::HasGeometricContext() const {
  return std::any_of(listing_.begin(), listing_.end(), [](const IFC::IfcEntity* project) {
    const EntityList* const contexts = ReferencesOf(*project, kContexts);
    return contexts != nullptr && std::any_of(contexts->begin(), contexts->end(),
                                              [](const auto* one) { return IsGeometric(*one); });
  });
}

void ProjectCheck::TellUnlisted(const std::vector<IFC::IfcEntity*>& objects, const char* attribute,
                                RuleId rule, Findings& findings) const {
  std::unordered_set<const IFC::IfcEntity*> listed;
  for (const IFC::IfcEntity* const project : listing_) {
    if (const EntityList* const list = ReferencesOf(*project, attribute)) {
      listed.insert(list->begin(), list->end());
    }
    listed.insert(ReferenceOf(*project, attribute));
  }
  for (const IFC::IfcEntity* const object : objects) {
    if (listed.contains(object)) continue;
    findings.Add(rule, FindFacts(*object)->name,
                 {.number = object->marker, .what = TextOf(*object, "ContextType")});
  }
}

void ProjectCheck::Finish(Findings& findings) const {
  if (projects_.empty()) findings.Add(RuleId::kNoProject, {}, {});
  for (std::size_t i = 1; i < projects_.size(); ++i) {
    findings.Add(RuleId::kSeveralProjects, {}, {.number = projects_[i]->marker});
  }
  for (const IFC::IfcEntity* const project : projects_) {
    if (ReferenceOf(*project, kUnits) != nullptr) continue;
    findings.Add(RuleId::kNoUnits, {}, {.number = project->marker});
  }
  if (hasRepresentations_ && !projects_.empty() && !HasGeometricContext()) {
    findings.Add(RuleId::kNoContext, {}, {.number = projects_.front()->marker});
  }
  TellUnlisted(units_, kUnits, RuleId::kUnlistedUnits, findings);
  TellUnlisted(contexts_, kContexts, RuleId::kUnlistedContext, findings);
}

}  // namespace corvel::host

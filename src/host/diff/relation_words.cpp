#include "host/diff/relation_words.h"

#include <string_view>

namespace corvel::host::diff {

namespace {

struct Known {
  std::string_view className;  // and its subtypes
  const char* text;
  ChangeKind kind;
};

constexpr Known kKnown[] = {
    {"IfcRelDefinesByType", "type", ChangeKind::kType},
    {"IfcRelAssociatesMaterial", "material", ChangeKind::kMaterial},
    {"IfcRelContainedInSpatialStructure", "contained in", ChangeKind::kContainment},
    {"IfcRelAggregates", "part of", ChangeKind::kContainment},
    {"IfcRelNests", "nested in", ChangeKind::kContainment},
    {"IfcRelVoidsElement", "opening in", ChangeKind::kContainment},
    {"IfcRelFillsElement", "fills", ChangeKind::kRelation},
    {"IfcRelDefinesByProperties", "properties", ChangeKind::kRelation},
    {"IfcRelReferencedInSpatialStructure", "referenced in", ChangeKind::kRelation},
    {"IfcRelAssociatesClassification", "classification", ChangeKind::kRelation},
    {"IfcRelAssociatesDocument", "document", ChangeKind::kRelation},
    {"IfcRelAssignsToGroup", "group", ChangeKind::kRelation},
    {"IfcRelCoversBldgElements", "covers", ChangeKind::kRelation},
    {"IfcRelConnectsPathElements", "connected to", ChangeKind::kRelation},
    {"IfcRelDeclares", "declared in", ChangeKind::kRelation}};

}  // namespace

RelationWord WordOfRelation(const ClassFacts& relation) {
  for (const ClassFacts* at = &relation; at != nullptr; at = at->supertype) {
    for (const Known& known : kKnown) {
      if (known.className == at->name) return {known.text, known.kind};
    }
  }
  return {relation.name, ChangeKind::kRelation};
}

}  // namespace corvel::host::diff

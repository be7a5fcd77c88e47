#include "merge/federation/identity_text.h"

#include <algorithm>
#include <utility>

namespace corvel {

std::string_view IdentityText::Of(IFC::IfcEntity& entity) {
  stream_.StepBack(stream_.Text().size());
  const SharingMarks& marks = graph_.Marks();
  // What belongs to an owner is never the same as what belongs to none.
  if (marks.Has(entity, SharingMark::kOwned)) stream_.Append("owned ");
  writer_.WriteTypedCall(entity);
  if (marks.Has(entity, SharingMark::kDescribed)) AddDescriptions(entity);
  return stream_.Text();
}

// Two that say the same are one, as they will be in the file.
void IdentityText::AddDescriptions(IFC::IfcEntity& entity) {
  const std::string record(stream_.Text());
  std::vector<std::string> texts;
  for (const auto& [described, number] : graph_.DescriptionsOf(entity.marker)) {
    IFC::IfcEntity* const describing = model_.Container().entities.Find(number);
    texts.push_back(CountsByValue(*describing, entity) ? TextOfDescription(*describing, entity)
                                                       : RolesIn(*describing, number, entity));
  }
  std::sort(texts.begin(), texts.end());
  texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
  stream_.StepBack(stream_.Text().size());
  stream_.Append(record);
  for (const std::string& text : texts) {
    stream_.Append("\n");
    stream_.Append(text);
  }
}

// "#12 RelatedMaterials": the ends of a relation are not the same.
std::string IdentityText::RolesIn(IFC::IfcEntity& describing, std::uint32_t number,
                                  const IFC::IfcEntity& described) {
  std::string text = "#" + std::to_string(number);
  for (const AttributeFacts* const facts : graph_.PlanOf(describing).described) {
    bool isInRole = false;
    graph_.ForEachReferred(describing, *facts, [&](IFC::IfcEntity& referred) {
      isInRole = isInRole || graph_.Target(&referred) == &described;
    });
    if (isInRole) text.append(" ").append(facts->name);
  }
  return text;
}

// An asterisk stands for the object that is described.
std::string IdentityText::TextOfDescription(IFC::IfcEntity& describing, IFC::IfcEntity& described) {
  const std::uint32_t marker = std::exchange(described.marker, IFC::kUnfiled);
  stream_.StepBack(stream_.Text().size());
  writer_.WriteTypedCall(describing);
  described.marker = marker;
  return std::string(stream_.Text());
}

bool IdentityText::CountsByValue(IFC::IfcEntity& describing, const IFC::IfcEntity& described) {
  const SharingMarks& marks = graph_.Marks();
  using enum SharingMark;
  if (!marks.Has(describing, kCandidate) || marks.Has(described, kOwned)) return false;
  for (const SharingMark mark : {kOwned, kDescribed, kPinned}) {
    if (marks.Has(describing, mark)) return false;
  }
  std::size_t count = 0;
  for (const AttributeFacts* const facts : graph_.PlanOf(describing).described) {
    graph_.ForEachReferred(describing, *facts, [&](IFC::IfcEntity&) { ++count; });
  }
  return count == 1;
}

}  // namespace corvel

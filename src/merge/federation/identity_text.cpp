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
  for (const auto& [described, number, end] : graph_.DescriptionsOf(entity.marker)) {
    IFC::IfcEntity* const describing = model_.Container().entities.Find(number);
    // The ends of a relation are not the same.
    texts.push_back(CountsByValue(*describing, entity)
                        ? TextOfDescription(*describing, entity)
                        : "#" + std::to_string(number) + " " + std::to_string(end));
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
  return DescribesOne(describing);
}

// Stops at the second: a layer may have a million items.
bool IdentityText::DescribesOne(const IFC::IfcEntity& describing) {
  std::size_t count = 0;
  const auto take = [&count](const IFC::IfcEntity* described) {
    if (described != nullptr && described->marker != IFC::kDeleted) ++count;
    return count < 2;
  };
  for (const AttributeFacts* const facts : graph_.PlanOf(describing).described) {
    const ConstAttribute attribute(describing, *facts);
    if (const auto* const list = attribute.As<EntityList>()) {
      for (const IFC::IfcEntity* const member : *list) {
        if (!take(member)) return false;
      }
    } else if (const auto* const reference = attribute.As<IFC::IfcEntity*>()) {
      if (!take(*reference)) return false;
    }
  }
  return count == 1;
}

}  // namespace corvel

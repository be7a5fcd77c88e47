#include "step/writer/class_openings.h"

#include <stdexcept>

#include "core/text.h"

namespace corvel {

namespace {

ClassOpening OpeningOf(WideView className) {
  ClassOpening opening;
  if (className.size() >= ClassOpening::kRoom) throw std::logic_error("a class name is too long");
  for (const char16_t unit : className) {
    const char c = static_cast<char>(unit);
    opening.text[opening.size++] = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  opening.text[opening.size++] = '(';
  return opening;
}

}  // namespace

const ClassOpening& ClassOpenings::Make(const IFC::IfcEntity& entity) {
  const ClassOpening& opening = openings_.emplace_back(OpeningOf(entity.getClassName()));
  indices_.Remember(&typeid(entity), static_cast<std::ptrdiff_t>(openings_.size() - 1));
  return opening;
}

}  // namespace corvel

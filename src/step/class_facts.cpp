#include "step/class_facts.h"

#include <algorithm>

namespace corvel {

namespace {

constexpr char UpperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

bool PrecedesInUpperCase(std::string_view left, std::string_view right) {
  return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                      [](char a, char b) { return UpperCase(a) < UpperCase(b); });
}

void AppendAggregate(const Aggregate& aggregate, std::string& text) {
  constexpr std::string_view kNames[] = {"", "LIST", "SET", "ARRAY", "BAG"};
  if (aggregate.IsNone()) return;
  text += kNames[static_cast<std::size_t>(aggregate.kind)];
  const std::string high =
      aggregate.high == Aggregate::kUnbounded ? "?" : std::to_string(aggregate.high);
  text += " [" + std::to_string(aggregate.low) + ":" + high + "] OF ";
}

}  // namespace

const TypeFacts& TypeFacts::Root() const {
  const TypeFacts* root = this;
  while (root->base != nullptr) root = root->base;
  return *root;
}

bool TypeFacts::IsOrIsMadeOf(std::string_view typeName) const {
  const TypeFacts* type = this;
  while (type != nullptr && type->name != typeName) type = type->base;
  return type != nullptr;
}

bool AttributeFacts::Admits(const IFC::IfcEntity* entity) const {
  ClassTest* const admitted = type->Root().admitted;
  return admitted != nullptr && admitted->Admits(entity);
}

std::string AttributeFacts::Declaration() const {
  std::string text = IsOptional() ? "OPTIONAL " : "";
  for (const Aggregate& aggregate : aggregates) AppendAggregate(aggregate, text);
  return text + type->name;
}

const AttributeFacts& ClassFacts::Attribute(std::size_t index) const {
  const ClassFacts* declaring = this;
  while (index < declaring->inheritedCount) declaring = declaring->supertype;
  return declaring->own[index - declaring->inheritedCount];
}

const AttributeFacts* ClassFacts::FindAttribute(std::string_view attributeName) const {
  for (const ClassFacts* declaring = this; declaring != nullptr; declaring = declaring->supertype) {
    for (const AttributeFacts& attribute : std::span(declaring->own, declaring->ownCount)) {
      if (attribute.name == attributeName) return &attribute;
    }
  }
  return nullptr;
}

const ClassFacts* ReleaseClasses::Find(std::string_view className) const {
  const auto found = std::lower_bound(classes.begin(), classes.end(), className,
                                      [](const ClassFacts& facts, std::string_view name) {
                                        return PrecedesInUpperCase(facts.name, name);
                                      });
  if (found == classes.end() || PrecedesInUpperCase(className, found->name)) return nullptr;
  return &*found;
}

}  // namespace corvel

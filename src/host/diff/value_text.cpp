#include "host/diff/value_text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <vector>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/per_class.h"
#include "step/carried/carried_objects.h"

namespace corvel::host::diff {

namespace {

// By what objects without a name of their own are told apart.
constexpr const char* kNames[] = {
    "Name",          "LayerSetName",      "Identification",           "Identifier",
    "ItemReference", "ContextIdentifier", "RepresentationIdentifier", "Category"};

// Each byte is the unit of its value.
std::string Utf8Of(std::string_view plain) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(plain.begin(), plain.end(), isAscii)) return std::string(plain);
  return ToUtf8(Widen(plain));
}

std::string Quoted(const WideString& text) { return "'" + ToUtf8(text) + "'"; }

const char* UnitOf(Dimension dimension) {
  switch (dimension) {
    case Dimension::kLength: return " m";
    case Dimension::kArea: return " m2";
    case Dimension::kVolume: return " m3";
    case Dimension::kAngle: return " deg";
    case Dimension::kNone: break;
  }
  return "";
}

// "MILLIMETRE". Units of SI have no text for a name.
std::string NameOfSiUnit(const IFC::IfcEntity& entity) {
  return std::string(WordOf(entity, "Prefix")).append(WordOf(entity, "Name"));
}

std::vector<const AttributeFacts*> FindNames(const ClassFacts* facts) {
  std::vector<const AttributeFacts*> names;
  for (const char* const name : kNames) {
    const AttributeFacts* const found = facts == nullptr ? nullptr : facts->FindAttribute(name);
    if (found != nullptr) names.push_back(found);
  }
  return names;
}

// What a point or a direction says is its name.
std::string NumbersOf(const IFC::IfcEntity& entity) {
  for (const char* const name : {"Coordinates", "DirectionRatios"}) {
    if (RealsOf(entity, name) != nullptr) return name;
  }
  return {};
}

}  // namespace

std::string NameOf(const IFC::IfcEntity& entity) {
  static PerClass<std::vector<const AttributeFacts*>> names;
  for (const AttributeFacts* const name : names.Of(entity, FindNames)) {
    const ModelText* const text = ConstAttribute(entity, *name).As<ModelText>();
    if (text == nullptr || text->IsNull()) continue;
    std::string utf8 = text->IsPlain() ? Utf8Of(text->Plain()) : ToUtf8(text->ToWide());
    if (!utf8.empty()) return utf8;
  }
  return {};
}

ObjectLabel LabelOf(const IFC::IfcEntity& entity) {
  const auto* const root = EntityCast<IFC::VirtualIfcRoot>(const_cast<IFC::IfcEntity*>(&entity));
  return {entity.marker, ToUtf8(entity.getClassName()),
          root == nullptr ? std::string() : Utf8Of(root->getGlobalId()), NameOf(entity)};
}

std::string ValueText::Of(const ConstAttribute& attribute, const AttributeWord& word) const {
  std::string text;
  attribute.Visit([&](const auto& value) { text = Of(value, word); });
  return text;
}

std::string ValueText::Of(const IFC::IfcEntity* entity) const {
  if (entity == nullptr) return "(nothing)";
  if (entity->inlineValue) return OfTyped(*entity);
  const ObjectLabel label = LabelOf(*entity);
  std::string text = label.className;
  if (!label.name.empty()) text += " '" + label.name + "'";
  if (label.name.empty() && !label.guid.empty()) text += " " + label.guid;
  if (label.className == "IfcSIUnit") text += " '" + NameOfSiUnit(*entity) + "'";
  const std::string numbers = NumbersOf(*entity);
  if (numbers.empty()) return text;
  for (const AttributeWord& word : model_.Words().Of(*entity)->attributes) {
    if (word.facts->name != numbers) continue;
    text += " " + Of(ConstAttribute(*entity, *word.facts), word);
  }
  return text;
}

std::string ValueText::OfTyped(const IFC::IfcEntity& value) const {
  if (const auto* const carried = dynamic_cast<const CarriedValue*>(&value)) {
    return ToUtf8(carried->shown.ToWide());
  }
  const ClassWord* const word = model_.Words().Of(value);
  if (word == nullptr || word->attributes.empty()) return ToUtf8(value.getClassName());
  const AttributeWord& held = word->attributes.front();
  return Of(ConstAttribute(value, *held.facts), held);
}

// Twelve digits: what a factor between units leaves behind is not shown.
std::string ValueText::Of(double number, const AttributeWord& word) const {
  std::array<char, 32> digits{};
  const double scale = hasOwnUnit_ ? 1.0 : model_.Scales().Of(word.dimension);
  std::snprintf(digits.data(), digits.size(), "%.12g", number * scale);
  return digits.data() + std::string(hasOwnUnit_ ? "" : UnitOf(word.dimension));
}

std::string ValueText::Of(std::int32_t number, const AttributeWord& word) {
  if (word.facts->kind == ValueKind::kInteger || word.facts->kind == ValueKind::kBinary) {
    return std::to_string(number);
  }
  std::string_view text = word.facts->Values()->ToText(number);
  if (text == ".T.,") return "true";
  if (text == ".F.,") return "false";
  if (text == ".U.,") return "unknown";
  if (text.size() > 3) text = text.substr(1, text.size() - 3);
  return std::string(text);
}

std::string ValueText::Of(ModelText text, const AttributeWord&) {
  return text.IsNull() ? "''" : Quoted(text.ToWide());
}

std::string ValueText::Of(const char* text, const AttributeWord&) { return Quoted(Widen(text)); }

}  // namespace corvel::host::diff

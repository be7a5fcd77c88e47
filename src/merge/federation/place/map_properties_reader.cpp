#include "merge/federation/place/map_properties_reader.h"

#include <charconv>
#include <cmath>
#include <string>

#include "merge/federation/attribute_values.h"

namespace corvel {

namespace {

struct Word {
  WideView word;  // small letters without blanks
  double metres;
};

constexpr double kFoot = 0.3048;
constexpr double kSurveyFoot = 1200.0 / 3937.0;
constexpr Word kWords[] = {{u"m", 1.0},
                           {u"metre", 1.0},
                           {u"meter", 1.0},
                           {u"metres", 1.0},
                           {u"meters", 1.0},
                           {u"mm", 1e-3},
                           {u"millimetre", 1e-3},
                           {u"millimeter", 1e-3},
                           {u"millimetres", 1e-3},
                           {u"cm", 1e-2},
                           {u"centimetre", 1e-2},
                           {u"centimeter", 1e-2},
                           {u"dm", 1e-1},
                           {u"decimetre", 1e-1},
                           {u"decimeter", 1e-1},
                           {u"km", 1e3},
                           {u"kilometre", 1e3},
                           {u"kilometer", 1e3},
                           {u"ft", kFoot},
                           {u"foot", kFoot},
                           {u"feet", kFoot},
                           {u"in", 0.0254},
                           {u"inch", 0.0254},
                           {u"internationalfoot", kFoot},
                           {u"yd", 0.9144},
                           {u"yard", 0.9144},
                           {u"ftus", kSurveyFoot},
                           {u"usft", kSurveyFoot},
                           {u"ussurveyfoot", kSurveyFoot},
                           {u"ussurveyfeet", kSurveyFoot}};

bool IsBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

WideString Trimmed(const WideString& text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && IsBlank(text[begin])) ++begin;
  while (end > begin && IsBlank(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

std::optional<double> NumberIn(const WideString& text) {
  const std::string bytes = Narrow(Trimmed(text));
  double number = 0.0;
  const char* const end = bytes.data() + bytes.size();
  const auto [rest, error] = std::from_chars(bytes.data(), end, number);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

}  // namespace

MapProperties::MapProperties(const std::vector<IFC::IfcEntity*>& sets) {
  for (const IFC::IfcEntity* const set : sets) {
    const EntityList* const properties = ReferencesOf(*set, "HasProperties");
    if (properties == nullptr) continue;
    for (IFC::IfcEntity* const property : *properties) {
      properties_.try_emplace(ToLowerAscii(TextOf(*property, "Name")), property);
    }
  }
}

IFC::IfcEntity* MapProperties::Property(const WideString& name) const {
  const auto found = properties_.find(name);
  return found == properties_.end() ? nullptr : found->second;
}

double MapProperties::NumberOr(const WideString& name, double absent) const {
  const IFC::IfcEntity* const property = Property(name);
  const IFC::IfcEntity* const typed = property == nullptr ? nullptr : ValueOfProperty(*property);
  if (typed == nullptr) return absent;
  const auto value = AttributesOf(*typed).Find("value");
  if (!value) return absent;
  if (const double* const real = value->As<double>()) return *real;
  if (value->Facts().kind == ValueKind::kInteger) return IntegerOf(*typed, "value");
  return NumberIn(TextOf(*typed, "value")).value_or(absent);
}

WideString MapProperties::TextOr(const WideString& name) const {
  const IFC::IfcEntity* const property = Property(name);
  const IFC::IfcEntity* const typed = property == nullptr ? nullptr : ValueOfProperty(*property);
  return typed == nullptr ? WideString() : Trimmed(TextOf(*typed, "value"));
}

IFC::IfcEntity* ValueOfProperty(const IFC::IfcEntity& property) {
  IFC::IfcEntity* const single = ReferenceOf(property, "NominalValue");
  if (single != nullptr) return single->inlineValue ? single : nullptr;
  const EntityList* const list = ReferencesOf(property, "ListValues");
  return list == nullptr || list->empty() ? nullptr : *list->begin();
}

std::optional<double> MetresPerWord(const WideString& word) {
  WideString bare = ToLowerAscii(word);
  std::erase_if(bare, [](char16_t unit) {
    return IsBlank(unit) || unit == u'.' || unit == u'_' || unit == u'-';
  });
  for (const Word& known : kWords) {
    if (known.word == bare) return known.metres;
  }
  return {};
}

}  // namespace corvel

// Values of a model as people read them, in UTF-8.
#pragma once

#include <string>

#include "host/diff/changes.h"
#include "host/diff/compared_model.h"
#include "schema/attributes.h"

namespace corvel::host::diff {

// The name of an object of any class: what it has instead of one where it has none. Empty without.
std::string NameOf(const IFC::IfcEntity& entity);
ObjectLabel LabelOf(const IFC::IfcEntity& entity);

class ValueText {
 public:
  // Numbers of measures are told in SI units, unless `hasOwnUnit`.
  ValueText(const ComparedModel& model, bool hasOwnUnit) : model_(model), hasOwnUnit_(hasOwnUnit) {}

  // 'text', 3.2 m, STANDARD, true, (1, 2); of a long list the beginning and the count. A typed
  // value is told by what it holds, an object by class and name.
  std::string Of(const ConstAttribute& attribute, const AttributeWord& word) const;
  template <class T>
  std::string OfHeld(const T& value, const AttributeWord& word) const {
    return Of(value, word);
  }
  std::string Of(const IFC::IfcEntity* entity) const;

 private:
  template <class T>
  std::string Of(const List<T>& list, const AttributeWord& word) const {
    std::string text = "(";
    for (std::size_t i = 0; i < list.size() && i < kMostItems; ++i) {
      if (i != 0) text += ", ";
      text += Of(list[i], word);
    }
    if (list.size() > kMostItems) text += ", ... " + std::to_string(list.size());
    return text + ")";
  }
  std::string Of(IFC::IfcEntity* entity, const AttributeWord&) const {
    return Of(static_cast<const IFC::IfcEntity*>(entity));
  }
  std::string Of(double number, const AttributeWord& word) const;
  static std::string Of(std::int32_t number, const AttributeWord& word);
  static std::string Of(ModelText text, const AttributeWord&);
  static std::string Of(const char* text, const AttributeWord&);
  std::string OfTyped(const IFC::IfcEntity& value) const;

  static constexpr std::size_t kMostItems = 6;

  const ComparedModel& model_;
  bool hasOwnUnit_;
};

}  // namespace corvel::host::diff

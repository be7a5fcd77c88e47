// The values of the property sets that say in IFC2X3 what map conversions say later.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "core/entity.h"
#include "core/text.h"

namespace corvel {

// Names are in small letters, whatever those of the file are: u"eastings".
class MapProperties {
 public:
  // Of several properties of one name the first counts.
  explicit MapProperties(const std::vector<IFC::IfcEntity*>& sets);

  // The number that a value is, or the one that it says as a text.
  double NumberOr(const WideString& name, double absent) const;
  // Without blanks around it; empty without a value.
  WideString TextOr(const WideString& name) const;
  // Null without one.
  IFC::IfcEntity* Property(const WideString& name) const;

 private:
  std::map<WideString, IFC::IfcEntity*> properties_;
};

// The first typed value of a property, be it in a list; null without one.
IFC::IfcEntity* ValueOfProperty(const IFC::IfcEntity& property);

// Of a unit of length that is written as a word: "METRE", "mm", "US survey foot".
std::optional<double> MetresPerWord(const WideString& word);

}  // namespace corvel

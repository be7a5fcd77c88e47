// What each class of a release is to be one of, as the facts of the release say.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "core/entity_cast.h"

namespace corvel::test {

// A class or select that an object can be asked for.
struct Target {
  std::string_view name;
  bool (*isOfClass)(const IFC::IfcEntity*);  // a plain dynamic_cast
};

struct ClassRow {
  std::string_view key;                 // "IFCWALL"
  std::u16string_view name;             // u"IfcWall"
  std::span<const std::uint16_t> isOf;  // indices of targets, ascending
  // The supertype, and then its own attributes, a line each: name, declaration, the defined types
  // that the type is made of, what it is in the end, and how many lists are around that.
  std::string_view attributes;
};

struct ClassTable {
  std::span<const Target> targets;
  std::span<const ClassRow> classes;
};

}  // namespace corvel::test

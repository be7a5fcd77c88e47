// The value table of one enumeration of one release.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace corvel {

// One value. `literal` is the text of the file with its dots and the comma that ends every written
// value: ".SOLIDWALL.,".
struct EnumRow {
  std::string_view literal;
  std::int32_t number;
  bool readOnly = false;  // accepted when read, unknown when written

  std::string_view Name() const { return literal.substr(1, literal.size() - 3); }
};

// Rows stand in the order of the schema; numbers rise but may skip some.
struct EnumTable {
  const char16_t* name;  // "IfcWallTypeEnum"
  std::span<const EnumRow> rows;

  // What a value becomes that cannot be read: the number of the last row.
  std::int32_t Fallback() const { return rows.back().number; }
  // The row of an exact, case-sensitive match; null if there is none. Compares the rows one by one,
  // as ToText does.
  const EnumRow* FindByName(std::string_view text) const;
  // ".NAME.,", or "$," for a number that has no text.
  std::string_view ToText(std::int32_t number) const;
};

extern const EnumTable kBooleanDataType;  // T 0, F 1
extern const EnumTable kLogicalDataType;  // T 0, F 1, U 2

}  // namespace corvel

#include "step/enum_table.h"

namespace corvel {

namespace {
constexpr EnumRow kBooleanRows[] = {{".T.,", 0}, {".F.,", 1}};
constexpr EnumRow kLogicalRows[] = {{".T.,", 0}, {".F.,", 1}, {".U.,", 2}};
}  // namespace

const EnumTable kBooleanDataType{u"BooleanDataType", kBooleanRows};
const EnumTable kLogicalDataType{u"LogicalDataType", kLogicalRows};

const EnumRow* EnumTable::FindByName(std::string_view text) const {
  for (const EnumRow& row : rows) {
    if (row.Name() == text) return &row;
  }
  return nullptr;
}

std::string_view EnumTable::ToText(std::int32_t number) const {
  for (const EnumRow& row : rows) {
    if (row.number == number) return row.readOnly ? std::string_view("$,") : row.literal;
  }
  return "$,";
}

}  // namespace corvel

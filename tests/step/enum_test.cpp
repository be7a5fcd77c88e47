#include "step/enum_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "IFC2X3/enums.h"
#include "IFC4/enums.h"

namespace corvel {
namespace {

constexpr EnumRow kRows[] = {{".A.,", 0}, {".AB.,", 1}, {".B_1.,", 4, true}, {".LAST.,", 7}};
const EnumTable kTable{u"IfcTestEnum", kRows};

// The number of a name, -1 for none.
int NumberOfName(const EnumTable& table, std::string_view name) {
  const EnumRow* const row = table.FindByName(name);
  return row == nullptr ? -1 : row->number;
}

TEST(EnumTable, NamesAreExact) {
  EXPECT_EQ(0, NumberOfName(kTable, "A"));
  EXPECT_EQ(1, NumberOfName(kTable, "AB"));
  EXPECT_EQ(4, NumberOfName(kTable, "B_1"));
  for (const char* const name : {"", "a", "ABC", "B", ".A.", "A ", "B1"}) {
    EXPECT_EQ(-1, NumberOfName(kTable, name)) << name;
  }
}

TEST(EnumTable, TextsHaveTheirDotsAndTheComma) {
  EXPECT_EQ(".A.,", kTable.ToText(0));
  EXPECT_EQ(".LAST.,", kTable.ToText(7));
}

TEST(EnumTable, ANumberOutsideTheTableIsADollar) {
  for (const int number : {-1, 2, 3, 5, 8, 1000}) EXPECT_EQ("$,", kTable.ToText(number)) << number;
}

TEST(EnumTable, AValueThatIsOnlyReadIsADollarWhenWritten) { EXPECT_EQ("$,", kTable.ToText(4)); }

TEST(EnumTable, TheFallbackIsTheLastRow) { EXPECT_EQ(7, kTable.Fallback()); }

TEST(EnumTable, TrueIsZero) {
  EXPECT_EQ(0, NumberOfName(kBooleanDataType, "T"));
  EXPECT_EQ(1, NumberOfName(kBooleanDataType, "F"));
  EXPECT_EQ(-1, NumberOfName(kBooleanDataType, "U"));
  EXPECT_EQ(1, kBooleanDataType.Fallback());
  EXPECT_EQ(0, NumberOfName(kLogicalDataType, "T"));
  EXPECT_EQ(1, NumberOfName(kLogicalDataType, "F"));
  EXPECT_EQ(2, NumberOfName(kLogicalDataType, "U"));
  EXPECT_EQ(2, kLogicalDataType.Fallback());
}

// --- Tables of the releases ----------------------------------------------------------------------

TEST(SchemaEnums, IceIsAnActionSource) {
  const EnumTable& table = IFC4::kIfcActionSourceTypeEnum;
  const EnumRow* const ice = table.FindByName("ICE");
  ASSERT_NE(nullptr, ice);
  EXPECT_EQ(".ICE.,", table.ToText(ice->number));
}

TEST(SchemaEnums, UnitNamesAndPrefixesHaveTheNumbersThatTheUnitsRelyOn) {
  for (const EnumTable* const table : {&IFC2X3::kIfcSIUnitName, &IFC4::kIfcSIUnitName}) {
    EXPECT_EQ(0, NumberOfName(*table, "AMPERE"));
    EXPECT_EQ(15, NumberOfName(*table, "METRE"));
    EXPECT_EQ(24, NumberOfName(*table, "SQUARE_METRE"));
    EXPECT_EQ(29, NumberOfName(*table, "WEBER"));
    EXPECT_EQ(29, table->Fallback());
  }
  for (const EnumTable* const table : {&IFC2X3::kIfcSIPrefix, &IFC4::kIfcSIPrefix}) {
    EXPECT_EQ(0, NumberOfName(*table, "EXA"));
    EXPECT_EQ(10, NumberOfName(*table, "MILLI"));
    EXPECT_EQ(15, table->Fallback());
  }
  EXPECT_EQ(15, NumberOfName(IFC4::kIfcUnitEnum, "LENGTHUNIT"));
  EXPECT_EQ(29, NumberOfName(IFC4::kIfcUnitEnum, "USERDEFINED"));
}

std::set<int> Holes(const EnumTable& table) {
  std::set<int> holes;
  for (int number = 0; number < table.Fallback(); ++number) holes.insert(number);
  for (const EnumRow& row : table.rows) holes.erase(row.number);
  return holes;
}

TEST(SchemaEnums, TablesMaySkipNumbers) {
  EXPECT_EQ((std::set<int>{22}), Holes(IFC4::kIfcDerivedUnitEnum));
  EXPECT_EQ(53, IFC4::kIfcDerivedUnitEnum.Fallback());
  EXPECT_EQ((std::set<int>{1, 22, 44, 46, 49}), Holes(IFC2X3::kIfcDerivedUnitEnum));
  EXPECT_EQ(53, IFC2X3::kIfcDerivedUnitEnum.Fallback());
  EXPECT_EQ((std::set<int>{5, 6}), Holes(IFC4::kIfcDoorTypeOperationEnum));
  for (const int hole : {5, 6}) EXPECT_EQ("$,", IFC4::kIfcDoorTypeOperationEnum.ToText(hole));
}

TEST(SchemaEnums, TwoDoorStylesAreReadAndNotWritten) {
  for (const EnumTable* const table :
       {&IFC2X3::kIfcDoorStyleOperationEnum, &IFC4::kIfcDoorStyleOperationEnum}) {
    EXPECT_EQ(5, NumberOfName(*table, "DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_LEFT"));
    EXPECT_EQ(6, NumberOfName(*table, "DOUBLE_PANEL_SINGLE_SWING_OPPOSITE_RIGHT"));
    EXPECT_EQ("$,", table->ToText(5));
    EXPECT_EQ("$,", table->ToText(6));
    EXPECT_EQ(".DOUBLE_DOOR_SINGLE_SWING_OPPOSITE_RIGHT.,", table->ToText(4));
  }
}

TEST(SchemaEnums, NamesAndTextsAreInverses) {
  for (const EnumTable* const table :
       {&IFC2X3::kIfcDerivedUnitEnum, &IFC2X3::kIfcUnitEnum, &IFC4::kIfcDoorTypeOperationEnum,
        &IFC4::kIfcActionSourceTypeEnum, &IFC4::kIfcWallTypeEnum, &IFC4::kIfcSIUnitName}) {
    int before = -1;
    for (const EnumRow& row : table->rows) {
      EXPECT_EQ(row.number, NumberOfName(*table, row.Name()));
      EXPECT_EQ("." + std::string(row.Name()) + ".,", table->ToText(row.number));
      EXPECT_LT(before, row.number);
      before = row.number;
    }
  }
}

}  // namespace
}  // namespace corvel

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>

#include "schema/registry.h"
#include "step/enum_table.h"
#include "step/streams/outpout_file_stream.h"
#include "step/writer/step_writer.h"
#include "support/memory_streams.h"
#include "support/temporary_folder.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using test::MemoryOutpoutStream;
using test::TemporaryFolder;

class ValueWriter : public testing::Test {
 protected:
  // Everything that has been written since the last call.
  std::string Written() {
    std::string text = stream_.Text();
    stream_.Clear();
    return text;
  }
  std::string Text(const WideString& text) {
    writer_.WriteText(text.c_str());
    const std::string written = Written();
    writer_.WriteText(pool_.InternText(text));  // in bytes where it can be
    EXPECT_EQ(written, Written());
    return written;
  }
  std::string Ref(const IFC::IfcEntity* entity) {
    writer_.WriteEntityRef(entity);
    return Written();
  }
  std::string Refs(std::initializer_list<IFC::IfcEntity*> members) {
    writer_.WriteEntityRefList(ListOf(members));
    return Written();
  }
  std::string RefLists(std::initializer_list<EntityList> lists) {
    writer_.WriteEntityRefLists(ListOf(lists));
    return Written();
  }

  IFC::IfcEntity* Blank(const char* className) {
    return FactoriesOf(SchemaNamespace::IFC4).Find(className)(pool_);
  }
  IFC::IfcEntity* Numbered(std::uint32_t number) {
    IFC::IfcEntity* const entity = Blank("IFCCARTESIANPOINT");
    entity->marker = number;
    return entity;
  }
  IFC::IfcEntity* Inline(const char* className) {
    IFC::IfcEntity* const entity = Blank(className);
    entity->inlineValue = true;
    return entity;
  }
  template <class Item>
  List<Item> ListOf(std::initializer_list<Item> items) {
    List<Item> list;
    list.Assign({items.begin(), items.size()}, pool_);
    return list;
  }

  MemoryPool pool_{1 << 16};
  MemoryOutpoutStream stream_;
  StepWriter writer_{stream_};
};

// --- Texts ---------------------------------------------------------------------------------------

TEST_F(ValueWriter, PlainTextsStandInQuotes) {
  EXPECT_EQ("'',", Text(u""));
  EXPECT_EQ("'abc',", Text(u"abc"));
  EXPECT_EQ("' ~!\"#$%&()*+,-./:;<=>?@[]^_`{|}',", Text(u" ~!\"#$%&()*+,-./:;<=>?@[]^_`{|}"));
}

TEST_F(ValueWriter, QuotesAndBackslashesAreDoubled) {
  EXPECT_EQ("'It''s',", Text(u"It's"));
  EXPECT_EQ("'C:\\\\x',", Text(u"C:\\x"));
  EXPECT_EQ("'''\\\\''',", Text(u"'\\'"));
}

TEST_F(ValueWriter, AllOtherCharactersAreGroupsOfFourDigits) {
  EXPECT_EQ("'\\X2\\00E9\\X0\\',", Text(u"\u00E9"));
  EXPECT_EQ("'\\X2\\20AC\\X0\\',", Text(u"\u20AC"));
  EXPECT_EQ("'a\\X2\\000A\\X0\\\\X2\\0009\\X0\\b',", Text(u"a\n\tb"));
  EXPECT_EQ("'\\X2\\007F\\X0\\\\X2\\0080\\X0\\',", Text(u"\u007F\u0080"));
  EXPECT_EQ("'\\X2\\00E4\\X0\\\\X2\\00F6\\X0\\',", Text(u"\u00E4\u00F6")) << "a group for each";
  EXPECT_EQ("'\\X2\\FFFF\\X0\\\\X2\\ABCD\\X0\\',", Text(u"\uFFFF\uABCD"));
  EXPECT_EQ("'\\X2\\D83D\\X0\\\\X2\\DE00\\X0\\',", Text(u"\U0001F600"));
}

TEST_F(ValueWriter, RawBytesGoBackAsTheyCame) {
  EXPECT_EQ("'\x80\xFF',", Text({char16_t{0xDC80}, char16_t{0xDCFF}}));
  EXPECT_EQ("'\\X2\\DC7F\\X0\\\\X2\\DD00\\X0\\',", Text({char16_t{0xDC7F}, char16_t{0xDD00}}));
}

TEST_F(ValueWriter, TheSecondHalfOfAPairIsNoRawByte) {
  EXPECT_EQ("'\\X2\\D83D\\X0\\\\X2\\DC80\\X0\\\x80',",
            Text({char16_t{0xD83D}, char16_t{0xDC80}, char16_t{0xDC80}}));
}

TEST_F(ValueWriter, ATextEndsAtItsFirstNul) { EXPECT_EQ("'ab',", Text(u"ab\0cd"s)); }

TEST_F(ValueWriter, LongTextsOfEscapesComeWhole) {
  for (const std::size_t length : {41u, 42u, 43u, 84u, 85u, 511u, 512u, 513u, 100'000u}) {
    std::string expected = "'";
    for (std::size_t i = 0; i < length; ++i) expected += "\\X2\\00E4\\X0\\";
    EXPECT_TRUE(expected + "'," == Text(WideString(length, u'\u00E4'))) << length;
    EXPECT_TRUE("'" + std::string(length, 'x') + "'," == Text(WideString(length, u'x'))) << length;
  }
}

TEST_F(ValueWriter, EachUnitIsWrittenAlikeAtEachPlaceOfAText) {
  for (char16_t unit = 1; unit < 300; ++unit) {
    const std::string alone = Text(WideString(1, unit));
    for (std::size_t before = 0; before < 17; ++before) {
      ASSERT_EQ("'" + std::string(before, 'x') + alone.substr(1, alone.size() - 3) + "yyyyyyyyy',",
                Text(WideString(before, u'x') + unit + WideString(9, u'y')))
          << before << " before " << static_cast<int>(unit);
    }
  }
}

TEST_F(ValueWriter, APairMayStandAnywhereInALongText) {
  for (std::size_t before = 0; before < 100; ++before) {
    const std::string expected =
        "'" + std::string(before, 'x') + "\\X2\\D83D\\X0\\\\X2\\DC80\\X0\\',";
    EXPECT_EQ(expected,
              Text(WideString(before, u'x') + WideString{char16_t{0xD83D}, char16_t{0xDC80}}));
  }
}

TEST_F(ValueWriter, AGuidIsWrittenAsATextOfItsBytes) {
  writer_.WriteGuid("2O2Fr$t4X7Zf8NOew3FNr2");
  EXPECT_EQ("'2O2Fr$t4X7Zf8NOew3FNr2',", Written());
  writer_.WriteGuid("a'b\\\xE4");
  EXPECT_EQ("'a''b\\\\\\X2\\00E4\\X0\\',", Written());
  writer_.WriteGuid("");
  EXPECT_EQ("'',", Written());
  writer_.WriteGuid(std::string(1000, 'g').c_str());
  EXPECT_EQ("'" + std::string(1000, 'g') + "',", Written());
}

// --- Numbers (the forms are those of number_text_test.cpp) ---------------------------------------

TEST_F(ValueWriter, NumbersEndWithAComma) {
  writer_.WriteReal(1.0);
  writer_.WriteReal(1.5);
  writer_.WriteReal(-2147483649.0);
  EXPECT_EQ("1.,1.5E+00,-2.147483649E+09,", Written());
  writer_.WriteInteger(-7);
  writer_.WriteInteger(std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ("-7,-2147483648,", Written());
  writer_.WriteCount(3.0);
  writer_.WriteCount(1000000.0);
  EXPECT_EQ("3,1e+06,", Written());
  writer_.WriteBinaryValue(101);
  EXPECT_EQ("101,", Written());
}

TEST_F(ValueWriter, BooleansLogicalsAndEnumerationsStandInPointsAndAreADollarOutsideTheirTable) {
  for (const int value : {0, 1, 2, -1}) writer_.WriteBoolean(value);
  EXPECT_EQ(".T.,.F.,$,$,", Written());
  for (const int value : {0, 1, 2, 3, -1}) writer_.WriteLogical(value);
  EXPECT_EQ(".T.,.F.,.U.,$,$,", Written());
  for (const int value : {2, 9}) writer_.WriteEnum(kLogicalDataType, value);
  EXPECT_EQ(".U.,$,", Written());
  writer_.WriteAbsent();
  EXPECT_EQ("$,", Written());
}

// --- References ----------------------------------------------------------------------------------

TEST_F(ValueWriter, AReferenceIsTheNumber) {
  EXPECT_EQ("#12,", Ref(Numbered(12)));
  EXPECT_EQ("#4294967279,", Ref(Numbered(IFC::kLargestNumber)));
  EXPECT_FALSE(writer_.WriteEntityRef(Numbered(12)));
}

TEST_F(ValueWriter, NullIsAStar) {
  EXPECT_EQ("*,", Ref(nullptr));
  EXPECT_FALSE(writer_.WriteEntityRef(nullptr));
}

TEST_F(ValueWriter, ADeletedEntityIsADollar) {
  EXPECT_EQ("$,", Ref(Numbered(IFC::kDeleted)));
  EXPECT_TRUE(writer_.WriteEntityRef(Numbered(IFC::kDeleted)));
}

TEST_F(ValueWriter, WhatIsNeitherInlineNorNumberedIsAStar) { EXPECT_EQ("*,", Ref(Numbered(0))); }

TEST_F(ValueWriter, OnlyTheDeletedMarkMeansDeleted) {
  EXPECT_EQ("#4294967291,", Ref(Numbered(IFC::kNewRootPlacement)));
  EXPECT_EQ("#4294967286,", Ref(Numbered(0xFFFFFFF6u)));
  EXPECT_EQ("#2147483648,", Ref(Numbered(0x80000000u)));
}

TEST_F(ValueWriter, AnInlineValueStandsInItsPlace) {
  EXPECT_EQ("IFCLABEL(''),", Ref(Inline("IFCLABEL")));
  EXPECT_EQ("IFCBOOLEAN(.F.),", Ref(Inline("IFCBOOLEAN")));
  EXPECT_EQ("IFCCOMPLEXNUMBER(()),", Ref(Inline("IFCCOMPLEXNUMBER")));
  EXPECT_EQ("IFCNULLSTYLE),", Ref(Inline("IFCNULLSTYLE"))) << "its bracket is taken for a comma";
  EXPECT_FALSE(writer_.WriteEntityRef(Inline("IFCLABEL")));
}

TEST_F(ValueWriter, AListOfReferencesHoldsItsMembersInOrder) {
  EXPECT_EQ("(),", Refs({}));
  EXPECT_EQ("(#1),", Refs({Numbered(1)}));
  EXPECT_EQ("(#1,IFCLABEL(''),*,#2),",
            Refs({Numbered(1), Inline("IFCLABEL"), nullptr, Numbered(2)}));
}

TEST_F(ValueWriter, DeletedMembersVanishFromAList) {
  IFC::IfcEntity* const gone = Numbered(IFC::kDeleted);
  EXPECT_EQ("(#1),", Refs({gone, Numbered(1), gone}));
  EXPECT_EQ("(#1),", Refs({Numbered(1), gone, gone}));
  EXPECT_EQ("(#1,#2),", Refs({Numbered(1), gone, Numbered(2)}));
  EXPECT_EQ("(),", Refs({gone}));
  EXPECT_EQ("(),", Refs({gone, gone, gone}));
}

TEST_F(ValueWriter, InnerListsOfReferencesStayWhenTheyAreEmpty) {
  IFC::IfcEntity* const gone = Numbered(IFC::kDeleted);
  EXPECT_EQ("(),", RefLists({}));
  EXPECT_EQ("((#1),(),(#2)),",
            RefLists({ListOf({Numbered(1)}), ListOf({gone}), ListOf({gone, Numbered(2)})}));
  EXPECT_EQ("(()),", RefLists({EntityList()}));
}

// --- Aggregates of values ------------------------------------------------------------------------

TEST_F(ValueWriter, AListOfValuesHasNoCommaBehindItsLast) {
  writer_.WriteRealList(ListOf({0.0, 1.5, 2.5e-5}));
  EXPECT_EQ("(0.,1.5E+00,2.5E-05),", Written());
  writer_.WriteIntegerList(ListOf<std::int32_t>({1, -2}));
  EXPECT_EQ("(1,-2),", Written());
  writer_.WriteBinaryList(ListOf<std::int32_t>({0, 101}));
  EXPECT_EQ("(0,101),", Written());
  writer_.WriteStringList(ListOf<ModelText>({u"a", u"", u"it's"}));
  EXPECT_EQ("('a','','it''s'),", Written());
  writer_.WriteBooleanList(ListOf<std::int32_t>({0, 1}));
  EXPECT_EQ("(.T.,.F.),", Written());
  writer_.WriteLogicalList(ListOf<std::int32_t>({2}));
  EXPECT_EQ("(.U.),", Written());
  writer_.WriteEnumList(kLogicalDataType, ListOf<std::int32_t>({2, 7}));
  EXPECT_EQ("(.U.,$),", Written());
}

TEST_F(ValueWriter, EmptyListsAreBrackets) {
  writer_.WriteRealList({});
  writer_.WriteIntegerList({});
  writer_.WriteBinaryList({});
  writer_.WriteStringList({});
  writer_.WriteBooleanList({});
  writer_.WriteLogicalList({});
  writer_.WriteEnumList(kLogicalDataType, {});
  writer_.WriteRealLists({});
  writer_.WriteIntegerLists({});
  EXPECT_EQ("(),(),(),(),(),(),(),(),(),", Written());
}

TEST_F(ValueWriter, InnerListsOfValuesStayWhenTheyAreEmpty) {
  writer_.WriteRealLists(ListOf({ListOf({1.0, 2.0}), List<double>(), ListOf({3.0})}));
  EXPECT_EQ("((1.,2.),(),(3.)),", Written());
  writer_.WriteIntegerLists(ListOf({ListOf<std::int32_t>({1, 2}), ListOf<std::int32_t>({3})}));
  EXPECT_EQ("((1,2),(3)),", Written());
}

// --- Lines ---------------------------------------------------------------------------------------

TEST_F(ValueWriter, ALineIsNumberNameAndAttributes) {
  writer_.WriteEntityLine(*Numbered(7));
  EXPECT_EQ("#7=IFCCARTESIANPOINT(());\n", Written());
  IFC::IfcEntity* const wall = Blank("IFCWALL");
  wall->marker = 4294967279u;
  writer_.WriteEntityLine(*wall);
  EXPECT_EQ("#4294967279=IFCWALL('',$,$,$,$,$,$,$,$);\n", Written());
}

TEST_F(ValueWriter, ADeletedEntityHasNoLine) {
  writer_.WriteEntityLine(*Numbered(IFC::kDeleted));
  EXPECT_EQ("", Written());
  writer_.WriteEntityLine(*Numbered(0x90000000u));
  EXPECT_EQ("#2415919104=IFCCARTESIANPOINT(());\n", Written()) << "large numbers are numbers";
}

// --- Through a file ------------------------------------------------------------------------------

TEST_F(ValueWriter, BlocksOfAnySizeGiveTheSameBytes) {
  IFC::IfcEntity* const gone = Numbered(IFC::kDeleted);
  const EntityList members = ListOf({gone, Numbered(1), gone, Inline("IFCLABEL"), gone});
  const auto writeAll = [&](StepWriter& writer) {
    for (int i = 0; i < 40; ++i) {
      writer.WriteText(u"it's \u00E4 text");
      writer.WriteRealList(ListOf({0.0, 1.25, -3e300}));
      writer.WriteEntityRefList(members);
      writer.WriteEntityLine(*Numbered(12));
    }
  };
  writeAll(writer_);
  const std::string expected = Written();
  TemporaryFolder folder;
  for (std::uint64_t blockSize = 1; blockSize < 700; blockSize += blockSize < 20 ? 1 : 37) {
    FileStream::OutpoutFileStream file(folder.Path("a.ifc"), nullptr, blockSize, 10);
    StepWriter writer(file);
    writeAll(writer);
    EXPECT_TRUE(file.Commit());
    EXPECT_TRUE(file.Close());
    ASSERT_TRUE(expected == folder.Read("a.ifc")) << blockSize;
  }
}

TEST_F(ValueWriter, AFullDiskShowsAsAnException) {
  MemoryOutpoutStream small(2000);
  StepWriter writer(small);
  EXPECT_THROW(
      {
        for (int i = 0; i < 10'000; ++i) writer.WriteInteger(i);
      },
      std::runtime_error);
}

TEST_F(ValueWriter, ExactNumbersReadBackAsTheyAreAlsoInListsAndCounts) {
  StepWriter exact(stream_, NumberForm::kExact);
  exact.WriteReal(0.1 + 0.2);
  exact.WriteCount(1234567.0);
  exact.WriteRealList(ListOf({1.5, -0.0, 1e100}));
  EXPECT_EQ("0.30000000000000004,1234567,(1.5,-0.,1.E+100),", Written());
}

}  // namespace
}  // namespace corvel

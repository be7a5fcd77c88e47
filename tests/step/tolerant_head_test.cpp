// Of a spoilt HEADER section everything is kept that can be found by name.
#include "step/reader/tolerant_head.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "step/reader/stream_bytes.h"
#include "support/memory_streams.h"

namespace corvel {
namespace {

const std::string kDescription = "FILE_DESCRIPTION(('d'),'2;1');\n";
const std::string kName = "FILE_NAME('n','t',('a'),('o'),'p','s','z');\n";
const std::string kSchema = "FILE_SCHEMA(('IFC4'));\n";
const std::string kGood = "ISO-10303-21;\nHEADER;\n" + kDescription + kName + kSchema + "ENDSEC;\n";
const std::string kRecords = "DATA;\n#1=IFCLABEL('x');\nENDSEC;\nEND-ISO-10303-21;\n";

// What is left of the file is `rest`, whatever the windows are.
TolerantHead HeadOf(const std::string& head, const std::string& rest = kRecords) {
  TolerantHead taken;
  for (const std::size_t window : {1u, 7u, 4096u}) {
    Scanner scanner(std::make_unique<test::MemoryInputStream>(head + rest, window), nullptr);
    taken = TakeTolerantHead(scanner);
    StreamBytes bytes(scanner);
    std::string left;
    while (bytes.Peek() != StreamBytes::kEnd) left.push_back(static_cast<char>(bytes.Take()));
    EXPECT_EQ(rest, left) << head;
  }
  return taken;
}

void ExpectWhole(const TolerantHead& head, bool isMended) {
  EXPECT_EQ(isMended, head.isMended);
  EXPECT_EQ("ISO-10303-21", head.isoLine);
  EXPECT_EQ(std::vector<WideString>{u"d"}, head.header->fileDescription);
  EXPECT_EQ(u"n", head.header->name);
  EXPECT_EQ(u"z", head.header->authorization);
  EXPECT_EQ(u"IFC4", head.header->schemaIdentifier);
}

TEST(TolerantHeads, AGoodOneIsTakenAsItStands) { ExpectWhole(HeadOf(kGood), false); }

TEST(TolerantHeads, DataInATextOfTheHeaderIsNoData) {
  const TolerantHead head = HeadOf("ISO-10303-21;HEADER;FILE_DESCRIPTION(('a\nDATA;'),'b;DATA;');" +
                                   kName + kSchema + "/* \n DATA; */ENDSEC;");
  EXPECT_FALSE(head.isMended);
  EXPECT_EQ(std::vector<WideString>{u"a\nDATA;"}, head.header->fileDescription);
}

TEST(TolerantHeads, AByteOrderMarkAndAMissingFirstLineDoNotMatter) {
  ExpectWhole(HeadOf("\xEF\xBB\xBF" + kGood), true);
  ExpectWhole(HeadOf("HEADER;\n" + kDescription + kName + kSchema + "ENDSEC;\n"), true);
}

TEST(TolerantHeads, WithoutItsEndTheHeaderTakesNoRecordsAlong) {
  ExpectWhole(HeadOf("ISO-10303-21;\nHEADER;\n" + kDescription + kName + kSchema), true);
  ExpectWhole(HeadOf("ISO-10303-21;\nHEADER;\n" + kDescription + kName + kSchema,
                     "#1=IFCLABEL('x');\nENDSEC;\n"),
              true);
}

TEST(TolerantHeads, RecordsAreFoundByNameInAnyOrder) {
  ExpectWhole(HeadOf("ISO-10303-21;\nHEADER;\n" + kSchema + kName + kDescription), true);
}

TEST(TolerantHeads, AnOpenTextTakesNothingAlong) {
  const TolerantHead head = HeadOf("ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION(('d),'2;1');\n" +
                                   kName + kSchema + "ENDSEC;\n");
  EXPECT_EQ(u"IFC4", head.header->schemaIdentifier);
  EXPECT_EQ(u"n", head.header->name);
}

TEST(TolerantHeads, ANumberThatIsNoneStopsNothing) {
  const TolerantHead head =
      HeadOf("ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((#99999999999),'2;1');\n" + kName + kSchema +
             "ENDSEC;\n");
  EXPECT_EQ(u"IFC4", head.header->schemaIdentifier);
}

TEST(TolerantHeads, WithoutAHeaderEverythingIsEmpty) {
  const TolerantHead head = HeadOf("", "#1=IFCLABEL('x');");
  EXPECT_TRUE(head.isMended);
  EXPECT_EQ("ISO-10303-21", head.isoLine);
  EXPECT_EQ(u"", head.header->schemaIdentifier);
  EXPECT_EQ(u"2;1", head.header->implementationLevel);
}

TEST(TolerantHeads, AFirstLineThatHoldsMoreIsNotKept) {
  const std::string head = "HEADER;\n" + kDescription + kName + kSchema + "ENDSEC;\n";
  EXPECT_EQ("ISO-10303-21", HeadOf("ISO\n=ENDSEC;" + head).isoLine);
  EXPECT_EQ("ISO-10303-21", HeadOf("ISO'x;" + head).isoLine);
  EXPECT_EQ("ISO-10303-22", HeadOf("ISO-10303-22;" + head).isoLine);
}

}  // namespace
}  // namespace corvel

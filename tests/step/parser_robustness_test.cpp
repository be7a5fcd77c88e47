// Files that somebody has cut off or spoilt: each of them ends, with a model or with a message.
#include <gtest/gtest.h>

#include <string>

#include "core/cancellation.h"
#include "support/folders_in_memory.h"
#include "support/read_model.h"

namespace corvel {
namespace {

using namespace std::string_literals;
using Model = test::ReadModel;
using test::ModelFile;

// One of everything that a record can hold, forward and back.
constexpr const char* kRecords =
    "#1=IFCPOLYLINE((#2,#3));\n"
    "#2=IFCCARTESIANPOINT((0.,1.5E+1));\n"
    "#3=IFCCARTESIANPOINT((1.,-2));/* c */\n"
    "#4=IFCWALL('it''s\\X2\\00E4\\X0\\',$,'n',$,$,#5,$,$,.SHEAR.);\n"
    "#5=IFCLOCALPLACEMENT($,#7);\n"
    "#6=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('x'),$);\n"
    "#7=IFCAXIS2PLACEMENT3D(#2,$,$);\n"
    "#8=IFCTRIANGULATEDFACESET(#9,((0.,1.)),.T.,((1,2,3)),$);\n"
    "#9=IFCCARTESIANPOINTLIST3D(((0.,0.,0.),(1.,0.,0.)));\n"
    "#10=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);";

class SpoiltFile : public test::ReadTest {
 protected:
  // Reads, and writes what was read. Whoever reads nothing must have been told why.
  void Read(const std::string& bytes, bool goOn) {
    platform_.boxes.clear();
    platform_.answers.clear();
    if (goOn) AnswerNo(10'000);
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    IFC::MainContainer::ResetUniqueMarker();
    const test::RecordedReports fresh;
    Model model = Model::OfFile(bytes);
    const std::size_t reports = reports_->size();
    // Each token is reported once at most, and a record that ends early once per attribute.
    ASSERT_LE(reports, 2 * bytes.size() + 200);
    ASSERT_LE(platform_.boxes.size(), 2 * bytes.size() + 200);
    if (model.IsRead()) {
      ASSERT_TRUE(model.Document().IsParsed());
      ASSERT_EQ(1, model.Document().SaveFile(model.Folder().Path("out.ifc")));
      ASSERT_EQ(reports, reports_->size());
    } else {
      ASSERT_NE(0u, reports);
      ASSERT_FALSE(model.Document().IsParsed());
    }
  }

  const test::FoldersInMemory foldersInMemory_;
};

TEST_F(SpoiltFile, CutAtAnyByteEndsWithAModelOrAMessage) {
  const std::string bytes = ModelFile(kRecords);
  for (const bool goOn : {false, true}) {
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
      ASSERT_NO_FATAL_FAILURE(Read(bytes.substr(0, length), goOn)) << length;
    }
  }
}

TEST_F(SpoiltFile, CutBehindARecordIsAModelOfTheRecordsBeforeAndLacksItsClosingLine) {
  const std::string bytes = ModelFile(kRecords);
  const std::size_t data = bytes.find("DATA;");
  EXPECT_TRUE(Model::OfFile(bytes.substr(0, data + 5)).IsRead());
  std::size_t records = 0;
  for (std::size_t at = data; (at = bytes.find(");", at + 1)) != std::string::npos;) {
    const test::RecordedReports fresh;
    Model model = Model::OfFile(bytes.substr(0, at + 2));
    ASSERT_TRUE(model.IsRead()) << at;
    EXPECT_EQ(++records, model.Container().entities.Size());
    ASSERT_EQ(1u, reports_->size());
    EXPECT_EQ(
        "The closing line END-ISO-10303-21; is missing: the file seems to be cut short. The "
        "reading ended in line " +
            std::to_string(8 + records) + ".\n",
        Messages().front());
    EXPECT_EQ(kReportLog, (*reports_)[0].mode);
  }
  EXPECT_EQ(10u, records);
}

TEST_F(SpoiltFile, CutInsideTheAttributesOfARecordSaysWhichOne) {
  const std::string bytes = ModelFile(kRecords);
  const std::size_t name = bytes.find("IFCLOCALPLACEMENT(");
  const std::size_t end = bytes.find("7);", name);
  for (std::size_t length = name; length < end; ++length) {
    const test::RecordedReports fresh;
    EXPECT_FALSE(Model::OfFile(bytes.substr(0, length)).IsRead()) << length;
    ASSERT_FALSE(reports_->empty()) << length;
    EXPECT_EQ("Unable to read entity, marker #5. Parsing will be terminate.\n", Messages().back())
        << length;
  }
}

TEST_F(SpoiltFile, WithAnyByteReplacedEndsWithAModelOrAMessage) {
  const std::string bytes = ModelFile(kRecords);
  const std::string nasty = "'(),;#.\\*/$-0_A\xFF\x80\n\0"s;
  for (std::size_t at = bytes.find("FILE_SCHEMA"); at < bytes.size(); ++at) {
    std::string spoilt = bytes;
    for (const char byte : nasty) {
      spoilt[at] = byte;
      ASSERT_NO_FATAL_FAILURE(Read(spoilt, true)) << at << " " << int{byte};
    }
  }
}

TEST_F(SpoiltFile, WithAnyByteOfTheHeadReplacedEndsWithAModelOrAMessage) {
  const std::string bytes = ModelFile("#1=IFCCARTESIANPOINT((0.));");
  for (std::size_t at = 0; at < bytes.find("FILE_SCHEMA"); ++at) {
    std::string spoilt = bytes;
    for (const char byte : "'(;.\xFF"s) {
      spoilt[at] = byte;
      ASSERT_NO_FATAL_FAILURE(Read(spoilt, true)) << at << " " << int{byte};
    }
  }
}

TEST_F(SpoiltFile, WithoutAnyOneByteEndsWithAModelOrAMessage) {
  const std::string bytes = ModelFile(kRecords);
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    std::string spoilt = bytes;
    spoilt.erase(at, 1);
    ASSERT_NO_FATAL_FAILURE(Read(spoilt, true)) << at;
    ASSERT_NO_FATAL_FAILURE(Read(spoilt, false)) << at;
  }
}

TEST_F(SpoiltFile, OfNothingOrOfZerosIsNoModel) {
  for (const std::size_t size : {0u, 1u, 100'000u}) {
    EXPECT_FALSE(Model::OfFile(std::string(size, '\0')).IsRead()) << size;
  }
}

}  // namespace
}  // namespace corvel

// Inputs that end early, fail or shrink, at each byte and in both passes: a model is read whole, or
// it is not read. An input that merely ends is one of fewer records.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <algorithm>

#include "core/cancellation.h"
#include "schema/registry.h"
#include "support/faulty_reads.h"
#include "support/read_model.h"
#include "support/replaced_allocator.h"
#include "support/zip_bytes.h"

namespace corvel {
namespace {

using test::Fault;
using test::FaultyReads;
using test::RecordedProgress;
using test::RecordedReports;
using test::Report;
using Reports = std::vector<Report>;

// Polylines stand before their points, so that they go through the work file.
constexpr const char* kGoodRecords =
    "#1=IFCPOLYLINE((#3,#4));\n#2=IFCLOCALPLACEMENT(#5,*);\n#3=IFCCARTESIANPOINT((1.,2.));\n"
    "#4=IFCCARTESIANPOINT((3.,4.));\n#5=IFCLOCALPLACEMENT($,*);\n#6=IFCPOLYLINE((#3,#7));\n"
    "#7=IFCCARTESIANPOINT((5.,6.));\n";

class BrokenInput : public test::ReadTest {
 protected:
  bool Read(const WideString& path) {
    Restart();
    document_ =
        std::make_unique<IfcDocument>(false, RecordedReports::Reporter, RecordedProgress::Callback);
    return document_->OpenFile(path, 1) != 0;
  }
  // The passes alone, without the look at the header before.
  bool Parse(const WideString& path) {
    Restart();
    parser_ = std::make_unique<Parser>(false, RecordedReports::Reporter, nullptr);
    parser_->SelectSchema(FactoriesOf(SchemaNamespace::IFC4));
    return parser_->ParseFile(path, 1);
  }
  // A run stops at such a document, and somebody has been told why.
  void ExpectFailed(const WideString& path, const std::string& where) {
    EXPECT_FALSE(Read(path)) << where;
    EXPECT_TRUE(document_->IsCancelled()) << where;
    EXPECT_FALSE(reports_->empty()) << where;
    EXPECT_FALSE(Parse(path)) << where;
    EXPECT_EQ(ParserState::kFailed, parser_->state) << where;
    EXPECT_FALSE(reports_->empty()) << where;
  }
  void ExpectFailedAtEachByte(const WideString& path, const std::string& name, Fault fault) {
    const std::size_t size = folder_.Read(name).size();
    for (std::size_t at = 0; at < size; ++at) {
      const FaultyReads faulty(path, at, fault);
      ExpectFailed(path, name + " at byte " + std::to_string(at));
    }
    EXPECT_TRUE(Read(path)) << "without the fault";
  }
  std::string Lines() { return test::LinesOf(*document_->mainContainer); }

  test::TemporaryFolder folder_;
  std::unique_ptr<IfcDocument> document_;
  std::unique_ptr<Parser> parser_;

 private:
  void Restart() {
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    IFC::MainContainer::ResetUniqueMarker();
    reports_.Forget();
  }
};

// --- First pass ----------------------------------------------------------------------------------

TEST_F(BrokenInput, AReadErrorAtAnyByteFailsTheRead) {
  const WideString path = folder_.Write("a.ifc", test::ModelFile(kGoodRecords));
  ExpectFailedAtEachByte(path, "a.ifc", Fault::kError);
  const FaultyReads faulty(path, folder_.Read("a.ifc").size(), Fault::kError);
  EXPECT_FALSE(Parse(path)) << "even behind the last byte";
  EXPECT_EQ((Reports{{"", u"Could not read from file: " + path, 0}}), *reports_);
  EXPECT_EQ((std::vector<std::string>{"a.ifc"}), folder_.Names());
}

TEST_F(BrokenInput, AFileThatShrinksToAnyByteFailsTheRead) {
  const WideString path = folder_.Write("a.ifc", test::ModelFile(kGoodRecords));
  ExpectFailedAtEachByte(path, "a.ifc", Fault::kEnd);
}

TEST_F(BrokenInput, AFileThatShrinksBetweenTwoRecordsSaysSo) {
  const std::string bytes = test::ModelFile(kGoodRecords);
  const WideString path = folder_.Write("a.ifc", bytes);
  const FaultyReads faulty(path, bytes.find("#6="), Fault::kEnd);
  EXPECT_FALSE(Parse(path));
  EXPECT_EQ((Reports{{"", u"The file was cut short while it was read: " + path, 0}}), *reports_);
}

TEST_F(BrokenInput, AReadErrorAtAnyByteOfAnArchiveFailsTheRead) {
  for (const bool deflated : {true, false}) {
    const std::string bytes = test::ZipOf({{"m.ifc", test::ModelFile(kGoodRecords), deflated}});
    const WideString path = folder_.Write("a.ifczip", bytes);
    ExpectFailedAtEachByte(path, "a.ifczip", Fault::kError);
  }
}

TEST_F(BrokenInput, AnArchiveThatShrinksToAnyByteIsNotRead) {
  const WideString path =
      folder_.Write("a.ifczip", test::ZipOf({{"m.ifc", test::ModelFile(kGoodRecords)}}));
  const std::size_t size = folder_.Read("a.ifczip").size();
  for (std::size_t at = 0; at < size; ++at) {
    const FaultyReads faulty(path, at, Fault::kEnd);
    EXPECT_FALSE(Read(path)) << at;
    EXPECT_FALSE(reports_->empty()) << at;
    EXPECT_FALSE(Parse(path)) << at;
    EXPECT_EQ(ParserState::kFailed, parser_->state) << at;
  }
}

// The bytes of a stored entry are delivered before its checksum is known to be wrong.
TEST_F(BrokenInput, AnArchiveIsCheckedToItsEndThoughAByteHasEndedTheModel) {
  std::string bytes = test::ZipOf({{"m.ifc", test::ModelFile(kGoodRecords), false}});
  bytes[bytes.find("#6=")] = '\xFF';
  const WideString path = folder_.Write("a.ifczip", bytes);
  EXPECT_FALSE(Parse(path));
  EXPECT_EQ((Reports{{"", u"The data in the zip archive is damaged: " + path, 0}}), *reports_);
}

// Ends of the records of `text`, one to a line, by number.
std::vector<std::size_t> EndsOfRecords(const std::string& text) {
  std::vector<std::size_t> ends{0};
  for (std::size_t at = 0; (at = text.find(";\n", at)) != std::string::npos; ++at) {
    ends.push_back(at + 1);
  }
  return ends;
}

// The records that are whole and name none that is not are as ever. What a file holds whose last
// record is torn is not judged here.
TEST_F(BrokenInput, AFileThatMerelyEndsIsReadAsFarAsItGoes) {
  const std::string records = kGoodRecords;
  const std::vector<std::size_t> ends = EndsOfRecords(records);
  const std::vector<std::vector<std::size_t>> needs{{}, {3, 4}, {5}, {}, {}, {}, {3, 7}, {}};
  ASSERT_EQ(needs.size(), ends.size());
  const std::string bytes = test::ModelFile(records);
  const std::size_t data = bytes.find("#1=");
  int wasRead = 0;
  for (std::size_t length = 0; length < records.size(); ++length) {
    const std::string begin = bytes.substr(0, data + length);
    for (const bool packed : {false, true}) {
      const WideString path = packed ? folder_.Write("a.ifczip", test::ZipOf({{"m", begin}}))
                                     : folder_.Write("a.ifc", begin);
      if (!Read(path)) {
        EXPECT_FALSE(reports_->empty()) << length;
        EXPECT_TRUE(document_->IsCancelled()) << length;
        continue;
      }
      ++wasRead;
      const std::string lines = Lines();
      for (std::size_t number = 1; number < ends.size(); ++number) {
        const auto isWhole = [&](std::size_t other) { return ends[other] <= length; };
        if (!isWhole(number) || !std::all_of(needs[number].begin(), needs[number].end(), isWhole)) {
          continue;
        }
        const std::size_t start = records.find("#" + std::to_string(number) + "=");
        const std::string line = records.substr(start, ends[number] - start);
        EXPECT_NE(std::string::npos, lines.find(line)) << length << line;
      }
    }
  }
  EXPECT_LT(14, wasRead) << "between two records, at least";
}

// --- Second pass ---------------------------------------------------------------------------------

TEST_F(BrokenInput, AReadErrorAtAnyByteOfTheWorkFileFailsTheRead) {
  const WideString path = folder_.Write("a.ifc", test::ModelFile(kGoodRecords));
  const WideString work = folder_.Path("a_TEMP.ifc");
  ASSERT_TRUE(Read(path));
  const std::size_t size = folder_.Read("a_TEMP.ifc").size();
  for (std::size_t at = 0; at < size; ++at) {
    const FaultyReads faulty(work, at, Fault::kError);
    EXPECT_FALSE(Parse(path)) << at;
    EXPECT_EQ(ParserState::kFailed, parser_->state) << at;
    EXPECT_EQ((Reports{{"", u"Could not read from file: " + work, 0}}), *reports_) << at;
  }
}

TEST_F(BrokenInput, AWorkFileThatEndsAtAnyByteFailsTheRead) {
  const WideString path = folder_.Write("a.ifc", test::ModelFile(kGoodRecords));
  const WideString work = folder_.Path("a_TEMP.ifc");
  ASSERT_TRUE(Read(path));
  const std::size_t size = folder_.Read("a_TEMP.ifc").size();
  for (std::size_t at = 0; at < size; ++at) {
    const FaultyReads faulty(work, at, Fault::kEnd);
    EXPECT_FALSE(Parse(path)) << at;
    EXPECT_EQ(ParserState::kFailed, parser_->state) << at;
    EXPECT_EQ((Reports{{"", u"The work file was changed while it was in use: " + work, 0}}),
              *reports_)
        << at;
  }
}

// --- Memory --------------------------------------------------------------------------------------

int& AllocationsLeft() {
  static int count = 0;
  return count;
}

template <bool kThrows>
char* AllocateAFew(std::size_t size) {
  if (AllocationsLeft()-- > 0) return new char[size];
  if (kThrows) throw std::bad_alloc();
  return nullptr;
}

TEST_F(BrokenInput, ABufferThatCannotBeHadFailsTheReadWhicheverItIs) {
  folder_.Write("a.ifc", test::ModelFile(kGoodRecords));
  folder_.Write("a.ifczip", test::ZipOf({{"m.ifc", test::ModelFile(kGoodRecords)}}));
  for (const char* const name : {"a.ifc", "a.ifczip"}) {
    for (const auto allocator : {AllocateAFew<true>, AllocateAFew<false>}) {
      int count = 0;
      for (bool read = false; !read && count < 20; ++count) {
        const test::ReplacedAllocator replaced(allocator);
        AllocationsLeft() = count;
        read = Read(folder_.Path(name));
        if (read) continue;
        EXPECT_TRUE(document_->IsCancelled()) << name << count;
        ASSERT_FALSE(reports_->empty()) << name << count;
        EXPECT_EQ(kReportShow, reports_->front().mode);
      }
      EXPECT_LT(3, count) << "of the header, the first pass and the work file, at least";
      EXPECT_TRUE(reports_->empty());
    }
  }
}

TEST_F(BrokenInput, AModelWithoutABufferIsNoEmptyModel) {
  const WideString path = folder_.Write("a.ifc", test::ModelFile(kGoodRecords));
  const test::ReplacedAllocator replaced(test::ReplacedAllocator::Throwing);
  EXPECT_FALSE(Parse(path));
  EXPECT_EQ(ParserState::kFailed, parser_->state);
  EXPECT_EQ((Reports{{"", u"Unable to alloc enought memory. Try to use 64-bit Orlenta.", 0}}),
            *reports_);
  EXPECT_EQ((std::vector<std::string>{"a.ifc"}), folder_.Names());
}

}  // namespace
}  // namespace corvel

#endif

// Several threads write what one writes, and whoever watches sees no difference.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "platform/file.h"
#include "step/writer/lines_in_order.h"
#include "support/read_model.h"
#include "support/test_factories.h"
#include "support/throwing_entities.h"
#ifndef _WIN32
#include "support/posix_faults.h"
#endif

namespace corvel {
namespace {

using Model = test::ReadModel;
using test::ModelFile;
using test::Report;
using test::Tick;

constexpr unsigned kManyThreads[] = {2, 3, 8};

// All that a save does to the world.
struct Seen {
  int outcome = 0;
  std::string bytes;
  std::vector<Report> reports;
  std::vector<Tick> ticks;
  std::vector<test::TestPlatform::Box> boxes;
  bool operator==(const Seen&) const = default;
};

// Records of every length that there may be, with a text of up to `longest` bytes now and then.
std::string RecordsOfManyLengths(unsigned count, std::size_t longest, unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&random](std::size_t end) { return random() % end; };
  std::string records;
  for (unsigned number = 1; number <= count; ++number) {
    records += "#" + std::to_string(number);
    const std::string other = std::to_string(1 + below(count));
    switch (below(8)) {
      case 0: records += "=IFCPERSON('" + std::string(below(longest), 'x'); break;
      case 1: records += "=IFCPERSON('" + std::string(below(600), 'y'); break;
      case 2: records += "=IFCPROPERTYSINGLEVALUE('p',$,IFCLABEL('v'),$);\n"; continue;
      case 3: records.append("=IFCPOLYLINE((#").append(other).append(",#1));\n"); continue;
      default: records += "=IFCCARTESIANPOINT((0.25," + other + ".));\n"; continue;
    }
    records += "',$,$,$,$,$,$,$);\n";
  }
  return records;
}

class WritingTogether : public test::ReadTest {
 protected:
  Seen Save(IfcDocument& document, const test::TemporaryFolder& folder, unsigned threads,
            const char* name = "out.ifc") {
    document.threads = threads;
    reports_.Forget();
    progress_.Forget();
    platform_.boxes.clear();
    Seen seen;
    seen.outcome = document.SaveFile(folder.Path(name));
    seen.reports = *reports_;
    seen.ticks = *progress_;
    seen.boxes = platform_.boxes;
    if (folder.Has(name)) seen.bytes = folder.Read(name);
    platform::RemoveFile(folder.Path(name));
    return seen;
  }
  Seen Save(Model& model, unsigned threads, const char* name = "out.ifc") {
    return Save(model.Document(), model.Folder(), threads, name);
  }
  // One thread and several do the same, with a model that `make` makes for each of them.
  template <class Make>
  Seen ExpectTheSame(Make make, const char* name = "out.ifc") {
    Model alone = make();
    Seen expected = Save(alone, 1, name);
    for (const unsigned threads : kManyThreads) {
      Model model = make();
      EXPECT_TRUE(expected == Save(model, threads, name)) << threads;
    }
    return expected;
  }
};

TEST_F(WritingTogether, GivesTheSameBytesAndTicks) {
  const std::string records = RecordsOfManyLengths(4000, 60'000, 1);
  const Seen seen = ExpectTheSame([&records] { return Model(records); });
  EXPECT_EQ(1, seen.outcome);
  EXPECT_LT(std::size_t{10} << 20, seen.bytes.size());
  EXPECT_EQ(98u, seen.ticks.size());
}

TEST_F(WritingTogether, GivesTheSameArchive) {
  const std::string records = RecordsOfManyLengths(3000, 9'000, 2);
  const Seen seen = ExpectTheSame([&records] { return Model(records); }, "out.ifczip");
  EXPECT_EQ(1, seen.outcome);
  EXPECT_FALSE(seen.bytes.empty());
}

TEST_F(WritingTogether, TakesLinesThatAreLongerThanARangeMayBe) {
  const std::string records = RecordsOfManyLengths(60, 3 * LinesOfRange::kLongestText, 3);
  EXPECT_EQ(1, ExpectTheSame([&records] { return Model(records); }).outcome);
}

TEST_F(WritingTogether, LeavesOutWhatIsDeletedAndWhatRefersToIt) {
  const std::string records = RecordsOfManyLengths(2000, 100, 4);
  ExpectTheSame([&records] {
    Model model(records);
    for (unsigned number = 1; number <= 2000; ++number) {
      if (number % 3 != 0) model[number]->marker = IFC::kDeleted;
    }
    return model;
  });
}

TEST_F(WritingTogether, KeepsTheNumbersThatATolerantReadingHasCarried) {
  std::string records;
  for (unsigned number = 1; number <= 900; number += 3) {
    const auto name = [number](unsigned i) { return "#" + std::to_string(number + i); };
    records.append(name(0)).append("=IFCNOSUCHCLASS(").append(name(1)).append(",#5000,'x');\n");
    records.append(name(1)).append("=IFCPROPERTYSINGLEVALUE('p',$,IFCNOSUCHVALUE(");
    records.append(name(0)).append("),$);\n").append(name(2));
    records.append("=IFCCARTESIANPOINT((1.,'two'));\n");
  }
  test::ReadOptions tolerant;
  tolerant.tolerant = true;
  const Seen seen = ExpectTheSame([&] { return Model(records, tolerant); });
  EXPECT_EQ(1, seen.outcome);
  EXPECT_NE(std::string::npos, seen.bytes.find("#898=IFCNOSUCHCLASS(#899,#5000,'x');\n"));
}

TEST_F(WritingTogether, LeavesTheSameMarkers) {
  for (const unsigned threads : {1u, 3u}) {
    Model model(RecordsOfManyLengths(50, 100, 5));
    model.Document().isReleasedNext = threads == 3;
    Save(model, threads);
    EXPECT_EQ(threads == 3 ? 7u : 0u, model[7]->marker);
  }
}

TEST_F(WritingTogether, ModelWithoutObjectsIsWritten) {
  EXPECT_EQ(1, ExpectTheSame([] { return Model(""); }).outcome);
}

TEST_F(WritingTogether, StopsAtEachTickWhereOneThreadStops) {
  Model model(RecordsOfManyLengths(350, 400, 6));
  const std::size_t ticks = Save(model, 1).ticks.size();
  ASSERT_EQ(88u, ticks);
  for (std::size_t tick = 1; tick < ticks; ++tick) {
    progress_.CancelAt(tick);
    const Seen expected = Save(model, 1);
    EXPECT_EQ(2, expected.outcome);
    EXPECT_EQ(tick + 1, expected.ticks.size());
    EXPECT_EQ(std::vector{test::CancelQuestionBox()}, expected.boxes);
    EXPECT_TRUE(expected.bytes.empty());
    for (const unsigned threads : kManyThreads) {
      EXPECT_TRUE(expected == Save(model, threads)) << tick << " " << threads;
    }
  }
}

TEST_F(WritingTogether, GoesOnWhenTheUserHasThoughtBetterOfIt) {
  Model model(RecordsOfManyLengths(350, 400, 7));
  Save(model, 1);  // empties the lists of the header
  const Seen expected = Save(model, 1);
  for (const std::size_t tick : {1u, 17u, 87u}) {
    for (const unsigned threads : kManyThreads) {
      AnswerNo(1);
      progress_.CancelAt(tick);
      const Seen seen = Save(model, threads);
      EXPECT_EQ(1u, seen.boxes.size());
      EXPECT_TRUE(expected.bytes == seen.bytes && expected.ticks == seen.ticks) << tick;
    }
  }
}

#ifndef _WIN32

TEST_F(WritingTogether, FailsAtTheSameObjectWhereverTheDiskIsFull) {
  for (const std::size_t longest : {40'000u, 2'000'000u}) {
    Model model(RecordsOfManyLengths(longest > 100'000 ? 60 : 2000, longest, 8));
    const std::size_t size = Save(model, 1).bytes.size();
    ASSERT_LT(2'000'000u, size);
    for (rlim_t limit = 1000; limit < size; limit += size / 5) {
      for (const char* const name : {"out.ifc", "out.ifczip"}) {
        const test::FileSizeLimit full(limit);
        const Seen expected = Save(model, 1, name);
        for (const unsigned threads : kManyThreads) {
          EXPECT_TRUE(expected == Save(model, threads, name)) << limit << " " << threads;
        }
      }
    }
  }
}

TEST_F(WritingTogether, FailsAtTheSameObjectWhereverTheBlocksOfTheStreamEnd) {
  Model model(RecordsOfManyLengths(9000, 5'000, 11));
  for (std::size_t shift = 0; shift < 60; ++shift) {
    model.Document().getHeader()->name = WideString(shift, u'n');
    const test::FileSizeLimit full(shift % 2 == 0 ? 500'000 : 1'500'000);
    const Seen expected = Save(model, 1);
    ASSERT_EQ(1u, expected.reports.size());
    ASSERT_TRUE(expected.reports.front().message.starts_with(u"Error occurred while writing"));
    EXPECT_TRUE(expected == Save(model, 3)) << shift;
  }
}

#endif

// Writes one attribute, as any object does.
class Counted final : public test::GraphNode {
 public:
  const char16_t* getClassName() const override { return u"Counted"; }
  void write(StepWriter& writer) const override { writer.WriteInteger(1); }
};

TEST_F(WritingTogether, TellsOfAnObjectThatThrowsWhereOneThreadDoes) {
  const test::TestFactories factories{
      {"COUNTED", test::Create<Counted>},
      {"TEXT", test::Create<test::ThrowingOnWrite<test::ErrorWithText>>},
      {"ANYTHING", test::Create<test::ThrowingOnWrite<int>>}};
  for (const std::string name : {"TEXT", "ANYTHING"}) {
    test::TemporaryFolder folder;
    IfcDocument document(false, test::RecordedReports::Reporter, test::RecordedProgress::Callback);
    Parser& parser = document.GetParser();
    parser.factories = &factories.Table();
    std::string records;
    for (int i = 1; i <= 3000; ++i) {
      records += "#" + std::to_string(i) + "=" + (i % 1000 == 777 ? name : "COUNTED") + "();";
    }
    ASSERT_TRUE(parser.ParseFile(folder.Write("a.ifc", ModelFile(records)), 1));
    document.mainContainer = std::move(parser.mainContainer);
    const Seen expected = Save(document, folder, 1);
    EXPECT_EQ(0, expected.outcome);
    ASSERT_EQ(1u, expected.reports.size());
    EXPECT_NE(WideString::npos, expected.reports.front().message.find(u"#777"));
    for (const unsigned threads : kManyThreads) {
      EXPECT_TRUE(expected == Save(document, folder, threads)) << name << threads;
    }
  }
}

// --- The ranges ----------------------------------------------------------------------------------

using LinesInOrderTest = test::ReadTest;

TEST_F(LinesInOrderTest, EveryObjectComesOnceByAscendingNumber) {
  Model model(RecordsOfManyLengths(5000, 50, 9));
  model.Container().RefreshMarkers();
  for (const unsigned threads : {1u, 4u}) {
    LinesInOrder lines(threads, model.Container().entities, NumberForm::kTold);
    std::uint32_t number = 0;
    std::size_t ranges = 0;
    while (const LinesOfRange* const range = lines.Next()) {
      ++ranges;
      EXPECT_TRUE(range->IsComplete());
      EXPECT_GE(range->NumberCount(), range->ObjectCount());
      std::string text;
      for (std::size_t i = 0; i < range->Objects().size(); ++i) {
        ASSERT_EQ(++number, range->Objects()[i]->marker);
        text += range->LineOf(i);
        ASSERT_TRUE(range->LineOf(i).starts_with("#" + std::to_string(number) + "="));
      }
      EXPECT_EQ(range->Text(), text);
    }
    EXPECT_EQ(5000u, number);
    EXPECT_LT(10u, ranges);
    EXPECT_EQ(nullptr, lines.Next());
  }
}

TEST_F(LinesInOrderTest, WhoeverStopsEarlyWaitsForWhatIsUnderWayAndNoLonger) {
  Model model(RecordsOfManyLengths(5000, 50, 10));
  for (int taken = 0; taken < 20; ++taken) {
    LinesInOrder lines(3, model.Container().entities, NumberForm::kTold);
    for (int i = 0; i < taken; ++i) EXPECT_NE(nullptr, lines.Next());
  }
}

TEST_F(LinesInOrderTest, LinesThatTheTakerHasToMakeAreEmpty) {
  const std::string text(LinesOfRange::kLongestText, 'x');
  Model model("#1=IFCPERSON('a',$,$,$,$,$,$,$);#2=IFCPERSON('" + text +
              "',$,$,$,$,$,$,$);#3=IFCPERSON('b',$,$,$,$,$,$,$);#4=IFCPERSON();");
  model.Container().RefreshMarkers();
  model[3]->carries = true;
  model[4]->marker = IFC::kDeleted;
  LinesInOrder lines(2, model.Container().entities, NumberForm::kTold);
  const LinesOfRange* const range = lines.Next();
  ASSERT_NE(nullptr, range);
  ASSERT_EQ(4u, range->Objects().size());
  EXPECT_FALSE(range->IsComplete());
  EXPECT_EQ("#1=IFCPERSON('a',$,$,$,$,$,$,$);\n", range->LineOf(0));
  for (const std::size_t i : {1u, 2u, 3u}) EXPECT_EQ("", range->LineOf(i)) << i;
  model[3]->carries = false;
}

}  // namespace
}  // namespace corvel

// Whatever can be seen of a reading is the same for any number of threads.
#include "step/reader/parallel/parallel_reading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "support/read_model.h"
#include "support/zip_bytes.h"

namespace corvel {
namespace {

using test::ModelFile;
using test::Person;
using test::RecordedProgress;
using test::RecordedReports;

struct Circumstances {
  bool ignoreEnumErrors = true;
  bool declines = false;           // every question gets a No
  std::size_t cancelAt = 1000000;  // the tick that says so
  std::string fileName = "model.ifc";
};

std::string BytesOfFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A release that the build leaves out cannot be read.
bool IsOfThisBuild(const std::string& bytes) {
  const std::size_t name = bytes.find("FILE_SCHEMA");
  return bytes.compare(bytes.find('\'', name), 6, "'IFC4'") == 0 ||
         bytes.compare(bytes.find('\'', name), 8, "'IFC2X3'") == 0;
}

class ReadingTogetherTest : public test::ReadTest {
 protected:
  ReadingTogetherTest() { platform_.nanosecondsPerCall = 7'000'000; }
  ~ReadingTogetherTest() override { IfcLog::Instance().Discard(); }

  // All that a reading leaves and tells, as one text.
  std::string Seen(std::string_view file, AheadRules rules, const Circumstances& how) {
    Cancellation::OfProcess().mode = CancelMode::kAsk;
    IFC::MainContainer::ResetUniqueMarker();
    platform_.boxes.clear();
    platform_.answers.clear();
    if (how.declines) AnswerNo(10000);
    platform_.nanoseconds = 0;
    const RecordedReports reports;
    RecordedProgress progress;
    progress.CancelAt(how.cancelAt);
    const WideString path = folder_.Write(how.fileName, file);
    IfcLog& log = IfcLog::Instance();
    log.Open(path);
    IfcDocument document(how.ignoreEnumErrors, RecordedReports::Reporter,
                         RecordedProgress::Callback);
    document.threads = rules.threads;
    document.GetParser().aheadRules = rules;
    std::ostringstream seen;
    seen << "read " << document.OpenFile(path, 1) << "\n";
    log.Close();
    for (const test::Report& report : *reports) {
      seen << report.mode << " " << report.key << " " << Narrow(report.message) << "\n";
    }
    for (const test::Tick& tick : *progress) seen << tick << "\n";
    for (const test::TestPlatform::Box& box : platform_.boxes) seen << Narrow(box.text) << "\n";
    // The indent goes on from log to log, and one trace in 101 is logged, counted in the same way.
    static const std::regex passing("\\s|Reading entity: #[0-9]+");
    seen << std::regex_replace(folder_.Read("model_IFC_LOG.txt"), passing, "") << "\n";
    if (folder_.Has("model_TEMP.ifc")) seen << folder_.Read("model_TEMP.ifc") << "\n";
    DescribeModel(document, seen);
    return seen.str();
  }

  void DescribeModel(IfcDocument& document, std::ostringstream& seen) {
    const Parser& parser = document.GetParser();
    seen << "state " << static_cast<unsigned>(parser.state) << " next "
         << IFC::MainContainer::uniqueMarker << " question "
         << static_cast<unsigned>(Cancellation::OfProcess().mode) << "\n";
    if (document.mainContainer == nullptr) return;
    const auto tell = [&](const char* what, const IFC::IfcEntity* entity) {
      seen << what << " " << (entity == nullptr ? 0 : entity->marker) << "\n";
    };
    tell("project", parser.ifcProject);
    tell("site", parser.ifcSite);
    tell("units", parser.ifcUnitAssignment);
    tell("history", parser.ifcOwnerHistory);
    for (const auto* const list :
         {&document.mainContainer->relAggregates, &document.mainContainer->relAssigns,
          &document.mainContainer->relDefinesByProperties,
          &document.mainContainer->relContainedInSpatialStructure}) {
      for (const IFC::IfcEntity* const entity : *list) tell("relation", entity);
    }
    // A second pass that has been cancelled leaves no model: the next batch may have been read.
    const bool isNone = parser.IsStopped() && seen.str().find("weight 5") != std::string::npos;
    if (!isNone) seen << test::LinesOf(*document.mainContainer);
  }

  // Once alone, and with each number of threads once for each size of batches.
  void ExpectTheSame(std::string_view file, const std::vector<std::size_t>& batchSizes,
                     const Circumstances& how = {},
                     const std::vector<unsigned>& manyThreads = {2, 3, 8}) {
    const std::string alone = Seen(file, {}, how);
    for (const std::size_t batchSize : batchSizes) {
      for (const unsigned threads : manyThreads) {
        const AheadRules rules{.threads = threads, .batchSize = batchSize, .smallestInput = 0};
        ASSERT_EQ(alone, Seen(file, rules, how))
            << threads << " threads, batches of " << batchSize << " of\n"
            << file.substr(0, 20000);
      }
    }
  }

  test::TemporaryFolder folder_;
};

// References of all kinds to all sides: back, forward, far, to itself and to nothing, in lists and
// in lists of lists, to classes that are not admitted, and of optional attributes.
constexpr std::string_view kReferences =
    "#1=IFCCARTESIANPOINT((0.,0.,0.));\n#2=IFCDIRECTION((1.,0.,0.));\n"
    "#3=IFCPERSON('it''s','\\X2\\00E4\\X0\\',$,$,$,$,$,$);\n#4=IFCORGANIZATION($,'O',$,$,$);\n"
    "#5=IFCPERSONANDORGANIZATION(#3,#4,$);\n#6=IFCAPPLICATION(#4,'1','n','i');\n"
    "#7=IFCOWNERHISTORY(#5,#6,$,.ADDED.,$,$,$,0);\n#8=IFCOWNERHISTORY(#1,#6,$,.ADDED.,$,$,$,0);\n"
    "#9=IFCAXIS2PLACEMENT3D(#1,#2,#99);\n#10=IFCLOCALPLACEMENT(#30,#9);\n"
    "#11=IFCLOCALPLACEMENT(#11,#9);\n#12=IFCLOCALPLACEMENT($,#2);\n"
    "#13=IFCPROJECT('p',#7,'P',$,$,$,$,(#25,#1,#26),#27);\n"
    "#14=IFCPOLYLINE((#1,#22,#2,#1,#999,#22));\n"
    "#15=IFCPROPERTYSINGLEVALUE('a',$,IFCLABEL('x;y'),$);\n"
    "#16=IFCPROPERTYSINGLEVALUE('b',$,IFCREAL(1.5E-3),#28);\n"
    "#17=IFCPROPERTYSET('s',#7,'N',$,(#15,#16,#29,#3));\n"
    "#18=IFCRELDEFINESBYPROPERTIES('r',#7,$,$,(#13,#31),#17);\n"
    "#19=IFCRELDEFINESBYPROPERTIES('t',#7,$,$,(#13),IFCPROPERTYSETDEFINITIONSET((#17,#24,#1)));\n"
    "#20=IFCBSPLINESURFACEWITHKNOTS(1,1,((#1,#22),(#23,#2,#1)),.UNSPECIFIED.,.F.,.F.,.U.,(2,2),"
    "(2,2),(0.,1.),(0.,1.),.UNSPECIFIED.);\n"
    "#21=IFCRELAGGREGATES('u',#7,$,$,#13,(#31));\n#22=IFCCARTESIANPOINT((1.,2.));\n"
    "#23=IFCCARTESIANPOINT((3.,4.));\n#24=IFCPROPERTYSET('v',#7,$,$,(#15));\n"
    "#25=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-05,#9,$);\n"
    "#26=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Plan',2,$,#9,#2);\n#27=IFCUNITASSIGNMENT((#28));\n"
    "#28=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n#29=IFCPROPERTYSINGLEVALUE('c',$,$,$);\n"
    "#30=IFCLOCALPLACEMENT($,#9);\n#31=IFCSITE('w',#7,$,$,$,#30,$,$,.ELEMENT.,(1,2),$,$,$,$);\n"
    "#32=IFCRELASSIGNSTOGROUP('x',#7,$,$,(#31),$,#33);\n#33=IFCGROUP('y',#7,$,$,$);\n";

TEST_F(ReadingTogetherTest, ReferencesToAllSidesAreBoundWhereverABatchEnds) {
  const std::string file = ModelFile(kReferences);
  std::vector<std::size_t> sizes{5000};
  for (std::size_t size = 1; size < 500; size += 7) sizes.push_back(size);
  ExpectTheSame(file, sizes);
  const std::string alone = Seen(file, {}, {});
  EXPECT_NE(std::string::npos, alone.find("\n#14=IFCPOLYLINE((#1,#22,#1,#22));")) << alone;
  EXPECT_NE(std::string::npos, alone.find("((#1,#22),(#23,#1))")) << alone;
}

TEST_F(ReadingTogetherTest, ABorderMayBeTriedAtEveryByteOfStringsAndComments) {
  const std::string file =
      ModelFile(Person(1) +
                "#2=IFCPERSON('a;b','/* c','*/ ''d'';',$,$,$,$,$);/* don't; ' */ /**/\n"
                "/*#3=*/#4=IFCPERSON('''',$,';''',$,$/*';*/,$,$,$);#5=IFCPERSON('N/A','\\S\\'',"
                "'\\X2\\0027003B\\X0\\',$,$,$,$,$);\n" +
                Person(6) + Person(7));
  std::vector<std::size_t> sizes(file.size() - 1);
  std::iota(sizes.begin(), sizes.end(), 1);
  ExpectTheSame(file, sizes, {}, {2});
}

TEST_F(ReadingTogetherTest, WhateverIsReportedOrAskedComesAtItsPlace) {
  for (const std::string_view odd : {
           "#50=IFCWALL('g',$,$,$,$,$,$,$,.NOSUCH.);\n",                 // an unknown value
           "#50=IFCNOSUCHCLASS($);\n",                                   // an unknown class
           "#3=IFCDIRECTION((7.,7.));\n",                                // a doubled number
           "#50=(IFCA()IFCB());\n",                                      // a complex instance
           "#50=IFCPERSON($,$,$,$,$,$,$,$,1,2,3);\n",                    // surplus
           "#50=IFCPERSON($,$,$,$,$,$,$,$));\n",                         // a bracket too many
           "#50=IFCPERSON($,$);\n",                                      // too few
           "#50=IFCPERSON(5,$,$,$,$,$,$,$);\n",                          // a wrong value
           "#50=IFCCARTESIANPOINT((1.5;\n#51=IFCDIRECTION((1.,2.));\n",  // a number that runs on
           "#50=IFCPERSON('a,$,$,$,$,$,$,$);\n#51=IFCPERSON('b',$,$,$,$,$,$,$);\n",
           "#50=IFCPROPERTYSINGLEVALUE('a',$,IFCNOSUCH('x'),$);\n",   // an unknown value's class
           "stray #50=IFCDIRECTION((1.,2.));\n",                      // text between records
           ",,#50=IFCDIRECTION((1.,2.));\n",                          // commas
           "=IFCDIRECTION((1.,2.));\n",                               // no number
           "#0=IFCDIRECTION((1.,2.));\n",                             // not a number of a record
           "#99999999999=IFCDIRECTION((1.,2.));\n",                   // likewise
           "ENDSEC;\nDATA;\n",                                        // another section
           "ENDSEC;\nANCHOR;\n<a>=#1;\nENDSEC;\nDATA;\n",             // one that is not read
           "#50=IFCDIRECTION((1.,2.)\n#51=IFCDIRECTION((1.,2.));\n",  // no semicolon
           "/* #50=IFCDIRECTION((1.,2.));\n#51=IFCDIRECTION((1.,2.));\n*/\n",
           "/* no end #50=IFCDIRECTION((1.,2.));\n",
           "\xFF\n",
       }) {
    for (const bool declines : {false, true}) {
      for (const bool ignores : {false, true}) {
        const Circumstances how{.ignoreEnumErrors = ignores, .declines = declines};
        std::string records(kReferences);
        records.insert(records.find("#16="), odd);
        ExpectTheSame(ModelFile(records), {100, 1000}, how);
      }
    }
  }
}

TEST_F(ReadingTogetherTest, ACancelAtAnyTickEndsTheSameWay) {
  platform_.nanosecondsPerCall = 60'000'000;
  const std::string file = ModelFile(kReferences);
  for (std::size_t tick = 0; tick < 40; tick += 3) {
    ExpectTheSame(file, {150}, {.cancelAt = tick});
    ExpectTheSame(file, {150}, {.declines = true, .cancelAt = tick});
  }
}

TEST_F(ReadingTogetherTest, AFullDiskEndsItAtTheSameRecord) {
  platform_.freeDiskBytes = 1000;
  std::string records(kReferences);
  records.insert(records.find("#16="), Person(500000));
  ExpectTheSame(ModelFile(records), {100});
}

// What is wrong with an archive shows at its end, long before the records in front of it are filed.
TEST_F(ReadingTogetherTest, ADamagedArchiveIsToldBehindWhatComesBefore) {
  std::string records(kReferences);
  records.insert(records.find("#31="), "#50=IFCWALL('g',$,$,$,$,$,$,$,.NOSUCH.);\n");
  const std::string file = ModelFile(records);
  test::ZipEntry entry{.name = "a.ifc", .content = file};
  Circumstances how{.fileName = "model.ifczip"};
  ExpectTheSame(test::ZipOf({entry}), {50, 500}, how);
  entry.checksum = 1;
  ExpectTheSame(test::ZipOf({entry}), {50, 500}, how);
  const std::string seen = Seen(test::ZipOf({entry}), {}, how);
  EXPECT_NE(std::string::npos, seen.find("The data in the zip archive is damaged")) << seen;
}

TEST_F(ReadingTogetherTest, LongModelsKeepManyBatchesUnderWay) {
  std::mt19937 random(5);
  std::string records;
  for (unsigned number = 1; number <= 3000; ++number) {
    const unsigned other = 1 + static_cast<unsigned>(random() % 3100);
    records += test::PlacementRelativeTo(other, number);
  }
  ExpectTheSame(ModelFile(records), {1000});
}

TEST_F(ReadingTogetherTest, SpoiltModelsAreTheSameSpoiltModels) {
  constexpr std::string_view kPieces[] = {"'",   ";",  "/*", "*/",    "(",       ")",  "#",
                                          ",",   ".",  "$",  "\\S\\", "\\",      "/",  "\xFF",
                                          "#7=", "''", "=",  "1.5;",  "ENDSEC;", "\n", "-"};
  std::mt19937 random(11);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  for (int i = 0; i < 200; ++i) {
    std::string records(kReferences);
    for (std::size_t damage = 0; damage <= below(3); ++damage) {
      const std::size_t at = below(records.size());
      if (below(2) == 0) records.erase(at, 1 + below(4));
      if (below(3) != 0) records.insert(at, kPieces[below(std::size(kPieces))]);
    }
    ExpectTheSame(ModelFile(records), {50 + below(600)},
                  {.ignoreEnumErrors = below(2) == 0, .declines = below(2) == 0});
    if (HasFatalFailure()) return;
  }
}

TEST_F(ReadingTogetherTest, GoldenCasesAndSamplesAreTheSame) {
  const std::filesystem::path samples = CORVEL_SAMPLES_DIR;
  std::vector<std::filesystem::path> files;
  for (const auto& folder : {samples, samples.parent_path() / "tests/models/golden"}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.path().extension() == ".ifc") files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  ASSERT_LT(20u, files.size());
  for (const auto& file : files) {
    const std::string bytes = BytesOfFile(file);
    if (!IsOfThisBuild(bytes)) continue;
    ExpectTheSame(bytes, {300, 20000});
    if (HasFatalFailure()) FAIL() << file;
  }
}

}  // namespace
}  // namespace corvel

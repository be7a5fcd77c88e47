// Whole models merged and saved.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "graph_document.h"
#include "merge/merge_documents.h"
#include "support/quiet_reading.h"
#include "support/temporary_folder.h"

namespace corvel {
namespace {

using test::MergeWorld;
using test::RecordedProgress;
using test::RecordedReports;
using test::TemporaryFolder;

std::string Sample(const std::string& name) {
  std::ifstream file(std::filesystem::path(CORVEL_SAMPLES_DIR) / name, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << name;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::unique_ptr<IfcDocument> Open(const WideString& path) {
  auto document =
      std::make_unique<IfcDocument>(false, RecordedReports::Reporter, RecordedProgress::Callback);
  const test::QuietReading quiet;
  EXPECT_NE(0, document->OpenFile(path, 2));
  return document;
}

// Takes and frees memory so that what is allocated next lies elsewhere.
class Disorder {
 public:
  explicit Disorder(unsigned seed) : random_(seed) {}
  void Stir() {
    for (int i = 0; i < 2000; ++i) kept_.emplace_back(new char[1 + random_() % 3000]);
    for (int i = 0; i < 1000; ++i) kept_[random_() % kept_.size()].reset();
  }

 private:
  std::mt19937 random_;
  std::vector<std::unique_ptr<char[]>> kept_;
};

// Copies of the inputs are read, for reading leaves files beside them.
std::string MergedAndSaved(const std::vector<std::string>& samples, unsigned disorder) {
  MergeWorld world;
  Disorder heap(disorder);
  const TemporaryFolder folder;
  std::vector<std::unique_ptr<IfcDocument>> owned;
  std::vector<IfcDocument*> documents;
  for (const std::string& sample : samples) {
    if (disorder != 0) heap.Stir();
    const std::string name = std::to_string(owned.size()) + ".ifc";
    owned.push_back(Open(folder.Write(name, Sample(sample))));
    documents.push_back(owned.back().get());
  }
  if (disorder != 0) heap.Stir();
  IfcDocument* const merged = MergeDocuments(documents, {}, {});
  EXPECT_EQ(documents.front(), merged);
  EXPECT_EQ(1, documents.front()->SaveFile(folder.Path("out.ifc")));
  EXPECT_TRUE(world.reports->empty());
  EXPECT_TRUE(world.system.boxes.empty());
  return folder.Read("out.ifc");
}

// Record texts by number, "12" to "IFCWALL(...)". The samples have a record on each line.
std::map<std::string, std::string> Records(const std::string& file) {
  std::map<std::string, std::string> records;
  std::istringstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] != '#') continue;
    const std::size_t equal = line.find('=');
    const std::size_t name = line.find_first_not_of(' ', equal + 1);
    const auto [at, isNew] = records.emplace(line.substr(1, equal - 1), line.substr(name));
    EXPECT_TRUE(isNew) << line;
  }
  return records;
}

// The numbers that a record refers to; what looks like one inside a text does not count.
std::vector<std::string> ReferencesOf(const std::string& record) {
  std::vector<std::string> numbers;
  bool inText = false;
  for (std::size_t i = 0; i < record.size(); ++i) {
    if (record[i] == '\'') inText = !inText;
    if (inText || record[i] != '#') continue;
    const std::size_t end = record.find_first_not_of("0123456789", i + 1);
    numbers.push_back(record.substr(i + 1, end - i - 1));
  }
  return numbers;
}

const std::vector<std::string> kOffice{"office_architecture_IFC4.ifc", "office_structure_IFC4.ifc"};

TEST(MergeOutput, TheSameInputGivesTheSameBytesWhereverTheObjectsLie) {
  const std::string plain = MergedAndSaved(kOffice, 0);
  ASSERT_FALSE(plain.empty());
  for (const unsigned disorder : {1u, 2u, 3u}) {
    EXPECT_EQ(plain, MergedAndSaved(kOffice, disorder)) << disorder;
  }
}

TEST(MergeOutput, EveryRecordOfBothModelsIsThereButOneProject) {
  std::size_t inputs = 0;
  for (const std::string& sample : kOffice) inputs += Records(Sample(sample)).size();
  const auto records = Records(MergedAndSaved(kOffice, 0));
  EXPECT_EQ(inputs - 1, records.size());
  int projects = 0;
  for (const auto& [number, record] : records)
    projects += record.starts_with("IFCPROJECT(") ? 1 : 0;
  EXPECT_EQ(1, projects);
}

TEST(MergeOutput, EveryReferenceLeadsToARecordAndAllIsReadAgainWithoutAMessage) {
  const std::string merged = MergedAndSaved(kOffice, 0);
  const auto records = Records(merged);
  for (const auto& [number, record] : records) {
    for (const std::string& referred : ReferencesOf(record)) {
      ASSERT_TRUE(records.contains(referred)) << "#" << number << "=" << record;
    }
  }
  const MergeWorld world;
  const TemporaryFolder folder;
  const auto again = Open(folder.Write("again.ifc", merged));
  EXPECT_EQ(1, again->SaveFile(folder.Path("out.ifc")));
  EXPECT_EQ(merged, folder.Read("out.ifc"));
  EXPECT_TRUE(world.reports->empty());
}

TEST(MergeOutput, TheHeaderIsThatOfTheFirst) {
  const std::string merged = MergedAndSaved(kOffice, 0);
  const std::string header = merged.substr(0, merged.find("DATA;"));
  EXPECT_NE(std::string::npos, header.find("FILE_NAME ('office_architecture_IFC4.ifc',"));
  EXPECT_EQ(std::string::npos, header.find("office_structure_IFC4.ifc"));
}

}  // namespace
}  // namespace corvel

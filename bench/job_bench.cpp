// One stage of the whole job on real files, as one process: prints processor time per stage and the
// peak memory, in the form of stage.h. bench/run.sh runs it and makes the table.
//
//   corvel_job_bench read FILE
//   corvel_job_bench resave FILE OUT
//   corvel_job_bench merge OUT FILE FILE...
//   corvel_job_bench mark FILE           half of the products are dropped
//   corvel_job_bench registry            all releases get ready to make objects
//
// In front of that, --threads N: written as the program does, which releases the model next.
// Without it everything is done by one, and markers are put to 0 behind the writing.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "half_of_products.h"
#include "merge/document.h"
#include "merge/merge_documents.h"
#include "schema/registry.h"
#include "stage.h"
#include "step/log/utilities.h"

namespace {

using corvel::IfcDocument;
using corvel::bench::Stage;

int Report(const char* key, const corvel::WideString& message, int mode) {
  if (mode != corvel::kReportLog) {
    std::fprintf(stderr, "%s%s\n", key, corvel::ToUtf8(message).c_str());
  }
  return 0;
}

bool GoOn(int, int, const corvel::WideString*, bool, int) { return true; }

unsigned threads = 1;
bool isReleasedNext = false;

std::unique_ptr<IfcDocument> Read(const std::string& path) {
  auto document = std::make_unique<IfcDocument>(true, Report, GoOn);
  document->threads = threads;
  if (document->OpenFile(corvel::FromUtf8(path), 1) == 0) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    std::exit(1);
  }
  return document;
}

void Write(IfcDocument& document, const std::string& path, std::uintmax_t bytes) {
  document.isReleasedNext = isReleasedNext;
  const Stage stage("write", bytes);
  if (document.SaveFile(corvel::FromUtf8(path)) != 1) std::exit(1);
}

int RunReadOrResave(const std::vector<std::string>& arguments) {
  const std::string& path = arguments[1];
  const std::uintmax_t bytes = std::filesystem::file_size(path);
  std::unique_ptr<IfcDocument> document;
  { const Stage nothing("start", bytes); }  // tells what is resident without a model
  {
    const Stage stage("read", bytes);
    document = Read(path);
  }
  if (arguments.size() > 2) Write(*document, arguments[2], bytes);
  const Stage stage("release", bytes);
  document.reset();
  return 0;
}

int RunMerge(const std::vector<std::string>& arguments) {
  std::vector<std::unique_ptr<IfcDocument>> documents;
  std::vector<IfcDocument*> pointers;
  std::uintmax_t bytes = 0;
  for (std::size_t i = 2; i < arguments.size(); ++i) {
    bytes += std::filesystem::file_size(arguments[i]);
  }
  const Stage whole("whole", bytes);
  {
    const Stage stage("read", bytes);
    for (std::size_t i = 2; i < arguments.size(); ++i) {
      documents.push_back(Read(arguments[i]));
      pointers.push_back(documents.back().get());
    }
  }
  {
    const Stage stage("fold", bytes);
    if (corvel::MergeDocuments(pointers, {}, {}) == nullptr) return 1;
  }
  Write(*documents.front(), arguments[1], bytes);
  const Stage stage("release", bytes);
  documents.clear();
  return 0;
}

int RunMark(const std::string& path) {
  const std::uintmax_t bytes = std::filesystem::file_size(path);
  std::unique_ptr<IfcDocument> document;
  {
    const Stage stage("read", bytes);
    document = Read(path);
  }
  corvel::bench::HalfOfProducts choice = corvel::bench::DropHalfOfProducts(*document);
  if (choice.deleted.empty()) {
    std::fprintf(stderr, "no products in %s\n", path.c_str());
    return 1;
  }
  const Stage stage("mark", bytes);
  return document->DeleteObjects(choice.deleted, choice.saved, false, false, 1) ? 0 : 1;
}

// A class that every release has, so that each table is there and has been looked into.
int RunRegistry() {
  const Stage stage("registry", 1);
  for (const corvel::FactoryTable* const classes : corvel::BuiltFactories()) {
    if (classes->Find("IFCPROJECT") == nullptr) return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() > 2 && arguments[0] == "--threads") {
    threads = static_cast<unsigned>(std::stoul(arguments[1]));
    isReleasedNext = true;
    arguments.erase(arguments.begin(), arguments.begin() + 2);
  }
  corvel::MemoryReportOutput() = nullptr;
  if (arguments.size() >= 4 && arguments[0] == "merge") return RunMerge(arguments);
  if (arguments.size() >= 2 && (arguments[0] == "read" || arguments[0] == "resave")) {
    return RunReadOrResave(arguments);
  }
  if (arguments.size() == 2 && arguments[0] == "mark") return RunMark(arguments[1]);
  if (arguments.size() == 1 && arguments[0] == "registry") return RunRegistry();
  std::fprintf(
      stderr,
      "usage: corvel_job_bench [--threads N] read FILE | resave FILE OUT | merge OUT FILE... | "
      "mark FILE | registry\n");
  return 2;
}

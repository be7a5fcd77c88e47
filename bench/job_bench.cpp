// One stage of the whole job on real files, as one process: prints processor time per stage and the
// peak memory. bench/run.sh runs it and makes the table.
//
//   corvel_job_bench read FILE
//   corvel_job_bench resave FILE OUT
//   corvel_job_bench merge OUT FILE FILE...
//
// Each line of output: stage, seconds of processor time, input bytes, peak resident bytes so far.
#include <sys/resource.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/document.h"
#include "merge/merge_documents.h"
#include "step/log/utilities.h"

namespace {

using corvel::IfcDocument;

int Report(const char* key, const corvel::WideString& message, int mode) {
  if (mode != corvel::kReportLog) {
    std::fprintf(stderr, "%s%s\n", key, corvel::ToUtf8(message).c_str());
  }
  return 0;
}

bool GoOn(int, int, const corvel::WideString*, bool, int) { return true; }

double ProcessorSeconds() {
  std::timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

long PeakKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// Prints what the stage cost when it ends.
class Stage {
 public:
  Stage(const char* name, std::uintmax_t bytes)
      : name_(name), bytes_(bytes), start_(ProcessorSeconds()) {}
  ~Stage() {
    std::printf("%s\t%.3f\t%ju\t%ld\n", name_, ProcessorSeconds() - start_, bytes_,
                PeakKiB() * 1024);
  }
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

 private:
  const char* name_;
  std::uintmax_t bytes_;
  double start_;
};

std::unique_ptr<IfcDocument> Read(const std::string& path) {
  auto document = std::make_unique<IfcDocument>(true, Report, GoOn);
  if (document->OpenFile(corvel::FromUtf8(path), 1) == 0) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    std::exit(1);
  }
  document->mergeable = true;
  return document;
}

void Write(IfcDocument& document, const std::string& path, std::uintmax_t bytes) {
  const Stage stage("write", bytes);
  if (document.SaveFile(corvel::FromUtf8(path)) != 1) std::exit(1);
}

int RunReadOrResave(const std::vector<std::string>& arguments) {
  const std::string& path = arguments[1];
  const std::uintmax_t bytes = std::filesystem::file_size(path);
  std::unique_ptr<IfcDocument> document;
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

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  corvel::MemoryReportOutput() = nullptr;
  if (arguments.size() >= 4 && arguments[0] == "merge") return RunMerge(arguments);
  if (arguments.size() >= 2 && (arguments[0] == "read" || arguments[0] == "resave")) {
    return RunReadOrResave(arguments);
  }
  std::fprintf(stderr, "usage: corvel_job_bench read FILE | resave FILE OUT | merge OUT FILE...\n");
  return 2;
}

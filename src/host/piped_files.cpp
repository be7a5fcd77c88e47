#include "host/piped_files.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "core/shown_paths.h"
#include "host/display_text.h"
#include "platform/console.h"
#include "platform/file.h"
#include "platform/locked_file.h"
#include "platform/native_path.h"
#include "platform/platform.h"
#include "platform/standard_streams.h"

namespace corvel::host {

namespace {

namespace fs = std::filesystem;

constexpr WideView kPipe = u"-";
constexpr std::size_t kBlock = 0x10000;
constexpr std::size_t kBeginning = 4;

bool IsPacked(std::string_view beginning) { return beginning.starts_with("PK\x03\x04"); }

std::ptrdiff_t CountOfInputs(const CommandLine& line) {
  return std::count(line.inputs.begin(), line.inputs.end(), kPipe) +
         std::count(line.against.begin(), line.against.end(), kPipe);
}

bool ShallEnd() { return platform::IsInterrupted() || !platform::RequestToEnd().empty(); }

}  // namespace

PipedFiles::~PipedFiles() {
  std::error_code ignored;
  if (!folder_.empty()) fs::remove_all(platform::NativePath(folder_), ignored);
}

bool PipedFiles::AreIn(const CommandLine& line) {
  return line.output == kPipe || CountOfInputs(line) != 0;
}

std::optional<WideString> PipedFiles::TakeFor(CommandLine& line) {
  if (CountOfInputs(line) > 1) return u"standard input is there once only";
  const WideString workFolder = line.workFolder.value_or(platform::SystemTemporaryFolder());
  if (!MakeFolder(workFolder)) {
    return workFolder + u": work files cannot be kept in this folder; --work-folder names another";
  }
  if (line.output == kPipe) {
    // As if it were written where the program was started.
    if (!line.log) line.log = u"stdout_IFC_LOG.txt";
    line.outputIsPiped = true;
    line.output = output_ = FileFor(u"stdout.ifc", u"standard output");
  }
  // The log of a dry run lies beside its first input where there is no output.
  if (line.isDryRun && line.output.empty() && line.inputs.front() == kPipe && !line.log) {
    line.log = u"stdin_IFC_LOG.txt";
  }
  for (std::vector<WideString>* const files : {&line.inputs, &line.against}) {
    for (WideString& input : *files) {
      if (input != kPipe) continue;
      if (auto trouble = Spool(input)) return trouble;
    }
  }
  return std::nullopt;
}

bool PipedFiles::MakeFolder(const WideString& workFolder) {
  const platform::Guid guid = platform::Get().NewGuid();
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), "corvel_%08x%04x%04x", guid.data1, guid.data2,
                guid.data3);
  const WideString folder = workFolder + u"/" + Widen(name.data());
  std::error_code error;
  // Somebody else's is none.
  if (!fs::create_directory(platform::NativePath(folder), error) || error) return false;
  folder_ = folder;
  fs::permissions(platform::NativePath(folder), fs::perms::owner_all, error);
  return true;
}

// Named after the folder, so that nothing of the user's has this name.
WideString PipedFiles::FileFor(WideView ending, const WideString& name) const {
  WideString path =
      folder_ + u"/" + WideString(platform::FileNameOf(folder_)) + u"_" + WideString(ending);
  if (const WideString printed = Printable(path); printed != path) ShowPathAs(printed, name);
  ShowPathAs(path, name);
  return path;
}

std::optional<WideString> PipedFiles::Spool(WideString& input) {
  const WideString unkept = u"standard input cannot be kept; --work-folder names another place";
  std::vector<char> block(kBlock);
  platform::File file;
  for (;;) {
    std::size_t count = 0;
    // A pipe may give single bytes, and the first ones tell what comes.
    for (bool ends = false; !ends && count < kBeginning;) {
      const auto more = platform::ReadStandardInput(block.data() + count, block.size() - count);
      if (!more) return ShallEnd() ? WideString() : WideString(u"standard input cannot be read");
      ends = *more == 0;
      count += *more;
    }
    if (input == kPipe) {
      if (count == 0) return u"standard input is empty";
      const bool packed = IsPacked({block.data(), count});
      input = FileFor(packed ? u"stdin.ifczip" : u"stdin.ifc", u"standard input");
      if (!file.Open(input, platform::OpenMode::kWrite)) return unkept;
    }
    if (file.Write(block.data(), count) != count) return unkept;
    if (count < kBeginning) return file.Close() ? std::nullopt : std::optional(unkept);
  }
}

bool PipedFiles::SendOutput() {
  if (output_.empty()) return true;
  platform::File file;
  if (!file.Open(output_, platform::OpenMode::kRead)) return true;
  std::vector<char> block(kBlock);
  for (;;) {
    const std::size_t count = file.Read(block.data(), block.size());
    if (count == 0) return !file.ReadFailed();
    if (!platform::WriteStandardOutputBytes({block.data(), count})) return false;
  }
}

}  // namespace corvel::host

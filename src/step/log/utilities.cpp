#include "step/log/utilities.h"

#include <array>
#include <cstring>
#include <vector>

#include "core/cancellation.h"
#include "platform/file.h"
#include "platform/platform.h"
#include "step/log/ifc_log.h"
#include "step/streams/output_log_file_stream.h"

namespace corvel {

namespace {

constexpr char16_t kLastPathName[] = u"LastPath.txt";
// Units of a remembered path, and of the program's own, that are looked at.
constexpr std::size_t kLongestPath = 256;

std::string InMegabytes(std::uint64_t bytes) { return std::to_string(bytes >> 20) + " MB"; }

void PrintFigure(const char* text, std::uint64_t bytes) {
  if (std::FILE* const output = MemoryReportOutput()) {
    std::fprintf(output, "%s%s\n", text, InMegabytes(bytes).c_str());
  }
}

void PrintFigures(const platform::MemoryFigures& figures) {
  PrintFigure("Całkowita pamięć RAM: ", figures.totalPhysical);
  PrintFigure("Dostępna pamięć RAM: ", figures.availablePhysical);
  PrintFigure("Całkowita pamięć wirtualna: ", figures.totalPageFile);
  PrintFigure("Dostępna pamięć wirtualna: ", figures.availablePageFile);
  PrintFigure("Całkowity adresowalny obszar pamięci: ", figures.totalAddressSpace);
  PrintFigure("Dostępny adresowalny obszar pamięci: ", figures.availableAddressSpace);
}

// "" at the end of the way up: the root, or the current folder of a relative path.
bool FolderExists(const WideString& path) { return path.empty() || platform::IsFolder(path); }

bool CreateEmptyFile(const WideString& path) {
  platform::File file;
  return file.Open(path, platform::OpenMode::kWrite) && file.Close();
}

WideString ParentOf(const WideString& path) {
  const std::size_t cut = platform::FindLastSeparator(path);
  return cut == WideString::npos ? WideString() : path.substr(0, cut);
}

// At most kLongestPath units of the file; empty when it cannot be read.
WideString ReadLastPath(const WideString& path) {
  platform::File file;
  if (!file.Open(path, platform::OpenMode::kRead)) return {};
  std::array<char16_t, kLongestPath> units{};
  const std::size_t bytes = file.Read(units.data(), sizeof units);
  return {units.data(), bytes / sizeof(char16_t)};
}

bool CanBeRead(const WideString& path) {
  platform::File file;
  return file.Open(path, platform::OpenMode::kRead);
}

}  // namespace

std::FILE*& MemoryReportOutput() {
  static std::FILE* output = stdout;
  return output;
}

std::uint32_t ReportMemory() {
  IfcLog& log = IfcLog::Instance();
  const std::optional<platform::MemoryFigures> figures = platform::Get().QueryMemory();
  if (!figures) {
    constexpr char16_t kFailure[] = u"Błąd: nie można pobrać informacji o pamięci.\n";
    std::fputs(ToUtf8(kFailure).c_str(), stderr);
    log.LogText(kFailure);
    return 0;
  }
  PrintFigures(*figures);
  if (!log.IsMuted()) {
    log.LogText(u"Total virtual memory area: " + Widen(InMegabytes(figures->totalPageFile)));
    log.LogText(u"Available virtual memory area: " +
                Widen(InMegabytes(figures->availablePageFile)));
    log.LogLine(u"Physical memory access: " + Widen(InMegabytes(figures->availablePhysical)));
  }
  return static_cast<std::uint32_t>(figures->availableAddressSpace);
}

std::int64_t FreeDiskGB() {
  constexpr double kPerByte = 1.0 / (1 << 30);
  const std::uint64_t bytes = platform::Get().FreeSystemDiskBytes();
  return static_cast<std::int64_t>(static_cast<double>(bytes) * kPerByte);
}

bool CheckDiskSpace() {
  if (FreeDiskGB() >= kLeastFreeDiskGB) return true;
  const WideString message = u"Out of disk space. \nFree less then " +
                             ToWide(static_cast<std::uint32_t>(kLeastFreeDiskGB)) +
                             u" GB. Parsing will be terminate.\n";
  FileStream::ShowLogfileError("", message, kReportShow);
  Cancellation::OfProcess().mode = CancelMode::kEndUnasked;
  return false;
}

bool SaveLastPath(const WideString& folder, const WideString& path, ErrorReporter showError) {
  const WideString fileName = platform::JoinPath(folder, kLastPathName);
  platform::File file;
  const std::size_t size = path.size() * sizeof(char16_t);
  const bool saved = EnsureFile(fileName) && file.Open(fileName, platform::OpenMode::kWrite) &&
                     file.Write(path.data(), size) == size && file.Close();
  if (!saved && showError != nullptr) {
    showError("", u"Unable to open file: " + fileName, kReportShow);
  }
  return saved;
}

void OpenLastFile(const WideString& folder, ErrorReporter showError) {
  const WideString path = ReadLastPath(platform::JoinPath(folder, kLastPathName));
  if (!CanBeRead(path)) {
    showError("fail_to_open_last_created_file_message", u"", kReportShow);
    return;
  }
  const WideString program = platform::Get().ExecutablePath().substr(0, kLongestPath);
  // In quotes, as a command line wants a path with blanks.
  platform::Get().ShellOpen(program, u"\"" + path + u"\"");
}

bool EnsureFile(const WideString& path) {
  if (CreateEmptyFile(path)) return true;
  std::vector<WideString> missing;
  for (WideString folder = ParentOf(path); !FolderExists(folder); folder = ParentOf(folder)) {
    missing.push_back(folder);
  }
  while (!missing.empty()) {
    platform::MakeFolder(missing.back());
    missing.pop_back();
  }
  return CreateEmptyFile(path);
}

WideString TrimDots(const WideString& text) {
  const std::size_t start = text.find_first_not_of(u".,");
  return start == WideString::npos ? WideString() : text.substr(start);
}

}  // namespace corvel

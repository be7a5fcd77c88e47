// Any bytes at all, as a file that is read tolerantly: reading ends, with a model. All strings,
// references and enumeration values of its records, as a tolerant look at the file finds them, are
// in the output, and a second save gives the same bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "core/cancellation.h"
#include "core/main_container.h"
#include "merge/document.h"
#include "step/log/utilities.h"
#include "step/reader/mended_stream.h"
#include "step/reader/tolerant_head.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace {

using corvel::IfcDocument;

int Unheard(const char*, const corvel::WideString&, int) { return 0; }

bool GoOn(int, int, const corvel::WideString*, bool, int) { return true; }

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

void Resave(const corvel::test::TemporaryFolder& folder, const char* name, const char* output) {
  IfcDocument document(false, Unheard, GoOn);
  IFC::MainContainer::ResetUniqueMarker();
  corvel::Cancellation::OfProcess().mode = corvel::CancelMode::kAsk;
  document.ReadTolerantly();
  Require(document.OpenFile(folder.Path(name), 1) != 0, "a file does not open");
  Require(document.SaveFile(folder.Path(output)) == 1, "a model cannot be written");
}

struct Counts {
  std::size_t records = 0;
  std::size_t strings = 0;
  std::size_t references = 0;
};

// Of text whose strings and comments are closed.
Counts CountsOf(std::string_view text) {
  Counts counts;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\'') {
      ++counts.strings;
      for (++at; at < text.size() && text[at] != '\''; ++at) {
        const std::string_view rest = text.substr(at);
        at += rest.starts_with("\\S\\") ? 3 : rest.starts_with("\\\\") ? 1 : 0;
      }
      Require(at < text.size(), "a string is not closed");
      if (text.substr(at + 1).starts_with("'")) --counts.strings;
    } else if (text.substr(at).starts_with("/*")) {
      at = std::min(text.find("*/", at + 2), text.size());
    } else if (text[at] == '#') {
      const std::size_t end = std::min(text.find_first_not_of("0123456789", at + 1), text.size());
      const bool isRecord = text.substr(end).starts_with("=");
      if (isRecord) ++counts.records;
      if (!isRecord && end > at + 1) ++counts.references;
    }
  }
  return counts;
}

std::string RecordsOf(const std::string& file) {
  const std::size_t data = file.find("\nDATA;\n");
  if (data == std::string::npos) return file;
  return file.substr(data, file.rfind("\nENDSEC;") - data);
}

std::string Mended(const corvel::WideString& path) {
  constexpr std::size_t kBuffer = 0x10000;
  // A head that is kept as it stands may hold anything in its strings.
  corvel::Scanner file(path, kBuffer, Unheard);
  const std::size_t head = corvel::TakeTolerantHead(file).text.size();
  corvel::MendedStream stream(std::make_unique<corvel::Scanner>(path, kBuffer, Unheard), Unheard);
  std::string text;
  while (stream.HasByte()) {
    text.append(stream.Cursor(), stream.WindowEnd());
    stream.SetCursor(stream.WindowEnd());
    stream.ClearStatementText();
  }
  return text.substr(head);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static corvel::test::TestPlatform platform;
  platform.boxes.clear();
  static const corvel::test::TemporaryFolder folder;
  corvel::MemoryReportOutput() = nullptr;
  folder.Write("in.ifc", std::string_view(reinterpret_cast<const char*>(data), size));
  Resave(folder, "in.ifc", "first.ifc");
  const std::string first = folder.Read("first.ifc");
  const std::string mended = RecordsOf(Mended(folder.Path("in.ifc")));
  const Counts before = CountsOf(mended);
  const Counts after = CountsOf(RecordsOf(first));
  Require(before.records == after.records, "a record is lost, or there is one more");
  Require(before.strings <= after.strings, "a string is lost");
  Require(before.references <= after.references, "a reference is lost");
  Resave(folder, "first.ifc", "second.ifc");
  Require(first == folder.Read("second.ifc"), "the second save differs");
  Require(platform.boxes.empty(), "a box was shown");
  return 0;
}

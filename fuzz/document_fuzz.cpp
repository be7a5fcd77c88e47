// Any bytes behind a good header, as a model: reading ends with a model or with a report. What can
// be read can be written and read again without a report, and the second output has the records of
// the first. The first byte chooses the release.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/cancellation.h"
#include "core/main_container.h"
#include "merge/document.h"
#include "step/log/utilities.h"
#include "support/temporary_folder.h"
#include "support/test_platform.h"

namespace {

using corvel::IfcDocument;

int reports = 0;

int CountReport(const char*, const corvel::WideString&, int) {
  ++reports;
  return 0;
}

bool GoOn(int, int, const corvel::WideString*, bool, int) { return true; }

std::string WithHeader(const char* schema, const std::string& records) {
  return std::string(
             "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
             "FILE_NAME('','',(''),(''),'','','');\nFILE_SCHEMA(('") +
         schema + "'));\nENDSEC;\nDATA;\n" + records + "\nENDSEC;\nEND-ISO-10303-21;\n";
}

// Reads `name` and writes it to `output`; false when it could not be read.
bool Resave(const corvel::test::TemporaryFolder& folder, const char* name, const char* output) {
  IfcDocument document(true, CountReport, GoOn);
  IFC::MainContainer::ResetUniqueMarker();
  corvel::Cancellation::OfProcess().mode = corvel::CancelMode::kAsk;
  reports = 0;
  if (document.OpenFile(folder.Path(name), 1) == 0) return false;
  if (document.SaveFile(folder.Path(output)) != 1) std::abort();
  return true;
}

// The class without a value and infinite numbers are written in a form that does not read.
bool HasNoFixpoint(const std::string& text) {
  return text.find("IFCNULLSTYLE") != std::string::npos || text.find("inf") != std::string::npos;
}

std::size_t RecordsIn(const std::string& text) {
  std::size_t count = 0;
  for (std::size_t at = text.find("\n#"); at != std::string::npos; at = text.find("\n#", at + 1)) {
    ++count;
  }
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  // Message boxes are answered: yes to every question, so that bad data ends the reading.
  static corvel::test::TestPlatform platform;
  platform.boxes.clear();
  static const corvel::test::TemporaryFolder folder;
  corvel::MemoryReportOutput() = nullptr;
  const char* const schema = data[0] % 2 == 0 ? "IFC4" : "IFC2X3";
  const std::string records(reinterpret_cast<const char*>(data) + 1, size - 1);
  folder.Write("in.ifc", WithHeader(schema, records));
  if (!Resave(folder, "in.ifc", "first.ifc")) {
    if (reports == 0) std::abort();  // a failure that nobody was told of
    return 0;
  }
  const std::string first = folder.Read("first.ifc");
  if (HasNoFixpoint(first)) return 0;
  if (!Resave(folder, "first.ifc", "second.ifc")) std::abort();
  if (RecordsIn(first) != RecordsIn(folder.Read("second.ifc"))) std::abort();
  return 0;
}

// Models for the benchmarks of single parts: made as texts, kept as files of a temporary folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "core/reporting.h"
#include "merge/document.h"
#include "support/quiet_reading.h"
#include "support/temporary_folder.h"

namespace corvel::bench {

// A reporter and a progress that cost nothing.
int Ignore(const char* key, const WideString& message, int mode);
bool GoOn(int value, int stageWeight, const WideString* extraText, bool exactMode, int maximum);

// Takes any `number`; the first character tells models apart.
std::string Guid(char model, std::uint32_t number);

// Records of a project with `elements` walls in one storey, in the shares of real exports: 40
// records for each wall, of which 26 are points, loops, bounds and faces, and 6 its property set
// with what belongs to it. `model` goes into the GUIDs.
std::string ExportRecords(std::uint32_t elements, char model = '0');

// A file with the given records.
class ModelFile {
 public:
  explicit ModelFile(std::string_view records);

  std::size_t Bytes() const { return bytes_; }
  const WideString& Path() const { return path_; }
  // Ends the program when the model cannot be read.
  std::unique_ptr<IfcDocument> Read() const;

 private:
  test::QuietReading quiet_;
  test::TemporaryFolder folder_;
  std::size_t bytes_;
  WideString path_;
};

}  // namespace corvel::bench

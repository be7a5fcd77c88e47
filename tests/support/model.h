// A document read from the text of its records, by way of a file.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "merge/document.h"
#include "support/quiet_reading.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"
#include "support/step_text.h"
#include "support/temporary_folder.h"
#include "support/written_text.h"

namespace corvel::test {

// Whatever the reading reported is left in RecordedReports, and its ticks in RecordedProgress.
class Model {
 public:
  // Throws when the file cannot be read.
  explicit Model(std::string_view records, std::string_view fileName = "model.ifc",
                 std::string_view schema = "IFC4")
      : document_(false, RecordedReports::Reporter, RecordedProgress::Callback) {
    const QuietReading quiet;
    if (document_.OpenFile(folder_.Write(fileName, ModelFile(records, schema)), 1) == 0) {
      throw std::runtime_error("unreadable model " + std::string(fileName));
    }
  }

  IfcDocument& operator*() { return document_; }
  IfcDocument* operator->() { return &document_; }

  // The record of a number of the file; keep the pointer, for a merge takes the container away.
  IFC::IfcEntity* operator[](std::uint32_t number) const {
    IFC::IfcEntity* const entity = document_.mainContainer->GetEntityByOrginalNumber(number);
    if (entity == nullptr) throw std::runtime_error("no record #" + std::to_string(number));
    return entity;
  }
  // The records as they would be written now.
  std::string Lines() const { return LinesOf(*document_.mainContainer); }

 private:
  TemporaryFolder folder_;
  IfcDocument document_;
};

}  // namespace corvel::test

// A document read from the text of its records, by way of a file.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/document.h"
#include "step/writer/step_writer.h"
#include "support/memory_streams.h"
#include "support/quiet_reading.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"
#include "support/temporary_folder.h"

namespace corvel::test {

// A whole file around records.
inline std::string ModelFile(std::string_view records, std::string_view schema = "IFC4") {
  return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
         "FILE_NAME('n','t',('a'),('o'),'p','s','z');\nFILE_SCHEMA(('" +
         std::string(schema) + "'));\nENDSEC;\nDATA;\n" + std::string(records) +
         "ENDSEC;\nEND-ISO-10303-21;\n";
}

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
  std::string Lines() const {
    MemoryOutpoutStream stream;
    StepWriter writer(stream);
    const NumberTable& entities = document_.mainContainer->entities;
    for (auto at = entities.First(); at; at = entities.Next(at.number)) {
      writer.WriteEntityLine(*at.entity);
    }
    return stream.Text();
  }

 private:
  TemporaryFolder folder_;
  IfcDocument document_;
};

}  // namespace corvel::test

// A document whose records are read without a file, for tests that need thousands of models.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/main_container.h"
#include "merge/document.h"
#include "schema/registry.h"
#include "step/reader/parser.h"
#include "support/recorded_progress.h"
#include "support/recorded_reports.h"
#include "support/test_platform.h"
#include "support/token_list.h"

namespace corvel::test {

struct PlannedRecord {
  std::uint32_t number = 0;
  std::string className;   // "IFCWALL"
  std::string attributes;  // what stands between the brackets
  std::string Line() const {
    return "#" + std::to_string(number) + "=" + className + "(" + attributes + ");\n";
  }
};

// All records are made before any is read, so that references lead anywhere.
class RecordDocument {
 public:
  RecordDocument(const std::vector<PlannedRecord>& records, SchemaNamespace schema)
      : document_(false, RecordedReports::Reporter, RecordedProgress::Callback) {
    const TestPlatform boxesGoNowhere;  // of models with several projects
    Parser& parser = document_.GetParser();
    parser.factories = &FactoriesOf(schema);
    parser.mainContainer = std::make_unique<IFC::MainContainer>(
        RecordedReports::Reporter, RecordedProgress::Callback, 1 << 12);
    for (const PlannedRecord& record : records) Make(parser, record);
    for (const PlannedRecord& record : records) Read(parser, record);
    parser.scanner = nullptr;
    document_.mainContainer = std::move(parser.mainContainer);
  }

  IfcDocument& operator*() { return document_; }
  const IfcDocument& operator*() const { return document_; }

 private:
  static void Make(Parser& parser, const PlannedRecord& record) {
    IFC::IfcEntity* const entity = parser.factories->Find(record.className)(parser.Pool());
    entity->SetMarker(record.number);
    parser.mainContainer->AddEntityByOrginalNumber(entity, record.number);
    const bool isProject = record.className == "IFCPROJECT";
    if (isProject && parser.ifcProject == nullptr) parser.ifcProject = entity;
  }

  static void Read(Parser& parser, const PlannedRecord& record) {
    parser.scanner = ScannerOn("(" + record.attributes + ");", RecordedReports::Reporter);
    parser.scanner->NextToken();
    IFC::IfcEntity* const entity = parser.mainContainer->GetEntityByOrginalNumber(record.number);
    if (parser.ReadArguments(entity) != entity || parser.IsStopped() || parser.forwardReference) {
      throw std::runtime_error("unreadable " + record.Line());
    }
  }

  IfcDocument document_;
};

}  // namespace corvel::test

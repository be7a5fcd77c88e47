// Models from a few records each, folded into one and federated.
#pragma once

#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "merge/federation/federated_model.h"
#include "merge/federation/federation.h"
#include "merge/graph_document.h"
#include "merge/merge_documents.h"
#include "merge/record_document.h"
#include "support/written_text.h"

namespace corvel::test {

using Records = std::vector<PlannedRecord>;

inline Records operator+(Records records, const Records& more) {
  records.insert(records.end(), more.begin(), more.end());
  return records;
}

// The numbers that the lines of a written model begin with.
inline std::set<int> NumbersIn(const std::string& lines) {
  std::set<int> numbers;
  for (std::size_t at = lines.find('#'); at != std::string::npos;) {
    numbers.insert(std::atoi(&lines[at + 1]));
    const std::size_t end = lines.find('\n', at);
    at = end == std::string::npos ? end : lines.find('#', end);
  }
  return numbers;
}

class FederatedDocuments {
 public:
  explicit FederatedDocuments(SchemaNamespace schema) : schema_(schema) {}

  // A model of a file of this name. Its project is #1 and knows the contexts that are given.
  void Add(const WideString& name, const std::string& contextsOfProject,
           std::vector<PlannedRecord> records, const std::string& ownerHistory = "$") {
    const std::string contexts = contextsOfProject.empty() ? "$" : "(" + contextsOfProject + ")";
    records.insert(records.begin(),
                   {1, "IFCPROJECT",
                    "'" + ProjectGuid() + "'," + ownerHistory + ",'P',$,$,$,$," + contexts + ",$"});
    documents_.push_back(std::make_unique<RecordDocument>(records, schema_));
    (**documents_.back()).GetParser().filePath = u"/models/" + name;
  }

  // What is written behind fold and steps, a line an object, in order of the numbers.
  std::string Run(const FederationChoices& choices) {
    std::vector<IfcDocument*> documents;
    for (const auto& document : documents_) documents.push_back(&**document);
    const PreparedFederation prepared = PrepareFederation(documents, choices);
    merged_ = MergeDocuments(documents, {}, {});
    if (merged_ == nullptr) return "not merged";
    if (!RunFederation(documents, choices, prepared, RecordedReports::Reporter,
                       RecordedProgress::Callback)) {
      return "not federated";
    }
    merged_->mainContainer->FillMarkers();
    return LinesOf(*merged_->mainContainer);
  }

  // What is written behind fold and `step`, which gets the FederatedModel, as Run gives it.
  template <class Step>
  std::string RunStep(Step step) {
    std::vector<IfcDocument*> documents;
    for (const auto& document : documents_) documents.push_back(&**document);
    merged_ = MergeDocuments(documents, {}, {});
    if (merged_ == nullptr) return "not merged";
    FederatedModel model(documents);
    step(model);
    model.Settle();
    merged_->mainContainer->FillMarkers();
    return LinesOf(*merged_->mainContainer);
  }

  // Before Run. The lengths of a document are in the units of this assignment.
  void MeasureBy(std::size_t document, std::uint32_t number) {
    (**documents_[document]).GetParser().ifcUnitAssignment = &At(document, number);
  }

  // Before Run. An object as its file numbers it.
  IFC::IfcEntity& At(std::size_t document, std::uint32_t number) {
    return *(**documents_[document]).mainContainer->GetEntityByOrginalNumber(number);
  }

  // The ticks of fold and steps, and the button that stops them.
  RecordedProgress& Progress() { return world_.progress; }

 private:
  std::string ProjectGuid() const {
    return "0000000000000000000P0" + std::to_string(documents_.size());
  }

  MergeWorld world_;
  SchemaNamespace schema_;
  std::vector<std::unique_ptr<RecordDocument>> documents_;
  IfcDocument* merged_ = nullptr;
};

}  // namespace corvel::test

// All that is looked for in one model.
#pragma once

#include <optional>
#include <vector>

#include "core/reporting.h"
#include "core/text.h"
#include "host/check/findings.h"
#include "host/check/guid_check.h"
#include "host/facts/model_facts.h"
#include "merge/report/shared/report_places.h"

namespace corvel::host {

struct CheckedModel;

struct CheckOrder {
  WideString workFolder{};    // of the file that the reading needs meanwhile
  bool keepsHolders = false;  // CheckedModel::holders is filled
  bool keepsObjects = false;  // Finding::byObject is filled
  // With keepsObjects: places that none of these has are told as new. Borrowed; may be null.
  const std::vector<CheckedModel>* before = nullptr;
  // CheckedModel::places is filled, for the report that has the file at this index.
  std::optional<std::uint32_t> placesOfFile{};
  std::size_t mostPlaces = 0;  // products among them
  ProgressCallback progress = nullptr;
};

struct CheckedModel {
  WideString path;
  bool isCancelled = false;
  std::vector<WideString> problems;  // why the model could not be read
  // Nothing of a model that could not be read.
  std::optional<ModelFacts> facts;
  std::vector<Finding> findings;    // by rule and subject
  std::vector<GuidHolder> holders;  // of GUIDs that are some, by GUID and number
  std::optional<ModelPlaces> places;
};

// Reads the file with tolerance, looks at everything, and keeps nothing of it in memory.
CheckedModel CheckModel(const WideString& path, const CheckOrder& order);

}  // namespace corvel::host

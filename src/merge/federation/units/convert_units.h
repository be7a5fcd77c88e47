// All values of a model in the units of another.
#pragma once

#include <vector>

#include "core/reporting.h"
#include "core/ticker.h"
#include "merge/document.h"
#include "merge/federation/units/value_converter.h"
#include "merge/run_model.h"
#include "merge/run_observer.h"

namespace corvel {

// What became of one model.
struct ConvertedModel {
  ConvertedValues values;
  Conversions conversions{};
  bool differs = false;           // a unit does, so that the model was rewritten
  std::size_t copies = 0;         // of objects that count in two ways
  std::size_t unstretchable = 0;  // parameter curves that stay as they are
  std::size_t carried = 0;        // objects that hold what a tolerant reading carried
};

// Rewrites the numbers of `later` in the units of `first`, which become its own. Nothing happens
// where they are equal. The model is read, and nothing has been done to it; it is of the release of
// `first`, which has to live as long. False: the user cancelled, or there are no numbers left,
// which has been reported; the model is then half converted, and of no use. It is of no use either
// where `values` are not complete. Linear in the model.
bool ConvertUnits(const IfcDocument& first, IfcDocument& later, Ticker& ticker,
                  ConvertedModel& result);

// The same for all later models of a run, before CheckUnits, which is told which of them agree with
// the first by now, and which do not for a value that cannot be converted. What was done goes to
// the log, and to `observer`, which may be null. False as above.
bool ConvertUnitsOfRun(std::vector<RunModel>& models, ProgressCallback progress,
                       RunObserver* observer = nullptr);

}  // namespace corvel

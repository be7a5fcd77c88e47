// What is known of a run behind it: which models came in, what became of each of their objects, and
// what the result looks like. Plain data, all of it owned here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/text.h"
#include "merge/report/shared/report_places.h"
#include "merge/report/shared/told_text.h"
#include "merge/run_observer.h"
#include "merge/unit_comparison.h"

namespace corvel {

// Why a product of an input is not in the result.
enum class DropReason : std::uint8_t {
  kModelLeftOut,    // its whole model is
  kInactive,        // in the viewer
  kHidden,          // likewise
  kNotSelected,     // likewise
  kOpening,         // openings are left out
  kHangsOnDropped,  // it cannot be without something that was dropped
  kNotNeeded,       // nothing that is kept hangs together with it
  kJoined           // an object of another model, or an equal one, stands for it
};
inline constexpr std::size_t kDropReasons = 8;

// `in` is `kept` and all of `dropped` together.
struct ProductTally {
  std::size_t in = 0;
  std::size_t kept = 0;
  std::array<std::size_t, kDropReasons> dropped{};

  std::size_t Dropped(DropReason reason) const { return dropped[static_cast<std::size_t>(reason)]; }
};

// Likewise: `in` is the sum of the others.
struct RecordTally {
  std::size_t in = 0;
  std::size_t kept = 0;
  std::size_t leftOut = 0;    // with what was chosen not to be kept, or with the whole model
  std::size_t joined = 0;     // another record stands for it
  std::size_t notNeeded = 0;  // nothing needs it behind the fold
};

struct ClassTally {
  std::string name;  // "IfcWall"
  ProductTally products;
};

struct InputReport {
  WideString path;
  std::int64_t bytes = 0;
  WideString schema;    // as the file names it; empty when it could not be told
  bool isRead = false;  // to its end
  bool takesPart = false;
  bool schemaDiffers = false;                   // from that of the first input
  std::vector<UnitComparison> unitDifferences;  // likewise; some may have been let pass
  bool unitsDiffer = false;                     // so that the model is left out
  WideString lengthUnit;                        // "MILLIMETRE"; empty when there is none
  double metresPerUnit = 1.0;
  std::array<double, 3> offsetMm{};
  RecordTally records;
  ProductTally products;
  std::vector<ClassTally> classes;  // by name, those alone of which there is a product
  std::vector<WideString> remarks;  // on the file
};

struct StepReport {
  std::string step;  // "contexts"
  std::vector<std::pair<std::string, std::size_t>> counts;
  std::vector<std::pair<std::string, std::vector<WideString>>> lists;
  std::optional<std::size_t> input{};  // that it is about, by index; nothing: all of them
  bool foundWork = true;               // false: all was as it is wanted
};

struct StageReport {
  RunStage stage = RunStage::kRead;
  WideString path;  // of the model; empty for all of them
  double seconds = 0.0;
  std::uint64_t memoryBytes = 0;  // of the process at the end of the stage; 0 when unknown
};

struct OutputReport {
  WideString path;       // empty when none was to be written
  bool written = false;  // complete
  bool cancelled = false;
  WideString keptAt;  // where a complete output lies that did not come to its place
  std::int64_t bytes = 0;
  // Of the model that is written or would be; nothing when the run did not come so far.
  bool isKnown = false;
  std::size_t records = 0;
  std::size_t made = 0;  // of these, by the run itself
  std::size_t products = 0;
  WideString lengthUnit{};  // as that of an input
  double metresPerUnit = 1.0;
};

struct RunReport {
  std::string command;  // "merge"
  bool isDryRun = false;
  WideString startedAt;  // local time, "2026-11-22 14:05:09"
  std::vector<ToldText> failures;
  std::vector<ToldText> messages;  // what changes nothing but should be known
  std::vector<InputReport> inputs;
  std::vector<StepReport> steps;
  std::vector<StageReport> stages;
  OutputReport output;
  std::optional<ModelPlaces> places;  // of the result
};

}  // namespace corvel

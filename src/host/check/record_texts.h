// What only the text of a file tells: which mandatory values are left out, and where records stand.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/main_container.h"
#include "core/ticker.h"
#include "host/check/findings.h"
#include "step/class_facts.h"
#include "step/reader/record_walker.h"

namespace corvel::host {

// One walk over the records of a file, which looks at those alone that are wanted.
//
// In the objects a number that is left out is 0: whether it stands there tells only the text.
class RecordTexts {
 public:
  // The classes of the model's release.
  explicit RecordTexts(const ReleaseClasses& classes) : classes_(classes) {}

  // The place of this record is wanted. Call before Walk.
  void Want(std::uint32_t number) { offsets_.try_emplace(number); }
  // So are the mandatory numbers in it, of which one is 0.
  void WantNumbers(std::uint32_t number) { offsets_[number].hasZero = true; }
  // Looks at the file of the model. False: the user cancelled. A file that cannot be read again
  // gives nothing.
  bool Walk(const WideString& path, const IFC::MainContainer& container, Ticker& ticker,
            Findings& findings);
  // Into the file, of the first record of that number; below 0 when it was not met.
  std::int64_t OffsetOf(std::uint32_t number) const;

 private:
  struct Wanted {
    std::int64_t offset = -1;
    bool hasZero = false;
  };
  struct Plan {
    struct Mandatory {
      unsigned argument = 0;
      std::string subject{};  // "IfcWall.Name"
      Findings::Heap heap{};
    };
    std::vector<Mandatory> mandatory{};  // by argument
  };
  struct Name {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
      return std::hash<std::string_view>()(name);
    }
  };

  Plan& PlanOf(std::string_view className);
  void LookAt(RecordWalker& walker, FileStream::InputStream& stream, std::uint32_t number,
              const IFC::MainContainer& container, Findings& findings);

  const ReleaseClasses& classes_;
  std::unordered_map<std::string, Plan, Name, std::equal_to<>> plans_;
  std::unordered_map<std::uint32_t, Wanted> offsets_;
  std::size_t left_ = 0;          // of them that were not met
  std::vector<unsigned> absent_;  // arguments of the record at hand
};

}  // namespace corvel::host

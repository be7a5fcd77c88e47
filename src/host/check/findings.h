// What was found in one model, gathered rule by rule.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text.h"
#include "host/check/rules.h"

namespace corvel::host {

struct FindingPlace {
  std::uint32_t number = 0;  // of a record; 0: none
  std::uint64_t line = 0;    // 0: not known
  WideString what{};         // a value, a GUID, other records; may be empty
  std::int64_t offset = -1;  // into the file, from which the line is found; below 0: not known
};

// Places of one rule about one subject.
struct Finding {
  static constexpr std::size_t kPlacesKept = 3;

  RuleId rule = RuleId::kHeader;
  std::string subject;  // "IfcWall.Name", "IfcWall"; may be empty
  std::uint64_t count = 0;
  std::vector<FindingPlace> places{};  // the first
  // How often objects with a GUID stand among the places, by a hash of the GUID.
  std::map<std::uint64_t, std::uint64_t> byGuid{};

  Severity HowSevere() const { return RuleOf(rule).severity; }
};

struct Totals {
  std::uint64_t errors = 0;
  std::uint64_t warnings = 0;
  std::uint64_t notes = 0;

  void Add(Severity severity, std::uint64_t count);
};

class Findings {
 public:
  // `keepsGuids`: Finding::byGuid is filled.
  explicit Findings(bool keepsGuids = false) : keepsGuids_(keepsGuids) {}

  // Where places of one rule and subject go, looked up once for many.
  class Heap {
   private:
    friend class Findings;
    static constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);
    std::size_t at_ = kUnknown;
  };

  // One place. `guid`: of its object; may be empty.
  void Add(RuleId rule, std::string_view subject, FindingPlace place, std::string_view guid = {});
  // The same again and again: a heap is for one rule and one subject.
  void Add(Heap& heap, RuleId rule, std::string_view subject, FindingPlace place,
           std::string_view guid = {});
  // Whether a place that is added now is one of the first, which are kept.
  bool KeepsNextPlace(RuleId rule, std::string_view subject) const;
  // Many places at once, of which the first are known.
  void Add(Finding finding);

  // All of them, by rule, then in the order of their subjects. Nothing is left here.
  std::vector<Finding> Take();
  bool KeepsGuids() const { return keepsGuids_; }

 private:
  std::size_t IndexOf(RuleId rule, std::string_view subject);
  void AddTo(Finding& finding, FindingPlace place, std::string_view guid) const;

  bool keepsGuids_;
  std::vector<Finding> findings_;
  std::map<std::pair<RuleId, std::string>, std::size_t, std::less<>> places_;
};

Totals TotalsOf(const std::vector<Finding>& findings);

}  // namespace corvel::host

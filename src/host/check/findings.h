// What was found in one model, gathered rule by rule.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/main_container.h"
#include "core/text.h"
#include "host/check/known_places.h"
#include "host/check/object_identity.h"
#include "host/check/rules.h"

namespace corvel::host {

// A part of what is told of a place, for pages, which have words in several languages.
struct PlacePart {
  enum class Kind : std::uint8_t {
    kWord,    // the key of a text
    kText,    // the same in all languages
    kNumber,  // "1234.5"
    kUnit     // as LengthUnit and UnitFacts name it
  };

  Kind kind = Kind::kText;
  WideString text{};
};

struct FindingPlace {
  std::uint32_t number = 0;        // of a record; 0: none
  std::uint64_t line = 0;          // 0: not known
  WideString what{};               // a value, a GUID, other records; may be empty
  std::vector<PlacePart> parts{};  // of `what`, where it has words of ours in it
  std::int64_t offset = -1;  // into the file, from which the line is found; below 0: not known
  bool isNew = false;        // compared with other models: none of them has it
};

// Places of one rule about one subject.
struct Finding {
  static constexpr std::size_t kPlacesKept = 3;

  RuleId rule = RuleId::kHeader;
  std::string subject;  // "IfcWall.Name", "IfcWall"; may be empty
  std::uint64_t count = 0;
  std::vector<FindingPlace> places{};  // the first, new ones before others
  PlacesByObject byObject{};           // of those that are about an object

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
  Findings() = default;
  // Fills Finding::byObject with the objects of `container`, and with `known` (may be null) tells
  // new places from those. Both are borrowed.
  Findings(const IFC::MainContainer& container, KnownPlaces* known)
      : container_(&container), known_(known) {}

  // Where places of one rule and subject go, looked up once for many.
  class Heap {
   private:
    friend class Findings;
    static constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);
    std::size_t at_ = kUnknown;
  };

  void Add(RuleId rule, std::string_view subject, FindingPlace place);
  // The same again and again: a heap is for one rule and one subject.
  void Add(Heap& heap, RuleId rule, std::string_view subject, FindingPlace place);
  // Whether a place that is added now may be kept, so that what it is about is worth its words.
  bool MayKeepPlace(RuleId rule, std::string_view subject) const;
  // Many places at once, of which the first are known. `numbers`: of all their records, if these
  // are known too.
  void Add(Finding finding, std::span<const std::uint32_t> numbers = {});

  // All of them, by rule, then in the order of their subjects. Nothing is left here.
  std::vector<Finding> Take();

 private:
  std::size_t IndexOf(RuleId rule, std::string_view subject);
  void AddTo(Finding& finding, FindingPlace place);
  void NoteObject(Finding& finding, FindingPlace& place);
  static void Keep(std::vector<FindingPlace>& places, FindingPlace place);

  const IFC::MainContainer* container_ = nullptr;  // null: objects are not told apart
  KnownPlaces* known_ = nullptr;
  ObjectIdentity identity_;
  std::vector<Finding> findings_;
  std::map<std::pair<RuleId, std::string>, std::size_t, std::less<>> places_;
};

Totals TotalsOf(const std::vector<Finding>& findings);

}  // namespace corvel::host

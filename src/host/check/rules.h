// What `corvel check` looks for.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "core/text.h"

namespace corvel::host {

enum class Severity : std::uint8_t {
  kNote,     // worth knowing; nothing is broken
  kWarning,  // programs may differ in what they make of it
  kError     // the file breaks its schema, or the format
};

// "error", "warning", "note"
std::string_view NameOf(Severity severity);

enum class RuleId : std::uint8_t {
  // Of the text.
  kHeader,
  kCutShort,
  kSkipped,
  kSection,
  kString,
  kEnumeration,
  kBracket,
  kComment,
  kSemicolon,
  kStrayBytes,
  kEndInRecord,
  kHiddenRecords,
  // Of records.
  kSchema,
  kUnknownClass,
  kComplexInstance,
  kNoClass,
  kArgumentCount,
  kDoubledNumber,
  kNoNumber,
  // Of values.
  kUnknownValue,
  kWrongValue,
  kLargeInteger,
  kMissingValue,
  kWrongReference,
  kDanglingReference,
  kFewMembers,
  kManyMembers,
  kDoubledMember,
  kFewRelations,
  kManyRelations,
  kSeveralAnswers,
  kChangedReal,
  kChangedNumber,
  kAddedText,
  // Of the model.
  kMalformedGuid,
  kDoubledGuid,
  kNoProject,
  kSeveralProjects,
  kNoUnits,
  kUnlistedUnits,
  kNoContext,
  kUnlistedContext,
  kPlacementCircle,
  // Between models.
  kOtherRelease,
  kOtherUnit,
  kOtherPlace,
  kFarApart,
  kSharedGuid,
  kGuidOfOtherClass
};

inline constexpr std::size_t kRules = static_cast<std::size_t>(RuleId::kGuidOfOtherClass) + 1;

// Names stay what they are for good. The first part of a name is that of the public validation
// service's rule where there is one that says the same, and "CRV" otherwise.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order in which the table reads
struct Rule {
  RuleId id = RuleId::kHeader;
  std::string_view name;  // "CRV.value.missing"
  Severity severity = Severity::kError;
  WideView title;        // what is found: a sentence without its point
  WideView explanation;  // why it matters, and what a save makes of it
  WideView example;      // of a file that breaks it
};

// In the order of RuleId.
std::span<const Rule> Rules();
const Rule& RuleOf(RuleId id);
// In any case of the letters. Null: there is none.
const Rule* FindRule(std::string_view name);

}  // namespace corvel::host

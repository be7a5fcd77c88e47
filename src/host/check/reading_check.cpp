#include "host/check/reading_check.h"

#include <utility>

#include "schema/schema_choice.h"
#include "step/reader/parser.h"

namespace corvel::host {

namespace {

RuleId RuleOfMisfit(Misfit kind) {
  switch (kind) {
    case Misfit::kUnknownClass: return RuleId::kUnknownClass;
    case Misfit::kArgumentCount: return RuleId::kArgumentCount;
    case Misfit::kComplexInstance: return RuleId::kComplexInstance;
    case Misfit::kNoClass: return RuleId::kNoClass;
    case Misfit::kUnknownEnumValue: return RuleId::kUnknownValue;
    case Misfit::kWrongValue: return RuleId::kWrongValue;
    case Misfit::kRefusedReference: return RuleId::kWrongReference;
    case Misfit::kDanglingReference: return RuleId::kDanglingReference;
    case Misfit::kOpenString: return RuleId::kString;
    case Misfit::kOpenEnumeration: return RuleId::kEnumeration;
    case Misfit::kOpenBracket: return RuleId::kBracket;
    case Misfit::kOpenComment: return RuleId::kComment;
    case Misfit::kNoSemicolon: return RuleId::kSemicolon;
    case Misfit::kStrayBytes: return RuleId::kStrayBytes;
    case Misfit::kDuplicatedNumber: return RuleId::kDoubledNumber;
    case Misfit::kNumberlessRecord: return RuleId::kNoNumber;
    case Misfit::kNoEnd: return RuleId::kEndInRecord;
  }
  return RuleId::kSkipped;
}

RuleId RuleOfSkipped(const SkippedPart& part) {
  using Kind = SkippedInput::Kind;
  if (!part.section.empty()) return RuleId::kSection;
  switch (part.kind) {
    case Kind::kInHeader: return RuleId::kHeader;
    case Kind::kNoNumber: return RuleId::kNoNumber;
    case Kind::kNoSemicolon: return RuleId::kSemicolon;
    case Kind::kEndlessComment: return RuleId::kComment;
    case Kind::kText:
    case Kind::kSurplus:
    case Kind::kRunOnString:
    case Kind::kComment:
    case Kind::kRunOnNumber: break;
  }
  return RuleId::kSkipped;
}

FindingPlace PlaceOfMisfit(const MisfitPlace& place) {
  return {.number = place.number, .what = FromUtf8(place.what), .offset = place.offset};
}

Finding FindingOf(const MisfitGroup& group) {
  Finding finding{.rule = RuleOfMisfit(group.kind), .subject = group.className};
  finding.count = group.count;
  for (const MisfitPlace& place : group.places) finding.places.push_back(PlaceOfMisfit(place));
  return finding;
}

// The record is the one before the place.
Finding FindingOf(const SkippedPart& part) {
  Finding finding{.rule = RuleOfSkipped(part), .subject = part.section};
  finding.count = part.places;
  FindingPlace& place = finding.places.emplace_back();
  place.offset = part.offset;
  if (part.record == 0) return finding;
  const WideString record = u"#" + ToWide(part.record);
  place.what = u"behind " + record;
  place.parts = {{PlacePart::Kind::kWord, u"said.behind"}, {PlacePart::Kind::kText, record}};
  return finding;
}

// One place a record, as of other values that are refused.
void CheckLargeIntegers(const IfcDocument& document, Findings& findings) {
  const auto& entities = document.mainContainer->entities;
  std::uint32_t last = 0;
  for (const LargeInteger& large : document.GetParser().notes.records->Large()) {
    const IFC::IfcEntity* const entity = entities.Find(large.record);
    if (entity == nullptr || std::exchange(last, large.record) == large.record) continue;
    findings.Add(
        RuleId::kLargeInteger, Narrow(entity->getClassName()),
        {.number = large.record, .what = FromUtf8(large.attribute), .offset = large.offset});
  }
}

}  // namespace

void CheckReading(const IfcDocument& document, Findings& findings) {
  const ReadingNotes& notes = document.GetParser().notes;
  if (notes.headWasMended) {
    const bool isKnown = notes.records != nullptr;
    findings.Add(RuleId::kHeader, {},
                 {.what = isKnown ? FromUtf8(notes.records->HeadFlaw()) : WideString()});
  }
  if (notes.endWithoutClosingLine) {
    findings.Add(RuleId::kCutShort, {}, {.offset = *notes.endWithoutClosingLine});
  }
  const WideString& identifier = document.KnownSchemaIdentifier();
  if (!ChooseSchemaTolerantly(identifier, document.getFilePath()).told.empty()) {
    findings.Add(RuleId::kSchema, {}, {.what = identifier});
  }
  if (notes.records != nullptr) {
    for (const HiddenRecords& hidden : notes.records->Hidden()) {
      findings.Add(RuleId::kHiddenRecords, hidden.isInText ? "text" : "comment",
                   {.number = hidden.record, .offset = hidden.offset});
    }
  }
  if (notes.records != nullptr) CheckLargeIntegers(document, findings);
  for (const SkippedPart& part : notes.skipped) findings.Add(FindingOf(part));
  for (const MisfitGroup& group : notes.misfits) findings.Add(FindingOf(group), group.numbers);
}

}  // namespace corvel::host

#include "host/check/absent_check.h"

#include <string>

#include "core/carried.h"
#include "host/check/value_check.h"
#include "schema/attributes.h"

namespace corvel::host {

void CheckAbsentNumbers(const RecordNotes& notes, const IFC::MainContainer& container,
                        Findings& findings) {
  for (const AbsentNumber& absent : notes.Absent()) {
    IFC::IfcEntity* const entity = container.entities.Find(absent.record);
    const ClassFacts* const facts = entity == nullptr ? nullptr : FindFacts(*entity);
    // What another release has read is told as a class that this one lacks.
    if (facts == nullptr || IsOfNoClassOfModel(*entity)) continue;
    if (absent.argument >= facts->AttributeCount()) continue;
    const AttributeFacts& attribute = facts->Attribute(absent.argument);
    if (!WantsNumberOrTruth(*facts, attribute)) continue;
    findings.Add(RuleId::kMissingValue, std::string(facts->name) + "." + attribute.name,
                 {.number = absent.record});
  }
}

}  // namespace corvel::host

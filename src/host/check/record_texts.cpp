#include "host/check/record_texts.h"

#include <algorithm>

#include "core/entity_cast.h"
#include "core/root_interfaces.h"
#include "host/hearing.h"
#include "host/model_opening.h"
#include "step/reader/byte_kinds.h"
#include "step/reader/record_skipper.h"
#include "step/reader/string_decoder.h"

namespace corvel::host {

namespace {

using FileStream::InputStream;

bool IsLookedFor(const AttributeFacts& attribute) {
  if (attribute.IsOptional() || attribute.depth != 0) return false;
  return attribute.kind == ValueKind::kReal || attribute.kind == ValueKind::kNumber ||
         attribute.kind == ValueKind::kInteger || attribute.kind == ValueKind::kBinary;
}

// Which arguments of the record at hand are "$" or "*". Stops before the ";".
void FindAbsent(InputStream& stream, std::vector<unsigned>& absent) {
  unsigned depth = 0;
  unsigned argument = 0;
  while (stream.HasByte()) {
    const char byte = *stream.Cursor();
    if (byte == ';' || byte == kLastByte) return;
    stream.SetCursor(stream.Cursor() + 1);
    switch (byte) {
      case '(': ++depth; break;
      case ')': --depth; break;
      case ',':
        if (depth == 1) ++argument;
        break;
      case '$':
      case '*':
        if (depth == 1) absent.push_back(argument);
        break;
      case '\'':
        if (!SkipString(stream)) return;
        break;
      case '/':
        stream.SetCursor(stream.Cursor() - 1);
        if (!SkipBlanks(stream)) return;
        break;
      default: break;
    }
  }
}

std::string_view GuidOf(IFC::IfcEntity* entity) {
  const auto* const root = entity == nullptr ? nullptr : EntityCast<IFC::VirtualIfcRoot>(entity);
  return root == nullptr ? std::string_view() : root->getGlobalId();
}

}  // namespace

RecordTexts::Plan& RecordTexts::PlanOf(std::string_view className) {
  const auto known = plans_.find(className);
  if (known != plans_.end()) return known->second;
  Plan plan;
  const ClassFacts* const facts = classes_.Find(className);
  for (unsigned i = 0; facts != nullptr && i < facts->AttributeCount(); ++i) {
    const AttributeFacts& attribute = facts->Attribute(i);
    if (!IsLookedFor(attribute)) continue;
    plan.mandatory.push_back({i, std::string(facts->name) + "." + attribute.name});
  }
  return plans_.emplace(className, std::move(plan)).first->second;
}

void RecordTexts::LookAt(RecordWalker& walker, InputStream& stream, std::uint32_t number,
                         const IFC::MainContainer& container, Findings& findings) {
  const auto wanted = offsets_.find(number);
  if (wanted == offsets_.end() || wanted->second.offset >= 0) return;
  const std::int64_t offset = stream.Position() - 1;
  wanted->second.offset = offset;
  --left_;
  if (!wanted->second.hasZero) return;
  const std::string_view name = walker.TakeClassName();
  if (name.empty()) return;
  Plan& plan = PlanOf(name);
  if (plan.mandatory.empty()) return;
  absent_.clear();
  FindAbsent(stream, absent_);
  if (absent_.empty()) return;
  for (Plan::Mandatory& mandatory : plan.mandatory) {
    if (!std::binary_search(absent_.begin(), absent_.end(), mandatory.argument)) continue;
    findings.Add(mandatory.heap, RuleId::kMissingValue, mandatory.subject,
                 {.number = number, .offset = offset},
                 GuidOf(container.GetEntityByOrginalNumber(number)));
  }
}

bool RecordTexts::Walk(const WideString& path, const IFC::MainContainer& container, Ticker& ticker,
                       Findings& findings) {
  if (offsets_.empty()) return true;
  std::vector<WideString> unheard;
  const Hearing hearing(unheard);
  const auto scanner = OpenModel(path, false);
  if (!scanner->IsOpen()) return true;
  // The HEADER, whatever it looks like, has no records with a number.
  RecordWalker walker(*scanner);
  InputStream& stream = *scanner->Stream();
  left_ = offsets_.size();
  for (std::uint32_t number = 0; left_ != 0 && walker.FindRecord(number);) {
    LookAt(walker, stream, number, container, findings);
    walker.FinishRecord();
    if (!ticker.Advance()) return false;
  }
  return true;
}

std::int64_t RecordTexts::OffsetOf(std::uint32_t number) const {
  const auto found = offsets_.find(number);
  return found == offsets_.end() ? -1 : found->second.offset;
}

}  // namespace corvel::host

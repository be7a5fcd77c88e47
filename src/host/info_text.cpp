#include "host/info_text.h"

#include <algorithm>
#include <string_view>

#include "host/display_text.h"
#include "host/facts/facts_text.h"
#include "host/wrapped_text.h"
#include "schema/registry.h"

namespace corvel::host {

namespace {

constexpr std::size_t kLabelColumns = 22;

WideString Line(WideView label, WideView value) {
  WideString line = u"  " + WideString(label);
  line.append(kLabelColumns - std::min(label.size(), kLabelColumns), u' ');
  const WideString shown = Printable(value);
  if (ColumnsOf(line) + ColumnsOf(shown) > kLineColumns) return Wrapped(line, value);
  return line + shown + u"\n";
}

WideString HeaderLines(const HeaderToken& header) {
  return Line(u"description", Listed(header.fileDescription)) +
         Line(u"implementation level", header.implementationLevel) + Line(u"name", header.name) +
         Line(u"time stamp", header.timeStamp) + Line(u"author", Listed(header.author)) +
         Line(u"organization", Listed(header.organization)) +
         Line(u"preprocessor version", header.preprocessorVersion) +
         Line(u"originating system", header.originatingSystem) +
         Line(u"authorization", header.authorization) +
         Line(u"schema identifier", header.schemaIdentifier);
}

WideString ClassLines(const FileFacts& facts) {
  constexpr std::size_t kCountColumns = 12;
  WideString lines;
  for (const auto& [name, count] : facts.classes) {
    const WideString digits = Widen(std::to_string(count));
    lines.append(kCountColumns - std::min(digits.size(), kCountColumns), u' ');
    lines += digits + u"  " + Widen(name) + u"\n";
  }
  return lines;
}

}  // namespace

WideString FactsAsText(const FileFacts& facts) {
  WideString text = Printable(facts.path) + u"\n";
  text += Line(u"size in bytes", Widen(std::to_string(facts.bytes)));
  if (facts.model) text += ModelFactsAsText(*facts.model);
  // No STEP file: the problems tell what it is.
  if (facts.header == nullptr) return text;
  text += HeaderLines(*facts.header);
  text += Line(u"schema", facts.schema ? Widen(NameOf(*facts.schema)) : WideString(u"none"));
  for (const WideString& remark : facts.remarks) text += Line(u"remark", remark);
  text += Line(u"records", Widen(std::to_string(facts.records)));
  return text + ClassLines(facts);
}

}  // namespace corvel::host

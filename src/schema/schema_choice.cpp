#include "schema/schema_choice.h"

#include <algorithm>
#include <exception>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "schema/registry.h"
#include "step/reader/byte_kinds.h"
#include "step/reader/record_mender.h"
#include "step/reader/schema_identifier.h"
#include "step/streams/open_input.h"

namespace corvel {

namespace {

constexpr std::size_t kLookedAt = 0x100000;

struct Release {
  SchemaNamespace name;
  const FactoryTable* classes;
};

// Those of this build.
std::vector<Release> Releases() {
  std::vector<Release> releases;
  const auto add = [&releases](SchemaNamespace name) {
    try {
      releases.push_back({name, &FactoriesOf(name)});
    } catch (const std::logic_error&) {
    }
  };
#define CORVEL_RELEASE(name) add(SchemaNamespace::name);
#include "step/releases.inc"
#undef CORVEL_RELEASE
  return releases;
}

WideString PlainName(WideView identifier) {
  const auto isBlank = [](char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); };
  while (!identifier.empty() && isBlank(identifier.front())) identifier.remove_prefix(1);
  while (!identifier.empty() && isBlank(identifier.back())) identifier.remove_suffix(1);
  WideString name(identifier);
  for (char16_t& c : name) {
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 0x20);
  }
  return name;
}

std::string StartOf(const WideString& path) {
  std::string start;
  try {
    const auto stream = FileStream::OpenInput(path, kLookedAt, nullptr);
    while (stream != nullptr && stream->IsOpen() && start.size() < kLookedAt && stream->Refill()) {
      start.append(stream->Cursor(), stream->WindowEnd());
      stream->SetCursor(stream->WindowEnd());
      stream->ClearStatementText();
    }
  } catch (const std::exception&) {
    // Whoever reads the file itself reports it.
  }
  return start;
}

// What stands between a "=" and a "(".
std::set<std::string> ClassesIn(std::string_view text) {
  std::set<std::string> names;
  const auto skipBlanks = [&](std::size_t at) {
    while (at < text.size() && IsBlank(text[at])) ++at;
    return at;
  };
  for (std::size_t at = text.find('='); at != std::string_view::npos; at = text.find('=', at)) {
    const std::size_t begin = skipBlanks(at + 1);
    std::size_t end = begin;
    while (end < text.size() &&
           (IsOfKind(text[end], kLetterByte | kDigitByte) || text[end] == '_')) {
      ++end;
    }
    const std::size_t bracket = skipBlanks(end);
    const bool isClass = end != begin && bracket < text.size() && text[bracket] == '(';
    if (isClass) names.insert(TableName(text.substr(begin, end - begin)));
    at = std::max(end, at + 1);
  }
  return names;
}

std::size_t CommonPrefix(WideView a, WideView b) {
  return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first -
                                  a.begin());
}

int Unheard(const char* /*key*/, const WideString& /*message*/, int /*mode*/) { return 0; }

WideString Digits(std::size_t number) { return Widen(std::to_string(number)); }

}  // namespace

SchemaChoice ChooseSchemaTolerantly(const WideString& identifier, const WideString& path) {
  const WideString name = PlainName(identifier);
  const std::optional<SchemaNamespace> strict = ChooseSchemaNamespace(name, Unheard);
  const std::vector<Release> releases = Releases();
  const auto isStrict = [&](const Release& release) { return strict == release.name; };
  const bool isBuilt = std::any_of(releases.begin(), releases.end(), isStrict);
  const bool isKnown = strict && (Widen(NameOf(*strict)) == name || name == u"IFC4X3");
  if (isKnown && isBuilt) return {*strict, {}};

  const std::set<std::string> classes = ClassesIn(StartOf(path));
  const Release* best = nullptr;
  std::tuple<std::size_t, std::size_t, std::size_t, bool> most;
  std::size_t shared = 0;
  for (const Release& release : releases) {
    const auto count = static_cast<std::size_t>(std::count_if(
        classes.begin(), classes.end(),
        [&](const std::string& one) { return release.classes->FindRow(one) != nullptr; }));
    const WideString known = Widen(NameOf(release.name));
    const std::tuple measure(count, CommonPrefix(name, known),
                             name.starts_with(known) ? known.size() : std::size_t{0},
                             isStrict(release));
    if (best != nullptr && measure < most) continue;
    best = &release;
    most = measure;
    shared = count;
  }
  return {best->name, u"Schema identifier: " + identifier + u" is not supported. " +
                          Widen(NameOf(best->name)) + u" is used instead, which has " +
                          Digits(shared) + u" of the first " + Digits(classes.size()) +
                          u" classes of the file."};
}

bool SeemsToHoldRecords(const WideString& path) { return !ClassesIn(StartOf(path)).empty(); }

}  // namespace corvel

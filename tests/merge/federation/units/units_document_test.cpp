// The tables that users read are those that the program works by.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "merge/federation/units/measures.h"
#include "merge/federation/units/value_roles.h"
#include "platform/file.h"
#include "schema/registry.h"

namespace corvel::test {

namespace {

struct RowOfUnitsDocument {
  std::string name;
  std::string meaning;
  std::string releases;
};

// The rows of all tables of docs/units.md, in their order.
std::vector<RowOfUnitsDocument> RowsOfUnitsDocument() {
  std::string text;
  platform::File file;
  if (!file.Open(FromUtf8(CORVEL_SAMPLES_DIR "/../docs/units.md"), platform::OpenMode::kRead)) {
    return {};
  }
  text.resize(static_cast<std::size_t>(file.Size()));
  text.resize(file.Read(text.data(), text.size()));
  std::vector<RowOfUnitsDocument> rows;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::vector<std::string> cells;
    std::string line = text.substr(at, end - at);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    at = end + 1;
    if (line.compare(0, 5, "| Ifc") != 0) continue;
    for (std::size_t from = 2; from < line.size();) {
      const std::size_t bar = line.find(" |", from);
      cells.push_back(line.substr(from, bar - from));
      from = bar + 3;
    }
    if (cells.size() == 3) rows.push_back({cells[0], cells[1], cells[2]});
  }
  return rows;
}

bool NamesRelease(const RowOfUnitsDocument& row, std::string_view release) {
  const std::string list = ", " + row.releases + ",";
  return row.releases == "all" || list.find(", " + std::string(release) + ",") != std::string::npos;
}

// Some types are those of attributes alone.
bool HasType(const ReleaseClasses& classes, std::string_view name) {
  return std::any_of(classes.classes.begin(), classes.classes.end(), [=](const ClassFacts& facts) {
    return std::any_of(facts.own, facts.own + facts.ownCount, [=](const AttributeFacts& attribute) {
      return attribute.type->IsOrIsMadeOf(name);
    });
  });
}

template <class IsThere>
void ExpectReleases(const RowOfUnitsDocument& row, IsThere isThere) {
  for (const SchemaNamespace release : {
#define CORVEL_RELEASE(name) SchemaNamespace::name,
#include "step/releases.inc"
#undef CORVEL_RELEASE
       }) {
    const FactoryTable* factories = nullptr;
    try {
      factories = &FactoriesOf(release);
    } catch (const std::logic_error&) {
      continue;  // left out of this build
    }
    EXPECT_EQ(NamesRelease(row, NameOf(release)), isThere(*factories->classes))
        << row.name << " of " << NameOf(release);
  }
}

TEST(UnitsDocument, ItsTablesAreThoseOfTheProgram) {
  const std::vector<RowOfUnitsDocument> rows = RowsOfUnitsDocument();
  std::size_t next = 0;
  const auto take = [&](std::string_view name, std::string_view meaning) {
    static const RowOfUnitsDocument none;
    const RowOfUnitsDocument& row = next < rows.size() ? rows[next++] : none;
    EXPECT_EQ(row.name, name);
    EXPECT_EQ(row.meaning, meaning);
    return row;
  };
  const auto hasType = [](std::string_view name) {
    return [name](const ReleaseClasses& classes) { return HasType(classes, name); };
  };
  for (const MeasureFacts& facts : AllMeasures()) {
    ExpectReleases(take(facts.type, facts.unit), hasType(facts.type));
  }
  for (const UnmeasuredType& facts : AllUnmeasuredTypes()) {
    ExpectReleases(take(facts.type, facts.why), hasType(facts.type));
  }
  for (const RoleRow& role : AllRoles()) {
    std::string meaning(MeaningOf(role.role));
    if (!role.other.empty()) meaning += " (" + std::string(role.other) + ")";
    const RowOfUnitsDocument row =
        take(std::string(role.className) + "." + std::string(role.attribute), meaning);
    ExpectReleases(row, [&](const ReleaseClasses& classes) {
      const ClassFacts* const facts = classes.Find(role.className);
      return facts != nullptr && facts->FindAttribute(role.attribute) != nullptr;
    });
  }
  EXPECT_EQ(next, rows.size());
}

}  // namespace

}  // namespace corvel::test

// A model of a few records, each read from its text, and the base of tests that run over all
// releases.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "core/entity_cast.h"
#include "core/main_container.h"
#include "schema/registry.h"
#include "step/reader/parser.h"
#include "step/writer/step_writer.h"
#include "support/memory_streams.h"

namespace corvel::test {

struct Release {
  SchemaNamespace schema;
  const char* name;
};

// The releases from `first` to `last` that are in this build: a developer's build leaves some out.
inline std::vector<Release> ReleasesBuilt(SchemaNamespace first, SchemaNamespace last) {
  constexpr Release kAll[] = {
#define CORVEL_RELEASE(name) {SchemaNamespace::name, #name},
#include "step/releases.inc"
#undef CORVEL_RELEASE
  };
  std::vector<Release> built;
  for (const Release& release : kAll) {
    if (release.schema < first || release.schema > last) continue;
    try {
      FactoriesOf(release.schema);
      built.push_back(release);
    } catch (const std::logic_error&) {
      // left out
    }
  }
  return built;
}

// Records are given as "IFCWALL('guid',$,'name')"; a record that ends early leaves the rest of its
// attributes absent, so that one text serves releases with more and with fewer attributes (only a
// mandatory enumeration has to be there). A reference must lead to a record that was added before.
// Whatever is reported fails the test.
class RecordModel {
 public:
  explicit RecordModel(SchemaNamespace schema) : RecordModel(FactoriesOf(schema)) {}
  explicit RecordModel(const FactoryTable& factories) : parser_(false, Report, nullptr) {
    parser_.factories = &factories;
    parser_.mainContainer = std::make_unique<IFC::MainContainer>(Report, nullptr, 1 << 16);
  }

  MemoryPool& Pool() { return parser_.Pool(); }
  const FactoryTable& Factories() const { return *parser_.factories; }
  bool Has(std::string_view className) const { return Factories().Find(className) != nullptr; }

  // A blank object that is filed nowhere.
  IFC::IfcEntity* Blank(std::string_view className) {
    const EntityCreator create = Factories().Find(className);
    if (create == nullptr) throw std::runtime_error("no class " + std::string(className));
    return create(Pool());
  }
  // Reads a record and files it; a name without brackets gives a blank object.
  IFC::IfcEntity* Add(std::uint32_t number, std::string_view record) {
    const std::size_t bracket = record.find('(');
    IFC::IfcEntity* const entity = Blank(record.substr(0, bracket));
    entity->SetMarker(number);
    parser_.mainContainer->AddEntityByOrginalNumber(entity, number);
    if (bracket == std::string_view::npos) return entity;
    parser_.scanner = std::make_unique<Scanner>(
        std::make_unique<MemoryInputStream>(std::string(record.substr(bracket)) + ";"), Report);
    parser_.scanner->NextToken();
    if (parser_.ReadArguments(entity) == nullptr) throw std::runtime_error("unreadable record");
    return entity;
  }
  // Null when nothing is filed under the number.
  IFC::IfcEntity* Find(std::uint32_t number) const {
    return parser_.mainContainer->GetEntityByOrginalNumber(number);
  }

 private:
  static int Report(const char* key, const WideString& message, int /*mode*/) {
    ADD_FAILURE() << key << ": " << Narrow(message);
    return 0;
  }

  Parser parser_;
};

// The record as it is written: "IFCWALL('guid',$,'name',$,$,$,$,$,$)".
inline std::string Written(const IFC::IfcEntity* entity) {
  MemoryOutpoutStream stream;
  StepWriter writer(stream);
  writer.WriteEntityLine(*entity);
  const std::string line = stream.Text();  // "#12=...;\n"
  const std::size_t start = line.find('=') + 1;
  return line.substr(start, line.size() - start - 2);
}

// The first `count` arguments of the written record, "'guid',$,'name'". Releases differ in what
// follows. Texts with brackets or commas in them are not understood.
inline std::string FirstWritten(std::size_t count, const IFC::IfcEntity* entity) {
  const std::string record = Written(entity);
  const std::size_t start = record.find('(') + 1;
  int depth = 0;
  for (std::size_t i = start; i < record.size(); ++i) {
    if (record[i] == '(') ++depth;
    if (record[i] == ')') --depth;
    const bool argumentEnds = depth < 0 || (depth == 0 && record[i] == ',');
    if (argumentEnds && --count == 0) return record.substr(start, i - start);
  }
  return record.substr(start) + " is too short";
}

// Has an empty model of one release. A suite of tests derives from it and says below which releases
// it runs for.
class EachRelease : public testing::TestWithParam<Release> {
 protected:
  static SchemaNamespace Schema() { return GetParam().schema; }
  RecordModel& Model() { return model_; }
  MemoryPool& Pool() { return model_.Pool(); }
  IFC::IfcEntity* Add(std::uint32_t number, std::string_view record) {
    return model_.Add(number, record);
  }
  // Adds a record and gives its interface.
  template <class Interface>
  Interface& AddAs(std::uint32_t number, std::string_view record) {
    auto* const found = EntityCast<Interface>(Add(number, record));
    if (found == nullptr) throw std::runtime_error(std::string(record) + " has no such interface");
    return *found;
  }

 private:
  RecordModel model_{Schema()};
};

inline std::string ReleaseName(const testing::TestParamInfo<Release>& tested) {
  return tested.param.name;
}

}  // namespace corvel::test

// `first` and `last` are values of SchemaNamespace.
#define RUN_FOR_RELEASES(suite, first, last)                                                    \
  GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(suite);                                         \
  INSTANTIATE_TEST_SUITE_P(Releases, suite,                                                     \
                           testing::ValuesIn(corvel::test::ReleasesBuilt(                       \
                               corvel::SchemaNamespace::first, corvel::SchemaNamespace::last)), \
                           corvel::test::ReleaseName)
#define RUN_FOR_EACH_RELEASE(suite) RUN_FOR_RELEASES(suite, IFC2X_FINAL, IFC4X4)

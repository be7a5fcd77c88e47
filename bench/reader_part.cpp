// From text to values: the readers of attributes, kind by kind.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "models_in_memory.h"
#include "sample_enum.h"
#include "schema/registry.h"
#include "step/reader/attribute_reader.h"
#include "step/reader/parser.h"
#include "support/memory_streams.h"

namespace {

using corvel::Parser;

constexpr unsigned kValues = 4096;
constexpr unsigned kTargets = 64;  // records that references name
constexpr std::uint64_t kPoolBlock = 1 << 20;

struct Kind {
  const char* name;
  std::string (*text)(unsigned index);
  void (*read)(Parser& parser);
};

std::string Number(unsigned index) { return std::to_string(index); }
std::string Target(unsigned index) { return "#" + Number(index % kTargets + 1); }

corvel::ClassTest& Entities() {
  static corvel::ClassTest test(corvel::IsOfClass<IFC::IfcComplexType>);
  return test;
}
corvel::ClassTest& Values() {
  static corvel::ClassTest test(corvel::IsOfClass<IFC::IfcSimpleType>);
  return test;
}

template <auto kRead>
void ReadScalar(Parser& parser) {
  benchmark::DoNotOptimize(kRead(parser));
}
template <class Item, void (*kRead)(Parser&, corvel::List<Item>&)>
void ReadList(Parser& parser) {
  corvel::List<Item> list;
  kRead(parser, list);
  benchmark::DoNotOptimize(list);
}

const Kind kKinds[] = {
    {"absent", [](unsigned) { return std::string("$"); },
     [](Parser& parser) { benchmark::DoNotOptimize(corvel::IsAbsent(parser)); }},
    {"real", [](unsigned i) { return Number(i) + ".5"; }, ReadScalar<corvel::ReadReal>},
    {"real of all digits", [](unsigned i) { return Number(i) + ".123456789012"; },
     ReadScalar<corvel::ReadReal>},
    {"integer", Number, ReadScalar<corvel::ReadInteger>},
    {"boolean", [](unsigned) { return std::string(".T."); }, ReadScalar<corvel::ReadBoolean>},
    {"logical", [](unsigned) { return std::string(".U."); }, ReadScalar<corvel::ReadLogical>},
    {"enumeration", [](unsigned i) { return std::string(corvel::bench::SampleLiteral(i)); },
     [](Parser& parser) {
       benchmark::DoNotOptimize(corvel::ReadEnum(parser, corvel::bench::kSampleEnum));
     }},
    {"text met before", [](unsigned i) { return "'Reference " + Number(i % 50) + "'"; },
     ReadScalar<corvel::ReadString>},
    {"new text", [](unsigned i) { return "'Reference " + Number(i) + "'"; },
     ReadScalar<corvel::ReadString>},
    {"text with escapes",
     [](unsigned i) { return R"('D\X2\00E4\X0\mmung )" + Number(i % 50) + "'"; },
     ReadScalar<corvel::ReadString>},
    {"GUID", [](unsigned i) { return "'" + corvel::bench::Guid('0', i) + "'"; },
     ReadScalar<corvel::ReadGuid>},
    {"reference", Target,
     [](Parser& parser) { benchmark::DoNotOptimize(corvel::ReadEntityRef(parser, Entities())); }},
    {"typed value", [](unsigned) { return std::string("IFCBOOLEAN(.T.)"); },
     [](Parser& parser) { benchmark::DoNotOptimize(corvel::ReadEntityRef(parser, Values())); }},
    {"list of 4 references",
     [](unsigned i) {
       return "(" + Target(i) + "," + Target(i + 1) + "," + Target(i + 2) + "," + Target(i + 3) +
              ")";
     },
     [](Parser& parser) {
       corvel::EntityList list;
       corvel::ReadEntityRefList(parser, Entities(), list);
       benchmark::DoNotOptimize(list);
     }},
    {"list of 3 reals", [](unsigned i) { return "(" + Number(i) + ".5,-0.25,3.)"; },
     ReadList<double, corvel::ReadRealList>},
    {"list of 3 integers", [](unsigned i) { return "(" + Number(i) + ",2,3)"; },
     ReadList<std::int32_t, corvel::ReadIntegerList>},
    {"list of 2 texts", [](unsigned i) { return "('a " + Number(i % 50) + "','b')"; },
     ReadList<corvel::ModelText, corvel::ReadStringList>},
    {"2 lists of 3 reals", [](unsigned i) { return "((" + Number(i) + ".5,2.,3.),(4.,5.,6.))"; },
     ReadList<corvel::List<double>, corvel::ReadRealLists>},
};

void PrepareTargets(Parser& parser) {
  parser.factories = &corvel::FactoriesOf(corvel::SchemaNamespace::IFC4);
  parser.mainContainer =
      std::make_unique<IFC::MainContainer>(corvel::bench::Ignore, nullptr, kPoolBlock);
  const auto create = parser.factories->Find("IFCCARTESIANPOINT");
  for (std::uint32_t number = 1; number <= kTargets; ++number) {
    IFC::IfcEntity* const entity = create(parser.Pool());
    entity->SetMarker(number);
    parser.mainContainer->AddEntityByOrginalNumber(entity, number);
  }
}

// The model is a new one for each round, so that texts and lists find it as a file finds it.
void ReadAttributes(benchmark::State& state, const Kind& kind) {
  std::string text;
  for (unsigned i = 0; i < kValues; ++i) text += kind.text(i) + ",";
  for (auto _ : state) {
    state.PauseTiming();
    Parser parser(false, corvel::bench::Ignore, nullptr);
    PrepareTargets(parser);
    parser.scanner = std::make_unique<corvel::Scanner>(
        std::make_unique<corvel::test::MemoryInputStream>(text), corvel::bench::Ignore);
    state.ResumeTiming();
    for (unsigned i = 0; i < kValues; ++i) kind.read(parser);
    state.PauseTiming();
    if (!parser.scanner->PeekToken()->Is(corvel::TokenType::EndOfFileToken)) {
      state.SkipWithError("a value was not taken");
    }
    parser.mainContainer = nullptr;
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kValues);
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}

[[maybe_unused]] const bool registered = [] {
  for (const Kind& kind : kKinds) {
    benchmark::RegisterBenchmark((std::string("Reader/") + kind.name).c_str(), ReadAttributes,
                                 kind);
  }
  return true;
}();

}  // namespace

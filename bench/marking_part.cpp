// What is saved and what is deleted of a model, beside the reading of the same model. Twice the
// products should take twice the time.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "merge/document.h"
#include "models_in_memory.h"

namespace {

using corvel::IfcDocument;
using corvel::MarkerPair;
using corvel::bench::ModelFile;

// Products come in groups that share a storey, a material and a property set; each has a placement,
// a shape and properties of its own. Gives the numbers of their records.
struct Layout {
  static constexpr std::uint32_t kFirst = 10;
  static constexpr std::uint32_t kRecordsOfGroup = 8;
  static constexpr std::uint32_t kRecordsOfProduct = 12;

  std::uint32_t products = 0;
  std::uint32_t group = 1000;

  bool BeginsGroup(std::uint32_t product) const { return product % group == 0; }
  std::uint32_t GroupAt(std::uint32_t product) const {
    return kFirst + product / group * (kRecordsOfGroup + group * kRecordsOfProduct);
  }
  std::uint32_t ProductAt(std::uint32_t product) const {
    return GroupAt(product) + kRecordsOfGroup + product % group * kRecordsOfProduct;
  }
  std::uint32_t Wall(std::uint32_t product) const { return ProductAt(product) + 8; }
  std::uint32_t Storey(std::uint32_t product) const { return GroupAt(product); }
};

class Text {
 public:
  explicit Text(const Layout& layout) : layout_(layout) {
    text_ =
        "#1=IFCPROJECT('p',$,$,$,$,$,$,(#4),$);\n"
        "#2=IFCCARTESIANPOINT((0.,0.,0.));\n"
        "#3=IFCAXIS2PLACEMENT3D(#2,#5,$);\n"
        "#4=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$,#3,$);\n"
        "#5=IFCDIRECTION((0.,0.,1.));\n";
    for (std::uint32_t product = 0; product < layout.products; ++product) {
      if (layout.BeginsGroup(product)) AddGroup(product);
      AddProduct(product);
    }
  }
  const std::string& Records() const { return text_; }

 private:
  void Add(std::uint32_t number, const std::string& record) {
    text_ += "#" + std::to_string(number) + "=" + record + ";\n";
  }
  static std::string Ref(std::uint32_t number) { return "#" + std::to_string(number); }

  void AddGroup(std::uint32_t product) {
    const std::uint32_t at = layout_.GroupAt(product);
    std::string walls;
    const std::uint32_t end = std::min(product + layout_.group, layout_.products);
    for (std::uint32_t i = product; i < end; ++i) {
      walls += (walls.empty() ? "" : ",") + Ref(layout_.Wall(i));
    }
    Add(at, "IFCBUILDINGSTOREY('s',$,$,$,$,$,$,$,$,$)");
    Add(at + 1, "IFCRELAGGREGATES('a',$,$,$,#1,(" + Ref(at) + "))");
    Add(at + 2, "IFCRELCONTAINEDINSPATIALSTRUCTURE('c',$,$,$,(" + walls + ")," + Ref(at) + ")");
    Add(at + 3, "IFCMATERIAL('m',$,$)");
    Add(at + 4, "IFCRELASSOCIATESMATERIAL('m',$,$,$,(" + walls + ")," + Ref(at + 3) + ")");
    Add(at + 5, "IFCPROPERTYSINGLEVALUE('IsExternal',$,IFCBOOLEAN(.T.),$)");
    Add(at + 6, "IFCPROPERTYSET('Pset_WallCommon',$,$,$,(" + Ref(at + 5) + "))");
    Add(at + 7, "IFCRELDEFINESBYPROPERTIES('d',$,$,$,(" + walls + ")," + Ref(at + 6) + ")");
  }

  void AddProduct(std::uint32_t product) {
    const std::uint32_t at = layout_.ProductAt(product);
    Add(at, "IFCCARTESIANPOINT((1.,2.,3.))");
    Add(at + 1, "IFCAXIS2PLACEMENT3D(" + Ref(at) + ",#5,$)");
    Add(at + 2, "IFCLOCALPLACEMENT($," + Ref(at + 1) + ")");
    Add(at + 3, "IFCCARTESIANPOINT((1.,2.))");
    Add(at + 4, "IFCCARTESIANPOINT((3.,4.))");
    Add(at + 5, "IFCPOLYLINE((" + Ref(at + 3) + "," + Ref(at + 4) + "," + Ref(at + 3) + "))");
    Add(at + 6, "IFCSHAPEREPRESENTATION(#4,'Axis','Curve2D',(" + Ref(at + 5) + "))");
    Add(at + 7, "IFCPRODUCTDEFINITIONSHAPE($,$,(" + Ref(at + 6) + "))");
    Add(at + 8, "IFCWALL('w" + std::to_string(product) + "',$,'Wall',$,$," + Ref(at + 2) + "," +
                    Ref(at + 7) + ",$,$)");
    Add(at + 9, "IFCPROPERTYSINGLEVALUE('Reference',$,IFCIDENTIFIER('W'),$)");
    Add(at + 10, "IFCPROPERTYSET('Own',$,$,$,(" + Ref(at + 9) + "))");
    Add(at + 11, "IFCRELDEFINESBYPROPERTIES('e',$,$,$,(" + Ref(at + 8) + ")," + Ref(at + 10) + ")");
  }

  Layout layout_;
  std::string text_;
};

void Read(benchmark::State& state) {
  const Layout layout{static_cast<std::uint32_t>(state.range(0))};
  const ModelFile file(Text(layout).Records());
  for (auto _ : state) benchmark::DoNotOptimize(file.Read());
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

// The first product of every `each` is kept.
void Mark(benchmark::State& state, const Layout& layout, std::uint32_t each) {
  const ModelFile file(Text(layout).Records());
  for (auto _ : state) {
    state.PauseTiming();
    std::unique_ptr<IfcDocument> document = file.Read();
    std::vector<MarkerPair> deleted;
    std::vector<MarkerPair> saved{{1, 0}};
    for (std::uint32_t product = 0; product < layout.products; ++product) {
      if (layout.BeginsGroup(product)) saved.push_back({layout.Storey(product), 1});
      std::vector<MarkerPair>& pairs = product % each == 0 ? saved : deleted;
      pairs.push_back({layout.Wall(product), layout.Storey(product)});
    }
    state.ResumeTiming();
    benchmark::DoNotOptimize(document->DeleteObjects(deleted, saved, false, false, 1));
    state.PauseTiming();
    document = nullptr;
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

void MarkAllKept(benchmark::State& state) {
  Mark(state, {static_cast<std::uint32_t>(state.range(0))}, 1);
}
void MarkHalfDeleted(benchmark::State& state) {
  Mark(state, {static_cast<std::uint32_t>(state.range(0))}, 2);
}
void MarkAllDeleted(benchmark::State& state) {
  Mark(state, {static_cast<std::uint32_t>(state.range(0))}, 0xFFFFFFFFu);
}
// All products in one storey, of one material, with one property set.
void MarkOneGroup(benchmark::State& state) {
  const auto products = static_cast<std::uint32_t>(state.range(0));
  Mark(state, {products, products}, 2);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(2)->Range(1 << 12, 1 << 16)->Complexity(benchmark::oN);
  benchmark->Unit(benchmark::kMillisecond);
}
BENCHMARK(Read)->Name("Marking/read")->Apply(Sizes);
BENCHMARK(MarkAllKept)->Name("Marking/all kept")->Apply(Sizes);
BENCHMARK(MarkHalfDeleted)->Name("Marking/half deleted")->Apply(Sizes);
BENCHMARK(MarkAllDeleted)->Name("Marking/all but one deleted")->Apply(Sizes);
BENCHMARK(MarkOneGroup)->Name("Marking/half deleted of one group")->Apply(Sizes);

}  // namespace

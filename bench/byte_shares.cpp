// Where the bytes of a model go: objects by family of classes, aggregates, the tables of numbers,
// the parents lists, and the rest, which is mostly texts.
//
//   corvel_byte_shares FILE
//
// Each line of output: what, count, bytes, bytes per byte of the file. Sizes of classes are those
// that the store hands out, all else is told by the resident memory before and after.
#include <malloc.h>

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/number_table.h"
#include "merge/document.h"
#include "stage.h"
#include "step/factories.h"
#include "step/log/utilities.h"
#include "step/reader/parser.h"

namespace {

using corvel::IfcDocument;

int Report(const char*, const corvel::WideString&, int) { return 0; }
bool GoOn(int, int, const corvel::WideString*, bool, int) { return true; }

struct Family {
  const char* name;
  std::vector<std::string_view> parts;  // of the name of a class
};

// The first family that fits takes a class.
const std::vector<Family>& Families() {
  static const std::vector<Family> families = {
      {"relations", {"IFCREL"}},
      {"property sets", {"IFCPROPERTYSET", "IFCELEMENTQUANTITY"}},
      {"properties", {"IFCPROPERTY", "IFCQUANTITY", "IFCCOMPLEXPROPERTY"}},
      {"points", {"IFCCARTESIANPOINT", "IFCDIRECTION", "IFCVERTEX"}},
      {"faces", {"FACE", "LOOP", "SHELL", "BREP", "EDGE"}},
      {"placements", {"PLACEMENT", "TRANSFORMATION"}},
      {"representations", {"REPRESENTATION", "PRODUCTDEFINITIONSHAPE", "MAPPEDITEM"}},
      {"curves and solids", {"CURVE", "LINE", "PROFILE", "EXTRUDED", "CIRCLE", "PLANE", "BOOLEAN"}},
      {"styles and materials", {"STYLE", "COLOUR", "MATERIAL", "PRESENTATION"}},
      {"others", {""}}};
  return families;
}

std::string UpperName(const IFC::IfcEntity& entity) {
  std::string name;
  for (const char16_t* at = entity.getClassName(); *at != 0; ++at) {
    name.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(*at))));
  }
  return name;
}

const char* FamilyOf(const std::string& name) {
  for (const Family& family : Families()) {
    for (const std::string_view part : family.parts) {
      if (name.find(part) != std::string::npos) return family.name;
    }
  }
  return "others";
}

// What two objects of the class, made one after the other, lie apart.
std::size_t SizeOf(corvel::EntityCreator create) {
  corvel::MemoryPool pool(1 << 16);
  const auto* const first = static_cast<const char*>(dynamic_cast<void*>(create(pool)));
  const auto* const second = static_cast<const char*>(dynamic_cast<void*>(create(pool)));
  return static_cast<std::size_t>(second - first);
}

struct Share {
  std::size_t count = 0;
  std::size_t bytes = 0;
};

class Shares {
 public:
  explicit Shares(const corvel::FactoryTable& factories) : factories_(factories) {}

  // Values that stand in the records go with the objects that hold them.
  void Add(const IFC::IfcEntity& entity) {
    AddTo(FamilyOfClass(entity), entity);
    IFC::ChildQueue children;
    entity.collectChildren(children);
    for (std::size_t i = 0; i < children.Size(); ++i) {
      const IFC::IfcEntity* const child = children[i].entity;
      if (child != nullptr && child->inlineValue) AddTo("typed values", *child);
    }
  }
  const std::map<std::string, Share>& ByFamily() const { return shares_; }

 private:
  struct Class {
    std::size_t size = 0;
    const char* family = nullptr;
  };
  const Class& ClassOf(const IFC::IfcEntity& entity) {
    Class& known = classes_[entity.getClassName()];
    if (known.family == nullptr) {
      const std::string name = UpperName(entity);
      const corvel::EntityCreator create = factories_.Find(name);
      known.size = create == nullptr ? 0 : SizeOf(create);
      known.family = FamilyOf(name);
    }
    return known;
  }
  const char* FamilyOfClass(const IFC::IfcEntity& entity) { return ClassOf(entity).family; }
  void AddTo(const char* family, const IFC::IfcEntity& entity) {
    Share& share = shares_[family];
    ++share.count;
    share.bytes += ClassOf(entity).size;
  }

  const corvel::FactoryTable& factories_;
  std::unordered_map<const char16_t*, Class> classes_;
  std::map<std::string, Share> shares_;
};

class Table {
 public:
  explicit Table(std::uintmax_t fileBytes) : fileBytes_(static_cast<double>(fileBytes)) {
    std::printf("%-24s%12s%14s%12s\n", "", "count", "bytes", "per byte");
  }
  void Print(const std::string& name, std::size_t count, std::size_t bytes) const {
    std::printf("%-24s%12zu%14zu%12.2f\n", name.c_str(), count, bytes,
                static_cast<double>(bytes) / fileBytes_);
  }

 private:
  double fileBytes_;
};

// What has been given back must not take what comes next.
long ResidentBytes() {
  malloc_trim(0);
  return corvel::bench::ResidentBytes();
}

std::size_t Since(long before) {
  const long now = ResidentBytes();
  return now > before ? static_cast<std::size_t>(now - before) : 0;
}

// One table: those by original number and by marker share all that they have after reading.
std::size_t NumberTableBytes(const corvel::NumberTable& model) {
  const long before = ResidentBytes();
  corvel::NumberTable copy;
  for (auto at = model.First(); at; at = model.Next(at.number)) copy.Set(at.number, at.entity);
  return Since(before);
}

int Run(const std::string& path) {
  const long atStart = ResidentBytes();
  IfcDocument document(true, Report, GoOn);
  if (document.OpenFile(corvel::FromUtf8(path), 1) == 0) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    return 1;
  }
  const std::size_t whole = Since(atStart);
  IFC::MainContainer& container = *document.mainContainer;
  Shares shares(*document.GetParser().factories);
  for (auto at = container.entities.First(); at; at = container.entities.Next(at.number)) {
    shares.Add(*at.entity);
  }

  const Table table(std::filesystem::file_size(path));
  std::size_t objects = 0;
  for (const auto& [name, share] : shares.ByFamily()) {
    table.Print(name, share.count, share.bytes);
    objects += share.bytes;
  }
  const std::size_t store = container.Pool().ObjectBytes();
  const std::size_t lists = store > objects ? store - objects : 0;
  const std::size_t numbers = NumberTableBytes(container.entities);
  const std::size_t known = objects + lists + numbers;
  table.Print("lists", 0, lists);
  table.Print("tables of numbers", container.entities.Size(), numbers);
  table.Print("texts and the rest", 0, whole > known ? whole - known : 0);
  table.Print("after reading", container.entities.Size(), whole);
  const long beforeParents = ResidentBytes();
  container.FillParentsLists();
  table.Print("parents lists", container.entities.Size(), Since(beforeParents));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  corvel::MemoryReportOutput() = nullptr;
  if (argc == 2) return Run(argv[1]);
  std::fprintf(stderr, "usage: corvel_byte_shares FILE\n");
  return 2;
}

#include "models_in_memory.h"

#include <cstdio>
#include <cstdlib>

#include "support/step_text.h"

namespace corvel::bench {

namespace {

// Adds records under rising numbers.
class Records {
 public:
  Records(std::uint32_t elements, char model) : model_(model) {
    const std::string point = Add("IFCCARTESIANPOINT((0.,0.,0.))");
    const std::string placement = Add("IFCAXIS2PLACEMENT3D(" + point + ",$,$)");
    const std::string context =
        Add("IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$," + placement + ",$)");
    const std::string project = AddRoot("IFCPROJECT", ",$,'P',$,$,$,$,(" + context + "),$)");
    const std::string storey = AddRoot("IFCBUILDINGSTOREY", ",$,'S',$,$,$,$,$,$,0.)");
    AddRoot("IFCRELAGGREGATES", ",$,$,$," + project + ",(" + storey + "))");
    std::string walls;
    for (std::uint32_t i = 0; i < elements; ++i) {
      walls += (i == 0 ? "" : ",") + AddWall(i, context);
    }
    AddRoot("IFCRELCONTAINEDINSPATIALSTRUCTURE", ",$,$,$,(" + walls + ")," + storey + ")");
  }
  const std::string& Text() const { return text_; }

 private:
  std::string Add(const std::string& record) {
    std::string number = "#" + std::to_string(next_++);
    text_.append(number).append("=").append(record).append(";\n");
    return number;
  }
  std::string AddRoot(const std::string& name, const std::string& rest) {
    return Add(name + "('" + Guid(model_, next_) + "'" + rest);
  }

  std::string AddWall(std::uint32_t index, const std::string& context) {
    const std::string shape = AddShape(index, context);
    const std::string at = Add("IFCCARTESIANPOINT((" + std::to_string(index) + ".25,-3.5,0.))");
    const std::string axes = Add("IFCAXIS2PLACEMENT3D(" + at + ",$,$)");
    const std::string placement = Add("IFCLOCALPLACEMENT($," + axes + ")");
    std::string wall = AddRoot("IFCWALL", ",$,'Wall " + std::to_string(index) + "',$,'Typ A'," +
                                              placement + "," + shape + ",$,$)");
    AddProperties(index, wall);
    return wall;
  }
  // A box of eight points and six faces.
  std::string AddShape(std::uint32_t index, const std::string& context) {
    std::string points[8];
    for (unsigned i = 0; i < 8; ++i) {
      const std::string height = std::to_string((i & 4u) * 700 + index % 50) + ".125";
      points[i] = Add("IFCCARTESIANPOINT((" + std::string(i & 1u ? "9.5" : "0.") + "," +
                      (i & 2u ? "0.24" : "0.") + "," + height + "))");
    }
    constexpr unsigned kFaces[6][4] = {{0, 1, 3, 2}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                       {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 3, 7, 5}};
    std::string faces;
    for (const auto& corners : kFaces) {
      std::string loop;
      for (const unsigned corner : corners) loop += (loop.empty() ? "" : ",") + points[corner];
      const std::string bound =
          Add("IFCFACEOUTERBOUND(" + Add("IFCPOLYLOOP((" + loop + "))") + ",.T.)");
      faces += (faces.empty() ? "" : ",") + Add("IFCFACE((" + bound + "))");
    }
    const std::string brep = Add("IFCFACETEDBREP(" + Add("IFCCLOSEDSHELL((" + faces + "))") + ")");
    const std::string body =
        Add("IFCSHAPEREPRESENTATION(" + context + ",'Body','Brep',(" + brep + "))");
    return Add("IFCPRODUCTDEFINITIONSHAPE($,$,(" + body + "))");
  }
  void AddProperties(std::uint32_t index, const std::string& wall) {
    const std::string tag = std::to_string(index);
    std::string properties;
    for (const std::string& property : {"'Reference',$,IFCIDENTIFIER('W-" + tag + "'),$",
                                        std::string("'IsExternal',$,IFCBOOLEAN(.T.),$"),
                                        std::string("'FireRating',$,IFCLABEL('REI 60'),$"),
                                        "'Length',$,IFCLENGTHMEASURE(" + tag + ".5),$"}) {
      properties +=
          (properties.empty() ? "" : ",") + Add("IFCPROPERTYSINGLEVALUE(" + property + ")");
    }
    const std::string set =
        AddRoot("IFCPROPERTYSET", ",$,'Pset_WallCommon',$,(" + properties + "))");
    AddRoot("IFCRELDEFINESBYPROPERTIES", ",$,$,$,(" + wall + ")," + set + ")");
  }

  char model_;
  std::uint32_t next_ = 1;
  std::string text_;
};

}  // namespace

int Ignore(const char* /*key*/, const WideString& /*message*/, int /*mode*/) { return 0; }

bool GoOn(int /*value*/, int /*stageWeight*/, const WideString* /*extraText*/, bool /*exactMode*/,
          int /*maximum*/) {
  return true;
}

std::string Guid(char model, std::uint32_t number) {
  std::string guid(22, '0');
  guid[1] = model;
  for (std::size_t i = guid.size(); number != 0; number /= 10) {
    guid[--i] = static_cast<char>('0' + number % 10);
  }
  return guid;
}

std::string ExportRecords(std::uint32_t elements, char model) {
  return Records(elements, model).Text();
}

ModelFile::ModelFile(std::string_view records) {
  const std::string text = test::ModelFile(records);
  bytes_ = text.size();
  path_ = folder_.Write("model.ifc", text);
}

std::unique_ptr<IfcDocument> ModelFile::Read() const {
  auto document = std::make_unique<IfcDocument>(true, Ignore, GoOn);
  if (document->OpenFile(path_, 1) == 0) {
    std::fprintf(stderr, "a model of the benchmarks cannot be read\n");
    std::exit(1);
  }
  return document;
}

}  // namespace corvel::bench

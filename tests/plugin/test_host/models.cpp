#include "models.h"

namespace corvel::test_host {

std::string ModelFile(std::string_view records, std::string_view schema) {
  return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
         "FILE_NAME('n','t',('a'),('o'),'p','s','z');\nFILE_SCHEMA(('" +
         std::string(schema) + "'));\nENDSEC;\nDATA;\n" + std::string(records) +
         "ENDSEC;\nEND-ISO-10303-21;\n";
}

// The project names units and a context that come later, so that both passes of the reading have
// work.
std::string House(std::string_view name, unsigned pointCount, std::string_view schema) {
  const auto guid = [&](char last) {
    std::string text(name);
    text.resize(21, '0');
    return "'" + text + last + "'";
  };
  const auto reference = [](unsigned number) { return "#" + std::to_string(number); };
  const std::string quoted = "'" + std::string(name) + "'";
  const unsigned firstPoint = 10;
  const unsigned context = firstPoint + pointCount + 1;
  std::string records = "#1=IFCPROJECT(" + guid('1') + ",$," + quoted + ",$,$,$,$," +
                        (pointCount == 0 ? "$" : "(" + reference(context) + ")") +
                        ",#3);\n"
                        "#2=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
                        "#3=IFCUNITASSIGNMENT((#2));\n"
                        "#4=IFCBUILDING(" +
                        guid('2') + ",$," + quoted +
                        ",$,$,$,$,$,.ELEMENT.,$,$,$);\n"
                        "#5=IFCRELAGGREGATES(" +
                        guid('3') + ",$,$,$,#1,(#4));\n";
  if (pointCount == 0) return ModelFile(records, schema);
  std::string points;
  for (unsigned i = 0; i < pointCount; ++i) {
    const std::string point = reference(firstPoint + i);
    records += point + "=IFCCARTESIANPOINT((" + std::to_string(i) + ".,0.,0.));\n";
    points += (i == 0 ? "" : ",") + point;
  }
  records += reference(context - 1) + "=IFCAXIS2PLACEMENT3D(" + reference(firstPoint) + ",$,$);\n";
  records += reference(context) + "=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,$," +
             reference(context - 1) + ",$);\n";
  records += reference(context + 1) + "=IFCPOLYLINE((" + points + "));\n";
  records += reference(context + 2) + "=IFCSHAPEREPRESENTATION(" + reference(context) +
             ",'Body','Curve3D',(" + reference(context + 1) + "));\n";
  return ModelFile(records, schema);
}

}  // namespace corvel::test_host

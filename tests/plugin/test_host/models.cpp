#include "models.h"

namespace corvel::test_host {

std::string ModelFile(std::string_view records, std::string_view schema) {
  return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
         "FILE_NAME('n','t',('a'),('o'),'p','s','z');\nFILE_SCHEMA(('" +
         std::string(schema) + "'));\nENDSEC;\nDATA;\n" + std::string(records) +
         "ENDSEC;\nEND-ISO-10303-21;\n";
}

// The project names units that come later, so that both passes of the reading have work.
std::string House(std::string_view name, unsigned pointCount, std::string_view schema) {
  const auto guid = [&](char last) {
    std::string text(name);
    text.resize(21, '0');
    return "'" + text + last + "'";
  };
  const std::string quoted = "'" + std::string(name) + "'";
  std::string records = "#1=IFCPROJECT(" + guid('1') + ",$," + quoted +
                        ",$,$,$,$,$,#3);\n"
                        "#2=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
                        "#3=IFCUNITASSIGNMENT((#2));\n"
                        "#4=IFCBUILDING(" +
                        guid('2') + ",$," + quoted +
                        ",$,$,$,$,$,.ELEMENT.,$,$,$);\n"
                        "#5=IFCRELAGGREGATES(" +
                        guid('3') + ",$,$,$,#1,(#4));\n";
  for (unsigned i = 0; i < pointCount; ++i) {
    records +=
        "#" + std::to_string(10 + i) + "=IFCCARTESIANPOINT((" + std::to_string(i) + ".,0.,0.));\n";
  }
  return ModelFile(records, schema);
}

}  // namespace corvel::test_host

// STEP files as texts.
#pragma once

#include <string>
#include <string_view>

namespace corvel::test {

// A file around records, which stand as they are behind "DATA;\n". The rest is as the writer writes
// it, so that a file whose records are in the writer's form and order is what is saved of it.
inline std::string ModelFile(std::string_view records, std::string_view schema = "IFC4") {
  std::string text =
      "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION (('v'),'2;1');\n"
      "FILE_NAME ('n','t',('a'),('o'),'p','s','z');\nFILE_SCHEMA (('";
  text.append(schema).append("'));\nENDSEC;\n\nDATA;\n").append(records);
  if (text.back() != '\n') text.push_back('\n');
  return text + "ENDSEC;\nEND-ISO-10303-21;\n";
}

// `#7=IFCPERSON(...);` and a line feed, in the writer's form.
inline std::string Person(unsigned number) {
  return "#" + std::to_string(number) + "=IFCPERSON($,$,$,$,$,$,$,$);\n";
}

// A record of a placement relative to another.
inline std::string PlacementRelativeTo(unsigned other, unsigned number) {
  return "#" + std::to_string(number) + "=IFCLOCALPLACEMENT(#" + std::to_string(other) + ",$);\n";
}

// The same text with other line ends.
inline std::string WithLineEnds(std::string_view text, std::string_view lineEnd) {
  std::string changed;
  for (const char c : text) {
    if (c == '\n') {
      changed += lineEnd;
    } else {
      changed.push_back(c);
    }
  }
  return changed;
}

}  // namespace corvel::test

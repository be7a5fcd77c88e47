// Objects as the writer writes them.
#pragma once

#include <string>

#include "core/entity.h"
#include "core/main_container.h"
#include "step/writer/step_writer.h"
#include "support/memory_streams.h"

namespace corvel::test {

// `#1=IFCWALL(...);` and a line feed; empty for a deleted entity.
inline std::string LineOf(const IFC::IfcEntity& entity) {
  MemoryOutpoutStream stream;
  StepWriter(stream).WriteEntityLine(entity);
  return stream.Text();
}

// All lines of a model in the order of the output.
inline std::string LinesOf(const IFC::MainContainer& container) {
  MemoryOutpoutStream stream;
  StepWriter writer(stream);
  const NumberTable& entities = container.entities;
  for (auto at = entities.First(); at; at = entities.Next(at.number)) {
    writer.WriteEntityLine(*at.entity);
  }
  return stream.Text();
}

// What stands where an attribute refers to `entity`: "#12", "IFCLABEL('x')", "*".
inline std::string ReferenceTo(const IFC::IfcEntity* entity) {
  MemoryOutpoutStream stream;
  StepWriter(stream).WriteEntityRef(entity);
  std::string text = stream.Text();
  text.pop_back();  // the comma
  return text;
}

}  // namespace corvel::test

// Scenes of records as text.
#pragma once

#include <memory>
#include <string>

#include "host/hearing.h"
#include "host/model_scene.h"
#include "host/scene_reader.h"
#include "schema/registry.h"
#include "support/memory_streams.h"

namespace corvel::host {

// The scene of records of IFC4, read in windows of `window` bytes.
inline ModelScene SceneOf(const std::string& records, SceneTexts texts = SceneTexts::kGuidsAndNames,
                          std::size_t window = 1 << 20, bool tolerant = false) {
  Scanner scanner(std::make_unique<test::MemoryInputStream>(records, window), Hear);
  ModelScene scene;
  scene.schema = SchemaNamespace::IFC4;
  const auto others = tolerant ? BuiltFactories() : std::span<const FactoryTable* const>();
  ReadSceneRecords(scanner, FactoriesOf(SchemaNamespace::IFC4), texts, scene, others);
  return scene;
}

// "1:IfcProject 5:IfcWall<1": numbers, classes and numbers of parents.
inline std::string Described(const ModelScene& scene) {
  std::string text;
  for (const SceneObject& object : scene.objects) {
    if (!text.empty()) text += ' ';
    text += std::to_string(object.number) + ":" + scene.ClassOf(object);
    if (object.parent != kNoObject) {
      text += "<" + std::to_string(scene.objects[object.parent].number);
    }
  }
  return text;
}

}  // namespace corvel::host

// The records of a model that make its scene, picked out of a stream.
#pragma once

#include <span>

#include "host/model_scene.h"
#include "step/factories.h"
#include "step/reader/scanner.h"

namespace corvel::host {

// Goes on behind the header, which `scanner` has taken, to the end of the input and fills objects,
// classes and texts of `scene`, and where the file ends without its closing line. False when it
// ends inside of a string: whatever stands behind the last apostrophe may be records. Works with
// windows of any size. Nothing is reported but what ends the scanner; throws std::bad_alloc only.
// `others`: see SceneClasses.
bool ReadSceneRecords(Scanner& scanner, const FactoryTable& factories, SceneTexts texts,
                      ModelScene& scene, std::span<const FactoryTable* const> others = {});

}  // namespace corvel::host

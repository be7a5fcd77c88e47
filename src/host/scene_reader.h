// The records of a model that make its scene, picked out of a stream.
#pragma once

#include "host/model_scene.h"
#include "step/factories.h"
#include "step/streams/input_stream.h"

namespace corvel::host {

// Reads from behind the header to the end of the input and fills objects, classes and texts of
// `scene`. Works with windows of any size. Nothing is reported; throws std::bad_alloc only.
void ReadSceneRecords(FileStream::InputStream& stream, const FactoryTable& factories,
                      SceneTexts texts, ModelScene& scene);

}  // namespace corvel::host

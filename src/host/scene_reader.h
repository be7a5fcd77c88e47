// The records of a model that make its scene, picked out of a stream.
#pragma once

#include "host/model_scene.h"
#include "step/factories.h"
#include "step/streams/input_stream.h"

namespace corvel::host {

// Reads from behind the header to the end of the input and fills objects, classes and texts of
// `scene`, and where the file ends without its closing line. False when it ends inside of a string:
// whatever stands behind the last apostrophe may be records. Works with windows of any size.
// Nothing is reported; throws std::bad_alloc only.
bool ReadSceneRecords(FileStream::InputStream& stream, const FactoryTable& factories,
                      SceneTexts texts, ModelScene& scene);

}  // namespace corvel::host

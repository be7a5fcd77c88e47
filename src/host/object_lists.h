// Lists of objects, applied to the scene that they name.
#pragma once

#include <string>
#include <vector>

#include "core/text.h"
#include "host/run_choices.h"
#include "host/viewer_scene.h"

namespace corvel::host {

// What the lists on one input need of its texts.
SceneTexts TextsForLists(const std::vector<ObjectList>& lists, std::size_t input);

// Marks the objects of `model` that the list names. The IfcProject stands for all objects of its
// file. The result tells of each item that matches nothing; when it is not empty, nothing should be
// made of the model. The texts that TextsForLists tells have been read. Goes through each of both
// twice at most.
std::vector<WideString> ApplyList(const ObjectList& list, LoadedModel& model);

}  // namespace corvel::host

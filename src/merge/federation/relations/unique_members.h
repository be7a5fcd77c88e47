// Nothing twice where everything stands once.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "core/entity.h"
#include "core/ticker.h"
#include "merge/federation/federated_model.h"
#include "step/class_facts.h"

namespace corvel {

// A LIST OF UNIQUE of objects, in one release at least. SETs are told by their declaration.
struct UniqueList {
  std::string_view className;
  std::string_view attribute;
};
std::span<const UniqueList> UniqueLists();

// Takes out of SETs and LISTs OF UNIQUE what stands there by an earlier member too, since one of
// the two gave way to the other. What a source says twice stays. False: the user cancelled.
bool DropRepeatedMembers(FederatedModel& model, Ticker& ticker);

}  // namespace corvel

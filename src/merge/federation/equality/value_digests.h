// What objects without GUID say, wherever they stand in a model.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "merge/federation/equality/digest.h"
#include "merge/federation/federated_model.h"

namespace corvel {

// Objects without GUID count by value: by class, attributes, and what stands in the place of each
// reference. One with a GUID is what stands for it in the model, and nothing else. What goes in a
// circle is like nothing else, and so is what carries more than attributes. Each object is looked
// at once, in the order of a list of its own: linear in what is reached.
//
// What is known of an object stays, also when something that it leads to gives way later on.
class ValueDigests {
 public:
  explicit ValueDigests(const FederatedModel& model) : model_(model) {}

  // Of an object of the model, one that gave way or a value in a record. Null has one too.
  Digest Of(IFC::IfcEntity* entity);

 private:
  enum class Progress : std::uint8_t { kBegun, kDone };
  struct Entry {
    Progress progress = Progress::kBegun;
    Digest digest;
  };

  IFC::IfcEntity* There(IFC::IfcEntity* entity) const;
  void Push(IFC::IfcEntity* entity);
  Digest Make(IFC::IfcEntity& entity);
  Digest KnownOf(IFC::IfcEntity* entity) const;

  const FederatedModel& model_;
  std::unordered_map<const IFC::IfcEntity*, Entry> known_;
  std::vector<IFC::IfcEntity*> waiting_;
};

// Whether it has a GUID, or is of a class that nobody knows.
bool StandsForItself(IFC::IfcEntity& entity);

}  // namespace corvel

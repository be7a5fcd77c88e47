// What the objects of one model are, have and belong to.
#pragma once

#include <optional>
#include <vector>

#include "host/diff/value_digests.h"
#include "merge/federation/equality/grids_stood_on.h"
#include "merge/federation/tree/world_places.h"

namespace corvel::host::diff {

class ObjectFacts {
 public:
  // All of it lives as long as this.
  ObjectFacts(const ComparedModel& model, ValueDigests& values, const Tolerance& tolerance)
      : model_(model),
        values_(values),
        tolerance_(tolerance),
        mayStandOnGrids_(model.Words().HasMet("IfcGridPlacement")) {}

  // Where the object stands in the world of its model, in metres. Nothing where no local placement
  // tells it.
  std::optional<Transform> PlaceOf(const IFC::IfcEntity& object);
  // Where the grids stand that the object stands on by its placement, or by what that is relative
  // to: one for each grid, in the order of their axes. The placement itself doesn't know.
  std::vector<std::optional<Transform>> PlacesOfGridsUnder(const IFC::IfcEntity& object);
  // By what it is found again under another GUID: class, attributes, place, and what it has by
  // relations to no other object.
  Digest ContentOf(std::size_t index);
  // Class, name and place, as far as there are such: what says the same in all has the same here.
  struct Look {
    Digest digest;
    bool tells = false;  // it is an object that has a name or a place
  };
  Look LookOf(std::size_t index);
  // A part of that: those of the same look have the same, others may have it.
  std::uint64_t NameKeyOf(std::size_t index) const;
  // All that can be compared. Needs the references of all objects.
  Digest WholeOf(std::size_t index);
  // The sets of properties and quantities that the object has, as an occurrence and as a type.
  std::vector<const IFC::IfcEntity*> PropertySetsOf(std::size_t index) const;

  const ComparedModel& Model() const { return model_; }
  ValueDigests& Values() const { return values_; }

 private:
  std::optional<Digest> DigestOfPlace(const IFC::IfcEntity& object);
  void AddPropertySetsOfType(const IFC::IfcEntity& object);
  Digest Together(const Digest& first);

  const ComparedModel& model_;
  ValueDigests& values_;
  const Tolerance& tolerance_;
  WorldPlaces places_;
  bool mayStandOnGrids_;
  bool knowsGrids_ = false;
  GridsStoodOn grids_;
  std::vector<Digest> facts_;  // of the object at hand
};

// Calls `action` with each set of properties that the attribute leads to.
template <class Action>
void ForEachPropertySet(const ConstAttribute& attribute, ClassWords& words, Action action) {
  attribute.ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* referred) {
    if (referred == nullptr) return;
    const ClassWord* const word = words.Of(*referred);
    if (word == nullptr) return;
    if (word->role == Role::kProperties) return action(*referred);
    if (!referred->inlineValue) return;
    for (const ConstAttribute inner : AttributesOf(*referred)) {
      inner.ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* member) {
        const ClassWord* const ofMember = member == nullptr ? nullptr : words.Of(*member);
        if (ofMember != nullptr && ofMember->role == Role::kProperties) action(*member);
      });
    }
  });
}

}  // namespace corvel::host::diff

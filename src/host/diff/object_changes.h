// What has become of one object.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/diff/changes.h"
#include "host/diff/object_facts.h"
#include "host/diff/value_walk.h"

namespace corvel::host::diff {

class ObjectChanges {
 public:
  // All of it lives as long as this. References of all objects have been told to both sides.
  ObjectChanges(ObjectFacts& before, ObjectFacts& after, const Tolerance& tolerance,
                Lockstep& lockstep)
      : before_(before),
        after_(after),
        tolerance_(tolerance),
        lockstep_(lockstep),
        walk_(before, after, tolerance, lockstep) {}

  // The grids that the objects with these indices stand on, as far as they do, are where they were.
  bool StandOnGridsAtOnePlace(std::size_t before, std::size_t after);
  // Of the objects with these indices. Without changes where the tolerance covers all of them.
  ChangedObject Of(std::size_t before, std::size_t after);

 private:
  using Sets = std::map<std::string, std::vector<const IFC::IfcEntity*>>;

  void CompareOwn(const IFC::IfcEntity& before, const IFC::IfcEntity& after);
  bool SameWorldPlace(const std::optional<Transform>& before,
                      const std::optional<Transform>& after) const;
  void CompareGridPlaces(const IFC::IfcEntity& before, const IFC::IfcEntity& after);
  void ComparePlaces(const std::optional<Transform>& before, const std::optional<Transform>& after);
  void CompareProperties(std::size_t before, std::size_t after);
  void CompareSets(const std::string& name, std::vector<const IFC::IfcEntity*> before,
                   std::vector<const IFC::IfcEntity*> after);
  void ComparePropertiesOf(const std::string& name, const IFC::IfcEntity* before,
                           const IFC::IfcEntity* after);
  void CompareRelations(std::size_t before, std::size_t after);
  void CompareRelations(std::vector<const IFC::IfcEntity*> before,
                        std::vector<const IFC::IfcEntity*> after);
  void ComparePair(const IFC::IfcEntity& before, const IFC::IfcEntity& after);
  void TellRelation(const IFC::IfcEntity& relation, bool isBefore);
  void TakeAs(ChangeKind kind);

  ObjectFacts& before_;
  ObjectFacts& after_;
  const Tolerance& tolerance_;
  Lockstep& lockstep_;
  ValueWalk walk_;
  ChangedObject object_;
};

}  // namespace corvel::host::diff

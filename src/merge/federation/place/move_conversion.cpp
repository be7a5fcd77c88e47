#include "merge/federation/place/move_conversion.h"

#include <array>
#include <unordered_set>

#include "core/main_container.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/place/map_properties_reader.h"
#include "step/reader/parser.h"

namespace corvel {

namespace {

using IFC::IfcEntity;

struct Names {
  std::array<const char*, 3> attributes;
};

constexpr Names kOfConversion = {{"Eastings", "Northings", "OrthogonalHeight"}};
constexpr Names kOfRigid = {{"FirstCoordinate", "SecondCoordinate", "Height"}};

class Mover {
 public:
  explicit Mover(IfcDocument& document) : document_(document) {}

  bool Move(const MapOperation& operation, const Triple& change) {
    const ClassFacts* const facts = FindFacts(*operation.entity);
    if (facts->FindAttribute("HasProperties") != nullptr) {
      return MoveProperties(*operation.entity, change);
    }
    const bool isConversion = facts->FindAttribute("Eastings") != nullptr;
    MoveAttributes(*operation.entity, isConversion ? kOfConversion : kOfRigid, change);
    return true;
  }

 private:
  static void MoveAttributes(IfcEntity& operation, const Names& names, const Triple& change) {
    for (std::size_t i = 0; i < change.size(); ++i) {
      if (change[i] == 0.0) continue;
      if (IfcEntity* const typed = ReferenceOf(operation, names.attributes[i])) {
        SetAttribute(*typed, "value", RealOf(*typed, "value") + change[i]);
      } else {
        const double before = RealOf(operation, names.attributes[i]);
        SetAttribute(operation, names.attributes[i], before + change[i]);
      }
    }
  }

  bool MoveProperties(IfcEntity& set, const Triple& change) {
    const MapProperties properties({&set});
    for (std::size_t i = 0; i < change.size(); ++i) {
      if (change[i] == 0.0) continue;
      const char* const name = kOfConversion.attributes[i];
      const WideString key = ToLowerAscii(Widen(name));
      IfcEntity* property = properties.Property(key);
      if (property == nullptr) property = NewProperty(set, name);
      if (property == nullptr) return false;
      // Two sets may share it.
      if (!moved_.insert(property).second) continue;
      SetNumber(*property, properties.NumberOr(key, 0.0) + change[i]);
    }
    return true;
  }

  // Whole numbers and texts become reals.
  void SetNumber(IfcEntity& property, double number) const {
    IfcEntity* typed = ValueOfProperty(property);
    if (typed != nullptr && SetAttribute(*typed, "value", number)) return;
    const EntityCreator create = document_.GetParser().factories->Find("IFCLENGTHMEASURE");
    typed = create(document_.mainContainer->Pool());
    typed->inlineValue = true;
    SetAttribute(*typed, "value", number);
    SetAttribute(property, "NominalValue", typed);
  }

  IfcEntity* NewProperty(IfcEntity& set, const char* name) {
    IfcEntity* const property = document_.CreateESet("IfcPropertySingleValue");
    if (property == nullptr) return nullptr;
    MemoryPool& pool = document_.mainContainer->Pool();
    SetAttribute(*property, "Name", pool.InternText(Widen(name)));
    AppendReference(set, "HasProperties", *property, pool);
    return property;
  }

  IfcDocument& document_;
  std::unordered_set<const IfcEntity*> moved_;
};

}  // namespace

bool MoveConversions(IfcDocument& document, MapReference& reference, const Triple& shift) {
  Mover mover(document);
  for (MapOperation& operation : reference.operations) {
    const Triple change = OriginChangeFor(operation.frame, shift);
    operation.frame.origin = Plus(operation.frame.origin, change);
    if (!mover.Move(operation, Times(change, 1.0 / operation.metresPerMapUnit))) return false;
  }
  document.mainContainer->NoteChangedReferences();
  return true;
}

}  // namespace corvel

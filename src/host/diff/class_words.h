// What a comparison has to know of classes, worked out once for each. Words are made of names, so
// that those of two releases can be compared.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <vector>

#include "core/entity.h"
#include "merge/federation/pointing_classes.h"
#include "step/class_facts.h"

namespace corvel::host::diff {

enum class Role : std::uint8_t {
  kValue,       // says what it says wherever it stands, and belongs to what leads to it
  kObject,      // has a GUID
  kRelation,    // has one too, and is a fact about what it relates
  kProperties,  // a set of properties or quantities: a fact about what it belongs to
  kContext      // of representations: told apart by what it is called
};

enum class Dimension : std::uint8_t { kNone, kLength, kArea, kVolume, kAngle };

struct AttributeWord {
  const AttributeFacts* facts = nullptr;
  std::uint64_t word = 0;
  Dimension dimension = Dimension::kNone;
  bool isContent = true;        // not GlobalId, nor OwnerHistory
  bool isPlacement = false;     // ObjectPlacement
  bool isPropertySets = false;  // HasPropertySets
  bool isRelated = false;       // Related...: of relations
  bool isRelating = false;      // Relating...
  // The unit of the other values: these are told in no unit of the model.
  bool isUnit = false;
  // A parameter on a curve: what it measures is told by the curve.
  bool isParameter = false;
  bool isUnordered[2] = {};  // a SET or BAG, by depth
};

struct ClassWord {
  const ClassFacts* facts = nullptr;  // never null
  std::uint64_t word = 0;
  Role role = Role::kValue;
  bool hasUnit = false;                   // one of the attributes is a unit
  bool hasPropertySets = false;           // one of them leads to sets of properties
  bool hasBasisCurve = false;             // parameters in the record are those of a curve
  std::vector<AttributeWord> attributes;  // in the order of the record
  // The attributes that name what an object only describes.
  std::vector<const AttributeFacts*> describing;

  bool Describes(const AttributeFacts& attribute) const;
};

// What the parameters in a record of a class with a basis curve measure: an angle on a circle or an
// ellipse, also where that is trimmed or offset, and nothing on every other curve.
Dimension DimensionOfParameters(const IFC::IfcEntity& record);

class ClassWords {
 public:
  // Null for an object of no class, as tests have them.
  const ClassWord* Of(const IFC::IfcEntity& entity);
  // It has been asked about an object of this very class.
  bool HasMet(std::string_view className) const;

 private:
  PointingClasses pointing_;
  // By dynamic class: objects of a few classes follow each other in any order.
  struct Recent {
    const std::type_info* dynamicClass = nullptr;
    const ClassWord* word = nullptr;
  };
  static constexpr std::size_t kRecent = 256;

  const ClassWord* Find(const IFC::IfcEntity& entity);

  std::unordered_map<const ClassFacts*, std::unique_ptr<const ClassWord>> known_;
  std::array<Recent, kRecent> recent_{};
};

// FNV-1a.
std::uint64_t WordOfName(std::string_view name);
std::uint64_t WordOfName(const char16_t* name);

}  // namespace corvel::host::diff

// The root of all model objects, whatever their schema.
#pragma once

#include <cstdint>

#include "core/child_queue.h"
#include "core/parent_set.h"

namespace corvel {
class Parser;
class StepWriter;
}  // namespace corvel

namespace IFC {

// Reserved values of `IfcEntity::marker`. They are told by equality only: real numbers go up to
// 4,294,967,279 and the rest of the range is theirs.
inline constexpr std::uint32_t kUnfiled = 0;            // not filed, or reset; never a number
inline constexpr std::uint32_t kToSave = 1;             // kept, while marking
inline constexpr std::uint32_t kDeleted = 0xFFFFFFF7u;  // -9: the writer leaves it out
inline constexpr std::uint32_t kNewRootPlacement = 0xFFFFFFFBu;  // -5
inline constexpr std::uint32_t kMadePlacement = 0xFFFFFFFAu;     // -6
inline constexpr std::uint32_t kLargestNumber = 4294967279u;     // the largest #number of a file

// Base of every entity and every typed value. A virtual base of all that derive from it, so an
// object has exactly one IfcEntity part. Objects live in the store of their container
// (corvel::MemoryPool) and go with it as a whole: no destructor is run for each, and no object owns
// what its attributes point at.
class IfcEntity {
 public:
  // The class's own name as the schema writes it, "IfcWall": one constant per class.
  virtual const char16_t* getClassName() const = 0;
  // Tells entities (true) from values (false).
  virtual bool isComplexType() const = 0;
  // Appends everything that the object refers to, attributes in order, supertype first.
  virtual void collectChildren(ChildQueue& queue) const = 0;
  // Reads all attributes from the parser's tokens. May run twice; replaces every attribute.
  virtual void read(corvel::Parser& parser) = 0;
  // Writes all attributes, each followed by a comma.
  virtual void write(corvel::StepWriter& writer) const = 0;
  // True when the class lives on the members of a mandatory list and no member is left.
  virtual bool hasNoLiveMembers() const = 0;

  // Everything that the object refers to: collectChildren, and behind it what the object carries.
  // Walks over a model call this one.
  void CollectAllChildren(ChildQueue& queue) const {
    collectChildren(queue);
    if (carries) [[unlikely]]
      CollectCarried(queue);
  }

  // Sets `marker`. 0 is refused with a message box and the marker stays.
  void SetMarker(std::uint32_t value);

  // Takes the number that the object is filed and written under, or a reserved value (above).
  std::uint32_t marker = kUnfiled;
  // Generation of the last walk that reached this object.
  std::uint32_t visitStamp = 0;
  // A typed value that stands in a record, such as IFCLABEL('x'): no marker, written in place.
  bool inlineValue = false;
  // Set by the save and delete walks.
  bool visited = false;
  // Memo of the walk that asks whether a kept object is linked: 0 unknown, 1 yes, 2 no.
  std::uint8_t walkResult = 0;
  // The object is more than its attributes tell, as tolerant readings leave it: see core/carried.h.
  bool carries = false;
  // While a model is marked: so many of the first parents are known to be deleted.
  std::uint32_t goneParents = 0;
  // All entities that refer directly to this one; filled by MainContainer::FillParentsLists.
  corvel::ParentSet parents;
  // Parents taken over from entities that were merged into this one.
  corvel::ParentSet mergedParents;

 protected:
  // Not virtual, since nothing is ever deleted through this class: with it every schema class would
  // need two destructors and their thunks, two fifths of the code of a release.
  ~IfcEntity() = default;
  IfcEntity() = default;
  // A copy is a new object: no marker, no parents.
  IfcEntity(const IfcEntity& /*other*/) noexcept {}
  IfcEntity& operator=(const IfcEntity& /*other*/) noexcept { return *this; }

 private:
  void CollectCarried(ChildQueue& queue) const;
};

static_assert(sizeof(IfcEntity) <= 48, "millions of these: keep the base small");

// Base of the entities of every schema.
class IfcComplexType : public virtual IfcEntity {
 public:
  const char16_t* getClassName() const override { return u"IfcComplexType"; }
  bool isComplexType() const override { return true; }
  void collectChildren(ChildQueue& /*queue*/) const override {}
  void read(corvel::Parser& /*parser*/) override {}
  void write(corvel::StepWriter& /*writer*/) const override {}
  bool hasNoLiveMembers() const override { return false; }

 protected:
  ~IfcComplexType() = default;
};

// Base of the typed values of every schema.
class IfcSimpleType : public virtual IfcEntity {
 public:
  const char16_t* getClassName() const override { return u"IfcSimpleType"; }
  bool isComplexType() const override { return false; }
  void collectChildren(ChildQueue& /*queue*/) const override {}
  void read(corvel::Parser& /*parser*/) override {}
  void write(corvel::StepWriter& /*writer*/) const override {}
  bool hasNoLiveMembers() const override { return false; }

 protected:
  ~IfcSimpleType() = default;
};

}  // namespace IFC

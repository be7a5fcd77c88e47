// The objects of an input that steps look for, found in one walk over all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/entity.h"
#include "core/number_table.h"
#include "step/class_facts.h"

namespace corvel {

class SortedObjects {
 public:
  // All that the table holds, whatever becomes of it later.
  explicit SortedObjects(const NumberTable& objects);
  SortedObjects(SortedObjects&&) = default;
  SortedObjects& operator=(SortedObjects&&) = default;

  // Those with a GUID, in ascending number.
  const std::vector<IFC::IfcEntity*>& Roots() const { return roots_; }
  // Of the GUID of each of them, see shared_guids.h; looked at once. Whoever changes a GUID tells
  // it by NoteNewGuid. One that was empty is looked at with each call.
  const std::vector<std::uint64_t>& GuidHashes();
  void NoteNewGuid(std::size_t root) { changing_.push_back(root); }
  // Contexts, coordinate operations and applications, likewise.
  const std::vector<IFC::IfcEntity*>& Resources() const { return resources_; }

  // Some classes of the objects with a GUID.
  class Classes {
   public:
    // Of one of Roots, by its index.
    bool HasThatOf(std::size_t root) const { return isIn_[(*classOf_)[root]] != 0; }

   private:
    friend class SortedObjects;
    std::vector<std::uint8_t> isIn_;
    const std::vector<std::uint16_t>* classOf_ = nullptr;
  };
  // Those for which isWanted(facts) is true, which is asked once for each. Facts are null for
  // classes of no release. Good as long as this.
  template <class IsWanted>
  Classes ClassesThat(IsWanted isWanted) const {
    Classes classes;
    for (const ClassFacts* const facts : classes_) classes.isIn_.push_back(isWanted(facts) ? 1 : 0);
    classes.classOf_ = &classOf_;
    return classes;
  }

 private:
  std::vector<IFC::IfcEntity*> roots_;
  std::vector<std::uint16_t> classOf_;      // of each of them, a place in `classes_`
  std::vector<const ClassFacts*> classes_;  // of objects with a GUID
  std::vector<std::uint64_t> guidHashes_;
  std::vector<std::size_t> changing_;  // of `roots_`: whose GUID may be another one by now
  std::vector<IFC::IfcEntity*> resources_;
};

}  // namespace corvel

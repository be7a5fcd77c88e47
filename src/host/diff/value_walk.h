// How two values differ, found by walking both sides.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/diff/changes.h"
#include "host/diff/lockstep.h"
#include "host/diff/object_facts.h"

namespace corvel::host::diff {

// One place where two values differ.
struct Difference {
  std::string path;
  std::optional<std::string> before;
  std::optional<std::string> after;
};

// Pairs that a walk has come by. Most walks come by few.
class MetPairs {
 public:
  // False: it has been there.
  bool Add(const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
    const Pair pair{one, other};
    if (std::find(few_.begin(), few_.begin() + count_, pair) != few_.begin() + count_) return false;
    if (count_ == kFew) return more_.insert(pair).second;
    few_[count_++] = pair;
    return true;
  }

 private:
  using Pair = std::pair<const IFC::IfcEntity*, const IFC::IfcEntity*>;
  static constexpr std::size_t kFew = 12;

  std::array<Pair, kFew> few_;
  std::size_t count_ = 0;
  std::set<Pair> more_;
};

// Numbers count as told by the tolerance. Members of sets are compared with those that say the
// same, the others in their order; members of lists from both ends. Ends at the first place in each
// branch, and after kMostChanges of them altogether: the rest is counted. What goes in a circle,
// and what lies deeper than anything of sense, is gone through once.
class ValueWalk {
 public:
  // Whether an attribute of the object that is asked about takes part.
  using IsWanted = std::function<bool(const AttributeWord&)>;

  // All of it lives as long as this.
  ValueWalk(ObjectFacts& before, ObjectFacts& after, const Tolerance& tolerance, Lockstep& lockstep)
      : before_(before), after_(after), tolerance_(tolerance), lockstep_(lockstep) {}
  ValueWalk(const ValueWalk&) = delete;
  ValueWalk& operator=(const ValueWalk&) = delete;

  // Two values of any class; null is none. `path` stands in front of where they differ.
  void Compare(const IFC::IfcEntity* before, const IFC::IfcEntity* after, const std::string& path);
  // Two objects, by those of their attributes that are wanted, and by what tolerant readings carry.
  void CompareAttributes(const IFC::IfcEntity& before, const IFC::IfcEntity& after,
                         const std::string& path, const IsWanted& isWanted);
  // By what only describes them.
  void CompareDescriptions(const IFC::IfcEntity& before, const IFC::IfcEntity& after,
                           const std::string& path);

  std::string TextBefore(const IFC::IfcEntity* entity) const;
  std::string TextAfter(const IFC::IfcEntity* entity) const;

  // What was found since the last call, and how much more than that there was.
  std::vector<Difference> Take(std::size_t& omitted);

 private:
  using Members = std::vector<const IFC::IfcEntity*>;
  struct Held {
    const AttributeWord& before;
    const AttributeWord& after;
    unsigned depth = 0;
  };

  void CompareMembers(const IFC::IfcEntity* before, const IFC::IfcEntity* after,
                      const std::string& path, std::size_t index);
  void CompareUnlike(const IFC::IfcEntity* before, const IFC::IfcEntity* after,
                     const std::string& path);
  void TellParameters(Dimension before, Dimension after);
  bool HaveOneAngle() const;
  void CompareAttribute(const ConstAttribute& before, const ConstAttribute& after, const Held& held,
                        const std::string& path);
  void CompareCarried(const IFC::IfcEntity& before, const IFC::IfcEntity& after,
                      const std::string& path);
  template <class T>
  void CompareHeld(const List<T>& before, const List<T>& after, Held held, const std::string& path);
  void CompareHeld(const EntityList& before, const EntityList& after, Held held,
                   const std::string& path);
  void CompareHeld(IFC::IfcEntity* before, IFC::IfcEntity* after, const Held& held,
                   const std::string& path);
  template <class T>
  void CompareHeld(const T& before, const T& after, const Held& held, const std::string& path);
  Dimension DimensionBefore(const Held& held) const {
    return held.before.isParameter ? parametersBefore_ : held.before.dimension;
  }
  Dimension DimensionAfter(const Held& held) const {
    return held.after.isParameter ? parametersAfter_ : held.after.dimension;
  }
  bool SameScalar(double before, double after, const Held& held) const;
  static bool SameScalar(std::int32_t before, std::int32_t after, const Held& held);
  static bool SameScalar(ModelText before, ModelText after, const Held&) { return before == after; }
  static bool SameScalar(const char* before, const char* after, const Held&) {
    return std::string_view(before) == after;
  }

  void CompareSets(Members before, Members after, const std::string& path);
  void CompareLists(Members before, Members after, const std::string& path);
  void ComparePairs(Members& before, Members& after, const std::string& path);
  void TellMembers(const Members& before, const Members& after, const std::string& path);
  void DropEqual(Members& before, Members& after);
  bool SaySame(const IFC::IfcEntity* before, const IFC::IfcEntity* after);
  // Whether Compare would find nothing.
  bool Same(const IFC::IfcEntity& before, const IFC::IfcEntity& after);
  // At a difference: true when somebody only asks whether there is any, and needs no texts.
  bool Answers() {
    differs_ = differs_ || isAsking_;
    return isAsking_;
  }
  void Tell(const std::string& path, std::optional<std::string> before,
            std::optional<std::string> after);

  ObjectFacts& before_;
  ObjectFacts& after_;
  const Tolerance& tolerance_;
  Lockstep& lockstep_;
  bool hasOwnUnitBefore_ = false;
  bool hasOwnUnitAfter_ = false;
  Dimension parametersBefore_ = Dimension::kNone;  // what those in the records at hand measure
  Dimension parametersAfter_ = Dimension::kNone;
  unsigned depth_ = 0;
  bool isAsking_ = false;
  bool differs_ = false;  // the answer, as soon as it is known
  MetPairs ownMet_;
  MetPairs* met_ = &ownMet_;
  std::vector<Difference> found_;
  std::size_t omitted_ = 0;
};

}  // namespace corvel::host::diff

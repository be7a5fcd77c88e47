// Values that are not there, lists, and numbers that a save would shorten.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "host/check/findings.h"
#include "merge/federation/per_class.h"
#include "schema/attributes.h"

namespace corvel::host {

// What is looked at in the objects of one class.
class ValueCheck {
 public:
  explicit ValueCheck(const ClassFacts& facts);

  // Of mandatory numbers that are not there the object says nothing: see absent_check.h.
  void Look(const IFC::IfcEntity& entity, Findings& findings);

 private:
  enum class Absent : std::uint8_t { kNot, kReference, kText, kOptionalText };
  // How many members a list has.
  struct Bounds {
    std::size_t least = 0;
    std::size_t most = std::numeric_limits<std::size_t>::max();
  };
  struct Plan {
    const AttributeFacts* attribute = nullptr;
    std::array<Bounds, 3> bounds{};  // of the lists, the outermost first
    Absent absent = Absent::kNot;    // how a mandatory value that is not there is known
    std::string subject{};           // "IfcCartesianPoint.Coordinates"
    bool hasBounds = false;
    bool isSet = false;  // of references
    bool hasReals = false;
    bool mayHoldValues = false;  // typed ones behind a select
    bool isLookedAt = false;     // whatever but its absence
    Findings::Heap missing{};
    Findings::Heap few{};
    Findings::Heap many{};
    Findings::Heap doubled{};
  };
  struct Place;

  static Absent AbsentOf(const ClassFacts& facts, const AttributeFacts& attribute);
  static bool LooksAbsent(ConstAttribute attribute, const Plan& plan);
  void LookAt(ConstAttribute attribute, Plan& plan, const Place& place);
  static void CheckMembers(ConstAttribute attribute, Plan& plan, const Place& place);
  static void CheckSet(ConstAttribute attribute, Plan& plan, const Place& place);
  static void CheckReals(ConstAttribute attribute, const Plan& plan, const Place& place);
  void CheckValue(const IFC::IfcEntity& value, const Plan& plan, const Place& place);

  std::vector<Plan> plans_;
  // Of the typed values, whether they hold reals.
  PerClass<bool> holdReals_;
};

// Whether objects of the class need a number or a truth value there, one and not a list.
bool WantsNumberOrTruth(const ClassFacts& facts, const AttributeFacts& attribute);

// Whether the writer's form of the number reads as the same number.
bool IsFractionWrittenWhole(double value);
inline bool IsWrittenWhole(double value) {
  constexpr double kLargest = 1e14;  // whole numbers up to it have no more digits than are written
  const bool isSmall = value < kLargest && value > -kLargest;
  return (isSmall && value == static_cast<double>(static_cast<std::int64_t>(value))) ||
         IsFractionWrittenWhole(value);
}
// The same of a value of type NUMBER.
bool IsCountWrittenWhole(double value);

}  // namespace corvel::host

// Values that are not there, lists, and numbers that a save would shorten.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "host/check/findings.h"
#include "schema/attributes.h"

namespace corvel::host {

// What is looked at in the objects of one class.
class ValueCheck {
 public:
  explicit ValueCheck(const ClassFacts& facts);

  // `guid`: of the object; may be empty. True: a mandatory number of it is 0, which is what the
  // object has as well where the file has none.
  bool Look(const IFC::IfcEntity& entity, std::string_view guid, Findings& findings);

 private:
  enum class Absent : std::uint8_t { kNot, kReference, kText, kReal, kInteger };
  struct Plan {
    const AttributeFacts* attribute = nullptr;
    std::array<Aggregate, 3> lists{};  // the outermost first
    Absent absent = Absent::kNot;      // how a mandatory value that is not there is known
    std::string subject{};             // "IfcCartesianPoint.Coordinates"
    bool hasBounds = false;
    bool isSet = false;  // of references
    bool hasReals = false;
    bool mayHoldValues = false;  // typed ones behind a select
    Findings::Heap missing{};
    Findings::Heap few{};
    Findings::Heap many{};
    Findings::Heap doubled{};
  };
  struct Place;

  static Absent AbsentOf(const ClassFacts& facts, const AttributeFacts& attribute);
  static bool LooksAbsent(ConstAttribute attribute, const Plan& plan);
  static void LookAt(ConstAttribute attribute, Plan& plan, const Place& place);
  static void CheckMembers(ConstAttribute attribute, Plan& plan, const Place& place);
  static void CheckSet(ConstAttribute attribute, Plan& plan, const Place& place);
  static void CheckReals(ConstAttribute attribute, Plan& plan, const Place& place);

  std::vector<Plan> plans_;
};

// Whether the writer's form of the number reads as the same number.
bool IsWrittenWhole(double value);
// The same of a value of type NUMBER.
bool IsCountWrittenWhole(double value);

}  // namespace corvel::host

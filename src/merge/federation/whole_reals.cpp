#include "merge/federation/whole_reals.h"

#include <cmath>
#include <vector>

#include "schema/attributes.h"
#include "step/numbers/number_text.h"

namespace corvel {

namespace {

// Other whole numbers are written with an exponent in any case.
constexpr double kLargestWithPoint = 2147483647.0;
// More than rounding to 15 digits changes, of the number.
constexpr double kFar = 1e-14;

double AsWritten(double value) {
  char text[kNumberRoom];
  return ParseReal({text, static_cast<std::size_t>(FormatReal(value, text) - text)});
}

void MakeAsWritten(double& value) {
  const double whole = std::nearbyint(value);
  if (whole == value || !(std::abs(whole) <= kLargestWithPoint)) return;
  if (std::abs(value - whole) > std::abs(whole) * kFar) return;
  if (AsWritten(value) == whole) value = whole;
}

class Rounding {
 public:
  explicit Rounding(SharingPlans& plans) : plans_(plans) {}

  void MakeRecordAsWritten(IFC::IfcEntity& entity) {
    waiting_.push_back(&entity);
    while (!waiting_.empty()) {
      IFC::IfcEntity& next = *waiting_.back();
      waiting_.pop_back();
      const SharingPlan& plan = plans_.Of(next);
      for (const AttributeFacts* const facts : plan.reals) {
        Attribute(next, *facts).ForEach<double>(MakeAsWritten);
      }
      for (const AttributeFacts* const facts : plan.references) AddValues(next, *facts);
    }
  }

 private:
  void AddValues(IFC::IfcEntity& entity, const AttributeFacts& facts) {
    if (facts.kind != ValueKind::kSelect) return;
    Attribute(entity, facts).ForEach<IFC::IfcEntity*>([this](IFC::IfcEntity* value) {
      if (value != nullptr && value->inlineValue) waiting_.push_back(value);
    });
  }

  SharingPlans& plans_;
  std::vector<IFC::IfcEntity*> waiting_;
};

}  // namespace

bool MakeRealsAsWritten(FederatedModel& model, SharingPlans& plans, Ticker& ticker) {
  Rounding rounding(plans);
  for (const auto& [number, entity] : model.Container().entities) {
    if (entity->marker != IFC::kDeleted) rounding.MakeRecordAsWritten(*entity);
    if (!ticker.Advance()) return false;
  }
  return true;
}

}  // namespace corvel

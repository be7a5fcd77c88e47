#include "merge/length_unit.h"

#include <array>
#include <cstddef>
#include <optional>

#include "core/child_queue.h"
#include "core/entity_cast.h"
#include "core/main_container.h"
#include "merge/unit_texts.h"
#include "schema/interfaces/units.h"

namespace corvel {

namespace {

constexpr std::array<WideView, 3> kSizes = {u"MILLI", u"CENTI", u"METRE"};

// A factor for each of kSizes.
using Factors = std::array<double, kSizes.size()>;

struct LengthTable {
  Factors unit;
  Factors footMadeFrom;
};

constexpr LengthTable kUnitsPerMetre = {{1000.0, 100.0, 1.0}, {3280.8398F, 328.08398F, 3.28084F}};
constexpr LengthTable kMillimetresPerUnit = {{1.0, 10.0, 1000.0}, {0.3048F, 3.048F, 304.80002F}};

bool IsLength(IFC::IfcEntity* unit) { return UnitTypeText(unit) == u".LENGTHUNIT.,"; }

// The SI unit of length that the entity is, or null.
const IFC::VIfcSIUnit* AsLength(IFC::IfcEntity* entity) {
  const auto* const unit = EntityCast<IFC::VIfcSIUnit>(entity);
  return unit != nullptr && IsLength(entity) ? unit : nullptr;
}

std::optional<double> FactorOf(const IFC::VIfcSIUnit& unit, const Factors& factors) {
  const WideString size = unit.getPrefixOrName();
  for (std::size_t i = 0; i < kSizes.size(); ++i) {
    if (ComparePrefixes(size, kSizes[i])) return factors[i];
  }
  return std::nullopt;
}

bool IsFoot(IFC::IfcEntity* entity) {
  const auto* const unit = EntityCast<IFC::VIfcConversionBasedUnit>(entity);
  return unit != nullptr && IsLength(entity) && ComparePrefixes(unit->getUnitName(), u"FOOT");
}

// The first SI unit of length that `foot` leads to, which it may do by way of other units; null
// when there is none. Units that are made from each other end nowhere: each is looked at once.
const IFC::VIfcSIUnit* MadeFrom(const IFC::IfcEntity& foot) {
  const std::uint32_t generation = IFC::NextVisitGeneration();
  IFC::ChildQueue queue;
  foot.CollectAllChildren(queue);
  while (!queue.IsEmpty()) {
    IFC::IfcEntity* const entity = queue.TakeBack().entity;
    if (entity == nullptr || entity->visitStamp == generation) continue;
    entity->visitStamp = generation;
    if (const IFC::VIfcSIUnit* const length = AsLength(entity)) return length;
    entity->CollectAllChildren(queue);
  }
  return nullptr;
}

std::optional<double> FactorOf(IFC::IfcEntity* unit, const LengthTable& table) {
  if (const IFC::VIfcSIUnit* const length = AsLength(unit)) return FactorOf(*length, table.unit);
  if (!IsFoot(unit)) return std::nullopt;
  const IFC::VIfcSIUnit* const length = MadeFrom(*unit);
  return length == nullptr ? std::nullopt : FactorOf(*length, table.footMadeFrom);
}

double Look(const IFC::IfcEntity* unitAssignment, const LengthTable& table,
            ErrorReporter showError) {
  IFC::ChildQueue units;
  if (unitAssignment != nullptr) unitAssignment->CollectAllChildren(units);
  // The queue is taken from its back: the last unit comes first.
  while (!units.IsEmpty()) {
    if (const auto factor = FactorOf(units.TakeBack().entity, table)) return *factor;
  }
  showError("", u"No lenght unit found while merging file", kReportShow);
  return 1.0;
}

}  // namespace

double LengthUnitsPerMetre(const IFC::IfcEntity* unitAssignment, ErrorReporter showError) {
  return Look(unitAssignment, kUnitsPerMetre, showError);
}

double MillimetresPerLengthUnit(const IFC::IfcEntity* unitAssignment, ErrorReporter showError) {
  return Look(unitAssignment, kMillimetresPerUnit, showError);
}

}  // namespace corvel

#include "merge/federation/units/convert_units.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "core/carried.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/units/first_units.h"
#include "platform/file.h"
#include "step/log/ifc_log.h"
#include "step/numbers/number_text.h"

namespace corvel {

namespace {

constexpr std::size_t kTicks = 50;

void Log(const WideString& text) { IfcLog::Instance().LogLine(text); }

WideString Count(std::size_t count) { return Widen(std::to_string(count)); }

WideString Number(double value) {
  char text[kNumberRoom];
  return Widen({text, static_cast<std::size_t>(FormatReal(value, text) - text)});
}

bool HasKind(const Conversions& conversions, Conversion::Kind kind) {
  return std::any_of(conversions.begin(), conversions.end(),
                     [kind](const Conversion& conversion) { return conversion.kind == kind; });
}

bool Carries(const IFC::IfcEntity& entity) {
  if (!entity.carries) return false;
  const CarriedParts* const parts = CarriedTable::Find(entity);
  return parts == nullptr || !parts->arguments.empty();
}

// The walks over a model: one that sees what stands where, and one that converts.
class ModelConversion {
 public:
  ModelConversion(IfcDocument& document, const ModelUnits& units, const Conversions& conversions,
                  ConvertedModel& result)
      : document_(document),
        curves_(conversions, units),
        maps_(curves_.FactorOf(Measure::kLength)),
        spaces_(document, curves_),
        converter_(conversions, curves_, maps_, spaces_, result.values),
        result_(result) {}

  bool Run(Ticker& ticker) {
    if (!ForEach(ticker, [this](IFC::IfcEntity& entity) { Note(entity); })) return false;
    if (!spaces_.Separate(ticker) || !maps_.PutInScales(document_)) return false;
    result_.copies = spaces_.Copies();
    result_.unstretchable = spaces_.Unstretchable();
    // Copies are filed, and have their turn; what they are copies of is known by now.
    return Convert(ticker);
  }
  // Where no unit differs, and no more is to be done than to count those that nobody knows.
  bool Convert(Ticker& ticker) {
    return ForEach(ticker, [this](IFC::IfcEntity& entity) { converter_.Convert(entity); });
  }

 private:
  template <class Action>
  bool ForEach(Ticker& ticker, Action action) const {
    for (const auto& [number, entity] : document_.mainContainer->entities) {
      action(*entity);
      if (!ticker.Advance()) return false;
    }
    return true;
  }

  void Note(IFC::IfcEntity& entity) {
    if (Carries(entity)) ++result_.carried;
    if (!IsToBeNoted(FindFacts(entity))) return;
    curves_.Note(entity);
    spaces_.Note(entity);
    maps_.Note(entity);
  }

  // Few classes are of interest before all others are converted.
  bool IsToBeNoted(const ClassFacts* facts) {
    if (facts == nullptr) return false;
    const auto [place, isNew] = areToBeNoted_.try_emplace(facts);
    if (isNew) {
      place->second = CurveParameters::IsToBeNoted(*facts) || MapUnits::IsToBeNoted(*facts) ||
                      spaces_.IsToBeNoted(*facts);
    }
    return place->second;
  }

  IfcDocument& document_;
  std::unordered_map<const ClassFacts*, bool> areToBeNoted_;
  CurveParameters curves_;
  MapUnits maps_;
  ValueSpaces spaces_;
  ValueConverter converter_;
  ConvertedModel& result_;
};

WideString LabelOf(const IFC::IfcEntity* unit) {
  if (unit == nullptr) return u"";
  WideString name = TextOf(*unit, "Name");
  if (!name.empty()) return name;
  return Widen(std::string(WordOf(*unit, "Prefix")) + std::string(WordOf(*unit, "Name")));
}

// A row as the comparison of units makes it, for what cannot be converted.
UnitComparison DifferenceOf(Measure measure, const ModelUnits& first, const ModelUnits& later,
                            const WideString& path) {
  const IFC::IfcEntity* const unit = first.Of(measure).unit;
  const IFC::IfcEntity* const other = later.Of(measure).unit;
  UnitComparison row;
  row.unitType = u"." + Widen(FactsOf(measure).unit) + u".";
  row.unitLabel = LabelOf(unit);
  row.marker = unit == nullptr ? 0 : unit->marker;
  row.otherLabel = LabelOf(other);
  row.otherMarker = other == nullptr ? 0 : other->marker;
  row.filePath = path;
  row.code = UnitDifference::kOtherName;
  return row;
}

template <class Action>
void ForEachMeasure(const ConvertedValues::Counts& counts, Action action) {
  for (std::size_t i = 0; i < kMeasureCount; ++i) {
    if (counts[i] != 0) action(Measure{static_cast<std::uint8_t>(i)}, counts[i]);
  }
}

// The first line is about the model, the others stand below it.
std::vector<WideString> LinesOf(const ConvertedModel& model, const WideString& path) {
  std::vector<WideString> lines;
  lines.push_back((model.differs ? u"Units converted to those of the first: "
                                 : u"Units are those of the first: ") +
                  path);
  ForEachMeasure(model.values.converted, [&](Measure measure, std::size_t count) {
    const Conversion& conversion = model.conversions[static_cast<std::size_t>(measure)];
    WideString line = Widen(FactsOf(measure).unit) + u": " + Count(count) + u" values times " +
                      Number(conversion.factor);
    if (conversion.offset != 0.0) line += u", plus " + Number(conversion.offset);
    lines.push_back(line);
  });
  ForEachMeasure(model.values.unknown, [&](Measure measure, std::size_t count) {
    lines.push_back(u"No unit is assigned, so that they stay: " + Count(count) + u" values in " +
                    Widen(FactsOf(measure).unit));
  });
  if (model.copies != 0) {
    lines.push_back(u"Objects copied since they count in two ways: " + Count(model.copies));
  }
  if (model.unstretchable != 0) {
    lines.push_back(u"Curves in the parameters of a surface that stay: " +
                    Count(model.unstretchable));
  }
  if (model.values.texts != 0) {
    lines.push_back(u"Texts that hold numbers stay: " + Count(model.values.texts));
  }
  if (model.carried != 0) {
    lines.push_back(u"Objects with values that were carried as they stood, which stay: " +
                    Count(model.carried));
  }
  return lines;
}

void LogAll(const std::vector<WideString>& lines) {
  for (std::size_t i = 0; i < lines.size(); ++i) Log(i == 0 ? lines[i] : u"\t" + lines[i]);
}

}  // namespace

bool ConvertUnits(const IfcDocument& first, IfcDocument& later, Ticker& ticker,
                  ConvertedModel& result) {
  const ModelUnits own(later.getIfcUnitAssignment());
  const ModelUnits wanted(first.getIfcUnitAssignment());
  result.conversions = ConversionsBetween(own, wanted);
  result.differs = HasKind(result.conversions, Conversion::Kind::kConvert) ||
                   HasKind(result.conversions, Conversion::Kind::kImpossible);
  ModelConversion conversion(later, own, result.conversions, result);
  if (!result.differs) {
    return !HasKind(result.conversions, Conversion::Kind::kUnknown) || conversion.Convert(ticker);
  }
  if (!conversion.Run(ticker)) return false;
  if (!result.values.IsComplete()) return true;
  return AssignUnitsOf(first, later);
}

bool ConvertUnitsOfRun(std::vector<RunModel>& models, ProgressCallback progress,
                       RunObserver* observer) {
  for (std::size_t i = 1; i < models.size(); ++i) {
    const IfcDocument& first = *models.front().document;
    IfcDocument& later = *models[i].document;
    // What is not read to its end is not merged.
    if (!first.IsParsed() || !later.IsParsed() || !later.HasSchemaOf(first)) continue;
    const ModelUnits own(later.getIfcUnitAssignment());
    const WideString path = later.getFilePath();
    const WideString name = u"units";
    Ticker ticker({.callback = progress, .text = &name},
                  {.block = later.mainContainer->entities.Size() * 2 / kTicks + 1});
    ConvertedModel result;
    if (!ConvertUnits(first, later, ticker, result)) return false;
    models[i].unitsAgree = result.values.IsComplete();
    ForEachMeasure(result.values.impossible, [&](Measure measure, std::size_t /*count*/) {
      models[i].unitDifferences.push_back(
          DifferenceOf(measure, ModelUnits(first.getIfcUnitAssignment()), own, path));
    });
    if (!models[i].unitsAgree) continue;
    const std::vector<WideString> lines = LinesOf(result, path);
    LogAll(lines);
    if (observer == nullptr) continue;
    observer->StepIsDone(
        {"units", {{"copies", result.copies}}, {{"converted", &lines}}, &later, result.differs});
  }
  return true;
}

}  // namespace corvel

#include "host/model_warnings.h"

#include <algorithm>

#include "host/display_text.h"
#include "host/model_frame.h"

namespace corvel::host {

namespace {

WideString NameOf(const IfcDocument& document) { return Printable(document.getFilePath()); }

// Another prefix is let pass by the option, another unit by nothing.
WideString AboutLeftOut(const RunModel& model) {
  const auto& rows = model.unitDifferences;
  const bool mayPass = std::none_of(rows.begin(), rows.end(), [](const UnitComparison& row) {
    return row.code == UnitDifference::kOtherName;
  });
  return NameOf(*model.document) +
         (mayPass ? u": left out for its units; --ignore-units lets it take part, with its numbers "
                    u"as they are"
                  : u": left out for its units, which no option lets pass");
}

WideString UnitText(const LengthUnit& unit) {
  return unit.name.empty() ? WideString(u"not stated") : unit.name;
}

class Comparison {
 public:
  explicit Comparison(const IfcDocument& first)
      : first_(first), unit_(LengthUnitOf(first)), conversion_(MapConversionOf(first)) {}

  void Tell(const IfcDocument& document, bool placesByMap, std::vector<WideString>& lines) const {
    const LengthUnit unit = LengthUnitOf(document);
    if (Differ(unit_, unit)) {
      const bool isSure = unit.metres && unit_.metres;
      lines.push_back(NameOf(document) + u": its length unit is " + UnitText(unit) +
                      u", and that of " + NameOf(first_) + u" is " + UnitText(unit_) +
                      u"; its numbers are not changed, so that it " +
                      (isSure ? u"arrives" : u"may arrive") + u" at another scale");
    }
    if (placesByMap) return;
    if (const WideString text = AboutConversion(MapConversionOf(document)); !text.empty()) {
      lines.push_back(NameOf(document) + u": " + text +
                      u"; its numbers are not changed, so that it may stand at another place");
    }
  }

 private:
  WideString AboutConversion(const std::optional<MapConversion>& other) const {
    if (other == conversion_) return {};
    if (!other) return u"it has no map conversion, and " + NameOf(first_) + u" has one";
    if (!conversion_) return u"it has a map conversion, and " + NameOf(first_) + u" has none";
    return u"its map conversion is not that of " + NameOf(first_) + u" (" +
           DifferenceBetween(*conversion_, *other) + u")";
  }

  const IfcDocument& first_;
  LengthUnit unit_;
  std::optional<MapConversion> conversion_;
};

}  // namespace

std::vector<WideString> WarningsAbout(const std::vector<RunModel>& models, bool placesByMap) {
  std::vector<WideString> lines;
  if (models.empty()) return lines;
  const Comparison comparison(*models.front().document);
  for (std::size_t i = 1; i < models.size(); ++i) {
    const RunModel& model = models[i];
    if (!model.unitsValid) lines.push_back(AboutLeftOut(model));
    if (model.mergeable && model.document->IsParsed())
      comparison.Tell(*model.document, placesByMap, lines);
  }
  return lines;
}

}  // namespace corvel::host

#include "host/facts/facts_text.h"

#include <algorithm>
#include <cmath>

#include "host/display_text.h"
#include "host/wrapped_text.h"

namespace corvel::host {

namespace {

WideString Number(std::uint64_t number) { return Widen(std::to_string(number)); }

WideString OrNothing(const WideString& text) {
  return text.empty() ? WideString(u"not stated") : text;
}

// The header's own names stand behind the application only where they say something else.
WideString ExporterText(const Exporter& exporter) {
  std::vector<WideString> names;
  for (const WideString& name :
       {exporter.application, exporter.originatingSystem, exporter.preprocessorVersion}) {
    if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(name);
    }
  }
  return OrNothing(Listed(names));
}

WideString UnitsText(const std::vector<UnitFacts>& units) {
  std::vector<WideString> texts;
  for (const UnitFacts& unit : units) {
    WideString type = Widen(unit.type);
    if (type.ends_with(u"UNIT")) type.erase(type.size() - 4);
    texts.push_back(ToLowerAscii(type) + u" " + unit.name);
  }
  return OrNothing(Listed(texts));
}

WideString PlaceText(const Georeference& place) {
  if (!place.conversion)
    return place.system.empty() ? WideString(u"no map conversion") : place.system;
  const auto& values = place.conversion->values;
  std::vector<WideString> texts{u"Eastings " + NumberText(values[0]),
                                u"Northings " + NumberText(values[1]),
                                u"height " + NumberText(values[2])};
  if (values[3] != 1.0 || values[4] != 0.0) {
    texts.push_back(u"x axis (" + NumberText(values[3]) + u" " + NumberText(values[4]) + u")");
  }
  if (values[5] != 1.0) texts.push_back(u"scale " + NumberText(values[5]));
  if (!place.system.empty()) texts.push_back(place.system);
  return Listed(texts);
}

// To a millionth of a degree: what is finer comes from the arithmetic of whoever wrote it.
WideString TrueNorthText(const Georeference& place) {
  constexpr double kParts = 1e6;
  if (!place.trueNorthDegrees) return u"not stated";
  return NumberText(std::round(*place.trueNorthDegrees * kParts) / kParts + 0.0) +
         u" degrees clockwise from the y axis";
}

// "and 12 more, which --json has": people look at what comes first.
WideString MoreText(std::size_t count) { return Number(count) + u" more, which --json has"; }

WideString NameOf(const SpatialFacts& object) {
  return object.name.empty() ? u"#" + ToWide(object.number) : object.name;
}

WideString SpatialText(const std::vector<SpatialFacts>& objects) {
  constexpr std::size_t kMost = 12;
  const std::size_t shown = objects.size() <= kMost ? objects.size() : kMost - 2;
  std::vector<WideString> names;
  names.reserve(shown);
  for (std::size_t i = 0; i < shown; ++i) names.push_back(NameOf(objects[i]));
  WideString text = Number(objects.size());
  if (names.empty()) return text;
  text += u": " + Listed(names);
  return shown == objects.size() ? text : text + u" and " + MoreText(objects.size() - shown);
}

constexpr std::size_t kRowColumns = 16;

WideString RowStart(WideView number) {
  WideString first(kRowColumns - std::min(number.size(), kRowColumns), u' ');
  return first.append(number).append(u"  ");
}

WideString StoreyLine(const SpatialFacts& storey) {
  WideString height = u"-";
  if (storey.elevationMetres) height = MetresText(*storey.elevationMetres);
  if (storey.heightMetres) height = MetresText(*storey.heightMetres);
  WideString text = NameOf(storey);
  const bool differs = storey.heightMetres && storey.elevationMetres &&
                       MetresText(*storey.elevationMetres) != height;
  if (differs) text += u" (Elevation " + MetresText(*storey.elevationMetres) + u")";
  return Wrapped(RowStart(height), text);
}

// Of many the first and the last, which are the lowest and the highest.
WideString StoreyLines(const std::vector<SpatialFacts>& storeys) {
  constexpr std::size_t kMost = 24;
  constexpr std::size_t kFirst = 14;
  constexpr std::size_t kLast = 8;
  WideString text = LabelledLine(u"storeys", Number(storeys.size()));
  const bool isCut = storeys.size() > kMost;
  for (std::size_t i = 0; i < storeys.size(); ++i) {
    if (isCut && i == kFirst) {
      const std::size_t left = storeys.size() - kFirst - kLast;
      text += Wrapped(RowStart(u"..."), MoreText(left));
      i += left;
    }
    text += StoreyLine(storeys[i]);
  }
  return text;
}

WideString ExtentText(const Extent& extent) {
  WideString text;
  if (extent.placed != 0) {
    constexpr char16_t kAxes[] = {u'x', u'y', u'z'};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (axis != 0) text += u", ";
      text += WideString(1, kAxes[axis]) + u" " + MetresText(extent.least[axis]) + u" to " +
              MetresText(extent.most[axis]);
    }
  }
  if (extent.nowhere == 0) return text.empty() ? WideString(u"nothing is placed") : text;
  if (!text.empty()) text += u"; ";
  return text + Counted(extent.nowhere, u"product has", u"products have") + u" no place";
}

WideString ProductLines(const ModelFacts& facts) {
  WideString text =
      LabelledLine(u"products", Number(facts.ProductCount()) + u" of " +
                                    Counted(facts.products.size(), u"class", u"classes"));
  constexpr std::size_t kMost = 40;
  const std::size_t shown = facts.products.size() <= kMost ? facts.products.size() : kMost - 2;
  for (std::size_t i = 0; i < shown; ++i) {
    const auto& [name, count] = facts.products[i];
    text += RowStart(Number(count)) + Widen(name) + u"\n";
  }
  if (shown == facts.products.size()) return text;
  return text + Wrapped(RowStart(u"..."), MoreText(facts.products.size() - shown));
}

WideString DoubledText(const std::vector<DoubledGuid>& doubled) {
  constexpr std::size_t kMost = 3;
  WideString text = Number(doubled.size());
  for (std::size_t i = 0; i < doubled.size() && i < kMost; ++i) {
    text += (i == 0 ? u": " : u", ") + FromUtf8(doubled[i].guid) + u" (#" +
            ToWide(doubled[i].numbers[0]) + u" #" + ToWide(doubled[i].numbers[1]) + u")";
  }
  return doubled.size() > kMost ? text + u" ..." : text;
}

}  // namespace

WideString ModelFactsAsText(const ModelFacts& facts) {
  const WideString identifier = facts.schemaIdentifier;
  const WideString release = Widen(facts.release);
  WideString text = LabelledLine(
      u"release", release == identifier ? release : release + u" (" + identifier + u")");
  text += LabelledLine(u"exporter", ExporterText(facts.exporter));
  text += LabelledLine(u"units", UnitsText(facts.units));
  text += LabelledLine(u"place", PlaceText(facts.georeference));
  text += LabelledLine(u"true north", TrueNorthText(facts.georeference));
  text += LabelledLine(u"projects", Number(facts.projects.size()));
  text += LabelledLine(u"sites", SpatialText(facts.spatial.sites));
  text += LabelledLine(u"buildings", SpatialText(facts.spatial.buildings));
  text += StoreyLines(facts.spatial.storeys);
  text += ProductLines(facts);
  text += LabelledLine(u"extent", ExtentText(facts.extent));
  return text + LabelledLine(u"doubled GUIDs", DoubledText(facts.doubledGuids));
}

}  // namespace corvel::host

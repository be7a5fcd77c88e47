#include "host/facts/facts_text.h"

#include <algorithm>

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

WideString TrueNorthText(const Georeference& place) {
  if (!place.trueNorthDegrees) return u"not stated";
  return NumberText(*place.trueNorthDegrees) + u" degrees clockwise from the y axis";
}

WideString SpatialText(const std::vector<SpatialFacts>& objects) {
  std::vector<WideString> names;
  names.reserve(objects.size());
  for (const SpatialFacts& object : objects) {
    names.push_back(object.name.empty() ? u"#" + ToWide(object.number) : object.name);
  }
  WideString text = Number(objects.size());
  return names.empty() ? text : text + u": " + Listed(names);
}

WideString StoreyLine(const SpatialFacts& storey) {
  constexpr std::size_t kHeightColumns = 16;
  WideString height = u"-";
  if (storey.elevationMetres) height = MetresText(*storey.elevationMetres);
  if (storey.heightMetres) height = MetresText(*storey.heightMetres);
  WideString first(kHeightColumns - std::min(height.size(), kHeightColumns), u' ');
  first += height + u"  ";
  WideString text = storey.name.empty() ? u"#" + ToWide(storey.number) : storey.name;
  const bool differs = storey.heightMetres && storey.elevationMetres &&
                       MetresText(*storey.elevationMetres) != height;
  if (differs) text += u" (Elevation " + MetresText(*storey.elevationMetres) + u")";
  return Wrapped(first, text);
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
  constexpr std::size_t kCountColumns = 16;
  for (const auto& [name, count] : facts.products) {
    const WideString digits = Number(count);
    text.append(kCountColumns - std::min(digits.size(), kCountColumns), u' ');
    text += digits + u"  " + Widen(name) + u"\n";
  }
  return text;
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
  text += LabelledLine(u"storeys", Number(facts.spatial.storeys.size()));
  for (const SpatialFacts& storey : facts.spatial.storeys) text += StoreyLine(storey);
  text += ProductLines(facts);
  text += LabelledLine(u"extent", ExtentText(facts.extent));
  return text + LabelledLine(u"doubled GUIDs", DoubledText(facts.doubledGuids));
}

}  // namespace corvel::host

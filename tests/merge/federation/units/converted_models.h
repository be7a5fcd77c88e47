// Two models from a few records each, the second in the units of the first.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "core/ticker.h"
#include "merge/federation/units/convert_units.h"
#include "merge/unit_run.h"
#include "schema/registry.h"
#include "support/written_text.h"

namespace corvel::test {

// Units from #`first` on with what they are made from, and their assignment as the last record.
struct UnitRecords {
  static std::string Metres() { return "#901=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"; }
  static std::string Millimetres() { return "#901=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"; }
  static std::string Feet() {
    return "#901=IFCCONVERSIONBASEDUNIT(#905,.LENGTHUNIT.,'FOOT',#903);\n"
           "#903=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(0.3048),#904);\n"
           "#904=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
           "#905=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n";
  }
  static std::string Radians() { return "#902=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);\n"; }
  static std::string Degrees() {
    return "#902=IFCCONVERSIONBASEDUNIT(#908,.PLANEANGLEUNIT.,'DEGREE',#906);\n"
           "#906=IFCMEASUREWITHUNIT(IFCPLANEANGLEMEASURE(0.017453292519943295),#907);\n"
           "#907=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);\n"
           "#908=IFCDIMENSIONALEXPONENTS(0,0,0,0,0,0,0);\n";
  }
  // Of #901 and #902.
  static std::string Both() { return "#910=IFCUNITASSIGNMENT((#901,#902));\n"; }
};

class ConvertedModels : public UnitRun {
 protected:
  // Whether this build knows the release; those of developers leave some out.
  static bool IsBuilt(SchemaNamespace release) {
    try {
      FactoriesOf(release);
      return true;
    } catch (const std::logic_error&) {
      return false;
    }
  }

  // The first model is in millimetres and degrees. Gives the records of the other, which is in
  // metres and radians, after the conversion: those of its own units left out.
  std::string Converted(const std::string& records, std::string_view schema = "IFC4") {
    return Converted(UnitRecords::Millimetres() + UnitRecords::Degrees() + UnitRecords::Both(),
                     UnitRecords::Metres() + UnitRecords::Radians() + UnitRecords::Both(), records,
                     schema);
  }
  std::string Converted(const std::string& firstUnits, const std::string& laterUnits,
                        const std::string& records, std::string_view schema = "IFC4") {
    IfcDocument& first = Add("first.ifc", firstUnits, schema);
    IfcDocument& later = Add("later.ifc", laterUnits + records, schema);
    result_ = {};
    Ticker ticker({.callback = RecordedProgress::Callback});
    if (!ConvertUnits(first, later, ticker, result_)) return "not converted";
    std::string lines;
    const NumberTable& entities = later.mainContainer->entities;
    for (auto at = entities.First(); at; at = entities.Next(at.number)) {
      if (at.number <= 900 || !IsOfUnits(*at.entity)) lines += LineOf(*at.entity);
    }
    return lines;
  }

  std::size_t CountOf(const ConvertedValues::Counts& counts, std::string_view unit) const {
    return counts[static_cast<std::size_t>(MeasureOfUnit(unit))];
  }

  ConvertedModel result_;

 private:
  static bool IsOfUnits(const IFC::IfcEntity& entity) {
    const std::string_view name = FindFacts(entity)->name;
    return name.find("Unit") != std::string_view::npos || name == "IfcDimensionalExponents";
  }
};

}  // namespace corvel::test

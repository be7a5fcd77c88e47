// One object of every class of a release in other units and back.
#include <gtest/gtest.h>

#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/ticker.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/units/convert_units.h"
#include "merge/federation/units/converted_models.h"
#include "merge/record_document.h"
#include "platform/file.h"
#include "schema/attributes.h"
#include "schema/record_model.h"

namespace corvel::test {

namespace {

std::string UpperName(const ClassFacts& facts) {
  std::string name = facts.name;
  for (char& letter : name) letter = static_cast<char>(std::toupper(letter));
  return name;
}

// Every class twice: with all attributes, and without those that tell a unit.
class ModelOfEveryClass {
 public:
  explicit ModelOfEveryClass(SchemaNamespace schema) : model_({}, schema), schema_(schema) {
    for (const ClassFacts& facts : Classes()) {
      if (IsValue(facts)) continue;
      objects_.push_back((*model_).CreateESet(UpperName(facts)));
      objects_.push_back((*model_).CreateESet(UpperName(facts)));
    }
    AddProperties();
    for (std::size_t i = 0; i < objects_.size(); ++i) Fill(*objects_[i], i % 2 == 0);
  }

  IfcDocument& Document() { return *model_; }
  const std::vector<IFC::IfcEntity*>& Objects() const { return objects_; }
  std::span<const ClassFacts> Classes() const { return FactoriesOf(schema_).classes->classes; }

  // All measures in units of this size, lengths and temperatures apart from the others.
  void Assign(const std::string& factor, const std::string& length, const std::string& offset) {
    EntityList units;
    for (const MeasureFacts& facts : AllMeasures()) {
      const bool isLength = facts.unit == "LENGTHUNIT";
      const bool isTemperature = facts.unit == "THERMODYNAMICTEMPERATUREUNIT";
      IFC::IfcEntity* const unit = MakeUnit(facts, std::stod(isLength ? length : factor),
                                            isTemperature ? std::stod(offset) : 0.0);
      if (unit != nullptr) units.Append(unit, Pool());
    }
    IFC::IfcEntity* const assignment = (*model_).CreateESet("IFCUNITASSIGNMENT");
    SetAttribute(*assignment, "Units", units);
    (*model_).GetParser().ifcUnitAssignment = assignment;
  }

 private:
  static bool IsValue(const ClassFacts& facts) {
    return facts.supertype == nullptr && facts.AttributeCount() == 1 &&
           std::string_view(facts.Attribute(0).name) == "value";
  }
  MemoryPool& Pool() { return (*model_).mainContainer->Pool(); }

  IFC::IfcEntity* MakeValue(const ClassFacts& facts) {
    const EntityCreator create = FactoriesOf(schema_).Find(UpperName(facts));
    IFC::IfcEntity* const value = create(Pool());
    value->inlineValue = true;
    for (const Attribute attribute : AttributesOf(*value)) PutNumber(attribute);
    return value;
  }

  // A property for each type of value.
  void AddProperties() {
    for (const ClassFacts& facts : Classes()) {
      if (!IsValue(facts)) continue;
      IFC::IfcEntity* const property = (*model_).CreateESet("IFCPROPERTYSINGLEVALUE");
      if (SetAttribute(*property, "NominalValue", MakeValue(facts))) typed_.push_back(property);
    }
  }

  double NextNumber() { return 1.0 + static_cast<double>(++count_ % 977) / 7.0; }

  void PutNumber(const Attribute& attribute) {
    if (attribute.Facts().depth == 0) {
      attribute.Set(NextNumber());
    } else if (attribute.Facts().depth == 1) {
      List<double> list;
      for (int i = 0; i < 3; ++i) list.Append(NextNumber(), Pool());
      attribute.Set(list);
    } else {
      List<List<double>> lists;
      List<double> list;
      for (int i = 0; i < 2; ++i) list.Append(NextNumber(), Pool());
      lists.Append(list, Pool());
      lists.Append(list.Clone(Pool()), Pool());
      attribute.Set(lists);
    }
  }

  void Fill(IFC::IfcEntity& object, bool withUnit) {
    for (const Attribute attribute : AttributesOf(object)) {
      const std::string_view name = attribute.Name();
      if (!withUnit && name.find("Unit") != std::string_view::npos) continue;
      PutNumber(attribute);
      if (attribute.Facts().kind == ValueKind::kSelect) PutValue(attribute);
      if (Refers(attribute.Facts().kind) && !attribute.HasValue()) PutReference(attribute);
    }
  }

  template <class T>
  bool PutOne(const Attribute& attribute, T* object) {
    if (attribute.Facts().depth == 0) return attribute.Set<IFC::IfcEntity*>(object);
    if (attribute.Facts().depth != 1 || !attribute.Facts().Admits(object)) return false;
    EntityList list;
    list.Append(object, Pool());
    return attribute.Set(list);
  }
  void PutValue(const Attribute& attribute) {
    const std::span<const ClassFacts> classes = Classes();
    for (std::size_t i = 0; i < classes.size(); ++i) {
      const ClassFacts& facts = classes[(i + nextValue_) % classes.size()];
      if (!IsValue(facts) || facts.Attribute(0).kind != ValueKind::kReal) continue;
      if (PutOne(attribute, MakeValue(facts))) {
        nextValue_ = (i + nextValue_ + 1) % classes.size();
        return;
      }
    }
  }
  void PutReference(const Attribute& attribute) {
    for (std::size_t i = 0; i < objects_.size(); ++i) {
      const std::size_t at = (i + nextReference_) % objects_.size();
      if (PutOne(attribute, objects_[at])) {
        nextReference_ = at + 1;
        return;
      }
    }
  }

  IFC::IfcEntity* MakeUnit(const MeasureFacts& facts, double factor, double offset) {
    IFC::IfcEntity* const second = (*model_).CreateESet("IFCSIUNIT");
    SetEnumeration(*second, "UnitType", "TIMEUNIT");
    SetEnumeration(*second, "Name", "SECOND");
    // What it is made from counts for nothing but its size, which is one.
    const bool hasOffset = offset != 0.0 && Has("IFCCONVERSIONBASEDUNITWITHOFFSET");
    IFC::IfcEntity* const made = (*model_).CreateESet(hasOffset ? "IFCCONVERSIONBASEDUNITWITHOFFSET"
                                                                : "IFCCONVERSIONBASEDUNIT");
    IFC::IfcEntity* const measure = (*model_).CreateESet("IFCMEASUREWITHUNIT");
    IFC::IfcEntity* const value = MakeValue(*FactoriesOf(schema_).classes->Find("IfcReal"));
    SetAttribute(*value, "value", factor);
    SetAttribute(*measure, "ValueComponent", value);
    SetAttribute(*measure, "UnitComponent", second);
    SetAttribute(*made, "ConversionFactor", measure);
    if (hasOffset) SetAttribute(*made, "ConversionOffset", offset);
    if (facts.unitClass == UnitClass::kNamed) {
      return SetEnumeration(*made, "UnitType", facts.unit) ? made : nullptr;
    }
    SetEnumeration(*made, "UnitType", "TIMEUNIT");
    IFC::IfcEntity* const element = (*model_).CreateESet("IFCDERIVEDUNITELEMENT");
    SetAttribute(*element, "Unit", made);
    SetAttribute(*element, "Exponent", std::int32_t{1});
    IFC::IfcEntity* const derived = (*model_).CreateESet("IFCDERIVEDUNIT");
    EntityList elements;
    elements.Append(element, Pool());
    SetAttribute(*derived, "Elements", elements);
    const bool isKnown = SetEnumeration(*derived, "UnitType", facts.unit) ||
                         (facts.unit == "MOMENTOFINERTIAUNIT" &&
                          SetEnumeration(*derived, "UnitType", "MOMENTORINERTIAUNIT"));
    return isKnown ? derived : nullptr;
  }
  bool Has(std::string_view upperName) const {
    return FactoriesOf(schema_).Find(upperName) != nullptr;
  }
  static bool SetEnumeration(IFC::IfcEntity& entity, std::string_view attribute,
                             std::string_view name) {
    const auto found = AttributesOf(entity).Find(attribute);
    return found && found->SetEnumeration(name);
  }

  RecordDocument model_;
  SchemaNamespace schema_;
  std::vector<IFC::IfcEntity*> objects_;
  std::vector<IFC::IfcEntity*> typed_;
  std::size_t count_ = 0;
  std::size_t nextValue_ = 0;
  std::size_t nextReference_ = 0;
};

// A number of the model: where it is, of what measure, and what it was.
struct NotedNumber {
  const double* at;
  std::string name;
  Measure measure;
  bool mayChange;
  double before;
};

std::vector<NotedNumber> NotedNumbersOf(IfcDocument& document) {
  ValuePlans plans;
  std::vector<NotedNumber> numbers;
  for (const auto& [number, entity] : document.mainContainer->entities) {
    if (FindFacts(*entity) == nullptr) continue;
    const ClassFacts& ofObject = *FindFacts(*entity);
    ForEachInRecord(*entity, [&](const Attribute& attribute) {
      const AttributeFacts& facts = attribute.Facts();
      if (facts.kind != ValueKind::kReal) return;
      const Measure measure = MeasureOf(*facts.type);
      bool mayChange = measure != Measure::kNone ||
                       std::string_view(facts.type->name) == "IfcParameterValue" ||
                       std::string_view(facts.name) == "DirectionRatios";
      for (const PlannedValue& planned : plans.Of(ofObject)) {
        mayChange = mayChange || planned.facts == &facts;
      }
      attribute.ForEach<double>([&](double& value) {
        numbers.push_back(
            {&value, std::string(ofObject.name) + "." + facts.name, measure, mayChange, value});
      });
    });
  }
  return numbers;
}

bool SameBits(double one, double other) {
  return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

void ExpectBack(const std::vector<NotedNumber>& numbers) {
  for (const NotedNumber& number : numbers) {
    const double offset = number.measure == Measure::kTemperature ? 300.0 : 0.0;
    EXPECT_NEAR(*number.at, number.before, 1e-12 * (std::abs(number.before) + offset))
        << number.name;
  }
}

class EveryClassInOtherUnits : public testing::TestWithParam<Release> {
 protected:
  const TestPlatform boxesGoNowhere_;  // of models with several projects

  static void Convert(ModelOfEveryClass& model, const IfcDocument& first, ConvertedModel& result) {
    Ticker ticker({.callback = nullptr});
    ASSERT_TRUE(ConvertUnits(first, model.Document(), ticker, result));
    ASSERT_TRUE(result.values.IsComplete());
  }
};
RUN_FOR_EACH_RELEASE(EveryClassInOtherUnits);

TEST_P(EveryClassInOtherUnits, AndBackItIsWhatItWas) {
  ModelOfEveryClass model(GetParam().schema);
  ModelOfEveryClass feet(GetParam().schema);
  ModelOfEveryClass millimetres(GetParam().schema);
  model.Assign("1.0", "0.001", "273.15");
  feet.Assign("0.017453292519943295", "0.3048", "255.37");
  millimetres.Assign("1.0", "0.001", "273.15");
  std::vector<NotedNumber> numbers = NotedNumbersOf(model.Document());
  ASSERT_GT(numbers.size(), 500u);

  ConvertedModel there;
  Convert(model, feet.Document(), there);
  std::map<Measure, std::size_t> changed;
  for (const NotedNumber& number : numbers) {
    if (!number.mayChange) {
      EXPECT_TRUE(SameBits(*number.at, number.before)) << number.name;
    } else if (!SameBits(*number.at, number.before)) {
      ++changed[number.measure];
    }
  }
  // Each kind of value that the release has is among those that changed.
  for (std::size_t i = 0; i < kMeasureCount; ++i) {
    const Measure measure{static_cast<std::uint8_t>(i)};
    const bool isThere =
        FactoriesOf(GetParam().schema).classes->Find(FactsOf(measure).type) != nullptr;
    if (isThere) {
      EXPECT_GT(changed[measure], 0u) << FactsOf(measure).type;
    }
  }
  EXPECT_GT(changed[Measure::kNone], 0u);

  ConvertedModel back;
  Convert(model, millimetres.Document(), back);
  ExpectBack(numbers);
}

// --- Models of other makers ----------------------------------------------------------------------

class RealModelInOtherUnits : public UnitRun, public testing::WithParamInterface<const char*> {
 protected:
  // Null where the file is not there, or its release is left out of this build.
  IfcDocument* Open() {
    const WideString path = FromUtf8(CORVEL_SHARED_DIR "/samples/" + std::string(GetParam()));
    platform::File file;
    if (!file.Open(path, platform::OpenMode::kRead)) return nullptr;
    file.Close();
    const QuietReading quiet;
    auto document =
        std::make_unique<IfcDocument>(false, RecordedReports::Reporter, RecordedProgress::Callback);
    document->KeepWorkFileIn(folder_.Path(""));
    try {
      if (document->OpenFile(path, 1) == 0) return nullptr;
    } catch (const std::logic_error&) {
      return nullptr;
    }
    return Take(std::move(document)).document.get();
  }
};
INSTANTIATE_TEST_SUITE_P(
    Models, RealModelInOtherUnits,
    testing::Values("duplex/Duplex_A_20110907.ifc", "pcert/Building-Architecture.ifc",
                    "pcert/Building-Hvac.ifc", "pcert/Building-Structural.ifc",
                    "rfi/10_-_ACCA_-_RFI_-_Track_-_Benevento_Appia_-_Benevento.ifc",
                    "rfi/ACCA_-_RFI_-_Signalling.ifc", "schependomlaan/IFC-breedplaatvloeren.ifc",
                    "schependomlaan/IFC-staal.ifc", "schependomlaan/MULTICOM-balkons.ifc",
                    "single/3rooms_Heater_AirTerminal_Table_with_SB.ifc",
                    "single/539--rotated-studs--augmented.ifc", "single/AC20-FZK-Haus.ifc",
                    "single/BC003_ALX4_reference.ifc", "single/IfcReinforcingBar.ifc",
                    "single/Vogel_Gesamt.ifc", "single/small_house.ifc",
                    "single/vectorworks_unicode.ifc", "tekla/TeklaModell.ifc"));

TEST_P(RealModelInOtherUnits, AndBackItIsWhatItWas) {
  IfcDocument* const model = Open();
  IfcDocument* const asItWas = Open();
  if (model == nullptr || asItWas == nullptr) GTEST_SKIP() << "not there, or of no release of ours";
  IfcDocument& feet =
      Add("feet.ifc", UnitRecords::Feet() + UnitRecords::Degrees() + UnitRecords::Both(),
          Narrow(model->KnownSchemaIdentifier()));
  const std::vector<NotedNumber> numbers = NotedNumbersOf(*model);
  ConvertedModel there;
  Ticker ticker({.callback = nullptr});
  ASSERT_TRUE(ConvertUnits(feet, *model, ticker, there));
  EXPECT_TRUE(there.differs);
  std::size_t changed = 0;
  for (const NotedNumber& number : numbers) {
    const bool isSame = SameBits(*number.at, number.before);
    if (!number.mayChange) {
      EXPECT_TRUE(isSame) << number.name;
    }
    if (!isSame) ++changed;
  }
  EXPECT_GT(changed, numbers.size() / 4);
  ConvertedModel back;
  ASSERT_TRUE(ConvertUnits(*asItWas, *model, ticker, back));
  ExpectBack(numbers);
}

}  // namespace

}  // namespace corvel::test

#include "merge/federation/units/measures.h"

#include <algorithm>
#include <iterator>

namespace corvel {

namespace {

// Names of types and units mostly agree, and mislead where they do not. The first three stand in
// the order of the enumeration.
constexpr MeasureFacts kMeasures[] = {
    {"IfcLengthMeasure", "LENGTHUNIT", UnitClass::kNamed},
    {"IfcPlaneAngleMeasure", "PLANEANGLEUNIT", UnitClass::kNamed},
    {"IfcThermodynamicTemperatureMeasure", "THERMODYNAMICTEMPERATUREUNIT", UnitClass::kNamed},
    {"IfcAbsorbedDoseMeasure", "ABSORBEDDOSEUNIT", UnitClass::kNamed},
    {"IfcAmountOfSubstanceMeasure", "AMOUNTOFSUBSTANCEUNIT", UnitClass::kNamed},
    {"IfcAreaMeasure", "AREAUNIT", UnitClass::kNamed},
    {"IfcDoseEquivalentMeasure", "DOSEEQUIVALENTUNIT", UnitClass::kNamed},
    {"IfcElectricCapacitanceMeasure", "ELECTRICCAPACITANCEUNIT", UnitClass::kNamed},
    {"IfcElectricChargeMeasure", "ELECTRICCHARGEUNIT", UnitClass::kNamed},
    {"IfcElectricConductanceMeasure", "ELECTRICCONDUCTANCEUNIT", UnitClass::kNamed},
    {"IfcElectricCurrentMeasure", "ELECTRICCURRENTUNIT", UnitClass::kNamed},
    {"IfcElectricResistanceMeasure", "ELECTRICRESISTANCEUNIT", UnitClass::kNamed},
    {"IfcElectricVoltageMeasure", "ELECTRICVOLTAGEUNIT", UnitClass::kNamed},
    {"IfcEnergyMeasure", "ENERGYUNIT", UnitClass::kNamed},
    {"IfcForceMeasure", "FORCEUNIT", UnitClass::kNamed},
    {"IfcFrequencyMeasure", "FREQUENCYUNIT", UnitClass::kNamed},
    {"IfcIlluminanceMeasure", "ILLUMINANCEUNIT", UnitClass::kNamed},
    {"IfcInductanceMeasure", "INDUCTANCEUNIT", UnitClass::kNamed},
    {"IfcLuminousFluxMeasure", "LUMINOUSFLUXUNIT", UnitClass::kNamed},
    {"IfcLuminousIntensityMeasure", "LUMINOUSINTENSITYUNIT", UnitClass::kNamed},
    {"IfcMagneticFluxDensityMeasure", "MAGNETICFLUXDENSITYUNIT", UnitClass::kNamed},
    {"IfcMagneticFluxMeasure", "MAGNETICFLUXUNIT", UnitClass::kNamed},
    {"IfcMassMeasure", "MASSUNIT", UnitClass::kNamed},
    {"IfcPowerMeasure", "POWERUNIT", UnitClass::kNamed},
    {"IfcPressureMeasure", "PRESSUREUNIT", UnitClass::kNamed},
    {"IfcRadioActivityMeasure", "RADIOACTIVITYUNIT", UnitClass::kNamed},
    {"IfcSolidAngleMeasure", "SOLIDANGLEUNIT", UnitClass::kNamed},
    {"IfcTimeMeasure", "TIMEUNIT", UnitClass::kNamed},
    {"IfcVolumeMeasure", "VOLUMEUNIT", UnitClass::kNamed},
    {"IfcAccelerationMeasure", "ACCELERATIONUNIT", UnitClass::kDerived},
    {"IfcAngularVelocityMeasure", "ANGULARVELOCITYUNIT", UnitClass::kDerived},
    {"IfcAreaDensityMeasure", "AREADENSITYUNIT", UnitClass::kDerived},
    {"IfcCurvatureMeasure", "CURVATUREUNIT", UnitClass::kDerived},
    {"IfcDynamicViscosityMeasure", "DYNAMICVISCOSITYUNIT", UnitClass::kDerived},
    {"IfcHeatFluxDensityMeasure", "HEATFLUXDENSITYUNIT", UnitClass::kDerived},
    {"IfcHeatingValueMeasure", "HEATINGVALUEUNIT", UnitClass::kDerived},
    {"IfcIonConcentrationMeasure", "IONCONCENTRATIONUNIT", UnitClass::kDerived},
    {"IfcIsothermalMoistureCapacityMeasure", "ISOTHERMALMOISTURECAPACITYUNIT", UnitClass::kDerived},
    {"IfcKinematicViscosityMeasure", "KINEMATICVISCOSITYUNIT", UnitClass::kDerived},
    {"IfcLinearForceMeasure", "LINEARFORCEUNIT", UnitClass::kDerived},
    {"IfcLinearMomentMeasure", "LINEARMOMENTUNIT", UnitClass::kDerived},
    {"IfcLinearStiffnessMeasure", "LINEARSTIFFNESSUNIT", UnitClass::kDerived},
    {"IfcLinearVelocityMeasure", "LINEARVELOCITYUNIT", UnitClass::kDerived},
    {"IfcLuminousIntensityDistributionMeasure", "LUMINOUSINTENSITYDISTRIBUTIONUNIT",
     UnitClass::kDerived},
    {"IfcMassDensityMeasure", "MASSDENSITYUNIT", UnitClass::kDerived},
    {"IfcMassFlowRateMeasure", "MASSFLOWRATEUNIT", UnitClass::kDerived},
    {"IfcMassPerLengthMeasure", "MASSPERLENGTHUNIT", UnitClass::kDerived},
    {"IfcModulusOfElasticityMeasure", "MODULUSOFELASTICITYUNIT", UnitClass::kDerived},
    {"IfcModulusOfLinearSubgradeReactionMeasure", "MODULUSOFLINEARSUBGRADEREACTIONUNIT",
     UnitClass::kDerived},
    {"IfcModulusOfRotationalSubgradeReactionMeasure", "MODULUSOFROTATIONALSUBGRADEREACTIONUNIT",
     UnitClass::kDerived},
    {"IfcModulusOfSubgradeReactionMeasure", "MODULUSOFSUBGRADEREACTIONUNIT", UnitClass::kDerived},
    {"IfcMoistureDiffusivityMeasure", "MOISTUREDIFFUSIVITYUNIT", UnitClass::kDerived},
    {"IfcMolecularWeightMeasure", "MOLECULARWEIGHTUNIT", UnitClass::kDerived},
    {"IfcMomentOfInertiaMeasure", "MOMENTOFINERTIAUNIT", UnitClass::kDerived},
    {"IfcPlanarForceMeasure", "PLANARFORCEUNIT", UnitClass::kDerived},
    {"IfcRotationalFrequencyMeasure", "ROTATIONALFREQUENCYUNIT", UnitClass::kDerived},
    {"IfcRotationalMassMeasure", "ROTATIONALMASSUNIT", UnitClass::kDerived},
    {"IfcRotationalStiffnessMeasure", "ROTATIONALSTIFFNESSUNIT", UnitClass::kDerived},
    {"IfcSectionalAreaIntegralMeasure", "SECTIONAREAINTEGRALUNIT", UnitClass::kDerived},
    {"IfcSectionModulusMeasure", "SECTIONMODULUSUNIT", UnitClass::kDerived},
    {"IfcShearModulusMeasure", "SHEARMODULUSUNIT", UnitClass::kDerived},
    {"IfcSoundPowerMeasure", "SOUNDPOWERUNIT", UnitClass::kDerived},
    {"IfcSoundPressureMeasure", "SOUNDPRESSUREUNIT", UnitClass::kDerived},
    {"IfcSpecificHeatCapacityMeasure", "SPECIFICHEATCAPACITYUNIT", UnitClass::kDerived},
    {"IfcTemperatureGradientMeasure", "TEMPERATUREGRADIENTUNIT", UnitClass::kDerived},
    {"IfcTemperatureRateOfChangeMeasure", "TEMPERATURERATEOFCHANGEUNIT", UnitClass::kDerived},
    {"IfcThermalAdmittanceMeasure", "THERMALADMITTANCEUNIT", UnitClass::kDerived},
    {"IfcThermalConductivityMeasure", "THERMALCONDUCTANCEUNIT", UnitClass::kDerived},
    {"IfcThermalExpansionCoefficientMeasure", "THERMALEXPANSIONCOEFFICIENTUNIT",
     UnitClass::kDerived},
    {"IfcThermalResistanceMeasure", "THERMALRESISTANCEUNIT", UnitClass::kDerived},
    {"IfcThermalTransmittanceMeasure", "THERMALTRANSMITTANCEUNIT", UnitClass::kDerived},
    {"IfcTorqueMeasure", "TORQUEUNIT", UnitClass::kDerived},
    {"IfcVaporPermeabilityMeasure", "VAPORPERMEABILITYUNIT", UnitClass::kDerived},
    {"IfcVolumetricFlowRateMeasure", "VOLUMETRICFLOWRATEUNIT", UnitClass::kDerived},
    {"IfcWarpingConstantMeasure", "WARPINGCONSTANTUNIT", UnitClass::kDerived},
    {"IfcWarpingMomentMeasure", "WARPINGMOMENTUNIT", UnitClass::kDerived},
};
static_assert(std::size(kMeasures) == kMeasureCount);

constexpr UnmeasuredType kUnmeasured[] = {
    {"IfcRatioMeasure", "a ratio has no unit"},
    {"IfcCountMeasure", "a count has no unit"},
    {"IfcNumericMeasure", "nothing tells its unit"},
    {"IfcContextDependentMeasure", "nothing tells its unit"},
    {"IfcReal", "a number has no unit"},
    {"IfcComplexNumber", "a number has no unit"},
    {"IfcParameterValue", "by what it is a parameter of"},
    {"IfcMonetaryMeasure", "money is not converted"},
    {"IfcIntegerCountRateMeasure", "a whole number that would not stay one"},
    {"IfcPHMeasure", "a logarithm"},
    {"IfcSoundPowerLevelMeasure", "a logarithm"},
    {"IfcSoundPressureLevelMeasure", "a logarithm"},
    {"IfcCompoundPlaneAngleMeasure", "always degrees, minutes and seconds"},
    {"IfcSecondInMinute", "always seconds"},
    {"IfcTimeStamp", "always seconds"},
    {"IfcSpecularExponent", "a number has no unit"},
    {"IfcSpecularRoughness", "a number has no unit"},
};

// As two releases spell it.
constexpr std::string_view kMistypedInertia = "MOMENTORINERTIAUNIT";

}  // namespace

std::span<const MeasureFacts> AllMeasures() { return kMeasures; }

std::span<const UnmeasuredType> AllUnmeasuredTypes() { return kUnmeasured; }

Measure MeasureOf(const TypeFacts& type) {
  for (const TypeFacts* link = &type; link != nullptr; link = link->base) {
    const auto* const row =
        std::find_if(std::begin(kMeasures), std::end(kMeasures),
                     [link](const MeasureFacts& facts) { return facts.type == link->name; });
    if (row != std::end(kMeasures)) return Measure(row - std::begin(kMeasures));
  }
  return Measure::kNone;
}

Measure MeasureOfUnit(std::string_view unitType) {
  if (unitType == kMistypedInertia) unitType = "MOMENTOFINERTIAUNIT";
  const auto* const row =
      std::find_if(std::begin(kMeasures), std::end(kMeasures),
                   [unitType](const MeasureFacts& facts) { return facts.unit == unitType; });
  return row == std::end(kMeasures) ? Measure::kNone : Measure(row - std::begin(kMeasures));
}

}  // namespace corvel

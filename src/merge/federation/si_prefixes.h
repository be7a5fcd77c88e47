// The prefixes of SI units, as models name them.
#pragma once

#include <optional>
#include <string_view>

namespace corvel {

struct SiPrefix {
  std::string_view name;
  double factor;
};

inline constexpr SiPrefix kSiPrefixes[] = {
    {"EXA", 1e18},  {"PETA", 1e15},  {"TERA", 1e12},   {"GIGA", 1e9},
    {"MEGA", 1e6},  {"KILO", 1e3},   {"HECTO", 1e2},   {"DECA", 1e1},
    {"DECI", 1e-1}, {"CENTI", 1e-2}, {"MILLI", 1e-3},  {"MICRO", 1e-6},
    {"NANO", 1e-9}, {"PICO", 1e-12}, {"FEMTO", 1e-15}, {"ATTO", 1e-18}};

// 1 where no prefix is named. Nothing for names that no prefix has.
constexpr std::optional<double> FindPrefix(std::string_view name) {
  if (name.empty()) return 1.0;
  for (const SiPrefix& prefix : kSiPrefixes) {
    if (prefix.name == name) return prefix.factor;
  }
  return std::nullopt;
}

// 1 for any other name, and for none.
constexpr double FactorOfPrefix(std::string_view name) { return FindPrefix(name).value_or(1.0); }

}  // namespace corvel

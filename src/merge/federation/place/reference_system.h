// The reference systems that maps are drawn in.
#pragma once

#include <array>
#include <cstddef>

#include "core/text.h"

namespace corvel {

// As a file states it. Empty where it states nothing.
struct ReferenceSystem {
  enum Part : std::size_t {
    kName,  // "EPSG:28992"
    kGeodeticDatum,
    kVerticalDatum,
    kProjection,
    kZone,
    kPrimeMeridian,
    kWellKnownText,
    kPartCount
  };
  std::array<WideString, kPartCount> parts{};

  // The name, or where there is none the well-known text: one of them has to be there.
  const WideString& Name() const {
    return parts[kName].empty() ? parts[kWellKnownText] : parts[kName];
  }
};

// A name without what tells no two systems apart: case, blanks and most punctuation.
WideString BareName(const WideString& name);

// Whether both have one name, or without names one well-known text, and nothing that both state
// differs. Bare names are compared: "epsg: 28992" is "EPSG:28992".
bool SameSystem(const ReferenceSystem& one, const ReferenceSystem& other);

}  // namespace corvel

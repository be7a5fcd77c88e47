#include "merge/federation/place/reference_system.h"

namespace corvel {

namespace {

bool IsLetterOrDigit(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9') || unit > 127;
}

}  // namespace

// Signs and points make other numbers.
WideString BareName(const WideString& name) {
  WideString bare = ToLowerAscii(name);
  std::erase_if(bare, [](char16_t unit) {
    return !IsLetterOrDigit(unit) && unit != u'.' && unit != u'-' && unit != u'+';
  });
  return bare;
}

bool SameSystem(const ReferenceSystem& one, const ReferenceSystem& other) {
  bool haveCommonName = false;
  for (std::size_t part = 0; part < ReferenceSystem::kPartCount; ++part) {
    const WideString here = BareName(one.parts[part]);
    const WideString there = BareName(other.parts[part]);
    if (here.empty() || there.empty()) continue;
    if (here != there) return false;
    if (part == ReferenceSystem::kName || part == ReferenceSystem::kWellKnownText) {
      haveCommonName = true;
    }
  }
  return haveCommonName;
}

}  // namespace corvel

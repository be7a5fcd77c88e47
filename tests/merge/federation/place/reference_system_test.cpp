// Which reference systems are the same.
#include "merge/federation/place/reference_system.h"

#include <gtest/gtest.h>

namespace corvel {
namespace {

ReferenceSystem Named(const WideString& name, const WideString& datum = {}) {
  ReferenceSystem system;
  system.parts[ReferenceSystem::kName] = name;
  system.parts[ReferenceSystem::kGeodeticDatum] = datum;
  return system;
}

TEST(ReferenceSystems, OfOneNameAreTheSameHoweverItIsWritten) {
  EXPECT_TRUE(SameSystem(Named(u"EPSG:28992"), Named(u"EPSG:28992")));
  EXPECT_TRUE(SameSystem(Named(u"EPSG:28992"), Named(u" epsg: 28992 ")));
  EXPECT_FALSE(SameSystem(Named(u"EPSG:28992"), Named(u"EPSG:28993")));
}

TEST(ReferenceSystems, ThatStateAnotherDatumAreNotTheSame) {
  EXPECT_FALSE(SameSystem(Named(u"local", u"WGS 84"), Named(u"local", u"ETRS89")));
  EXPECT_TRUE(SameSystem(Named(u"local", u"WGS 84"), Named(u"local", u"wgs84")));
}

TEST(ReferenceSystems, WhatOnlyOneStatesTellsThemNotApart) {
  EXPECT_TRUE(SameSystem(Named(u"EPSG:28992", u"RD"), Named(u"EPSG:28992")));
}

TEST(ReferenceSystems, SignsAndPointsMakeOtherNames) {
  EXPECT_FALSE(SameSystem(Named(u"zone +1"), Named(u"zone -1")));
  EXPECT_FALSE(SameSystem(Named(u"1.2"), Named(u"12")));
}

TEST(ReferenceSystems, WithoutANameAreNeverTheSame) {
  EXPECT_FALSE(SameSystem(Named(u""), Named(u"")));
  EXPECT_FALSE(SameSystem(Named(u"", u"WGS 84"), Named(u"", u"WGS 84")));
  EXPECT_FALSE(SameSystem(Named(u"EPSG:28992"), Named(u"")));
}

TEST(ReferenceSystems, WithoutANameAreToldByTheirWellKnownText) {
  ReferenceSystem one;
  one.parts[ReferenceSystem::kWellKnownText] = u"PROJCRS[\"a\"]";
  ReferenceSystem other = one;
  EXPECT_TRUE(SameSystem(one, other));
  EXPECT_EQ(u"PROJCRS[\"a\"]", one.Name());
  other.parts[ReferenceSystem::kWellKnownText] = u"PROJCRS[\"b\"]";
  EXPECT_FALSE(SameSystem(one, other));
}

}  // namespace
}  // namespace corvel

#include "host/facts/facts_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace corvel::host {

namespace {

std::vector<SpatialFacts> ObjectsNamed(WideView name, std::uint32_t count) {
  std::vector<SpatialFacts> objects;
  for (std::uint32_t i = 0; i < count; ++i) {
    objects.push_back({i, "IfcSite", {}, WideString(name) + ToWide(i), {}, double(i)});
  }
  return objects;
}

// The lines from the one that begins with `label` on, up to that of the next label.
WideString PartOf(const ModelFacts& facts, WideView label) {
  const WideString text = u"\n" + ModelFactsAsText(facts);
  const std::size_t begin = text.find(u"\n  " + WideString(label)) + 1;
  std::size_t end = begin;
  do {
    end = text.find(u"\n  ", end) + 1;
  } while (text[end + 2] == u' ');
  return text.substr(begin, end - begin);
}

}  // namespace

TEST(FactsText, AFewStoreysAreAllShown) {
  ModelFacts facts;
  facts.spatial.storeys = ObjectsNamed(u"L", 24);
  const WideString text = PartOf(facts, u"storeys");
  EXPECT_EQ(25, std::count(text.begin(), text.end(), u'\n'));
  EXPECT_EQ(WideString::npos, text.find(u"more"));
}

TEST(FactsText, OfManyStoreysTheLowestAndTheHighestAreShown) {
  ModelFacts facts;
  facts.spatial.storeys = ObjectsNamed(u"L", 260);
  const WideString text = PartOf(facts, u"storeys");
  EXPECT_TRUE(text.starts_with(u"  storeys         260\n         0.000 m  L0\n")) << ToUtf8(text);
  EXPECT_NE(WideString::npos, text.find(u"        13.000 m  L13\n"
                                        u"             ...  238 more, which --json has\n"
                                        u"       252.000 m  L252\n"))
      << ToUtf8(text);
  EXPECT_TRUE(text.ends_with(u"       259.000 m  L259\n"));
  EXPECT_EQ(24, std::count(text.begin(), text.end(), u'\n'));
}

TEST(FactsText, OfManySitesTheFirstAreNamed) {
  ModelFacts facts;
  facts.spatial.sites = ObjectsNamed(u"S", 12);
  EXPECT_EQ(u"  sites           12: S0, S1, S2, S3, S4, S5, S6, S7, S8, S9, S10, S11\n",
            PartOf(facts, u"sites"));
  facts.spatial.sites = ObjectsNamed(u"S", 13);
  EXPECT_EQ(
      u"  sites           13: S0, S1, S2, S3, S4, S5, S6, S7, S8, S9 and 3 more, which\n"
      u"                  --json has\n",
      PartOf(facts, u"sites"));
}

TEST(FactsText, OfManyClassesThoseWithMostProductsAreShown) {
  ModelFacts facts;
  for (std::uint64_t i = 0; i < 40; ++i) facts.products.emplace_back("IfcA", 100 - i);
  EXPECT_EQ(WideString::npos, PartOf(facts, u"products").find(u"more"));
  facts.products.emplace_back("IfcZ", 1);
  const WideString text = PartOf(facts, u"products");
  EXPECT_TRUE(
      text.ends_with(u"              63  IfcA\n             ...  3 more, which --json has\n"))
      << ToUtf8(text);
}

TEST(FactsText, TrueNorthHasNoDigitsOfArithmetic) {
  ModelFacts facts;
  facts.georeference.trueNorthDegrees = 49.999999999980595;
  EXPECT_EQ(u"  true north      50 degrees clockwise from the y axis\n",
            PartOf(facts, u"true north"));
  facts.georeference.trueNorthDegrees = -3.5e-15;
  EXPECT_EQ(u"  true north      0 degrees clockwise from the y axis\n",
            PartOf(facts, u"true north"));
  facts.georeference.trueNorthDegrees = -12.3456789;
  EXPECT_EQ(u"  true north      -12.345679 degrees clockwise from the y axis\n",
            PartOf(facts, u"true north"));
}

}  // namespace corvel::host

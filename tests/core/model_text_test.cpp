#include "core/model_text.h"

#include <gtest/gtest.h>

namespace corvel {
namespace {

// "wall" at an odd address.
class PlainWall {
 public:
  ModelText Text() const { return ModelText::OfPlain(bytes_ + 1); }

 private:
  alignas(2) char bytes_[6] = {'-', 'w', 'a', 'l', 'l', 0};
};

TEST(ModelText, OneWithoutATextIsNull) {
  EXPECT_TRUE(ModelText().IsNull());
  EXPECT_TRUE(ModelText(nullptr).IsNull());
  EXPECT_FALSE(ModelText(u"").IsNull());
  EXPECT_FALSE(PlainWall().Text().IsNull());
}

TEST(ModelText, ATextOfTheProgramHasSixteenBits) {
  const ModelText text = u"wall";
  EXPECT_FALSE(text.IsPlain());
  EXPECT_EQ(u"wall", text.Units());
  EXPECT_EQ(u"wall", text.ToWide());
}

TEST(ModelText, AtAnOddAddressItHasBytes) {
  const PlainWall wall;
  EXPECT_TRUE(wall.Text().IsPlain());
  EXPECT_EQ("wall", wall.Text().Plain());
  EXPECT_EQ(u"wall", wall.Text().ToWide());
}

TEST(ModelText, TwoAreEqualWhenTheySayTheSame) {
  const PlainWall one;
  const PlainWall other;
  EXPECT_EQ(one.Text(), other.Text());
  EXPECT_NE(one.Text().Address(), other.Text().Address());
  EXPECT_EQ(one.Text(), ModelText(u"wall"));
  EXPECT_EQ(ModelText(u"wall"), one.Text());
  EXPECT_FALSE(one.Text() == ModelText(u"walls"));
  EXPECT_FALSE(ModelText(u"") == one.Text());
  EXPECT_FALSE(ModelText() == one.Text());
  EXPECT_FALSE(ModelText(u"") == ModelText());
  EXPECT_EQ(ModelText(), ModelText());
}

}  // namespace
}  // namespace corvel

#include "step/carried/large_integers.h"

#include <gtest/gtest.h>

namespace corvel {

TEST(LargeIntegers, WholeNumbersOfMoreThan32BitsBecomeNought) {
  EXPECT_EQ("0", WithSmallIntegers("2147483648"));
  EXPECT_EQ("-0", WithSmallIntegers("-1707830504848729875"));
  EXPECT_EQ("IFCINTEGER(0)", WithSmallIntegers("IFCINTEGER(99999999999999999999999)"));
  EXPECT_EQ("(IFCINTEGER(1), IFCINTEGER(0))",
            WithSmallIntegers("(IFCINTEGER(1), IFCINTEGER(3842255828581540907))"));
}

TEST(LargeIntegers, WhatIsNoSuchNumberStays) {
  for (const char* const text :
       {"", "$", "2147483647", "-2147483647", "99999999999.", "99999999999.5E10", "1.99999999999",
        "99999999999E10", "'99999999999'", "'it''s 99999999999'", "/* 99999999999 */1",
        "#99999999999", "IFC99999999999(1)", ".A99999999999.", "(#99999999999,$,*)"}) {
    EXPECT_EQ(text, WithSmallIntegers(text));
  }
}

}  // namespace corvel

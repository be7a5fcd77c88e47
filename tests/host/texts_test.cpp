#include "host/texts.h"

#include <gtest/gtest.h>

namespace corvel::host {

TEST(TextOf, KeysOfReportsHaveTexts) {
  EXPECT_EQ(u"Could not open the file", TextOf("could_not_open_file"));
  EXPECT_EQ(u"Unknown schema identifier", TextOf("unknown_schema_identifier"));
  EXPECT_EQ(u"Are you sure you want to cancel?", TextOf("progress_bar_cancel_message"));
}

TEST(TextOf, AKeyWithoutTextStandsForItself) {
  EXPECT_EQ(u"no_such_key", TextOf("no_such_key"));
  EXPECT_EQ(u"", TextOf(""));
}

}  // namespace corvel::host

#include <gtest/gtest.h>

#include <string_view>

#include "desktop.h"
#include "transcript.h"

// --update-golden writes the golden transcripts anew.
int main(int count, char** arguments) {
  if (corvel::test_host::WasStartedForDocument(count, arguments)) return 0;
  testing::InitGoogleTest(&count, arguments);
  for (int i = 1; i < count; ++i) {
    if (std::string_view(arguments[i]) == "--update-golden") {
      corvel::test_host::UpdateGolden() = true;
    }
  }
  return RUN_ALL_TESTS();
}

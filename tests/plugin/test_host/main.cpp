#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "desktop.h"
#include "session.h"
#include "transcript.h"

namespace {

using namespace corvel::test_host;

// Merges files of anybody's, as a click on the button does. 0 when the output is there and no box
// was shown.
int Merge(const std::filesystem::path& output, char** inputs, int count) {
  namespace fs = std::filesystem;
  Session session;
  for (int i = 0; i < count; ++i) session.viewer.AddProject(fs::absolute(inputs[i]));
  session.viewer.output = fs::absolute(output).u16string();
  session.desktop.otherwise = true;
  session.Load();
  session.LoadModels();
  session.Click(kMergeActiveButton);
  for (const SystemBox& box : session.Boxes()) {
    std::printf("%s: %s\n", box.title.c_str(), box.text.c_str());
  }
  return fs::exists(output) && session.Boxes().empty() ? 0 : 1;
}

}  // namespace

// --update-golden writes the golden transcripts anew. --merge OUT FILE FILE... is one merge of the
// plug-in instead of the tests, for tools/side_by_side.py.
int main(int count, char** arguments) {
  if (WasStartedForDocument(count, arguments)) return 0;
  if (count > 3 && std::string_view(arguments[1]) == "--merge") {
    return Merge(arguments[2], arguments + 3, count - 3);
  }
  testing::InitGoogleTest(&count, arguments);
  for (int i = 1; i < count; ++i) {
    if (std::string_view(arguments[i]) == "--update-golden") UpdateGolden() = true;
  }
  return RUN_ALL_TESTS();
}

// Two models made of their records, and what a comparison of them tells.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "host/diff/diff_text.h"
#include "host/diff/model_diff.h"
#include "support/read_model.h"

namespace corvel::host::diff {

inline ModelDiff DiffOf(test::ReadModel& before, test::ReadModel& after,
                        double toleranceMm = 0.001) {
  EXPECT_TRUE(before.IsRead() && after.IsRead());
  const Tolerance tolerance{toleranceMm * 1e-3};
  auto diff =
      CompareModels(before.Document(), after.Document(), tolerance, [](int) { return true; });
  if (!diff) ADD_FAILURE() << "was cancelled";
  diff->before.path = "a.ifc";
  diff->after.path = "b.ifc";
  return std::move(*diff);
}

inline ModelDiff DiffOf(const std::string& before, const std::string& after,
                        double toleranceMm = 0.001) {
  test::ReadModel one(before);
  test::ReadModel other(after);
  return DiffOf(one, other, toleranceMm);
}

inline std::string TextOf(const ModelDiff& diff, bool inColours = false) {
  WideString text;
  EXPECT_TRUE(WriteDiffText(diff, inColours, [&](WideView piece) {
    text += piece;
    return true;
  }));
  return ToUtf8(text);
}

// Without the lines about the files and the counts.
inline std::string ChangesOf(const ModelDiff& diff) {
  std::string text = TextOf(diff);
  for (int line = 0; line < 3; ++line) text.erase(0, text.find('\n') + 1);
  return text;
}

inline std::string ChangesOf(const std::string& before, const std::string& after,
                             double toleranceMm = 0.001) {
  return ChangesOf(DiffOf(before, after, toleranceMm));
}

// `text` with `from`, which has to be in it, replaced by `to`.
inline std::string With(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  if (at == std::string::npos) {
    ADD_FAILURE() << from << " is not there";
    return text;
  }
  return text.replace(at, from.size(), to);
}

}  // namespace corvel::host::diff

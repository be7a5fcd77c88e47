// Where batches of records are cut.
#include "step/reader/parallel/record_cutter.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "step/streams/input_view_stream.h"

namespace corvel {
namespace {

// All that hides a ";", and the doubts about where it ends.
constexpr std::string_view kHiding =
    "#1=A('a;b');\n#2=A('it''s;','''',';');/* don't; /* '; **/#3=A('/*;',$);\n"
    "#4=A('*/;');/*/;*/#5=A(1./2.);/**/;#6=A('N/A;m/s'/*';*/);/* ' */#7=A($);\n"
    "#8=A('0123456789012345678901234567890123456789012345678901234567890123456789;');\n"
    "#9=A(0.1,0.2,0.3,0.4,0.5,0.6,0.7,0.8,0.9,1.0,1.1,1.2,1.3,1.4,1.5,1.6,1.7,1.8);\n";

// Behind each ";" that ends something, told byte by byte.
std::vector<std::size_t> BordersOf(std::string_view text) {
  std::vector<std::size_t> borders;
  std::size_t at = 0;
  const auto behind = [&](std::string_view end) { return text.find(end, at) + end.size(); };
  while (at < text.size()) {
    if (text[at] == '\'') {
      ++at;
      at = behind("'");
    } else if (text.substr(at, 2) == "/*") {
      at += 2;
      at = behind("*/");
    } else if (text[at++] == ';') {
      borders.push_back(at);
    }
  }
  return borders;
}

std::size_t FirstFrom(const std::vector<std::size_t>& borders, std::size_t least) {
  for (const std::size_t border : borders) {
    if (border > least) return border;
  }
  return 0;
}

TEST(BorderSearchTest, FindsTheFirstBorderBehindEveryByteInPiecesOfAnySize) {
  const std::vector<std::size_t> borders = BordersOf(kHiding);
  ASSERT_EQ(10u, borders.size());
  for (std::size_t wanted = 0; wanted < kHiding.size(); ++wanted) {
    for (const std::size_t piece :
         {std::size_t{1}, std::size_t{7}, std::size_t{64}, kHiding.size()}) {
      BorderSearch search(wanted);
      std::size_t found = 0;
      for (std::size_t at = 0; at < kHiding.size() && found == 0; at += piece) {
        const std::string_view part = kHiding.substr(at, piece);
        const char* const border = search.Run(part.data(), part.data() + part.size());
        if (border != nullptr) found = static_cast<std::size_t>(border - kHiding.data());
      }
      EXPECT_EQ(FirstFrom(borders, wanted), found) << wanted << " in pieces of " << piece;
    }
  }
}

TEST(RecordCutterTest, BatchesAreAllOfTheBytesInOrder) {
  for (std::size_t size = 1; size < kHiding.size() + 2; ++size) {
    FileStream::InputViewStream stream(kHiding);
    RecordCutter cutter(stream, size);
    std::string all;
    std::vector<char> bytes;
    while (cutter.Next(bytes)) {
      EXPECT_EQ(';', bytes.back());
      EXPECT_GT(bytes.size(), size);
      all.append(bytes.begin(), bytes.end());
    }
    all.append(bytes.begin(), bytes.end());
    EXPECT_EQ(kHiding, all) << size;
  }
}

TEST(RecordCutterTest, WhatHasNoEndIsGivenUp) {
  const std::string endless = "#1=A('" + std::string(RecordCutter::kLongestBatch, ' ');
  FileStream::InputViewStream stream(endless);
  RecordCutter cutter(stream, 100);
  std::vector<char> bytes;
  EXPECT_FALSE(cutter.Next(bytes));
  EXPECT_EQ(endless.size(), bytes.size());
}

}  // namespace
}  // namespace corvel

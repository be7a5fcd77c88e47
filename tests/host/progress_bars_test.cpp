#include "host/progress_bars.h"

#include <gtest/gtest.h>

#include "host/display_text.h"

namespace corvel::host {

TEST(RenderBar, HasTextBarAndPercent) {
  EXPECT_EQ(u"Reading: a.ifc         [#######.......]  50%", RenderBar(u"Reading: a.ifc", 50, 44));
}

TEST(RenderBar, IsFullAtTheEndAndEmptyAtTheStart) {
  EXPECT_EQ(u"x                      [..............]   0%", RenderBar(u"x", 0, 44));
  EXPECT_EQ(u"x                      [##############] 100%", RenderBar(u"x", 100, 44));
}

TEST(RenderBar, StaysInsideItsRangeAndWidth) {
  EXPECT_EQ(RenderBar(u"x", 100, 44), RenderBar(u"x", 104, 44));
  EXPECT_EQ(RenderBar(u"x", 0, 44), RenderBar(u"x", -4, 44));
  for (int columns = 5; columns <= 120; ++columns) {
    EXPECT_EQ(static_cast<std::size_t>(columns),
              ColumnsOf(RenderBar(u"Reading: \u4e2d\u6587 and a long name.ifc", 37, columns)))
        << columns;
  }
}

TEST(RenderBar, WithoutRoomThereIsNoBar) {
  EXPECT_EQ(u"Reading: a.ifc        50%", RenderBar(u"Reading: a.ifc", 50, 25));
  EXPECT_EQ(u"...ifc  50%", RenderBar(u"Reading: a.ifc", 50, 11));
}

TEST(RenderBar, ControlCharactersOfANameDoNotReachTheTerminal) {
  EXPECT_EQ(u"a?b                    [#######.......]  50%", RenderBar(u"a\x1b"
                                                                       u"b",
                                                                       50, 44));
}

class ProgressBarsTest : public testing::Test {
 protected:
  static ProgressView View(int overall, int step) { return {overall, step, u"All", u"Step"}; }
  WideString Take() { return std::exchange(written, {}); }

  WideString written;
  int columns = 45;
  ProgressBars bars{[this](WideView text) { written += text; }, [this] { return columns; }};
};

TEST_F(ProgressBarsTest, BothAreDrawnAndTheNextTimeInTheSamePlace) {
  bars.Draw(View(10, 50));
  EXPECT_EQ(RenderBar(u"All", 10, 44) + u"\n" + RenderBar(u"Step", 50, 44), Take());
  bars.Draw(View(10, 51));
  EXPECT_EQ(u"\r\x1b[A" + RenderBar(u"All", 10, 44) + u"\n" + RenderBar(u"Step", 51, 44), Take());
}

TEST_F(ProgressBarsTest, WhatDoesNotChangeIsNotDrawnAgain) {
  bars.Draw(View(10, 50));
  Take();
  bars.Draw(View(10, 50));
  EXPECT_EQ(u"", Take());
}

TEST_F(ProgressBarsTest, EraseEmptiesBothLinesAndLeavesTheCursorInTheFirst) {
  bars.Draw(View(10, 50));
  Take();
  bars.Erase();
  EXPECT_EQ(u"\r\x1b[2K\x1b[A\x1b[2K", Take());
  bars.Erase();
  EXPECT_EQ(u"", Take());
}

TEST_F(ProgressBarsTest, AfterErasingTheyAreDrawnAnew) {
  bars.Draw(View(10, 50));
  bars.Erase();
  Take();
  bars.Draw(View(10, 50));
  EXPECT_EQ(RenderBar(u"All", 10, 44) + u"\n" + RenderBar(u"Step", 50, 44), Take());
}

TEST_F(ProgressBarsTest, AWideTerminalIsNotFilled) {
  columns = 500;
  bars.Draw(View(0, 0));
  EXPECT_EQ(RenderBar(u"All", 0, 100) + u"\n" + RenderBar(u"Step", 0, 100), Take());
}

}  // namespace corvel::host

#include "host/progress_bars.h"

#include <algorithm>
#include <string>
#include <utility>

#include "host/display_text.h"
#include "merge/report/shared/json_text.h"

namespace corvel::host {

namespace {

constexpr int kWidestLine = 100;
constexpr int kPercentColumns = 5;  // " 100%"
constexpr int kLeastForBar = 40;

// The cursor stands behind the second bar. Up one line, both lines emptied.
constexpr WideView kToFirstLine = u"\r\x1b[A";
constexpr WideView kEraseBoth = u"\r\x1b[2K\x1b[A\x1b[2K";

WideString PercentText(int percent) {
  const std::string digits = std::to_string(std::clamp(percent, 0, 100));
  return Widen(std::string(4 - digits.size(), ' ') + digits + "%");
}

WideString BarText(int percent, int width) {
  const int filled = std::clamp(percent, 0, 100) * width / 100;
  return u" [" + WideString(static_cast<std::size_t>(filled), u'#') +
         WideString(static_cast<std::size_t>(width - filled), u'.') + u"]";
}

}  // namespace

WideString RenderBar(WideView text, int percent, int columns) {
  const WideString shown = Printable(text);
  const bool hasBar = columns >= kLeastForBar;
  const int barWidth = hasBar ? columns / 3 : 0;
  const WideString bar = hasBar ? BarText(percent, barWidth) : WideString();
  const int textColumns = std::max(columns - kPercentColumns - static_cast<int>(bar.size()), 0);
  return FitToColumns(shown, static_cast<std::size_t>(textColumns)) + bar + PercentText(percent);
}

WideString ProgressAsJson(const ProgressView& view, double seconds,
                          std::optional<double> secondsLeft) {
  constexpr int kDigits = 3;
  JsonText json;
  json.BeginObject();
  json.Member("event", "progress");
  json.Member("overall", view.overall);
  json.Member("step", view.step);
  json.Member("overallText", view.overallText);
  json.Member("stepText", view.stepText);
  json.Key("seconds").Rounded(seconds, kDigits);
  json.Key("secondsLeft");
  if (secondsLeft) {
    json.Rounded(*secondsLeft, kDigits);
  } else {
    json.Null();
  }
  json.EndObject();
  return FromUtf8(json.Take());
}

ProgressBars::ProgressBars(std::function<void(WideView)> write, std::function<int()> columns)
    : write_(std::move(write)), columns_(std::move(columns)) {}

void ProgressBars::Draw(const ProgressView& view) {
  // A line that fills the last column would wrap on some terminals.
  const int columns = std::min(columns_() - 1, kWidestLine);
  const WideString bars = RenderBar(view.overallText, view.overall, columns) + u"\n" +
                          RenderBar(view.stepText, view.step, columns);
  if (bars == drawn_) return;
  write_(drawn_.empty() ? bars : WideString(kToFirstLine) + bars);
  drawn_ = bars;
}

void ProgressBars::Erase() {
  if (drawn_.empty()) return;
  write_(kEraseBoth);
  drawn_.clear();
}

}  // namespace corvel::host

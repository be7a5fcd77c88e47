#include "host/wrapped_text.h"

#include <charconv>
#include <cmath>
#include <string>

#include "host/display_text.h"

namespace corvel::host {

namespace {

// As many units of `word` as fit into `columns`, one at least; a pair of surrogates stays whole.
std::size_t FittingUnits(WideView word, std::size_t columns) {
  std::size_t units = 0;
  while (units < word.size()) {
    const bool isPair = (word[units] & 0xFC00) == 0xD800 && units + 1 < word.size();
    const std::size_t next = units + (isPair ? 2 : 1);
    if (units != 0 && ColumnsOf(word.substr(0, next)) > columns) break;
    units = next;
  }
  return units;
}

class LineBreaker {
 public:
  explicit LineBreaker(WideView first) : indent_(ColumnsOf(first)), text_(first), used_(indent_) {}

  void Add(WideView word) {
    if (hasWord_ && used_ + 1 + ColumnsOf(word) > kLineColumns) {
      StartLine();
    } else if (hasWord_) {
      text_ += u' ';
      ++used_;
    }
    while (used_ + ColumnsOf(word) > kLineColumns) {
      const std::size_t units = FittingUnits(word, kLineColumns - used_);
      text_ += word.substr(0, units);
      word.remove_prefix(units);
      StartLine();
    }
    text_ += word;
    used_ += ColumnsOf(word);
    hasWord_ = true;
  }

  WideString Take() {
    // Nothing stands behind the label of what is empty.
    text_.erase(text_.find_last_not_of(u' ') + 1);
    return text_ + u"\n";
  }

 private:
  void StartLine() {
    text_ += u'\n';
    text_.append(indent_, u' ');
    used_ = indent_;
    hasWord_ = false;
  }

  std::size_t indent_;
  WideString text_;
  std::size_t used_;
  bool hasWord_ = false;
};

}  // namespace

WideString Wrapped(WideView first, WideView text) {
  const WideString safe = Printable(text);
  LineBreaker lines(first);
  for (std::size_t at = 0; at < safe.size();) {
    const std::size_t begin = safe.find_first_not_of(u' ', at);
    if (begin == WideString::npos) break;
    at = std::min(safe.find(u' ', begin), safe.size());
    lines.Add(WideView(safe).substr(begin, at - begin));
  }
  return lines.Take();
}

WideString LabelledLine(WideView label, WideView text) {
  constexpr std::size_t kLabelColumns = 18;
  WideString first = u"  " + WideString(label);
  first.append(first.size() < kLabelColumns ? kLabelColumns - first.size() : 1, u' ');
  return Wrapped(first, text);
}

WideString MetresText(double metres) {
  if (!std::isfinite(metres)) return u"-";
  constexpr int kPlaces = 3;
  // The longest double has 309 digits before its point.
  char text[350];
  const double shown = std::abs(metres) < 0.5e-3 ? 0.0 : metres;  // no "-0.000"
  const auto end =
      std::to_chars(text, text + sizeof text, shown, std::chars_format::fixed, kPlaces);
  return Widen({text, static_cast<std::size_t>(end.ptr - text)}) + u" m";
}

WideString NumberText(double number) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, number);
  return Widen({text, static_cast<std::size_t>(end.ptr - text)});
}

WideString Counted(std::uint64_t count, WideView one, WideView several) {
  return Widen(std::to_string(count)) + u" " + WideString(count == 1 ? one : several);
}

}  // namespace corvel::host

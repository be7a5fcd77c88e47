// The flow of the page: how many products of each input came to the result, by class.

#include <algorithm>
#include <map>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

#include "merge/report/page_sections.h"

namespace corvel {

namespace {

// Across, the drawing is as wide as the page leaves it, of which these are hundredths. Down, these
// are pixels, so that the names beside it stay as large as the page's own text at any width.
constexpr double kWidth = 100;
constexpr double kBar = 1.8;
constexpr double kHeight = 340;  // of all products together
constexpr double kGap = 8;
constexpr double kLeastHeight = 12;  // of an end, so that its name has room
constexpr std::size_t kMostInputs = 12;
constexpr std::size_t kMostClasses = 12;
constexpr std::size_t kLongestName = 30;

WideString Shortened(const WideString& name) {
  if (name.size() <= kLongestName) return name;
  return name.substr(0, kLongestName / 2) + u"\u2026" +
         name.substr(name.size() - kLongestName / 2 + 1);
}

struct End {
  WideString name;
  std::string key;  // of a text, in the place of the name
  std::size_t input = 0;
  std::size_t count = 0;
  double top = 0;
  double height = 0;
  double used = 0;  // by the flows so far
};

// The ends of the flows, and how many products go from each of the left to each of the right.
class Flow {
 public:
  explicit Flow(const RunReport& report) {
    FindClasses(report);
    for (std::size_t i = 0; i < report.inputs.size(); ++i) AddInput(report.inputs[i], i);
    AddEnds();
    total_ = std::accumulate(left_.begin(), left_.end(), std::size_t{0},
                             [](std::size_t sum, const End& end) { return sum + end.count; });
    const double left = Place(left_);
    const double right = Place(right_);
    height_ = std::max(left, right);
  }

  // Where nothing came to the result there is nothing to see.
  bool IsEmpty() const { return total_ == 0 || right_.back().count == total_; }

  // Names are no part of the picture: where it is narrow they stay readable, and those of the
  // inputs go above it.
  void Draw(HtmlText& html) {
    html.Raw("<div class='flows' style='--h:").Number(height_, 0).Raw("px'>\n");
    AddNames(left_, "from", html);
    html.Raw("<svg viewBox='0 0 ").Number(kWidth, 0).Raw(" ").Number(height_, 0);
    html.Raw("' preserveAspectRatio='none' role='img'>\n");
    for (std::size_t l = 0; l < left_.size(); ++l) {
      for (std::size_t r = 0; r < right_.size(); ++r) DrawFlow(l, r, html);
    }
    for (const End& end : left_) DrawEnd(end, true, html);
    for (const End& end : right_) DrawEnd(end, false, html);
    html.Raw("</svg>\n");
    AddNames(right_, "to", html);
    html.Raw("</div>\n");
  }

 private:
  // The largest classes have ends of their own.
  void FindClasses(const RunReport& report) {
    std::map<std::string, std::size_t> kept;
    for (const InputReport& input : report.inputs) {
      for (const ClassTally& tally : input.classes) kept[tally.name] += tally.products.kept;
    }
    std::vector<std::pair<std::string, std::size_t>> classes(kept.begin(), kept.end());
    std::erase_if(classes, [](const auto& one) { return one.second == 0; });
    std::stable_sort(classes.begin(), classes.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    if (classes.size() > kMostClasses) classes.resize(kMostClasses - 1);
    for (const auto& [name, count] : classes) {
      index_.emplace(name, classNames_.size());
      classNames_.push_back(name);
    }
  }

  void AddInput(const InputReport& input, std::size_t index) {
    const bool isOwn = index < kMostInputs;
    if (isOwn) {
      left_.push_back({ShortName(input.path), {}, index, 0});
      counts_.emplace_back(classNames_.size() + 2);
    } else if (index == kMostInputs) {
      left_.push_back({u"\u2026", {}, index, 0});
      counts_.emplace_back(classNames_.size() + 2);
    }
    std::vector<std::size_t>& counts = counts_.back();
    for (const ClassTally& tally : input.classes) {
      const auto found = index_.find(tally.name);
      const std::size_t end = found == index_.end() ? classNames_.size() : found->second;
      counts[end] += tally.products.kept;
      counts[classNames_.size() + 1] += tally.products.in - tally.products.kept;
      left_.back().count += tally.products.in;
    }
  }

  void AddEnds() {
    for (const std::string& name : classNames_) right_.push_back({Widen(name), {}, 0, 0});
    right_.push_back({{}, "others", 0, 0});
    right_.push_back({{}, "droppedEnd", 0, 0});
    for (const std::vector<std::size_t>& counts : counts_) {
      for (std::size_t r = 0; r < counts.size(); ++r) right_[r].count += counts[r];
    }
  }

  double Place(std::vector<End>& ends) const {
    double at = kGap;
    for (End& end : ends) {
      if (end.count == 0) continue;
      end.top = at;
      end.height = Thickness(end.count);
      at += std::max(end.height, kLeastHeight) + kGap;
    }
    return at;
  }

  double Thickness(std::size_t count) const {
    return kHeight * static_cast<double>(count) / static_cast<double>(total_);
  }

  void DrawFlow(std::size_t l, std::size_t r, HtmlText& html) {
    const std::size_t count = counts_[l][r];
    if (count == 0) return;
    End& from = left_[l];
    End& to = right_[r];
    const double thickness = Thickness(count);
    const double y0 = from.top + from.used;
    const double y1 = to.top + to.used;
    from.used += thickness;
    to.used += thickness;
    html.Raw("<path class='flow ").Raw(ColourOf(from.input)).Raw("' d='M");
    Curve(kBar, y0, kWidth - kBar, y1, html);
    html.Raw("L").Number(kWidth - kBar, 1).Raw(" ").Number(y1 + thickness, 1).Raw("L");
    Curve(kWidth - kBar, y1 + thickness, kBar, y0 + thickness, html);
    html.Raw("z'><title>").Text(from.name).Raw(" \u2192 ");
    if (to.key.empty()) {
      html.Text(to.name);
    } else {
      html.Word(to.key);
    }
    html.Colon().Count(count).Raw("</title></path>\n");
  }

  // From a point, which the path is at already or goes to, to the other.
  static void Curve(double x0, double y0, double x1, double y1, HtmlText& html) {
    const double middle = (x0 + x1) / 2;
    html.Number(x0, 1).Raw(" ").Number(y0, 1).Raw("C").Number(middle, 1).Raw(" ");
    html.Number(y0, 1).Raw(" ").Number(middle, 1).Raw(" ").Number(y1, 1).Raw(" ");
    html.Number(x1, 1).Raw(" ").Number(y1, 1);
  }

  static void DrawEnd(const End& end, bool isLeft, HtmlText& html) {
    if (end.count == 0) return;
    html.Raw("<rect class='end ");
    html.Raw(isLeft ? ColourOf(end.input) : std::string("none")).Raw("' x='");
    html.Number(isLeft ? 0 : kWidth - kBar, 1).Raw("' y='").Number(end.top, 1);
    html.Raw("' width='").Number(kBar, 1).Raw("' height='");
    html.Number(std::max(end.height, 1.0), 1).Raw("'></rect>\n");
  }

  static void AddNames(const std::vector<End>& ends, std::string_view side, HtmlText& html) {
    html.Raw("<ul class='").Raw(side).Raw("'>\n");
    for (const End& end : ends) {
      if (end.count == 0) continue;
      html.Raw("<li");
      if (side == "from") html.Raw(" class='").Raw(ColourOf(end.input)).Raw("'");
      html.Raw(" style='top:").Number(end.top + end.height / 2, 1).Raw("px'>");
      if (end.key.empty()) {
        html.Raw("<span title='").Text(end.name).Raw("'>").Name(Shortened(end.name)).Raw("</span>");
      } else {
        html.Word(end.key);
      }
      html.Raw(" <span class='soft'>").Count(end.count).Raw("</span></li>\n");
    }
    html.Raw("</ul>\n");
  }

  std::map<std::string, std::size_t> index_;
  std::vector<std::string> classNames_;
  std::vector<End> left_;
  std::vector<End> right_;                        // classes, other classes, what was dropped
  std::vector<std::vector<std::size_t>> counts_;  // by left and right
  std::size_t total_ = 0;
  double height_ = 0;
};

}  // namespace

void AddFlow(const RunReport& report, HtmlText& html) {
  Flow flow(report);
  if (flow.IsEmpty()) return;
  html.Raw("<section>\n").Word("h2", "flow").Raw("\n<figure>\n");
  flow.Draw(html);
  html.Word("figcaption", "flowHint").Raw("</figure>\n</section>\n");
}

}  // namespace corvel

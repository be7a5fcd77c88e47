#include "merge/report/shared/page_drawings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "merge/report/shared/drawn_products.h"

namespace corvel {

namespace {

using Point = std::array<double, 2>;

constexpr double kWidth = 760;
constexpr double kMargin = 26;
constexpr double kStoreyColumn = 150;  // for the names of storeys, beside the elevation
constexpr double kNorthColumn = 24;    // for the needle, beside the plan
constexpr double kLeastHeight = 120;   // of a drawing
constexpr double kMostHeight = 640;
constexpr double kDot = 1.8;         // radius of a product without a box
constexpr double kLeastShape = 1.5;  // what is smaller is drawn as a dot
constexpr double kLeastLabels = 13;  // from one storey's name to the next
constexpr double kLeastLarge = 20;   // likewise on a narrow page, where texts are drawn larger

struct Area {
  Point low{};
  Point high{};
  bool isEmpty = true;

  void Add(const Point& point) {
    if (!std::isfinite(point[0]) || !std::isfinite(point[1])) return;
    for (std::size_t i = 0; i < point.size(); ++i) {
      low[i] = isEmpty ? point[i] : std::min(low[i], point[i]);
      high[i] = isEmpty ? point[i] : std::max(high[i], point[i]);
    }
    isEmpty = false;
  }
  double Size(std::size_t axis) const { return high[axis] - low[axis]; }
};

// Of a polygon, or one point.
struct Corners {
  std::array<Point, 4> points{};
  std::size_t count = 4;

  const Point* begin() const { return points.data(); }
  const Point* end() const { return points.data() + count; }
};

// One product as a drawing shows it, in metres.
struct Outline {
  std::size_t product = 0;
  std::size_t turn = 0;  // among those that are drawn
  Corners corners;
  double size = 0;  // of the area that it takes up
};

enum class View { kPlan, kElevation };

Corners Footprint(const ProductBox& box) {
  const double angle = box.degrees * std::numbers::pi / 180;
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  const Point along = {cosine * box.size[0] / 2, sine * box.size[0] / 2};
  const Point across = {-sine * box.size[1] / 2, cosine * box.size[1] / 2};
  Corners corners;
  Point* corner = corners.points.data();
  for (const Point& sign : {Point{-1, -1}, Point{1, -1}, Point{1, 1}, Point{-1, 1}}) {
    *corner++ = {box.centre[0] + sign[0] * along[0] + sign[1] * across[0],
                 box.centre[1] + sign[0] * along[1] + sign[1] * across[1]};
  }
  return corners;
}

Corners OutlineOf(const ProductPlace& product, View view) {
  if (!product.box) {
    return {{Point{product.origin[0], product.origin[view == View::kPlan ? 1 : 2]}}, 1};
  }
  const Corners corners = Footprint(*product.box);
  if (view == View::kPlan) return corners;
  Area area;
  for (const Point& corner : corners) area.Add({corner[0], 0});
  const double low = product.box->centre[2] - product.box->size[2] / 2;
  const double high = low + product.box->size[2];
  return {{Point{area.low[0], low}, Point{area.high[0], low}, Point{area.high[0], high},
           Point{area.low[0], high}}};
}

// 1, 2 or 5 and noughts, and not above `most`.
double RoundLength(double most) {
  const double power = std::pow(10.0, std::floor(std::log10(most)));
  for (const double factor : {5.0, 2.0}) {
    if (factor * power <= most) return factor * power;
  }
  return power;
}

// What a pointer at a product is told: where it stands in the page, once it has been written.
struct WrittenTitle {
  std::size_t begin = 0;
  std::size_t end = 0;
};

struct DrawnModels {
  const std::vector<DrawnInput>& inputs;
  const ModelPlaces& places;
  std::vector<std::size_t> drawn;    // positions of products
  std::vector<WrittenTitle> titles;  // of these
};

class Drawing {
 public:
  Drawing(DrawnModels& models, View view, HtmlText& html)
      : inputs_(models.inputs),
        places_(models.places),
        titles_(models.titles),
        view_(view),
        html_(html) {
    for (std::size_t turn = 0; turn < models.drawn.size(); ++turn) {
      const std::size_t product = models.drawn[turn];
      Outline outline{product, turn, OutlineOf(places_.products[product], view), 0};
      const std::uint32_t input = places_.products[product].input;
      Area area;
      for (const Point& corner : outline.corners) area.Add(corner);
      if (area.isEmpty) continue;
      outline.size = area.Size(0) * area.Size(1);
      for (const Point& corner : {area.low, area.high}) {
        all_.Add(corner);
        reach_[input].Add(corner);
      }
      outlines_[input].push_back(outline);
    }
    if (view == View::kElevation) {
      for (const StoreyPlace& storey : places_.storeys) all_.Add({all_.low[0], storey.height});
    }
    Fit();
  }

  void Draw() {
    html_.Raw("<svg class='drawing' viewBox='0 0 ").Number(kWidth, 0).Raw(" ");
    html_.Number(height_, 0).Raw("' role='img'>\n");
    if (view_ == View::kElevation) DrawStoreys();
    for (const auto& [input, outlines] : outlines_) DrawInput(input, outlines);
    if (reach_.size() > 1) {
      for (const auto& [input, area] : reach_) DrawReach(input, area);
    }
    DrawScaleBar();
    if (view_ == View::kPlan) DrawNorth();
    html_.Raw("</svg>\n");
  }

  // Heights are drawn so many times larger than lengths.
  double Stretch() const { return stretch_; }

 private:
  // Both axes have one scale, so that a model that is too large shows as such. A flat one is drawn
  // higher, and it is said how much.
  void Fit() {
    constexpr double kSmallest = 1e-3;
    const double aside = view_ == View::kElevation ? kStoreyColumn : kNorthColumn;
    const double room = kWidth - 2 * kMargin - aside;
    const double wide = std::max(all_.Size(0), kSmallest);
    const double high = std::max(all_.Size(1), kSmallest);
    scale_ = std::min(room / wide, (kMostHeight - 2 * kMargin) / high);
    if (view_ == View::kElevation) {
      for (const double factor : {2.0, 5.0, 10.0, 20.0, 50.0, 100.0}) {
        if (high * scale_ * stretch_ >= kLeastHeight - 2 * kMargin) break;
        stretch_ = factor;
      }
    }
    const double drawn = high * scale_ * stretch_;
    height_ = std::max(drawn + 2 * kMargin, kLeastHeight);
    offset_ = {kMargin + (room - wide * scale_) / 2, (height_ - drawn) / 2};
  }

  Point At(const Point& point) const {
    return {offset_[0] + (point[0] - all_.low[0]) * scale_,
            offset_[1] + (all_.high[1] - point[1]) * scale_ * stretch_};
  }

  // Large ones first, so that small ones are not below them.
  void DrawInput(std::uint32_t input, const std::vector<Outline>& outlines) {
    struct Drawn {
      double size;
      const Outline* outline;
    };
    std::vector<Drawn> bySize;
    bySize.reserve(outlines.size());
    for (const Outline& outline : outlines) bySize.push_back({outline.size, &outline});
    std::stable_sort(bySize.begin(), bySize.end(),
                     [](const Drawn& a, const Drawn& b) { return a.size > b.size; });
    html_.Raw("<g class='").Raw(ColourOf(input)).Raw("' data-input='");
    html_.Whole(input).Raw("'>\n");
    for (const Drawn& drawn : bySize) DrawOutline(*drawn.outline);
    html_.Raw("</g>\n");
  }

  void DrawOutline(const Outline& outline) {
    Area area;
    Corners corners = outline.corners;
    for (std::size_t i = 0; i < corners.count; ++i) {
      corners.points[i] = At(corners.points[i]);
      area.Add(corners.points[i]);
    }
    if (area.isEmpty) return;
    if (area.Size(0) < kLeastShape && area.Size(1) < kLeastShape) {
      html_.Raw("<circle class='p' cx='").Number((area.low[0] + area.high[0]) / 2, 1);
      html_.Raw("' cy='").Number((area.low[1] + area.high[1]) / 2, 1).Raw("' r='");
      html_.Number(kDot, 1).Raw("' data-p='");
      DrawTitle(outline, "circle");
      return;
    }
    html_.Raw("<path class='p' d='M");
    DrawLines(corners);
    html_.Raw("z' data-p='");
    DrawTitle(outline, "path");
  }

  // Most outlines lie along the axes, and each line of these needs one number.
  void DrawLines(const Corners& corners) {
    std::array<std::int32_t, 2> last{};
    for (std::size_t i = 0; i < corners.count; ++i) {
      const std::array<std::int32_t, 2> next = {InTenths(corners.points[i][0]),
                                                InTenths(corners.points[i][1])};
      if (i != 0 && next[1] == last[1]) {
        html_.Raw("H").Tenths(next[0]);
      } else if (i != 0 && next[0] == last[0]) {
        html_.Raw("V").Tenths(next[1]);
      } else {
        html_.Raw(i == 0 ? "" : "L").Tenths(next[0]).Raw(" ").Tenths(next[1]);
      }
      last = next;
    }
  }

  void DrawTitle(const Outline& outline, std::string_view element) {
    WrittenTitle& title = titles_[outline.turn];
    if (title.end != 0) {
      html_.Again(title.begin, title.end);
    } else {
      title.begin = html_.Size();
      const ProductPlace& product = places_.products[outline.product];
      html_.Whole(outline.product).Raw("'><title>");
      html_.Text(product.name).Raw("\n").Text(product.guid).Raw(OriginOf(product));
      html_.Raw("</title></");
      title.end = html_.Size();
    }
    html_.Raw(element).Raw(">\n");
  }

  // Class and input, of which there are few.
  const std::string& OriginOf(const ProductPlace& product) {
    const auto [known, isNew] = origins_.try_emplace({product.classIndex, product.input});
    if (isNew) {
      HtmlText html(html_.Texts());
      html.Raw(" \u00b7 ").Text(places_.classes[product.classIndex].name).Raw(" \u00b7 ");
      known->second = html.Text(ShortName(inputs_[product.input].path)).Take();
    }
    return known->second;
  }

  // To the right of those that stand there already, as far as there is room.
  Point FreeLabel(Point label) {
    constexpr Point kRoom = {18, 12};
    const auto isTaken = [&](const Point& other) {
      return std::abs(other[0] - label[0]) < kRoom[0] && std::abs(other[1] - label[1]) < kRoom[1];
    };
    while (label[0] < kWidth - 2 * kRoom[0] &&
           std::any_of(labels_.begin(), labels_.end(), isTaken)) {
      label[0] += kRoom[0];
    }
    labels_.push_back(label);
    return label;
  }

  void DrawReach(std::uint32_t input, const Area& area) {
    constexpr double kOutside = 4;
    const Point low = At({area.low[0], area.high[1]});
    const Point high = At({area.high[0], area.low[1]});
    html_.Raw("<g class='").Raw(ColourOf(input)).Raw("' data-input='").Whole(input);
    html_.Raw("'><rect class='reach' x='").Number(low[0] - kOutside, 1).Raw("' y='");
    html_.Number(low[1] - kOutside, 1).Raw("' width='");
    html_.Number(high[0] - low[0] + 2 * kOutside, 1).Raw("' height='");
    html_.Number(high[1] - low[1] + 2 * kOutside, 1).Raw("'></rect>");
    const Point label = FreeLabel({low[0] - kOutside + 2, std::max(low[1] - kOutside - 3, 11.0)});
    html_.Raw("<text class='label' style='fill:var(--own);font-weight:700' x='");
    html_.Number(label[0], 1).Raw("' y='").Number(label[1], 1).Raw("'>");
    html_.Whole(input + std::size_t{1}).Raw("</text></g>\n");
  }

  void DrawStoreys() {
    double lastLabel = height_ + kLeastLabels;
    double lastLarge = height_ + kLeastLarge;
    for (const StoreyPlace& storey : places_.storeys) {
      const double y = At({0, storey.height})[1];
      html_.Raw("<line class='level' x1='").Number(kMargin / 2, 0).Raw("' x2='");
      html_.Number(kWidth - kStoreyColumn, 0).Raw("' y1='").Number(y, 1).Raw("' y2='");
      html_.Number(y, 1).Raw("'><title>").Text(storey.name).Raw(" ");
      html_.Decimal(storey.height, 2).Raw(" m \u00b7 ");
      html_.Text(ShortName(inputs_[storey.input].path)).Raw("</title></line>\n");
      if (lastLabel - y < kLeastLabels) continue;
      lastLabel = y;
      const bool isClose = lastLarge - y < kLeastLarge;
      if (!isClose) lastLarge = y;
      constexpr std::size_t kLongestName = 14;
      WideString name = storey.name;
      if (name.size() > kLongestName) name = name.substr(0, kLongestName - 1) + u"\u2026";
      html_.Raw(isClose ? "<text class='soft close' x='" : "<text class='soft' x='")
          .Number(kWidth - kStoreyColumn + 4, 0);
      html_.Raw("' y='").Number(y + 4, 1).Raw("'><tspan>").Text(name);
      html_.Raw("</tspan> <tspan>").Decimal(storey.height, 2, "tspan");
      html_.Raw("\u00a0m</tspan></text>\n");
    }
  }

  void DrawScaleBar() {
    const double metres = RoundLength(std::max(kWidth / 4 / scale_, 1e-9));
    const double length = metres * scale_;
    const double y = height_ - 8;
    html_.Raw("<path class='rule' d='M").Number(kMargin / 2, 1).Raw(" ").Number(y - 4, 1);
    html_.Raw("v4h").Number(length, 1).Raw("v-4'></path><text class='label' x='");
    html_.Number(kMargin / 2 + length + 6, 1).Raw("' y='").Number(y, 1).Raw("'>");
    if (metres >= 1000) {
      html_.Decimal(metres / 1000, 0, "tspan").Raw("\u00a0km");
    } else if (metres >= 1) {
      html_.Number(metres, 0).Raw("\u00a0m");
    } else {
      html_.Decimal(metres * 1000, metres < 1e-3 ? 6 : 0, "tspan").Raw("\u00a0mm");
    }
    html_.Raw("</text>\n");
  }

  void DrawNorth() {
    if (!places_.north) return;
    const double degrees =
        std::atan2((*places_.north)[0], (*places_.north)[1]) * 180 / std::numbers::pi;
    html_.Raw("<g transform='translate(")
        .Number(kWidth - kNorthColumn, 0)
        .Raw(" 32)'><g transform='rotate(");
    html_.Number(degrees, 1).Raw(")'><path class='needle' d='M0-14L6 10L0 5L-6 10z'></path>");
    html_.Raw("<text text-anchor='middle' y='-17'>N</text></g></g>\n");
  }

  const std::vector<DrawnInput>& inputs_;
  const ModelPlaces& places_;
  std::vector<WrittenTitle>& titles_;
  View view_;
  HtmlText& html_;
  Area all_;
  std::map<std::uint32_t, Area> reach_;                     // by input
  std::map<std::uint32_t, std::vector<Outline>> outlines_;  // likewise
  double scale_ = 1;
  double stretch_ = 1;
  double height_ = 0;
  Point offset_{};
  std::vector<Point> labels_;  // of frames
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::string> origins_;
};

void AddLegend(const DrawnModels& models, HtmlText& html) {
  html.Raw("<ul class='legend'>\n");
  for (std::size_t i = 0; i < models.inputs.size(); ++i) {
    if (!models.inputs[i].isDrawn) continue;
    html.Raw("<li class='").Raw(ColourOf(i)).Raw("'><label><input type='checkbox' checked ");
    html.Raw("disabled data-input='").Whole(i).Raw("'> ");
    html.Raw("<span class='dot'></span>").Count(i + 1).Raw(" ");
    html.Name(ShortName(models.inputs[i].path)).Raw("</label></li>\n");
  }
  html.Raw("</ul>\n");
}

void AddFigure(DrawnModels& models, View view, HtmlText& html) {
  Drawing drawing(models, view, html);
  html.Word("h3", view == View::kPlan ? "plan" : "elevation").Raw("\n<figure>\n");
  drawing.Draw();
  html.Raw("<figcaption>");
  if (view == View::kPlan) {
    html.Word("planHint");
    if (models.inputs.size() > 1) html.Raw(" ").Word("reach");
    if (!models.places.north) html.Raw(" ").Word("noNorth");
  } else if (drawing.Stretch() > 1) {
    html.Word("stretched").Raw(" ").Number(drawing.Stretch(), 0);
  }
  html.Raw("</figcaption></figure>\n");
}

// How many there are, where not all are to be seen.
void AddCounts(const ModelPlaces& places, std::size_t drawn, HtmlText& html) {
  std::size_t placed = 0;
  for (const ClassOfPlaces& one : places.classes) placed += one.products;
  html.Raw("<p class='soft'>").Word("drawn").Colon().Count(drawn).Raw(" ").Word("ofAll");
  html.Raw(" ").Count(placed).Raw(". ");
  if (drawn != placed) html.Word("thinned").Raw(" ");
  if (places.withoutPlace != 0) {
    html.Word("withoutPlace").Colon().Count(places.withoutPlace).Raw(".");
  }
  html.Raw("</p>\n");
}

}  // namespace

void AddDrawings(const std::vector<DrawnInput>& inputs, const ModelPlaces* places, HtmlText& html) {
  html.Raw("<section id='where'>\n").Word("h2", "where").Raw("\n");
  if (places == nullptr || places->products.empty()) {
    html.Word("p", "noPlaces", " class='soft'").Raw("\n</section>\n");
    return;
  }
  DrawnModels models{inputs, *places, DrawnProducts(*places), {}};
  models.titles.resize(models.drawn.size());
  AddLegend(models, html);
  AddCounts(*places, models.drawn.size(), html);
  AddFigure(models, View::kPlan, html);
  AddFigure(models, View::kElevation, html);
  html.Raw("</section>\n");
}

}  // namespace corvel

#include "merge/report/shared/page_units.h"

#include <algorithm>
#include <string>
#include <vector>

namespace corvel {

namespace {

// The text of a unit: "unit.SQUARE_FOOT". Of powers of the metre the prefix may come first, as it
// does in files: ".MILLI.,.SQUARE_METRE.".
std::string KeyOf(WideView name) {
  std::string key = ToUtf8(name);
  std::transform(key.begin(), key.end(), key.begin(), [](char letter) {
    if (letter == ' ') return '_';
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  });
  for (const std::string_view power : {"SQUARE_", "CUBIC_"}) {
    const std::size_t at = key.find(power);
    if (at == std::string::npos || !key.ends_with("METRE")) continue;
    key.erase(at, power.size()).insert(0, power);
  }
  return "unit." + key;
}

// "METRE^-3"
struct Factor {
  std::string key;
  WideView exponent;  // empty: 1
};

std::vector<Factor> FactorsOf(WideView name) {
  std::vector<Factor> factors;
  while (!name.empty()) {
    const std::size_t end = std::min(name.find(u' '), name.size());
    const WideView one = name.substr(0, end);
    const std::size_t power = std::min(one.find(u'^'), one.size());
    factors.push_back({KeyOf(one.substr(0, power)), one.substr(std::min(power + 1, one.size()))});
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  return factors;
}

void AddNamed(WideView name, HtmlText& html) {
  const PageTexts& texts = html.Texts();
  const std::string key = KeyOf(name);
  if (texts.Has(key)) {
    html.Word(key);
    return;
  }
  const std::vector<Factor> factors = FactorsOf(name);
  const bool areKnown = std::all_of(factors.begin(), factors.end(), [&texts](const Factor& factor) {
    return texts.Has(factor.key);
  });
  if (!areKnown) {
    html.Name(name);
    return;
  }
  for (const Factor& factor : factors) {
    if (&factor != &factors.front()) html.Raw(" \u00b7 ");
    html.Word(factor.key);
    if (!factor.exponent.empty()) html.Raw("<sup>").Text(factor.exponent).Raw("</sup>");
  }
}

}  // namespace

void AddUnit(WideView name, HtmlText& html) {
  constexpr WideView kBegin = u" (";
  constexpr WideView kEnd = u" m)";
  const std::size_t at = name.find(kBegin);
  if (at == WideView::npos || !name.ends_with(kEnd)) {
    AddNamed(name, html);
    return;
  }
  AddNamed(name.substr(0, at), html);
  const std::size_t begin = at + kBegin.size();
  const WideView metres = name.substr(begin, name.size() - kEnd.size() - begin);
  html.Raw(" (").Plain(ToUtf8(metres)).Raw("\u00a0m)");
}

void AddKindOfUnit(std::string_view type, HtmlText& html) {
  const std::string key = "kind." + std::string(type);
  if (html.Texts().Has(key)) {
    html.Word(key);
  } else {
    html.Text(type);
  }
}

}  // namespace corvel

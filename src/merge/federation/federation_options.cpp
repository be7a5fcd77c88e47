#include "merge/federation/federation_options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

namespace corvel {

namespace {

using Mistake = std::optional<std::string>;

template <class T>
using Words = std::span<const std::pair<std::string_view, T>>;

// "takes 'keep', 'renew' or 'join'"
template <class T>
std::string TakesOneOf(Words<T> words) {
  std::string text = "takes ";
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i != 0) text += i + 1 == words.size() ? " or " : ", ";
    text.append("'").append(words[i].first).append("'");
  }
  return text;
}

template <class T, std::size_t kCount>
Mistake TakeOneOf(const std::pair<std::string_view, T> (&words)[kCount], std::string_view value,
                  T& chosen) {
  for (const auto& [word, meaning] : words) {
    if (value != word) continue;
    chosen = meaning;
    return {};
  }
  return TakesOneOf(Words<T>(words));
}

Mistake TakeUnits(std::string_view value, FederationChoices& choices) {
  constexpr std::pair<std::string_view, bool> kWords[] = {{"keep", false}, {"convert", true}};
  return TakeOneOf(kWords, value, choices.convertUnits);
}

Mistake TakeContexts(std::string_view value, FederationChoices& choices) {
  constexpr std::pair<std::string_view, bool> kWords[] = {{"keep", false}, {"join", true}};
  return TakeOneOf(kWords, value, choices.joinContexts);
}

Mistake TakePlace(std::string_view value, FederationChoices& choices) {
  constexpr std::pair<std::string_view, bool> kWords[] = {{"keep", false}, {"map", true}};
  return TakeOneOf(kWords, value, choices.placeByMap);
}

Mistake TakeTree(std::string_view value, FederationChoices& choices) {
  constexpr std::pair<std::string_view, TreeMatching> kWords[] = {
      {"keep", TreeMatching::kKeep},
      {"guid", TreeMatching::kGuid},
      {"name", TreeMatching::kName},
      {"elevation", TreeMatching::kElevation},
      {"one", TreeMatching::kOne}};
  return TakeOneOf(kWords, value, choices.tree);
}

Mistake TakeTolerance(std::string_view value, FederationChoices& choices) {
  double number = 0.0;
  const char* const end = value.data() + value.size();
  const auto [rest, error] = std::from_chars(value.data(), end, number);
  const bool isNumber = error == std::errc() && rest == end;
  if (!isNumber || !std::isfinite(number) || number < 0.0) return "takes a number of millimetres";
  choices.toleranceMm = number;
  return {};
}

Mistake TakeGuids(std::string_view value, FederationChoices& choices) {
  constexpr std::pair<std::string_view, GuidHandling> kWords[] = {{"keep", GuidHandling::kKeep},
                                                                  {"renew", GuidHandling::kRenew},
                                                                  {"join", GuidHandling::kJoin}};
  return TakeOneOf(kWords, value, choices.guids);
}

Mistake TakeHeader(std::string_view value, FederationChoices& choices) {
  constexpr std::pair<std::string_view, bool> kWords[] = {{"told", false}, {"new", true}};
  return TakeOneOf(kWords, value, choices.newHeader);
}

Mistake TakeNumbers(std::string_view value, FederationChoices& choices) {
  constexpr std::pair<std::string_view, NumberForm> kWords[] = {{"told", NumberForm::kTold},
                                                                {"exact", NumberForm::kExact}};
  return TakeOneOf(kWords, value, choices.numbers);
}

template <std::optional<WideString> FederationChoices::*kFile>
Mistake TakeFile(std::string_view value, FederationChoices& choices) {
  if (value.empty()) return "takes the name of a file";
  choices.*kFile = FromUtf8(value);
  return {};
}

template <bool FederationChoices::*kChoice, bool kOn>
Mistake Turn(std::string_view /*value*/, FederationChoices& choices) {
  choices.*kChoice = kOn;
  return {};
}

// Options behind it change their part of it, those before it count for nothing.
Mistake TakeOneBuilding(std::string_view /*value*/, FederationChoices& choices) {
  choices.convertUnits = true;
  choices.joinContexts = true;
  choices.placeByMap = true;
  choices.tree = TreeMatching::kOne;
  choices.guids = GuidHandling::kJoin;
  choices.prune = true;
  choices.shareEqual = true;
  choices.stamp = true;
  choices.newHeader = true;
  return {};
}

constexpr FederationOption kOptions[] = {
    {.name = "one-building", .take = TakeOneBuilding},
    {.name = "units", .takesValue = true, .take = TakeUnits},
    {.name = "contexts", .takesValue = true, .take = TakeContexts},
    {.name = "place", .takesValue = true, .take = TakePlace},
    {.name = "tree", .takesValue = true, .take = TakeTree},
    {.name = "tolerance", .takesValue = true, .take = TakeTolerance},
    {.name = "propose-tree", .takesValue = true, .take = TakeFile<&FederationChoices::proposeTree>},
    {.name = "tree-map", .takesValue = true, .take = TakeFile<&FederationChoices::treeMap>},
    {.name = "guids", .takesValue = true, .take = TakeGuids},
    {.name = "header", .takesValue = true, .take = TakeHeader},
    {.name = "numbers", .takesValue = true, .ofResave = true, .take = TakeNumbers},
    {.name = "prune", .ofResave = true, .take = Turn<&FederationChoices::prune, true>},
    {.name = "no-prune", .ofResave = true, .take = Turn<&FederationChoices::prune, false>},
    {.name = "share-equal", .ofResave = true, .take = Turn<&FederationChoices::shareEqual, true>},
    {.name = "no-share-equal",
     .ofResave = true,
     .take = Turn<&FederationChoices::shareEqual, false>},
    {.name = "stamp", .take = Turn<&FederationChoices::stamp, true>},
    {.name = "no-stamp", .take = Turn<&FederationChoices::stamp, false>},
};

}  // namespace

std::span<const FederationOption> AllFederationOptions() { return kOptions; }

const FederationOption* FindFederationOption(std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(kOptions), std::end(kOptions),
                   [name](const FederationOption& option) { return option.name == name; });
  return found == std::end(kOptions) ? nullptr : found;
}

}  // namespace corvel

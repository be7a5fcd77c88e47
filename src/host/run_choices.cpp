#include "host/run_choices.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "core/entity.h"
#include "platform/file.h"
#include "platform/threads.h"

namespace corvel::host {

namespace {

using Mistake = std::optional<std::string>;

constexpr unsigned kMostThreads = 256;

std::string Quoted(std::string_view word) { return "'" + std::string(word) + "'"; }

std::string_view Trimmed(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

// The pieces between commas, without blanks around them.
std::vector<std::string_view> AtCommas(std::string_view text) {
  std::vector<std::string_view> pieces;
  for (;;) {
    const std::size_t comma = text.find(',');
    pieces.push_back(Trimmed(text.substr(0, comma)));
    if (comma == std::string_view::npos) return pieces;
    text.remove_prefix(comma + 1);
  }
}

template <class Number>
std::optional<Number> NumberOf(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return {};
  return number;
}

std::optional<Point> PointOf(std::string_view text) {
  Point point{};
  const auto pieces = AtCommas(text);
  if (pieces.size() != point.size()) return {};
  for (std::size_t i = 0; i < point.size(); ++i) {
    const auto number = NumberOf<double>(pieces[i]);
    if (!number || !std::isfinite(*number)) return {};
    point[i] = *number;
  }
  return point;
}

// Inputs for which `accept` is true, as positions: "1", "1 and 3", "1, 2 and 3".
template <class Accept>
std::vector<std::size_t> InputsThat(std::size_t count, Accept accept) {
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i < count; ++i) {
    if (accept(i)) found.push_back(i);
  }
  return found;
}

std::string Positions(const std::vector<std::size_t>& inputs) {
  std::string text;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    if (i != 0) text += i + 1 == inputs.size() ? " and " : ", ";
    text += std::to_string(inputs[i] + 1);
  }
  return text;
}

// The input that a word names: by its position, as it was given, or by its file name.
std::variant<std::size_t, std::string> InputOf(std::string_view word,
                                               const std::vector<std::string>& inputs) {
  const auto position = NumberOf<std::size_t>(word);
  if (position && *position >= 1 && *position <= inputs.size()) return *position - 1;
  auto found = InputsThat(inputs.size(), [&](std::size_t i) { return inputs[i] == word; });
  if (found.empty()) {
    found = InputsThat(inputs.size(), [&](std::size_t i) {
      return ToUtf8(platform::FileNameOf(FromUtf8(inputs[i]))) == word;
    });
  }
  if (found.size() == 1) return found.front();
  if (found.empty()) {
    return "there is no input " + Quoted(word) + "; name it by its position (1 to " +
           std::to_string(inputs.size()) + ") or by its name";
  }
  return Quoted(word) + " is the name of the inputs " + Positions(found) +
         "; name one by its position";
}

struct KindOfList {
  ListKind kind;
  const char* option;
  std::vector<std::string> ChoiceWords::*words;
};

constexpr KindOfList kLists[] = {{ListKind::kInactive, "--inactive", &ChoiceWords::inactive},
                                 {ListKind::kHide, "--hide", &ChoiceWords::hide},
                                 {ListKind::kSelect, "--select", &ChoiceWords::select}};

Mistake MistakeInItem(std::string_view item) {
  if (item.empty()) return "an item of the list is empty";
  if (!item.starts_with('#')) return {};
  const auto number = NumberOf<std::uint32_t>(item.substr(1));
  if (number && *number >= 1 && *number <= IFC::kLargestNumber) return {};
  return Quoted(item) + " is no number of a record";
}

Mistake TakeItems(const KindOfList& kind, std::size_t input, std::string_view items,
                  RunChoices& choices) {
  ObjectList list{kind.kind, input, {}};
  for (const std::string_view item : AtCommas(items)) {
    if (const auto mistake = MistakeInItem(item)) return kind.option + (": " + *mistake);
    list.items.push_back(FromUtf8(item));
  }
  choices.lists.push_back(std::move(list));
  return {};
}

// FILE:LIST. Only FILE may have a colon of its own.
Mistake TakeList(const KindOfList& kind, std::string_view word,
                 const std::vector<std::string>& inputs, RunChoices& choices) {
  const std::string option = kind.option;
  const std::size_t colon = word.rfind(':');
  if (colon == std::string_view::npos) return option + " takes FILE:LIST, not " + Quoted(word);
  const auto input = InputOf(word.substr(0, colon), inputs);
  if (const auto* const mistake = std::get_if<std::string>(&input)) return option + ": " + *mistake;
  return TakeItems(kind, std::get<std::size_t>(input), word.substr(colon + 1), choices);
}

Mistake TakeLists(const ChoiceWords& words, const std::vector<std::string>& inputs,
                  RunChoices& choices) {
  for (const KindOfList& kind : kLists) {
    for (const std::string& word : words.*kind.words) {
      Mistake mistake = words.areOfOneInput ? TakeItems(kind, 0, word, choices)
                                            : TakeList(kind, word, inputs, choices);
      if (mistake) return mistake;
    }
  }
  return {};
}

Mistake TakeMode(const ChoiceWords& words, RunChoices& choices) {
  if (!words.mode) {
    if (!words.hide.empty()) choices.mode = SavingMode::kMergeVisible;
    // A selection counts before a list of hidden objects.
    if (!words.select.empty()) choices.mode = SavingMode::kMergeSelected;
  } else if (*words.mode == "active") {
    choices.mode = SavingMode::kMergeActive;
  } else if (*words.mode == "visible") {
    choices.mode = SavingMode::kMergeVisible;
  } else if (*words.mode == "selected") {
    choices.mode = SavingMode::kMergeSelected;
  } else {
    return "--mode takes 'active', 'visible' or 'selected', not " + Quoted(*words.mode);
  }
  return {};
}

// FILE=X,Y,Z. Only FILE may have an equal sign of its own.
Mistake TakeOffset(std::string_view word, const std::vector<std::string>& inputs,
                   RunChoices& choices) {
  const std::size_t equal = word.rfind('=');
  const bool hasFile = equal != std::string_view::npos;
  const auto point = hasFile ? PointOf(word.substr(equal + 1)) : std::nullopt;
  if (!point) return "--offset takes FILE=X,Y,Z with three numbers, not " + Quoted(word);
  const auto input = InputOf(word.substr(0, equal), inputs);
  if (const auto* const mistake = std::get_if<std::string>(&input)) return "--offset: " + *mistake;
  const std::size_t index = std::get<std::size_t>(input);
  const bool twice = std::any_of(choices.offsetsMm.begin(), choices.offsetsMm.end(),
                                 [index](const auto& offset) { return offset.first == index; });
  if (twice) return "--offset: input " + std::to_string(index + 1) + " has two offsets";
  choices.offsetsMm.emplace_back(index, *point);
  return {};
}

// X,Y,Z, once.
Mistake TakeOnlyOffset(std::string_view word, RunChoices& choices) {
  const auto point = PointOf(word);
  if (!point) return "--offset takes X,Y,Z with three numbers, not " + Quoted(word);
  if (!choices.offsetsMm.empty()) return "--offset: the model has two offsets";
  choices.offsetsMm.emplace_back(0, *point);
  return {};
}

Mistake TakePlaces(const ChoiceWords& words, const std::vector<std::string>& inputs,
                   RunChoices& choices) {
  for (const std::string& word : words.offsets) {
    Mistake mistake =
        words.areOfOneInput ? TakeOnlyOffset(word, choices) : TakeOffset(word, inputs, choices);
    if (mistake) return mistake;
  }
  if (!words.center) return {};
  const auto center = PointOf(*words.center);
  if (!center) return "--center takes X,Y,Z with three numbers, not " + Quoted(*words.center);
  choices.centerMetres = *center;
  return {};
}

Mistake TakeGuidChoice(const ChoiceWords& words, RunChoices& choices) {
  if (!words.onDuplicateGuid) return {};
  const bool generate = *words.onDuplicateGuid == "generate";
  if (!generate && *words.onDuplicateGuid != "skip") {
    return "--on-duplicate-guid takes 'generate' or 'skip', not " + Quoted(*words.onDuplicateGuid);
  }
  choices.generateGuids = generate;
  return {};
}

Mistake TakeThreads(const ChoiceWords& words, RunChoices& choices) {
  if (!words.threads) return {};
  choices.threads = NumberOf<unsigned>(*words.threads);
  if (choices.threads && *choices.threads >= 1 && *choices.threads <= kMostThreads) return {};
  return "--threads takes a number from 1 to " + std::to_string(kMostThreads) + ", not " +
         Quoted(*words.threads);
}

Mistake TakeFederation(const ChoiceWords& words, FederationChoices& choices) {
  for (const auto& [option, value] : words.federation) {
    auto mistake = option->take(value, choices);
    if (!mistake) continue;
    return "--" + std::string(option->name) + " " + *mistake + ", not " + Quoted(value);
  }
  return {};
}

}  // namespace

MergeOptions RunChoices::Over(MergeOptions remembered) const {
  remembered.ignoreEnumErrors = remembered.ignoreEnumErrors || ignoreEnumErrors;
  remembered.tolerant = remembered.tolerant || tolerant;
  remembered.ignoreUnits = remembered.ignoreUnits || ignoreUnits;
  remembered.deleteOpenings = remembered.deleteOpenings || deleteOpenings;
  remembered.federation = federation;
  remembered.generateGuid = generateGuids.value_or(remembered.generateGuid);
  remembered.threads = threads ? *threads : platform::UsableCores();
  return remembered;
}

std::variant<RunChoices, std::string> UnderstandChoices(const ChoiceWords& words,
                                                        const std::vector<std::string>& inputs) {
  RunChoices choices;
  Mistake mistake = TakeMode(words, choices);
  if (!mistake) mistake = TakeLists(words, inputs, choices);
  if (!mistake) mistake = TakePlaces(words, inputs, choices);
  if (!mistake) mistake = TakeGuidChoice(words, choices);
  if (!mistake) mistake = TakeThreads(words, choices);
  if (!mistake) mistake = TakeFederation(words, choices.federation);
  if (mistake) return *mistake;
  return choices;
}

}  // namespace corvel::host

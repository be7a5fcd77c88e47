#include "merge/federation/tree/tree_map.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "core/shown_paths.h"
#include "merge/federation/tree/tree_addresses.h"
#include "platform/file.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

constexpr std::size_t kLargestFile = 0x10000000;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r";

std::string Quoted(std::string_view word) { return "'" + std::string(word) + "'"; }

// The next word, which `rest` loses with the blanks around it.
std::string_view TakeWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  const std::size_t end = std::min(rest.find_first_of(kBlanks), rest.size());
  const std::string_view word = rest.substr(0, end);
  rest.remove_prefix(end);
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  return word;
}

std::string_view WithoutBlanksBehind(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

template <class Number>
std::optional<Number> NumberOf(std::string_view text) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end || number == 0) return std::nullopt;
  return number;
}

std::optional<ToldAddress> AddressOf(std::string_view word) {
  ToldAddress address;
  address.text = word;
  const std::size_t colon = word.find(':');
  const auto input = NumberOf<std::size_t>(word.substr(0, colon));
  if (colon == std::string_view::npos || !input) return std::nullopt;
  address.input = *input - 1;
  const std::string_view name = word.substr(colon + 1);
  if (name.empty()) return std::nullopt;
  if (!name.starts_with('#')) {
    address.guid = name;
    return address;
  }
  const auto number = NumberOf<std::uint32_t>(name.substr(1));
  if (!number) return std::nullopt;
  address.number = *number;
  return address;
}

// False when the file cannot be read.
bool ReadContent(const WideString& path, std::string& content) {
  platform::File file;
  if (!file.Open(path, platform::OpenMode::kRead)) return false;
  std::string piece(0x10000, '\0');
  while (!file.AtEnd() && !file.ReadFailed() && content.size() < kLargestFile) {
    content.append(piece, 0, file.Read(piece.data(), piece.size()));
  }
  return !file.ReadFailed() && content.size() < kLargestFile;
}

WideString PlaceOf(const TreeMap& map, std::uint32_t line) {
  return map.path + u", line " + ToWide(line) + u": ";
}

class MapReader {
 public:
  MapReader(TreeMap& map, std::vector<WideString>& mistakes) : map_(map), mistakes_(mistakes) {}

  void Read(std::string_view rest) {
    if (rest.starts_with(kByteOrderMark)) rest.remove_prefix(kByteOrderMark.size());
    for (line_ = 1; !rest.empty(); ++line_) {
      const std::size_t end = std::min(rest.find('\n'), rest.size());
      ReadLine(rest.substr(0, end));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }

 private:
  void ReadLine(std::string_view line) {
    std::string_view rest = line;
    // The name of a file may have a semicolon in it.
    if (TakeWord(rest) == "input") {
      ReadInput(rest);
      return;
    }
    rest = line.substr(0, line.find(';'));
    const std::string_view word = TakeWord(rest);
    if (word.empty()) return;
    if (word != "join" && word != "apart") {
      Tell("there is no " + Quoted(word) + ": a line says 'join', 'apart' or 'input'");
      return;
    }
    ToldLine told{.line = line_, .joins = word == "join"};
    if (!ReadAddress(rest, told.object)) return;
    if (told.joins && !ReadAddress(rest, told.survivor)) return;
    if (!rest.empty()) {
      Tell(Quoted(WithoutBlanksBehind(rest)) + " is too much");
      return;
    }
    map_.lines.push_back(std::move(told));
  }

  void ReadInput(std::string_view rest) {
    const std::string_view word = TakeWord(rest);
    const auto input = NumberOf<std::size_t>(word);
    if (input) {
      map_.inputs.push_back({line_, {*input - 1, FromUtf8(WithoutBlanksBehind(rest))}});
    } else {
      Tell(Quoted(word) + " is no position of a model");
    }
  }

  bool ReadAddress(std::string_view& rest, ToldAddress& address) {
    const std::string_view word = TakeWord(rest);
    if (word.empty()) {
      Tell("an object is missing");
      return false;
    }
    auto read = AddressOf(word);
    if (!read) {
      Tell(Quoted(word) +
           " names no object: it takes the position of a model, ':' and a GUID or "
           "'#' with a number");
      return false;
    }
    address = std::move(*read);
    return true;
  }

  void Tell(const std::string& mistake) {
    mistakes_.push_back(PlaceOf(map_, line_) + FromUtf8(mistake) + u".");
  }

  TreeMap& map_;
  std::vector<WideString>& mistakes_;
  std::uint32_t line_ = 0;
};

class Application {
 public:
  Application(const TreeMap& map, const FederatedModel& model, SpatialStructure& structure,
              std::vector<WideString>& mistakes)
      : map_(map), model_(model), addresses_(model, structure), mistakes_(mistakes) {}

  void Apply() {
    for (const auto& [line, input] : map_.inputs) CompareInput(line, input.first, input.second);
    for (const ToldLine& told : map_.lines) Apply(told);
    for (const ToldLine& told : map_.lines) Unite(told);
  }

 private:
  void CompareInput(std::uint32_t line, std::size_t input, const WideString& name) {
    if (input >= model_.InputCount()) {
      Tell(line, "there is no input " + std::to_string(input + 1));
      return;
    }
    const WideString path = model_.Document(input).getFilePath();
    const WideString now = ShownFileName(path);
    if (now == name) return;
    Tell(line, "input " + std::to_string(input + 1) + " is " + Quoted(ToUtf8(now)) + ", not " +
                   Quoted(ToUtf8(name)));
  }

  void Apply(const ToldLine& told) {
    SpatialObject* const object = Find(told.line, told.object);
    if (object == nullptr) return;
    if (object->isTold) {
      Tell(told.line, told.object.text + " is told of twice");
      return;
    }
    object->isTold = true;
    if (!told.joins) return;
    SpatialObject* const survivor = Find(told.line, told.survivor);
    if (survivor == nullptr) return;
    if (const char* const mistake = MistakeOf(*object, *survivor)) {
      Tell(told.line, told.object.text + " cannot join " + told.survivor.text + ": " + mistake);
    } else {
      object->told = survivor;
      joins_.emplace(&told, object);
    }
  }

  static const char* MistakeOf(const SpatialObject& object, const SpatialObject& survivor) {
    if (object.input == survivor.input) return "they are of one model";
    if (object.input < survivor.input) return "its model is the earlier one";
    if (FindFacts(*object.entity)->name != std::string_view(FindFacts(*survivor.entity)->name)) {
      return "it is of another class";
    }
    if (!object.isPlaced || !survivor.isPlaced) return "one of them is not below the project";
    if (!(object.level == survivor.level)) return "it is of another level or composition";
    return nullptr;
  }

  // Who joins one that joins another is one with that as well.
  void Unite(const ToldLine& told) {
    const auto join = joins_.find(&told);
    if (join == joins_.end()) return;
    const SpatialObject* const object = Root(join->second);
    const SpatialObject* const survivor = Root(join->second->told);
    if (object == survivor) return;
    std::vector<std::size_t>& one = InputsOf(survivor);
    std::vector<std::size_t> both;
    std::vector<std::size_t>& other = InputsOf(object);
    std::merge(one.begin(), one.end(), other.begin(), other.end(), std::back_inserter(both));
    if (std::adjacent_find(both.begin(), both.end()) != both.end()) {
      Tell(told.line, told.object.text + " cannot join " + told.survivor.text +
                          ": two of one model would become one");
      return;
    }
    one = std::move(both);
    roots_[object] = survivor;
  }

  const SpatialObject* Root(const SpatialObject* object) const {
    for (auto next = roots_.find(object); next != roots_.end(); next = roots_.find(object)) {
      object = next->second;
    }
    return object;
  }

  std::vector<std::size_t>& InputsOf(const SpatialObject* root) {
    return inputs_.try_emplace(root, 1, root->input).first->second;
  }

  SpatialObject* Find(std::uint32_t line, const ToldAddress& address) {
    SpatialObject* found = nullptr;
    bool isAmbiguous = false;
    if (address.input < model_.InputCount()) {
      found = address.guid.empty() ? addresses_.Find(address.input, address.number)
                                   : addresses_.Find(address.input, address.guid, isAmbiguous);
    }
    if (isAmbiguous) {
      Tell(line, address.text + " is several objects: name it by '#' and its number");
    } else if (found == nullptr) {
      Tell(line, address.text + " is no site, building, storey or the like that is there");
    }
    return found;
  }

  void Tell(std::uint32_t line, const std::string& mistake) {
    mistakes_.push_back(PlaceOf(map_, line) + FromUtf8(mistake) + u".");
  }

  const TreeMap& map_;
  const FederatedModel& model_;
  TreeAddresses addresses_;
  std::vector<WideString>& mistakes_;
  std::unordered_map<const ToldLine*, SpatialObject*> joins_;
  std::unordered_map<const SpatialObject*, const SpatialObject*> roots_;
  std::unordered_map<const SpatialObject*, std::vector<std::size_t>> inputs_;
};

}  // namespace

TreeMap ReadTreeMap(const WideString& path, std::vector<WideString>& mistakes) {
  TreeMap map;
  map.path = path;
  std::string content;
  if (ReadContent(path, content)) {
    MapReader(map, mistakes).Read(content);
  } else {
    mistakes.push_back(path + u": this file cannot be read.");
  }
  return map;
}

void ApplyTreeMap(const TreeMap& map, const FederatedModel& model, SpatialStructure& structure,
                  std::vector<WideString>& mistakes) {
  Application(map, model, structure, mistakes).Apply();
}

}  // namespace corvel

#include "host/scene_reader.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

#include "core/entity.h"
#include "host/record_skipper.h"
#include "host/scene_classes.h"
#include "host/scene_parents.h"
#include "step/reader/string_decoder.h"

namespace corvel::host {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsOfWord(char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }

// No class has a longer name. Of longer words the start is enough to know that.
constexpr std::size_t kLongestName = 128;

// Where in a record an argument stands: 1 is the depth of the record's own brackets.
struct Place {
  unsigned depth = 1;
  unsigned argument = 0;
};

class SceneReader {
 public:
  SceneReader(FileStream::InputStream& stream, const FactoryTable& factories, SceneTexts texts,
              ModelScene& scene)
      : stream_(stream), classes_(factories), texts_(texts), scene_(scene) {}

  // False when the input ends inside of a string.
  bool Run() {
    while (!endsInString_ && SkipBlanks(stream_)) {
      const char byte = Byte();
      if (IsLetter(byte)) {
        TakeWord();
        continue;
      }
      Take();
      if (byte == '#') {
        ReadRecord();
      } else if (byte == '\'') {
        PassString();
      }
    }
    if (!isClosed_) scene_.endWithoutClosingLine = stream_.Position();
    SortObjects();
    SettleParents(links_, scene_.objects);
    scene_.classes = classes_.TakeNames();
    return !endsInString_;
  }

 private:
  char Byte() const { return *stream_.Cursor(); }
  void Take() { stream_.SetCursor(stream_.Cursor() + 1); }

  bool PassString() {
    endsInString_ = !SkipString(stream_);
    return !endsInString_;
  }

  // Between records. Behind END and ISO everything up to the ";" belongs to the word.
  void TakeWord() {
    constexpr std::string_view kBehindEnd = "-ISO";
    const std::string_view word = ReadWord();
    const bool isEnd = word == "END";
    if (!isEnd && word != "ISO") return;
    std::string begin;
    for (; HasByte(stream_) && Byte() != ';'; Take()) {
      if (begin.size() < kBehindEnd.size()) begin.push_back(Byte());
    }
    if (isEnd && begin == kBehindEnd && HasByte(stream_)) isClosed_ = true;
  }

  // Behind its "#". Stops before the ";", which nobody needs.
  void ReadRecord() {
    const std::uint32_t number = ReadNumber();
    if (SkipBlanks(stream_) && Byte() == '=') {
      Take();
      if (!SkipBlanks(stream_)) return;
      const SceneClass found = classes_.Find(ReadWord());
      if (number != 0) TakeRecord(number, found);
    }
    if (!endsInString_) SkipToSemicolon(stream_, &endsInString_);
  }

  void TakeRecord(std::uint32_t number, const SceneClass& found) {
    if (found.kind == SceneClass::kOther) return;
    if (found.kind == SceneClass::kRelation) {
      TakeRelation(number, *found.relation);
      return;
    }
    const bool isProject = found.kind == SceneClass::kProject;
    scene_.objects.push_back({number, kNoObject, found.id, isProject});
    if (texts_ != SceneTexts::kNone) TakeLabel();
  }

  // 0: there is none, or it is no number that a record can have.
  std::uint32_t ReadNumber() {
    std::uint64_t number = 0;
    while (HasByte(stream_) && IsDigit(Byte())) {
      if (number <= IFC::kLargestNumber) number = number * 10 + static_cast<unsigned>(Byte() - '0');
      Take();
    }
    return number > IFC::kLargestNumber ? 0 : static_cast<std::uint32_t>(number);
  }

  // Void when the stream moves on: a word within the window is not copied.
  std::string_view ReadWord() {
    const char* const begin = stream_.Cursor();
    const char* const end = stream_.WindowEnd();
    const char* at = begin;
    while (at != end && (IsLetter(*at) || IsDigit(*at))) ++at;
    if (at != end && *at != '_') {
      stream_.SetCursor(at);
      return {begin, static_cast<std::size_t>(at - begin)};
    }
    word_.clear();
    for (; HasByte(stream_) && IsOfWord(Byte()); Take()) {
      if (Byte() != '_' && word_.size() < kLongestName) word_.push_back(Byte());
    }
    return word_;
  }

  void TakeLabel() {
    ModelScene::Label& label = scene_.labels.emplace_back();
    label.start = scene_.texts.size();
    const auto takeText = [&](const Place& place) {
      if (place.depth != 1) return PassString();
      if (place.argument == kGuidArgument && label.guidLength == 0) {
        label.guidLength = AppendText();
      } else if (place.argument == kNameArgument && label.nameLength == 0) {
        label.nameLength = AppendText();
      } else {
        return PassString();
      }
      return true;
    };
    const bool guidsOnly = texts_ == SceneTexts::kGuids;
    WalkArguments(guidsOnly ? kGuidArgument : kNameArgument, takeText,
                  [](const Place&, std::uint32_t) {});
  }

  // Behind the opening apostrophe; gives the length of the decoded string.
  std::uint32_t AppendText() {
    const std::size_t before = scene_.texts.size();
    stream_.ClearStatementText();
    DecodeString(stream_, scene_.texts);
    const bool quoted = stream_.StatementView().ends_with('\'');
    endsInString_ = !quoted && !HasByte(stream_);
    return static_cast<std::uint32_t>(scene_.texts.size() - before);
  }

  void TakeRelation(std::uint32_t number, const RelationShape& shape) {
    std::uint32_t parent = 0;
    const std::size_t before = links_.size();
    const unsigned childDepth = shape.manyChildren ? 2 : 1;
    WalkArguments(
        std::max(shape.parentArgument, shape.childArgument),
        [this](const Place&) { return PassString(); },
        [&](const Place& place, std::uint32_t named) {
          if (place.argument == shape.parentArgument && place.depth == 1) parent = named;
          if (place.argument == shape.childArgument && place.depth == childDepth) {
            links_.push_back({number, named, 0});
          }
        });
    for (std::size_t i = before; i < links_.size(); ++i) links_[i].parent = parent;
  }

  // Runs over the arguments of a record up to the one with the index `last`, and over no ";".
  // takeString(place) moves from behind an opening apostrophe to behind the closing one, or gives
  // false; takeReference(place, number) gets 0 for what is no number.
  template <class TakeString, class TakeReference>
  void WalkArguments(unsigned last, TakeString takeString, TakeReference takeReference) {
    if (!SkipBlanks(stream_) || Byte() != '(') return;
    Take();
    Place place;
    while (place.depth != 0 && SkipBlanks(stream_) && Byte() != ';') {
      const char byte = Byte();
      Take();
      if (byte == '(') {
        ++place.depth;
      } else if (byte == ')') {
        --place.depth;
      } else if (byte == '\'') {
        if (!takeString(place)) return;
      } else if (byte == '#') {
        takeReference(place, ReadNumber());
      } else if (byte == ',' && place.depth == 1 && place.argument++ == last) {
        return;
      }
    }
  }

  bool IsSorted() const {
    const auto& objects = scene_.objects;
    return std::adjacent_find(objects.begin(), objects.end(), [](const auto& a, const auto& b) {
             return a.number >= b.number;
           }) == objects.end();
  }

  // By number, each number once. Most files have them so.
  void SortObjects() {
    if (IsSorted()) return;
    std::vector<SceneObject>& objects = scene_.objects;
    std::vector<std::uint32_t> order(objects.size());
    std::iota(order.begin(), order.end(), 0u);
    const auto numberOf = [&](std::uint32_t index) { return objects[index].number; };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return numberOf(a) < numberOf(b); });
    order.erase(
        std::unique(order.begin(), order.end(),
                    [&](std::uint32_t a, std::uint32_t b) { return numberOf(a) == numberOf(b); }),
        order.end());
    objects = InOrder(objects, order);
    if (!scene_.labels.empty()) scene_.labels = InOrder(scene_.labels, order);
  }

  template <class Item>
  static std::vector<Item> InOrder(const std::vector<Item>& items,
                                   const std::vector<std::uint32_t>& order) {
    std::vector<Item> ordered;
    ordered.reserve(order.size());
    for (const std::uint32_t index : order) ordered.push_back(items[index]);
    return ordered;
  }

  FileStream::InputStream& stream_;
  SceneClasses classes_;
  SceneTexts texts_;
  ModelScene& scene_;
  std::vector<ParentLink> links_;
  std::string word_;
  bool isClosed_ = false;  // the closing line has been met
  bool endsInString_ = false;
};

}  // namespace

bool ReadSceneRecords(FileStream::InputStream& stream, const FactoryTable& factories,
                      SceneTexts texts, ModelScene& scene) {
  return SceneReader(stream, factories, texts, scene).Run();
}

}  // namespace corvel::host

// What a tolerant reading had to carry as it stands, to mend or to pass over.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/text.h"

namespace corvel {

// In the order in which they are told.
enum class Misfit : std::uint8_t {
  kUnknownClass,       // carried as a record
  kArgumentCount,      // carried as a record
  kComplexInstance,    // `#1=(A()B());`, carried as a record
  kNoClass,            // `#1=;` or what else stands for a class, carried as a record
  kUnknownEnumValue,   // the value is kept as it stands
  kWrongValue,         // the value is kept as it stands
  kRefusedReference,   // to an object that the attribute does not take, kept as it stands
  kDanglingReference,  // to a number that no record has
  kOpenString,         // mended
  kOpenEnumeration,    // mended
  kOpenBracket,        // mended
  kOpenComment,        // mended
  kNoSemicolon,        // mended
  kStrayBytes,         // inside of a record, passed over
  kDuplicatedNumber,   // the later record has got a free number
  kNumberlessRecord,   // has got a free number
  kNoEnd               // the input ends inside of the record
};

inline constexpr std::size_t kMisfits = static_cast<std::size_t>(Misfit::kNoEnd) + 1;

// Ends the reading of a record in the strict way, so that it is looked at as text. Thrown in
// tolerant readings alone, and caught within the parser.
struct MisfitInRecord {};

struct MisfitPlace {
  std::string what;          // an attribute or a value; may be empty
  std::uint32_t number = 0;  // of the record; 0: none
  std::int64_t offset = -1;  // into the file; below 0: not known
};

// Misfits of one kind in records of one class.
struct MisfitGroup {
  Misfit kind = Misfit::kUnknownClass;
  std::string className;  // empty: none, or several
  std::uint64_t count = 0;
  std::vector<MisfitPlace> places;     // the first
  std::vector<std::uint32_t> numbers;  // of all records that have one, in ascending order
};

// A spoilt file may hold millions of such places: they are counted by kind and class, and of each
// the first are remembered. Well-formed records never come here.
class Tolerance {
 public:
  static constexpr std::size_t kPlacesKept = 3;
  // Classes of a kind that are told apart; what comes beyond is counted together.
  static constexpr std::size_t kClassesKept = 40;
  static constexpr std::int64_t kNowhere = -1;

  // One misfit in the record `number` (0: none) of a class (empty: none), at a byte of the file if
  // one is known. `what`: an attribute or a value, told with the place; may be empty. However often
  // a record is read and noted, it counts once a kind and class.
  void Note(Misfit kind, std::string_view className, std::string_view what, std::uint32_t number,
            std::int64_t offset = kNowhere);
  // Something about the file as a whole, told before all else.
  void Tell(WideString text) { texts_.push_back(std::move(text)); }

  // Nothing was told and nothing noted.
  bool IsClean() const { return texts_.empty() && groups_.empty(); }
  // What was noted, by kind and class.
  std::vector<MisfitGroup> Groups() const;
  // One text a kind and class, with the places of `path`, which is looked into for the lines.
  // Forgets everything.
  std::vector<WideString> TakeTexts(const WideString& path);

 private:
  struct Group {
    std::uint64_t count = 0;
    std::vector<MisfitPlace> places;
    std::unordered_set<std::uint32_t> numbers;
  };
  using Key = std::pair<Misfit, std::string>;

  Group& GroupOf(Misfit kind, std::string_view className);
  static WideString TextOf(const Key& key, const Group& group,
                           const std::map<std::int64_t, std::uint64_t>& lines);

  std::vector<WideString> texts_;
  std::map<Key, Group> groups_;
  std::map<Misfit, std::size_t> classes_;  // groups of a kind
};

}  // namespace corvel

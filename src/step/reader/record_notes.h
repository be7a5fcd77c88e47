// What a tolerant reading remembers of the records of its file for whoever looks into them later.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvel {

class Parser;

// A `$` or `*` where an attribute is a number or a truth value, which the object has as 0. Of
// records that did not fit their class those in the places of others as well.
struct AbsentNumber {
  std::uint32_t record = 0;
  std::uint32_t argument = 0;  // from 0
};

// Text within which records seem to begin, so that somebody may miss them there.
struct HiddenRecords {
  std::int64_t offset = -1;  // of the text or comment, behind its first sign
  std::uint32_t record = 0;  // in which it stands; 0: between records
  bool isInText = false;     // else in a comment
};

// A value that its attribute would take if its whole numbers had no more than 32 bits.
struct LargeInteger {
  std::uint32_t record = 0;
  std::string attribute;
  std::int64_t offset = -1;  // of the record
};

// Where records stand is known by the stretch: a few bytes for each of them, however many records
// it has.
class RecordNotes {
 public:
  static constexpr std::int64_t kStretchBytes = std::int64_t{16} << 10;

  // Bytes of the file from the start of a statement to that of the next stretch.
  struct Stretch {
    std::int64_t offset = 0;
    std::uint32_t least = 0;  // of the numbers of its records
    std::uint32_t most = 0;
  };

  // A record whose statement begins there. Offsets ascend.
  void AtRecord(std::uint32_t number, std::int64_t offset) {
    if (stretches_.empty() || offset - stretches_.back().offset >= kStretchBytes) {
      stretches_.push_back({offset, number, number});
      return;
    }
    Stretch& stretch = stretches_.back();
    if (number < stretch.least) stretch.least = number;
    if (number > stretch.most) stretch.most = number;
  }
  // Once or several times for the same place.
  void NoteAbsent(std::uint32_t record, std::uint32_t argument) {
    absent_.push_back({record, argument});
  }

  void NoteHidden(const HiddenRecords& hidden) { hidden_.push_back(hidden); }

  void NoteLarge(LargeInteger large) { large_.push_back(std::move(large)); }

  // What is wrong with the head of the file, where that can be said in few words.
  void NoteHead(std::string flaw) { headFlaw_ = std::move(flaw); }

  const std::vector<Stretch>& Stretches() const { return stretches_; }
  // Each once, by record and argument.
  std::vector<AbsentNumber> Absent() const;
  // Each once, in the order of the file.
  std::vector<HiddenRecords> Hidden() const;
  // Each once, by record and attribute.
  std::vector<LargeInteger> Large() const;
  const std::string& HeadFlaw() const { return headFlaw_; }

 private:
  std::vector<Stretch> stretches_;
  std::vector<AbsentNumber> absent_;
  std::vector<HiddenRecords> hidden_;
  std::vector<LargeInteger> large_;
  std::string headFlaw_;
};

// For the readers of numbers and truth values: behind an absent value of the record at hand. Those
// within lists and typed values are none of an attribute's.
void NoteAbsentNumber(Parser& parser);

}  // namespace corvel

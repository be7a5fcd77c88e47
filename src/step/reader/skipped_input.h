// What a reading passed over without taking it in, and what the user is told of it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"

namespace corvel {

struct SkippedPart;

// A spoilt file may hold millions of such places: of each kind the first is remembered, and how
// many there are. Nothing of the file is kept. Lines are found by looking into the file once more,
// so that good files pay nothing for them.
class SkippedInput {
 public:
  enum class Kind : std::size_t {
    kInHeader,       // records, where the HEADER section does not end before them
    kText,           // whatever stands between records and is neither blank nor comment
    kNoNumber,       // `=IFCWALL(...);` and the like
    kSurplus,        // behind the arguments of a record
    kNoSemicolon,    // of a record, so that others seem to belong to it
    kRunOnNumber,    // `1.5;` goes on to the next "," or ")"
    kRunOnString,    // holds what looks like records
    kComment,        // holds what looks like records
    kEndlessComment  // up to the end of the input
  };
  static constexpr std::size_t kKinds = 9;

  // The record that is read, or that was read last; places are told by it.
  void AtRecord(std::uint32_t number) { record_ = number; }
  // `offset`: where in the file it begins. `records`: so many seem to be in it.
  void Note(Kind kind, std::int64_t offset, std::uint64_t records = 0);
  // Nothing has been noted yet.
  bool IsEmpty() const { return isEmpty_; }
  // A section that is not read.
  void NoteSection(std::string_view name, std::int64_t offset);

  // What was noted, by kind, and then the sections.
  std::vector<SkippedPart> Parts() const;
  // One text a kind and section, with the places of `path`, which is looked into for the lines.
  // Forgets everything. Reads the file up to the last of the places, and not at all without one.
  std::vector<WideString> TakeTexts(const WideString& path);

 private:
  struct Place {
    std::int64_t offset = 0;
    std::uint32_t record = 0;
  };
  struct Finding {
    Place first;
    std::uint64_t places = 0;
    std::uint64_t records = 0;
  };
  struct Section {
    std::string name;
    std::int64_t offset = 0;
  };

  std::vector<std::int64_t> Offsets() const;
  static WideString TextOf(Kind kind, const Finding& finding, const WideString& place);

  std::array<Finding, kKinds> findings_;
  std::vector<Section> sections_;
  std::uint32_t record_ = 0;
  bool isEmpty_ = true;
};

// Places of one kind, or a section.
struct SkippedPart {
  SkippedInput::Kind kind = SkippedInput::Kind::kText;  // of no meaning for a section
  std::string section;                                  // empty: it is none
  std::int64_t offset = 0;                              // of the first place
  std::uint32_t record = 0;                             // that was read there
  std::uint64_t places = 1;
  std::uint64_t records = 0;  // that seem to be in them
};

// "line 12" of the file at `path`; "byte 345" when the file cannot be looked into once more.
WideString PlaceInFile(const WideString& path, std::int64_t offset);

// What is said of a file whose reading ended at `offset` without its closing line.
WideString ClosingLineIsMissing(const WideString& path, std::int64_t offset);

}  // namespace corvel

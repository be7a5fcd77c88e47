// Walks over the records of a model without making objects of them.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/text.h"
#include "step/reader/record_skipper.h"
#include "step/reader/scanner.h"

namespace corvel {

// For whoever needs the class of a record and a few of its arguments. Text between records is read
// as the scanner reads it, words of the file's end included; what stands inside of a record may be
// any nonsense. Windows of any size do, and nothing is reported but what ends the scanner.
//
//   while (walker.FindRecord(number)) {
//     ... walker.TakeClassName(), then perhaps walker.WalkArguments(...)
//     walker.FinishRecord();
//   }
class RecordWalker {
 public:
  // Where in a record an argument stands: 1 is the depth of the record's own brackets. Arguments
  // are counted from 0.
  struct Place {
    unsigned depth = 1;
    unsigned argument = 0;
  };

  // Borrows `scanner`, which has taken the header. What it has looked ahead is given up.
  explicit RecordWalker(Scanner& scanner) : scanner_(scanner), stream_(*scanner.Stream()) {
    scanner.ClearTokens();
  }

  // Moves behind the "=" of the next record with a number, 1 to IFC::kLargestNumber; records
  // without one are passed over. False at the end of the input.
  bool FindRecord(std::uint32_t& number);
  // Call behind the "=". The name of the class, without underscores; empty when there is none.
  // Void when the stream moves on.
  std::string_view TakeClassName();
  // Moves before the ";" that ends the record at hand.
  void FinishRecord() {
    if (!endsInString_) SkipToSemicolon(stream_, &endsInString_);
  }

  // Call behind the name of the class. Runs over the arguments up to the one with the index `last`,
  // and over no ";". takeString(place) is called behind an opening apostrophe and gives what
  // TakeString gives; takeReference(place, number) gets 0 for what is no number of a record.
  template <class OnString, class OnReference>
  void WalkArguments(unsigned last, OnString takeString, OnReference takeReference);
  // Moves behind the closing apostrophe. Appends the decoded text where one is wanted. False when
  // the input ends before.
  bool TakeString(WideString* text = nullptr);

  // The input has ended inside of a string: whatever stands behind the last apostrophe may be
  // records.
  bool EndsInString() const { return endsInString_; }

 private:
  char Byte() const { return *stream_.Cursor(); }
  void TakeByte() { stream_.SetCursor(stream_.Cursor() + 1); }
  bool TakePlainHead(std::uint32_t& number);
  bool TakeEqual();
  std::uint32_t TakeNumber();

  Scanner& scanner_;
  FileStream::InputStream& stream_;
  bool endsInString_ = false;
};

template <class OnString, class OnReference>
void RecordWalker::WalkArguments(unsigned last, OnString takeString, OnReference takeReference) {
  if (!SkipBlanks(stream_) || Byte() != '(') return;
  TakeByte();
  Place place;
  while (place.depth != 0 && SkipBlanks(stream_) && Byte() != ';') {
    const char byte = Byte();
    TakeByte();
    if (byte == '(') {
      ++place.depth;
    } else if (byte == ')') {
      --place.depth;
    } else if (byte == '\'') {
      if (!takeString(place)) return;
    } else if (byte == '#') {
      takeReference(place, TakeNumber());
    } else if (byte == ',' && place.depth == 1 && place.argument++ == last) {
      return;
    }
  }
}

}  // namespace corvel

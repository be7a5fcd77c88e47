// A stream byte by byte, with a look ahead of any length.
#pragma once

#include <cstddef>

#include "step/reader/byte_kinds.h"
#include "step/reader/scanner.h"

namespace corvel {

// For those who look at a file as text. Everything taken since the statement text began can be
// given back.
class StreamBytes {
 public:
  static constexpr int kEnd = -1;

  // Borrows `scanner`, whose look-ahead is given up.
  explicit StreamBytes(Scanner& scanner) : scanner_(scanner), stream_(*scanner.Stream()) {}

  // 0 to 255, or kEnd.
  int Peek() { return stream_.HasByte() ? static_cast<unsigned char>(*stream_.Cursor()) : kEnd; }
  int Take() {
    const int byte = Peek();
    if (byte != kEnd) stream_.SetCursor(stream_.Cursor() + 1);
    return byte;
  }
  void TakeBlanks() {
    while (stream_.HasByte() && IsBlank(*stream_.Cursor())) Take();
  }

  // A place to go back to.
  std::size_t Mark() const { return stream_.StatementSize(); }
  void GoBack(std::size_t mark) { scanner_.Rewind(mark); }
  // Places before this one are given up.
  void Forget() { stream_.ClearStatementText(); }
  std::int64_t Position() const { return stream_.Position(); }

  // At `#12 =`, or what else begins a record.
  bool AtRecord();
  // At a word that ends the records, `ENDSEC;` or `END-ISO`.
  bool AtEndOfRecords();

 private:
  bool TakeText(std::string_view text);

  Scanner& scanner_;
  FileStream::InputStream& stream_;
};

}  // namespace corvel

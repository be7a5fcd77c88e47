// Yardstick: a model with nothing but its data, laid out as plainly as can be. The file is read at
// once, every record becomes 16-byte cells in one array, numbers are parsed, texts stay views of
// the file, and every reference is resolved to the index of its record. No class knows anything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace corvel::bench {

struct Cell {
  // kWord: enumerations, and names of typed values. kTyped: two cells, the name and its arguments.
  enum class Kind : std::uint8_t {
    kAbsent,
    kDerived,
    kInteger,
    kReal,
    kText,
    kWord,
    kReference,
    kList,
    kTyped
  };
  union {
    std::int64_t integer;
    double real;
    const char* text;     // without the quotes, escapes as they stand in the file
    std::uint64_t first;  // of a list: index of its first cell; of a reference: that of its record
  };
  std::uint32_t size = 0;  // of a text: bytes; of a list: cells
  Kind kind = Kind::kAbsent;
};
static_assert(sizeof(Cell) == 16);

struct PlainRecord {
  std::uint32_t number = 0;
  std::uint32_t size = 0;  // cells
  std::uint64_t first = 0;
  std::string_view name;
};

class PlainModel {
 public:
  // Throws std::runtime_error when the file cannot be read, is no STEP file of simple records, or
  // refers to a record that it lacks.
  explicit PlainModel(const std::string& path);

  // The same model as a file. Throws std::runtime_error when it cannot be written.
  void Write(const std::string& path) const;

  const std::vector<PlainRecord>& Records() const { return records_; }

 private:
  class Reader;
  class Writer;

  void Load(const std::string& path);
  void Resolve();

  std::unique_ptr<char[]> text_;
  std::size_t size_ = 0;
  std::string_view head_;  // up to the first record
  std::string_view tail_;  // from the ENDSEC behind the last one
  std::vector<Cell> cells_;
  std::vector<PlainRecord> records_;
};

}  // namespace corvel::bench

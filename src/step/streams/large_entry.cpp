#include "step/streams/large_entry.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace FileStream {

namespace {

constexpr std::uint64_t kElsewhere =
    0xFFFFFFFF;                                // in a field of 32 bits: look into the extra field
constexpr std::uint64_t kLargeSizes = 0x0001;  // the kind of part that holds them
constexpr std::uint64_t kUnknownKind = 0xFFFF;

// Of a record of the central directory.
constexpr std::size_t kRecordSize = 46;
constexpr std::size_t kCompressedSize = 20;
constexpr std::size_t kUncompressedSize = 24;
constexpr std::size_t kNameLength = 28;
constexpr std::size_t kHeaderOffset = 42;

std::uint64_t NumberAt(const std::string& bytes, std::size_t at, std::size_t width) {
  std::uint64_t number = 0;
  for (std::size_t i = width; i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
  }
  return number;
}

void PutNumber(std::string& bytes, std::size_t at, std::size_t width, std::uint64_t number) {
  for (std::size_t i = 0; i < width; ++i, number >>= 8) bytes[at + i] = static_cast<char>(number);
}

// Where the part with the sizes begins; nothing when there is none.
std::optional<std::size_t> FindLargeSizes(const std::string& record) {
  std::size_t at = kRecordSize + NumberAt(record, kNameLength, 2);
  while (at + 4 <= record.size()) {
    if (NumberAt(record, at, 2) == kLargeSizes) return at;
    at += 4 + NumberAt(record, at + 2, 2);
  }
  return {};
}

// Moves the numbers from the part at `part` to their places. False when one is missing or too
// large for its place.
bool MoveNumbers(std::string& record, std::size_t part) {
  std::size_t at = part + 4;
  const std::size_t end = at + NumberAt(record, part + 2, 2);
  if (end > record.size()) return false;
  for (const std::size_t place : {kUncompressedSize, kCompressedSize, kHeaderOffset}) {
    if (NumberAt(record, place, 4) != kElsewhere) continue;
    if (at + 8 > end) return false;
    const std::uint64_t number = NumberAt(record, at, 8);
    if (number >= kElsewhere) return false;
    PutNumber(record, place, 4, number);
    at += 8;
  }
  // The library does not step over a part of this kind that it has no need of.
  PutNumber(record, part, 2, kUnknownKind);
  return true;
}

}  // namespace

bool ReadSizesOfLargeEntry(unzFile archive, ArchiveFile& file) {
  unz_file_info64 info{};
  if (unzGetCurrentFileInfo64(archive, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
    return false;
  }
  if (info.uncompressed_size != kElsewhere && info.compressed_size != kElsewhere) return true;
  const std::uint64_t offset = file.LastSeek();  // of the record that has just been read
  const std::size_t length = kRecordSize + info.size_filename + info.size_file_extra;
  std::string record = file.BytesAt(offset, length);
  if (record.size() != length || !record.starts_with("PK\1\2")) return false;
  const std::optional<std::size_t> part = FindLargeSizes(record);
  if (!part) return true;  // the sizes are these
  if (!MoveNumbers(record, *part)) return false;
  file.Correct(offset, std::move(record));
  unz64_file_pos here{};
  return unzGetFilePos64(archive, &here) == UNZ_OK && unzGoToFilePos64(archive, &here) == UNZ_OK;
}

}  // namespace FileStream

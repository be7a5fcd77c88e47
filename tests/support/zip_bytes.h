// Archives made byte by byte, as any program might write them, good ones and bad ones.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace corvel::test {

inline constexpr std::uint16_t kZipEncrypted = 1;
inline constexpr std::uint16_t kZipDescriptor = 8;  // sizes stand behind the data

struct ZipEntry {
  std::string name;
  std::string content;
  bool deflated = true;
  std::uint16_t flags = 0;
  bool large = false;  // sizes and offset stand in the field for large archives
  std::string extra{};
  std::string comment{};
  // In the place of the truth.
  std::optional<std::uint16_t> method{};
  std::optional<std::uint32_t> checksum{};
  std::optional<std::uint64_t> size{};
  std::optional<std::uint64_t> packedSize{};
};

// `value` as `width` bytes, the lowest first.
inline std::string Bytes(std::uint64_t value, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i, value >>= 8) bytes.push_back(static_cast<char>(value));
  return bytes;
}

inline std::string Deflated(std::string_view content) {
  z_stream stream{};
  constexpr int kNoFrame = -15;
  if (deflateInit2(&stream, 6, Z_DEFLATED, kNoFrame, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("deflateInit2");
  }
  std::string packed(deflateBound(&stream, static_cast<uLong>(content.size())), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  const int result = deflate(&stream, Z_FINISH);
  packed.resize(packed.size() - stream.avail_out);
  deflateEnd(&stream);
  if (result != Z_STREAM_END) throw std::runtime_error("deflate");
  return packed;
}

// Puts entries one behind the other and their directory behind them.
class ZipWriter {
 public:
  explicit ZipWriter(std::string front = {}) : archive_(std::move(front)) {
    start_ = archive_.size();
  }

  void Add(const ZipEntry& entry) {
    const std::string packed = entry.deflated ? Deflated(entry.content) : entry.content;
    const auto* const content = reinterpret_cast<const Bytef*>(entry.content.data());
    const auto length = static_cast<uInt>(entry.content.size());
    const std::uint64_t sum = entry.checksum.value_or(
        static_cast<std::uint32_t>(crc32(crc32(0, nullptr, 0), content, length)));
    const std::uint64_t size = entry.size.value_or(entry.content.size());
    const std::uint64_t packedSize = entry.packedSize.value_or(packed.size());
    const std::uint64_t offset = archive_.size() - start_;
    const bool descriptor = (entry.flags & kZipDescriptor) != 0;
    const std::string common = Bytes(entry.flags, 2) +
                               Bytes(entry.method.value_or(entry.deflated ? 8 : 0), 2) +
                               Bytes(0x5A2F6B01, 4);

    const std::string localExtra =
        (entry.large ? Bytes(1, 2) + Bytes(16, 2) + Sizes(size, packedSize, descriptor, 8) : "") +
        entry.extra;
    archive_ += "PK\3\4" + Bytes(20, 2) + common + Bytes(descriptor ? 0 : sum, 4) +
                (entry.large ? Bytes(~0ull, 8) : Sizes(packedSize, size, descriptor, 4)) +
                Bytes(entry.name.size(), 2) + Bytes(localExtra.size(), 2) + entry.name +
                localExtra + packed;
    if (descriptor) archive_ += "PK\7\10" + Bytes(sum, 4) + Sizes(packedSize, size, false, 4);

    const std::string extra =
        entry.extra + (entry.large ? Bytes(1, 2) + Bytes(24, 2) + Bytes(size, 8) +
                                         Bytes(packedSize, 8) + Bytes(offset, 8)
                                   : "");
    directory_ += "PK\1\2" + Bytes(20, 2) + Bytes(20, 2) + common + Bytes(sum, 4) +
                  (entry.large ? Bytes(~0ull, 8) : Sizes(packedSize, size, false, 4)) +
                  Bytes(entry.name.size(), 2) + Bytes(extra.size(), 2) +
                  Bytes(entry.comment.size(), 2) + Bytes(0, 2) + Bytes(0, 2) + Bytes(0, 4) +
                  Bytes(entry.large ? ~0ull : offset, 4) + entry.name + extra + entry.comment;
    ++count_;
  }

  // All bytes of the archive. `large`: with the records for large archives at its end, too.
  std::string Finish(const std::string& comment = {}, bool large = false) const {
    const std::uint64_t offset = archive_.size() - start_;
    std::string end = directory_;
    if (large) {
      const std::uint64_t recordAt = archive_.size() + directory_.size();
      end += "PK\6\6" + Bytes(44, 8) + Bytes(45, 2) + Bytes(45, 2) + Bytes(0, 8) +
             Bytes(count_, 8) + Bytes(count_, 8) + Bytes(directory_.size(), 8) + Bytes(offset, 8);
      end += "PK\6\7" + Bytes(0, 4) + Bytes(recordAt, 8) + Bytes(1, 4);
    }
    return archive_ + end + "PK\5\6" + Bytes(0, 4) + Bytes(large ? 0xFFFF : count_, 2) +
           Bytes(large ? 0xFFFF : count_, 2) + Bytes(large ? 0xFFFFFFFF : directory_.size(), 4) +
           Bytes(large ? 0xFFFFFFFF : offset, 4) + Bytes(comment.size(), 2) + comment;
  }

 private:
  static std::string Sizes(std::uint64_t first, std::uint64_t second, bool hidden, int width) {
    return Bytes(hidden ? 0 : first, width) + Bytes(hidden ? 0 : second, width);
  }

  std::string archive_;
  std::size_t start_ = 0;
  std::string directory_;
  std::uint64_t count_ = 0;
};

inline std::string ZipOf(const std::vector<ZipEntry>& entries, const std::string& comment = {}) {
  ZipWriter writer;
  for (const ZipEntry& entry : entries) writer.Add(entry);
  return writer.Finish(comment);
}

}  // namespace corvel::test

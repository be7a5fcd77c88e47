// What something says, in 128 bits.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "core/model_text.h"

namespace corvel {

// Two that say the same have the same. That two others have is as likely as that two new GUIDs are
// the same, which is taken for never here as there.
struct Digest {
  std::uint64_t high = 0;
  std::uint64_t low = 0;

  bool operator==(const Digest& other) const = default;
  bool operator<(const Digest& other) const {
    return high != other.high ? high < other.high : low < other.low;
  }
};

struct HashOfDigest {
  std::size_t operator()(const Digest& digest) const {
    return static_cast<std::size_t>(digest.low);
  }
};

// Takes one word after the other; their order counts.
class DigestMaker {
 public:
  void Add(std::uint64_t word) {
    digest_.high = Mixed(digest_.high ^ word) + kStep;
    digest_.low = Mixed(digest_.low + word) ^ digest_.high;
  }
  void Add(const Digest& digest) {
    Add(digest.high);
    Add(digest.low);
  }
  // 0 is 0, whatever its sign.
  void Add(double number) { Add(std::bit_cast<std::uint64_t>(number == 0.0 ? 0.0 : number)); }
  void Add(const void* address) { Add(reinterpret_cast<std::uintptr_t>(address)); }
  void Add(ModelText text) {
    if (text.IsNull()) return Add(std::uint64_t{1} << 32);
    if (text.IsPlain()) {
      for (const char c : text.Plain()) Add(std::uint64_t{static_cast<unsigned char>(c)});
    } else {
      for (const char16_t c : text.Units()) Add(std::uint64_t{c});
    }
    Add(std::uint64_t{2} << 32);
  }

  const Digest& Made() const { return digest_; }

 private:
  static constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15ull;

  // Spreads each bit over all of them (the finalizer of SplitMix64).
  static std::uint64_t Mixed(std::uint64_t word) {
    word = (word ^ (word >> 30)) * 0xBF58476D1CE4E5B9ull;
    word = (word ^ (word >> 27)) * 0x94D049BB133111EBull;
    return word ^ (word >> 31);
  }

  Digest digest_{kStep, 2 * kStep};
};

}  // namespace corvel

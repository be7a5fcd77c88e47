// The text of an attribute, as objects hold it: one pointer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/text.h"

namespace corvel {

// A NUL-ended text that belongs to the pool of a model or to the program; nothing is owned here.
// Texts of models are ASCII nearly all, so one whose units are all below 256 takes a byte for each
// unit ("plain"), any other 16 bits. The address tells the two apart: plain texts begin at odd
// addresses, where the pool puts them, and 16-bit ones cannot.
class ModelText {
 public:
  // Null, which is no text.
  constexpr ModelText() = default;
  // For texts of the program, which have 16 bits whatever is in them: `wall.setName(u"Wall")`.
  ModelText(const char16_t* units)  // NOLINT(google-explicit-constructor)
      : at_(reinterpret_cast<const char*>(units)) {}
  // `bytes` begin at an odd address.
  static ModelText OfPlain(const char* bytes) {
    ModelText text;
    text.at_ = bytes;
    return text;
  }

  bool IsNull() const { return at_ == nullptr; }
  bool IsPlain() const { return reinterpret_cast<std::uintptr_t>(at_) % 2 != 0; }

  // The units, one of the two. Each costs the length of the text.
  std::string_view Plain() const { return at_; }                             // when IsPlain()
  WideView Units() const { return reinterpret_cast<const char16_t*>(at_); }  // when it is not

  // A copy of what it says, whichever way it is held; not of null.
  WideString ToWide() const { return IsPlain() ? Widen(Plain()) : WideString(Units()); }

  // Two interned texts of one pool are equal when and only when they have one address. Null for
  // null.
  const void* Address() const { return at_; }
  // By what they say, whichever way they are held. Null equals null alone.
  friend bool operator==(ModelText left, ModelText right) {
    if (left.at_ == right.at_) return true;
    if (left.IsNull() || right.IsNull()) return false;
    if (left.IsPlain() && right.IsPlain()) return left.Plain() == right.Plain();
    return left.ToWide() == right.ToWide();
  }

 private:
  const char* at_ = nullptr;
};

}  // namespace corvel

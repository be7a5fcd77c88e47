// Text as it comes out of a STEP string, in a byte for each unit as long as that holds it.
#pragma once

#include <string>
#include <string_view>

#include "core/text.h"

namespace corvel {

// Nearly all texts have no unit above 255, and one text may be as long as its file: two bytes for
// each unit are only spent on a text that needs them. Keeps its storage when it is cleared.
class DecodedText {
 public:
  void Clear() {
    bytes_.clear();
    units_.clear();
    isPlain_ = true;
  }
  void Append(char16_t unit) {
    if (isPlain_ && unit < kUnitsOfByte) {
      bytes_.push_back(static_cast<char>(unit));
      return;
    }
    if (isPlain_) Widen();
    units_.push_back(unit);
  }
  void AppendAscii(std::string_view text) {
    if (isPlain_) {
      bytes_.append(text);
    } else {
      units_.append(text.begin(), text.end());
    }
  }

  // No unit is above 255: the text is Bytes, and Units is empty. Otherwise it is the other way.
  bool IsPlain() const { return isPlain_; }
  std::string_view Bytes() const { return bytes_; }  // ISO 8859-1
  WideView Units() const { return units_; }
  bool Holds(char unit) const {
    return isPlain_ ? bytes_.find(unit) != std::string::npos
                    : units_.find(static_cast<unsigned char>(unit)) != WideString::npos;
  }
  WideString Wide() const {
    WideString wide = units_;
    for (const char byte : bytes_) wide.push_back(static_cast<unsigned char>(byte));
    return wide;
  }

 private:
  static constexpr char16_t kUnitsOfByte = 256;

  void Widen() {
    units_ = Wide();
    bytes_.clear();
    isPlain_ = false;
  }

  std::string bytes_;
  WideString units_;
  bool isPlain_ = true;
};

}  // namespace corvel

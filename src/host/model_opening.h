// The start of a model file, for whoever looks into one without making objects of it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "core/text.h"
#include "step/factories.h"
#include "step/reader/scanner.h"
#include "step/reader/token.h"

namespace corvel::host {

inline constexpr std::size_t kModelBuffer = 0x100000;

// The reporter for scanners and streams of such a reading: what they say goes to the innermost
// Hearing, and to nobody without one.
int Hear(const char* key, const WideString& message, int mode);

// Takes what is said while it lives.
class Hearing {
 public:
  // Borrows `messages`.
  explicit Hearing(std::vector<WideString>& messages);
  ~Hearing();
  Hearing(const Hearing&) = delete;
  Hearing& operator=(const Hearing&) = delete;

 private:
  std::vector<WideString>* before_;
};

// The HEADER, in the strict order in which a reading of the model takes it; the next byte of the
// stream is then the one behind it. Null, and a problem more, when it is not there.
std::unique_ptr<HeaderToken> ReadHeader(Scanner& scanner, std::vector<WideString>& problems);

// The release that serves an identifier; nothing, and a problem more, when none does.
std::optional<SchemaNamespace> ChooseSchema(const WideString& identifier,
                                            std::vector<WideString>& remarks,
                                            std::vector<WideString>& problems);

}  // namespace corvel::host

#include "host/savings.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "host/hearing.h"
#include "step/streams/open_input.h"

namespace corvel::host {

namespace {

std::string Percent(const BeforeAndNow& amount) {
  const double saved = static_cast<double>(amount.before) - static_cast<double>(amount.now);
  const double percent =
      amount.before == 0 ? 0.0 : 100.0 * saved / static_cast<double>(amount.before);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.1f %% %s", percent < 0 ? -percent : percent,
                percent < 0 ? "more" : "saved");
  return text.data();
}

std::string Line(const char* what, const BeforeAndNow& amount) {
  return std::string(what) + ": " + std::to_string(amount.before) + " before, " +
         std::to_string(amount.now) + " now, " + Percent(amount) + ".\n";
}

}  // namespace

WideString SavingsAsText(const BeforeAndNow& records, const BeforeAndNow& bytes) {
  return Widen(Line("Records", records) + Line("Bytes", bytes));
}

std::uint64_t BytesOfModel(const WideString& path) {
  constexpr std::size_t kSmallBuffer = 0x1000;
  std::vector<WideString> told;
  const Hearing hearing(told);
  const auto stream = FileStream::OpenInput(path, kSmallBuffer, Hear);
  if (stream == nullptr || !stream->IsOpen()) return 0;
  return static_cast<std::uint64_t>(stream->TotalSize());
}

}  // namespace corvel::host

#include "merge/federation/new_header.h"

#include <array>
#include <cstdio>

#include "core/shown_paths.h"
#include "platform/platform.h"

namespace corvel {

namespace {

// ISO 8601, local time.
WideString Now() {
  const platform::LocalTime time = platform::Get().Now();
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d", time.year, time.month,
                time.day, time.hour, time.minute, time.second);
  return Widen(text.data());
}

WideString NameOf(const WideString& path) { return ShownFileName(path); }

}  // namespace

void RenewHeader(HeaderToken& header, const WideString& output,
                 const std::vector<WideString>& inputs) {
  header.name = NameOf(output);
  header.timeStamp = Now();
  header.preprocessorVersion = u"Corvel " CORVEL_VERSION;
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    header.fileDescription.push_back(u"Input " + ToWide(static_cast<std::uint32_t>(i + 1)) + u": " +
                                     NameOf(inputs[i]));
  }
}

}  // namespace corvel

#include "host/run_pace.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "platform/platform.h"

namespace corvel::host {

namespace {

constexpr double kNanosecondsPerSecond = 1e9;
constexpr double kBytesPerMegabyte = 1e6;
constexpr double kWhole = 100.0;
constexpr int kLeastPercent = 3;
constexpr double kLeastSeconds = 2.0;
constexpr long kSecondsPerMinute = 60;

std::int64_t Now() { return platform::Get().MonotonicNanoseconds(); }

}  // namespace

RunPace::RunPace(std::int64_t bytes) : bytes_(bytes), began_(Now()) {}

double RunPace::Seconds() const {
  return static_cast<double>(Now() - began_) / kNanosecondsPerSecond;
}

std::optional<double> RunPace::SecondsLeft(int percent) const {
  const double seconds = Seconds();
  if (percent < kLeastPercent || seconds < kLeastSeconds) return std::nullopt;
  return seconds * (kWhole - percent) / percent;
}

WideString RunPace::Text(int percent) const {
  const auto left = SecondsLeft(percent);
  if (!left) return {};
  const double megabytes =
      static_cast<double>(bytes_) * percent / kWhole / kBytesPerMegabyte / Seconds();
  const long seconds = std::lround(*left);
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), " (%.1f MB/s, %ld:%02ld left)", megabytes,
                seconds / kSecondsPerMinute, seconds % kSecondsPerMinute);
  return Widen(text.data());
}

}  // namespace corvel::host

// What one stage of a program costs, as a line of output that bench/measure.py reads: name, seconds
// of processor time, input bytes, peak resident bytes so far, resident bytes now, seconds that went
// by.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>
#include <string_view>

namespace corvel::bench {

inline double ProcessorSeconds() {
  std::timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The bytes that a line of /proc/self/status tells, such as "VmRSS:"; 0 where the system does not.
// (What getrusage tells of the peak may be that of the program which started this one.)
inline long StatusBytes(std::string_view key) {
  std::ifstream status("/proc/self/status");
  long kilobytes = 0;
  for (std::string word; status >> word;) {
    if (word == key) status >> kilobytes;
  }
  return kilobytes * 1024;
}

inline long PeakBytes() { return StatusBytes("VmHWM:"); }
inline long ResidentBytes() { return StatusBytes("VmRSS:"); }

// Prints the line when it ends.
class Stage {
 public:
  Stage(const char* name, std::uintmax_t bytes)
      : name_(name), bytes_(bytes), start_(ProcessorSeconds()) {}
  ~Stage() {
    const double seconds = ProcessorSeconds() - start_;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin_;
    std::printf("%s\t%.6f\t%ju\t%ld\t%ld\t%.6f\n", name_, seconds, bytes_, PeakBytes(),
                ResidentBytes(), elapsed.count());
  }
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

 private:
  const char* name_;
  std::uintmax_t bytes_;
  double start_;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

}  // namespace corvel::bench

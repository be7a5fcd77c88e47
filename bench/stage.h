// What one stage of a program costs, as a line of output that bench/measure.py reads: name, seconds
// of processor time, input bytes, peak resident bytes so far, resident bytes now.
#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <ctime>

namespace corvel::bench {

inline double ProcessorSeconds() {
  std::timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

inline long PeakBytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss * 1024;
}

// 0 where the system does not tell.
inline long ResidentBytes() {
  std::FILE* const file = std::fopen("/proc/self/statm", "r");
  if (file == nullptr) return 0;
  long pages = 0;
  const bool found = std::fscanf(file, "%*d %ld", &pages) == 1;
  std::fclose(file);
  return found ? pages * sysconf(_SC_PAGESIZE) : 0;
}

// Prints the line when it ends.
class Stage {
 public:
  Stage(const char* name, std::uintmax_t bytes)
      : name_(name), bytes_(bytes), start_(ProcessorSeconds()) {}
  ~Stage() {
    const double seconds = ProcessorSeconds() - start_;
    std::printf("%s\t%.6f\t%ju\t%ld\t%ld\n", name_, seconds, bytes_, PeakBytes(), ResidentBytes());
  }
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

 private:
  const char* name_;
  std::uintmax_t bytes_;
  double start_;
};

}  // namespace corvel::bench

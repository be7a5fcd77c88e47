// Temporary folders where writing is quick.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace corvel::test {

// Temporary folders lie in memory where the system has such a place: each of thousands of reads
// hands a file to the disk and waits for it.
class FoldersInMemory {
 public:
  FoldersInMemory() {
    if (const char* const before = std::getenv(kVariable)) before_ = before;
    if (std::filesystem::is_directory(kMemory)) Set(kMemory);
  }
  ~FoldersInMemory() { Set(before_.c_str()); }
  FoldersInMemory(const FoldersInMemory&) = delete;
  FoldersInMemory& operator=(const FoldersInMemory&) = delete;

 private:
#ifdef _WIN32
  // There is such a place under Wine, whose drive Z is the system below.
  static constexpr const char* kVariable = "TMP";
  static constexpr const char* kMemory = "Z:\\dev\\shm";
  static void Set(const char* value) { ::_putenv_s(kVariable, value); }
#else
  static constexpr const char* kVariable = "TMPDIR";
  static constexpr const char* kMemory = "/dev/shm";
  static void Set(const char* value) {
    if (*value == '\0') {
      ::unsetenv(kVariable);
    } else {
      ::setenv(kVariable, value, 1);
    }
  }
#endif

  std::string before_;
};

}  // namespace corvel::test

// A folder of its own for each test, gone with everything in it when the test ends.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/text.h"

namespace corvel::test {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    static std::atomic<unsigned> count{0};
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    for (int attempt = 0; attempt < 100; ++attempt) {
      path_ = std::filesystem::temp_directory_path() /
              ("corvel_test_" + std::to_string(now) + "_" + std::to_string(++count));
      if (std::filesystem::create_directory(path_)) return;
    }
    throw std::runtime_error("no temporary folder can be made");
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // The folder, without a separator at its end.
  WideString Path() const { return Wide(path_); }
  // Path of a file in it; the file need not exist.
  WideString Path(std::string_view name) const { return Wide(Native(name)); }
  // The same for file functions of the standard library.
  std::filesystem::path Native(std::string_view name) const { return path_ / name; }

  // Makes a file, and its folder where it is missing, and gives its path.
  WideString Write(std::string_view name, std::string_view bytes) const {
    std::filesystem::create_directories(Native(name).parent_path());
    std::ofstream file(Native(name), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + std::string(name));
    return Path(name);
  }
  // All bytes of a file; throws when there is none.
  std::string Read(std::string_view name) const {
    std::ifstream file(Native(name), std::ios::binary | std::ios::ate);
    if (!file) throw std::runtime_error("cannot read " + std::string(name));
    std::string bytes(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
  }
  bool Has(std::string_view name) const { return std::filesystem::exists(Native(name)); }
  // Names of what lies in the folder itself, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  // Names need not be valid UTF-8.
  static WideString Wide(const std::filesystem::path& path) {
#ifdef _WIN32
    return path.u16string();
#else
    return FromUtf8(path.native());
#endif
  }

  std::filesystem::path path_;
};

}  // namespace corvel::test

#include "work_folder.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace corvel::test_host {

namespace fs = std::filesystem;

std::string PathText(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::string Utf8(std::u16string_view text) { return PathText(fs::path(text)); }

std::u16string Utf16(std::string_view text) {
  return fs::path(std::u8string(text.begin(), text.end())).u16string();
}

std::string ReadBytes(const fs::path& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) throw std::runtime_error("cannot read " + PathText(path));
  std::string bytes(static_cast<std::size_t>(file.tellg()), '\0');
  file.seekg(0);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

void WriteBytes(const fs::path& path, std::string_view bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw std::runtime_error("cannot write " + PathText(path));
}

WorkFolder::WorkFolder() {
  static unsigned count = 0;
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  path_ = fs::canonical(fs::temp_directory_path()) /
          ("corvel_test_host_" + std::to_string(now) + "_" + std::to_string(++count));
  if (!fs::create_directory(path_)) throw std::runtime_error("cannot make " + PathText(path_));
}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::vector<std::string> WorkFolder::Files() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) {
    if (entry.is_regular_file()) names.push_back(PathText(entry.path().filename()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace corvel::test_host

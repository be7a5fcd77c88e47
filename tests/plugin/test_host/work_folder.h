// The folder that a scene plays in, and text for file functions and transcripts.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace corvel::test_host {

// UTF-8 and back. Neither takes anything that is not valid.
std::string Utf8(std::u16string_view text);
std::u16string Utf16(std::string_view text);
std::string PathText(const std::filesystem::path& path);

std::string ReadBytes(const std::filesystem::path& path);  // throws without a file
void WriteBytes(const std::filesystem::path& path, std::string_view bytes);

// Made empty, gone with everything in it.
class WorkFolder {
 public:
  WorkFolder();
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }
  // Names of the files of the folder itself, sorted.
  std::vector<std::string> Files() const;

 private:
  std::filesystem::path path_;
};

}  // namespace corvel::test_host

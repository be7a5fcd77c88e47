#include "step/writer/unfinished_output.h"

#include <filesystem>
#include <system_error>

#include "platform/native_path.h"

namespace corvel {

namespace {

// Something that takes bytes and keeps no file: it cannot be replaced.
bool IsDevice(const WideString& path) {
  std::error_code ignored;
  switch (std::filesystem::status(platform::NativePath(path), ignored).type()) {
    case std::filesystem::file_type::character:
    case std::filesystem::file_type::block:
    case std::filesystem::file_type::fifo:
    case std::filesystem::file_type::socket: return true;
    default: return false;
  }
}

}  // namespace

WideString FollowLinks(const WideString& path) {
  // As many as systems follow; links in a circle end there.
  constexpr int kLongestChain = 40;
  std::filesystem::path target = platform::NativePath(path);
  std::error_code failure;
  for (int i = 0; i < kLongestChain && std::filesystem::is_symlink(target, failure); ++i) {
    const std::filesystem::path next = std::filesystem::read_symlink(target, failure);
    if (failure) break;
    target = target.parent_path() / next;  // an absolute `next` stands alone
  }
  return platform::FromNativePath(target);
}

UnfinishedOutput::UnfinishedOutput(const WideString& path)
    : target_(FollowLinks(path)), isDevice_(IsDevice(target_)) {}

platform::File UnfinishedOutput::Open() {
  platform::File file;
  if (isDevice_) {
    file.Open(target_, platform::OpenMode::kWrite);
  } else if (file_.Begin(target_)) {
    file = file_.TakeFile();
  }
  return file;
}

bool UnfinishedOutput::Complete() {
  complete_ = isDevice_ || file_.Place();
  // The work of an hour is not thrown away because another program has the target open.
  if (!complete_) keptAt_ = file_.Keep();
  return complete_;
}

bool WriteInOneStep(const WideString& path, std::string_view bytes) {
  UnfinishedOutput output(path);
  platform::File file = output.Open();
  if (!file.IsOpen()) return false;
  const bool written = file.Write(bytes.data(), bytes.size()) == bytes.size() && file.Sync();
  if (file.Close() && written) return output.Complete();
  output.Discard();
  return false;
}

}  // namespace corvel

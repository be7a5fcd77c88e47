#include "step/writer/unfinished_output.h"

#include <filesystem>
#include <system_error>

#include "platform/console.h"
#include "platform/file.h"
#include "platform/native_path.h"

namespace corvel {

namespace {

bool IsLink(const WideString& path) {
  std::error_code ignored;
  return std::filesystem::is_symlink(platform::NativePath(path), ignored);
}

bool IsFileOrFree(const WideString& path) {
  std::error_code ignored;
  const auto type = std::filesystem::status(platform::NativePath(path), ignored).type();
  return type == std::filesystem::file_type::regular ||
         type == std::filesystem::file_type::not_found;
}

}  // namespace

WideString FollowLinks(const WideString& path) {
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

UnfinishedOutput::UnfinishedOutput(const WideString& path) : path_(path) {
  const WideString target = FollowLinks(path);
  if (IsFileOrFree(target)) target_ = target;
  platform::SetUnfinishedFile(target_);
}

UnfinishedOutput::~UnfinishedOutput() {
  platform::SetUnfinishedFile({});
  // The writer got as far as removing what it had begun, but that was the link only.
  const bool begun = !complete_ && target_ != path_ && !IsLink(path_);
  if (begun && !target_.empty()) platform::RemoveFile(target_);
}

void UnfinishedOutput::Complete() {
  complete_ = true;
  platform::SetUnfinishedFile({});
}

}  // namespace corvel

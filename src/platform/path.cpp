#include "platform/file.h"

namespace platform {

namespace {

#ifdef _WIN32
constexpr char16_t kSeparator = u'\\';
#else
constexpr char16_t kSeparator = u'/';
#endif

}  // namespace

std::u16string JoinPath(std::u16string_view folder, std::u16string_view name) {
  std::u16string path(folder);
  if (!path.empty() && FindLastSeparator(path) + 1 != path.size()) path.push_back(kSeparator);
  return path.append(name);
}

}  // namespace platform

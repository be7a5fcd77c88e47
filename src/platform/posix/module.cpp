#include "platform/module.h"

#include <dlfcn.h>
#include <link.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "platform/native_path.h"
#include "platform/platform.h"

namespace platform {

namespace {

std::string HomeFolder() {
  if (const char* const home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
  const passwd* const user = ::getpwuid(::getuid());
  return user == nullptr || user->pw_dir == nullptr ? std::string() : user->pw_dir;
}

}  // namespace

ExportedFunction FindInMainProgram(const char* name) {
  void* const program = ::dlopen(nullptr, RTLD_LAZY);
  if (program == nullptr) return nullptr;
  void* const address = ::dlsym(program, name);
  // The program stays loaded, so the address stays good.
  ::dlclose(program);
  return reinterpret_cast<ExportedFunction>(address);
}

// The loader knows the main program by an empty name.
std::u16string LibraryPath() {
  Dl_info info{};
  void* extra = nullptr;
  if (::dladdr1(reinterpret_cast<const void*>(&LibraryPath), &info, &extra, RTLD_DL_LINKMAP) == 0) {
    return {};
  }
  const auto* const map = static_cast<const link_map*>(extra);
  if (map == nullptr || map->l_name == nullptr || *map->l_name == '\0') {
    return System().ExecutablePath();
  }
  std::error_code failure;
  const auto path = std::filesystem::absolute(map->l_name, failure);
  return failure ? FromUtf8(map->l_name) : FromNativePath(path);
}

std::u16string UserDataFolder() {
  // Relative paths in that variable count as none.
  const char* const folder = std::getenv("XDG_DATA_HOME");
  if (folder != nullptr && *folder == '/') return FromUtf8(folder);
  const std::string home = HomeFolder();
  return home.empty() ? std::u16string() : FromUtf8(home + "/.local/share");
}

std::u16string CommonDataFolder() { return u"/usr/local/share"; }

}  // namespace platform

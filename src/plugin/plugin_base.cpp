#include "plugin/plugin_base.h"

#include <utility>

#include "platform/file.h"
#include "platform/module.h"

namespace corvel::plugin {

namespace {

constexpr char16_t kArchitectureSuffix[] = u"_x64";

#ifdef _WIN32
constexpr char16_t kSeparator = u'\\';
#else
constexpr char16_t kSeparator = u'/';
#endif

}  // namespace

WideString StemOf(WideView path) {
  const WideView name = platform::FileNameOf(path);
  return WideString(name.substr(0, name.rfind(u'.')));
}

PluginFolders FoldersOf(WideView libraryPath, WideView userData, WideView commonData) {
  const std::size_t folderEnd = libraryPath.find_last_of(kSeparator);
  WideView root = libraryPath.substr(0, folderEnd == WideView::npos ? 0 : folderEnd);
  root = root.substr(0, root.rfind(kArchitectureSuffix));
  const WideString stem = StemOf(libraryPath);
  const auto folderBelow = [&](WideView base) {
    WideString folder(base);
    for (const WideView part : {WideView(u"Orlenta"), WideView(u"plugins"), WideView(stem)}) {
      folder.append(1, kSeparator).append(part);
    }
    return folder + kSeparator;
  };
  PluginFolders folders;
  folders.data = WideString(root) + kSeparator + stem + u"_data" + kSeparator;
  folders.user = folderBelow(userData);
  folders.common = folderBelow(commonData);
  return folders;
}

}  // namespace corvel::plugin

namespace cpp {

PluginBase::PluginBase(corvel::WideString pluginName)
    : name(std::move(pluginName)), libraryPath_(platform::LibraryPath()) {
  folders = corvel::plugin::FoldersOf(libraryPath_, platform::UserDataFolder(),
                                      platform::CommonDataFolder());
}

corvel::WideString PluginBase::DataFolderName() const {
  return corvel::plugin::StemOf(libraryPath_) + u"_data";
}

}  // namespace cpp

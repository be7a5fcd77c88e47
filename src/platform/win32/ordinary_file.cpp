#include "platform/win32/ordinary_file.h"

#include "platform/win32/long_path.h"

namespace platform {

namespace {

enum class Kind { kPlain, kPlaceholder, kOther };

// Of a file that was opened as itself, links unfollowed. A file that lies with a cloud service is a
// reparse point as links are, and is as good as any other.
Kind KindOf(HANDLE file) {
  if (::GetFileType(file) != FILE_TYPE_DISK) return Kind::kOther;
  FILE_ATTRIBUTE_TAG_INFO info{};
  if (::GetFileInformationByHandleEx(file, FileAttributeTagInfo, &info, sizeof info) == 0) {
    return Kind::kOther;
  }
  if ((info.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return Kind::kOther;
  if ((info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return Kind::kPlain;
  return IsReparseTagNameSurrogate(info.ReparseTag) ? Kind::kOther : Kind::kPlaceholder;
}

}  // namespace

HANDLE OpenOrdinaryFile(const std::u16string& path, DWORD access, DWORD share, DWORD creation) {
  const std::wstring name = PathForSystem(path);
  const HANDLE file = ::CreateFileW(name.c_str(), access | FILE_READ_ATTRIBUTES, share, nullptr,
                                    creation, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (file == INVALID_HANDLE_VALUE) return file;
  const Kind kind = KindOf(file);
  if (kind == Kind::kPlain) return file;
  ::CloseHandle(file);
  ::SetLastError(ERROR_ACCESS_DENIED);
  if (kind == Kind::kOther) return INVALID_HANDLE_VALUE;
  // Its bytes are fetched by the service only when it is opened the ordinary way.
  return ::CreateFileW(name.c_str(), access, share, nullptr, creation, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

}  // namespace platform

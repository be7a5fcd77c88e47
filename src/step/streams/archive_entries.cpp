#include "step/streams/archive_entries.h"

#include <string>
#include <utility>

#include "step/streams/archive_file.h"
#include "step/streams/large_entry.h"

namespace FileStream {

namespace {

// Nothing when the directory cannot be read. The first look tells how long the name is.
std::optional<ArchiveEntry> CurrentEntry(unzFile archive, ArchiveFile& file) {
  unz_file_info64 info{};
  if (!ReadSizesOfLargeEntry(archive, file) ||
      unzGetCurrentFileInfo64(archive, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
    return std::nullopt;
  }
  std::string name(info.size_filename, '\0');
  const int result = unzGetCurrentFileInfo64(
      archive, &info, name.data(), static_cast<uLong>(name.size()), nullptr, 0, nullptr, 0);
  if (result != UNZ_OK) return std::nullopt;
  return ArchiveEntry{corvel::FromUtf8(name), info.uncompressed_size};
}

std::optional<std::vector<ArchiveEntry>> ReadEntries(unzFile archive, ArchiveFile& file) {
  std::vector<ArchiveEntry> entries;
  int result = unzGoToFirstFile(archive);
  for (; result == UNZ_OK; result = unzGoToNextFile(archive)) {
    auto entry = CurrentEntry(archive, file);
    if (!entry) return std::nullopt;
    const bool isFolder =
        entry->bytes == 0 && (entry->name.ends_with(u'/') || entry->name.ends_with(u'\\'));
    if (!isFolder) entries.push_back(std::move(*entry));
  }
  if (result != UNZ_END_OF_LIST_OF_FILE) return std::nullopt;
  return entries;
}

}  // namespace

std::optional<std::vector<ArchiveEntry>> EntriesOf(const corvel::WideString& path) {
  ArchiveFile file(path, platform::OpenMode::kRead);
  zlib_filefunc64_def functions = file.Functions();
  const unzFile archive = unzOpen2_64(corvel::ToUtf8(path).c_str(), &functions);
  if (archive == nullptr) return std::nullopt;
  auto entries = ReadEntries(archive, file);
  const bool closed = unzClose(archive) == UNZ_OK;
  return closed && !file.Failed() ? std::move(entries) : std::nullopt;
}

}  // namespace FileStream

#include "platform/replacing_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/console.h"
#include "platform/part_name.h"
#include "platform/utf8.h"

namespace platform {

namespace {

constexpr std::intptr_t kNone = -1;
constexpr mode_t kPermissions = 0777;
constexpr auto kKeepOwner = static_cast<uid_t>(-1);
constexpr auto kKeepGroup = static_cast<gid_t>(-1);

std::size_t LengthInBytes(std::u16string_view name) { return ToUtf8(name).size(); }

// "" stands for the current folder in our paths, and for nothing in the system's.
std::string FolderForSystem(const std::u16string& folder) {
  return folder.empty() ? std::string(".") : ToUtf8(folder);
}

std::size_t LongestName(const std::u16string& folder) {
  constexpr long kUsual = 255;
  const long told = ::pathconf(FolderForSystem(folder).c_str(), _PC_NAME_MAX);
  return static_cast<std::size_t>(told > 0 ? told : kUsual);
}

std::optional<struct stat> StatusOf(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return {};
  return status;
}

bool IsSame(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool LeadsTo(const std::string& path, int descriptor) {
  struct stat opened {};
  const auto named = StatusOf(path);
  return named && ::fstat(descriptor, &opened) == 0 && IsSame(*named, opened);
}

// A rename would get round the permissions of the file that it replaces; they are meant all the
// same.
bool MayBeWritten(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return false;
  ::close(descriptor);
  return true;
}

// In a folder like /tmp a file goes with its owner's or the folder's owner's leave only.
bool MayBeReplaced(const std::u16string& folder, const struct stat& target) {
  struct stat status {};
  if (::stat(FolderForSystem(folder).c_str(), &status) != 0) return false;
  const uid_t self = ::geteuid();
  return (status.st_mode & S_ISVTX) == 0 || self == 0 || self == target.st_uid ||
         self == status.st_uid;
}

bool IsFreeOrReplaceable(const std::u16string& folder, const std::string& target) {
  const auto status = StatusOf(target);
  if (!status) return errno == ENOENT;
  return S_ISREG(status->st_mode) && MayBeWritten(target) && MayBeReplaced(folder, *status);
}

bool Lock(int descriptor) {
  int result = ::flock(descriptor, LOCK_EX | LOCK_NB);
  while (result != 0 && errno == EINTR) result = ::flock(descriptor, LOCK_EX | LOCK_NB);
  return result == 0;
}

// Removes a file that nobody has locked. Whoever has just made it sees that it is gone.
void RemoveUnlocked(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return;
  struct stat status {};
  const bool isFile = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
  if (isFile && Lock(descriptor) && LeadsTo(path, descriptor)) ::unlink(path.c_str());
  ::close(descriptor);
}

std::vector<std::u16string> NamesIn(const std::u16string& folder) {
  std::vector<std::u16string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(FolderForSystem(folder).c_str()),
                                                    &::closedir);
  if (listing == nullptr) return names;
  while (const dirent* const entry = ::readdir(listing.get())) {
    if (entry->d_name[0] == '.') names.push_back(FromUtf8(entry->d_name));
  }
  return names;
}

// Where the owner or the group cannot be had, the permissions are those that let in nobody new.
void TakeOverAccess(int descriptor, const struct stat& from) {
  struct stat own {};
  if (::fstat(descriptor, &own) != 0) return;
  mode_t mode = from.st_mode & kPermissions;
  if (own.st_uid != from.st_uid) static_cast<void>(::fchown(descriptor, from.st_uid, kKeepGroup));
  const bool group =
      own.st_gid == from.st_gid || ::fchown(descriptor, kKeepOwner, from.st_gid) == 0;
  if (!group) mode &= ~static_cast<mode_t>(S_IRWXG) | ((mode & S_IRWXO) << 3);
  ::fchmod(descriptor, mode);
}

// So that the new name outlasts a loss of power. A folder that cannot be handed over is no reason
// to take back what is done.
void SyncFolder(const std::u16string& folder) {
  const int descriptor =
      ::open(FolderForSystem(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

ReplacingFile::~ReplacingFile() { Discard(); }

bool ReplacingFile::Begin(const std::u16string& target) {
  Discard();
  if (target.find(u'\0') != std::u16string::npos) return false;
  const std::size_t nameStart = target.rfind(u'/') + 1;
  folder_ = target.substr(0, nameStart);
  name_ = target.substr(nameStart);
  if (name_.empty() || !IsFreeOrReplaceable(folder_, ToUtf8(target))) return false;
  const std::u16string stem = PartStem(name_, LongestName(folder_), LengthInBytes);
  RemoveLeftOvers(stem);
  return MakePart(stem);
}

// A name may be taken already, and another run may take the file for a left-over in the moment
// before it is locked.
bool ReplacingFile::MakePart(std::u16string_view stem) {
  constexpr int kAttempts = 16;
  const bool isNew = !StatusOf(ToUtf8(folder_ + name_));
  const mode_t mode = isNew ? 0666 : 0600;  // until it is known who may read what it replaces
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const auto process = static_cast<std::uint32_t>(::getpid());
    part_ = folder_ + PartName(stem, process, PartKind::kPart);
    const std::string path = ToUtf8(part_);
    SetUnfinishedFile(part_);
    const int descriptor =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (descriptor >= 0) {
      lock_ = descriptor;
      const bool locked = Lock(descriptor);
      if ((locked || errno != EWOULDBLOCK) && LeadsTo(path, descriptor)) return true;
      ::close(descriptor);
    } else if (errno != EEXIST && errno != EINTR) {
      break;
    }
    Forget();
  }
  Forget();
  return false;
}

void ReplacingFile::RemoveLeftOvers(std::u16string_view stem) const {
  for (const std::u16string& name : NamesIn(folder_)) {
    const std::optional<PartOwner> owner = OwnerOfPart(name, stem);
    // There are no backups here: a rename replaces in one step.
    if (owner && owner->kind == PartKind::kPart) RemoveUnlocked(ToUtf8(folder_ + name));
  }
}

// The second descriptor shares the lock, which holds until both are closed.
File ReplacingFile::TakeFile() {
  const int descriptor = ::fcntl(static_cast<int>(lock_), F_DUPFD_CLOEXEC, 0);
  return descriptor < 0 ? File() : File(descriptor);
}

bool ReplacingFile::Place() {
  if (part_.empty()) return false;
  const std::string target = ToUtf8(folder_ + name_);
  const auto replaced = StatusOf(target);
  if (replaced && S_ISREG(replaced->st_mode)) TakeOverAccess(static_cast<int>(lock_), *replaced);
  if (::rename(ToUtf8(part_).c_str(), target.c_str()) != 0) return false;
  SyncFolder(folder_);
  Forget();
  return true;
}

std::u16string ReplacingFile::Keep() {
  std::u16string kept = folder_ + KeptName(std::u16string_view(part_).substr(folder_.size()));
  if (::rename(ToUtf8(part_).c_str(), ToUtf8(kept).c_str()) != 0) kept = part_;
  Forget();
  return kept;
}

void ReplacingFile::Discard() {
  if (!part_.empty()) ::unlink(ToUtf8(part_).c_str());
  Forget();
}

void ReplacingFile::Forget() {
  if (!part_.empty()) SetUnfinishedFile({});
  part_.clear();
  const std::intptr_t descriptor = std::exchange(lock_, kNone);
  if (descriptor != kNone) ::close(static_cast<int>(descriptor));
}

}  // namespace platform

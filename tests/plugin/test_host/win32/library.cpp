#include "library.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>

#include "win32/imports.h"

namespace corvel::test_host {

namespace {

// The names of the program's exports, in the order of the alphabet in which they are looked for,
// and beside each name the place of its function.
struct ExportTable {
  IMAGE_EXPORT_DIRECTORY* directory;
  std::byte* base;

  static ExportTable OfProgram() {
    auto* const base = reinterpret_cast<std::byte*>(::GetModuleHandleW(nullptr));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const DWORD at =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
    return {reinterpret_cast<IMAGE_EXPORT_DIRECTORY*>(base + at), base};
  }

  DWORD* Names() const { return reinterpret_cast<DWORD*>(base + directory->AddressOfNames); }
  WORD* Places() const { return reinterpret_cast<WORD*>(base + directory->AddressOfNameOrdinals); }
  const char* Name(DWORD i) const { return reinterpret_cast<const char*>(base + Names()[i]); }

  std::optional<DWORD> Find(const char* name) const {
    for (DWORD i = 0; i < directory->NumberOfNames; ++i) {
      if (std::strcmp(Name(i), name) == 0) return i;
    }
    return {};
  }
};

}  // namespace

Library::Library(const std::filesystem::path& path) : module_(::LoadLibraryW(path.c_str())) {
  if (module_ == nullptr) {
    throw std::runtime_error("LoadLibrary fails with " + std::to_string(::GetLastError()));
  }
  FindEntryPoints();
}

Library::~Library() { ::FreeLibrary(static_cast<HMODULE>(module_)); }

Library::EntryPoint Library::Find(const char* name) const {
  return reinterpret_cast<EntryPoint>(::GetProcAddress(static_cast<HMODULE>(module_), name));
}

bool IsLoaded(const std::filesystem::path& path) {
  return ::GetModuleHandleW(path.filename().c_str()) != nullptr;
}

struct HiddenExports::State {
  ExportTable table;
  std::vector<DWORD> names;
  std::vector<WORD> places;

  void Restore() const {
    const auto count = static_cast<DWORD>(names.size());
    Put(names, places);
    const Writable writable(table.directory, sizeof *table.directory);
    table.directory->NumberOfNames = count;
  }
  void Put(const std::vector<DWORD>& someNames, const std::vector<WORD>& somePlaces) const {
    const Writable writableNames(table.Names(), names.size() * sizeof(DWORD));
    const Writable writablePlaces(table.Places(), names.size() * sizeof(WORD));
    std::copy(someNames.begin(), someNames.end(), table.Names());
    std::copy(somePlaces.begin(), somePlaces.end(), table.Places());
  }
};

HiddenExports::HiddenExports(const std::vector<std::string>& names)
    : state_(new State{ExportTable::OfProgram(), {}, {}}) {
  const ExportTable& table = state_->table;
  const DWORD count = table.directory->NumberOfNames;
  state_->names.assign(table.Names(), table.Names() + count);
  state_->places.assign(table.Places(), table.Places() + count);
  std::vector<DWORD> keptNames = state_->names;
  std::vector<WORD> keptPlaces = state_->places;
  for (const std::string& name : names) {
    std::size_t at = 0;
    while (at < keptNames.size() &&
           name != reinterpret_cast<const char*>(table.base + keptNames[at])) {
      ++at;
    }
    if (at == keptNames.size()) throw std::runtime_error("no export " + name);
    keptNames.erase(keptNames.begin() + static_cast<std::ptrdiff_t>(at));
    keptPlaces.erase(keptPlaces.begin() + static_cast<std::ptrdiff_t>(at));
  }
  state_->Put(keptNames, keptPlaces);
  const Writable writable(table.directory, sizeof *table.directory);
  table.directory->NumberOfNames = static_cast<DWORD>(keptNames.size());
}

HiddenExports::~HiddenExports() {
  state_->Restore();
  delete state_;
}

bool IsExported(const char* name) {
  return ::GetProcAddress(::GetModuleHandleW(nullptr), name) != nullptr;
}

}  // namespace corvel::test_host

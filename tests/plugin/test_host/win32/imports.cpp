#include "win32/imports.h"

#include <windows.h>

#include <cstddef>
#include <cstring>

namespace corvel::test_host {

Writable::Writable(void* start, unsigned long long size) : start_(start), size_(size) {
  ::VirtualProtect(start_, size_, PAGE_READWRITE, &before_);
}

Writable::~Writable() { ::VirtualProtect(start_, size_, before_, &before_); }

void ReplaceImport(void* module, const char* name, void (*replacement)()) {
  auto* const base = static_cast<std::byte*>(module);
  const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
  const DWORD table =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
  const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table);
  for (; table != 0 && library->Name != 0; ++library) {
    const auto* names =
        reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + library->OriginalFirstThunk);
    auto* addresses = reinterpret_cast<IMAGE_THUNK_DATA64*>(base + library->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
      if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
      const auto* const import =
          reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(import->Name), name) != 0) continue;
      const Writable whileItLasts(addresses, sizeof *addresses);
      addresses->u1.Function = reinterpret_cast<ULONGLONG>(replacement);
    }
  }
}

}  // namespace corvel::test_host

#include "library.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <stdexcept>

#include "work_folder.h"

namespace corvel::test_host {

namespace {

// The entry of an export in the program's own symbol table. A symbol of value 0 is found by nobody.
ElfW(Sym) * SymbolOf(const char* name) {
  void* const program = ::dlopen(nullptr, RTLD_LAZY);
  void* const address = ::dlsym(program, name);
  ::dlclose(program);
  Dl_info info{};
  void* symbol = nullptr;
  if (address == nullptr || ::dladdr1(address, &info, &symbol, RTLD_DL_SYMENT) == 0) return nullptr;
  return static_cast<ElfW(Sym)*>(symbol);
}

void SetValue(ElfW(Sym) & symbol, ElfW(Addr) value) {
  const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<std::uintptr_t>(&symbol) / page * page;
  const auto end = reinterpret_cast<std::uintptr_t>(&symbol + 1);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the start of a page
  void* const pages = reinterpret_cast<void*>(start);
  if (::mprotect(pages, end - start, PROT_READ | PROT_WRITE) != 0) {
    throw std::runtime_error("the symbol table cannot be written");
  }
  symbol.st_value = value;
  ::mprotect(pages, end - start, PROT_READ);
}

}  // namespace

Library::Library(const std::filesystem::path& path)
    : module_(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (module_ == nullptr) throw std::runtime_error(::dlerror());
  FindEntryPoints();
}

Library::~Library() { ::dlclose(module_); }

Library::EntryPoint Library::Find(const char* name) const {
  return reinterpret_cast<EntryPoint>(::dlsym(module_, name));
}

bool IsLoaded(const std::filesystem::path& path) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    if (line.find(path.filename().native()) != std::string::npos) return true;
  }
  return false;
}

struct HiddenExports::State {
  struct Entry {
    ElfW(Sym) * symbol;
    ElfW(Addr) value;
  };
  std::vector<Entry> entries;
};

HiddenExports::HiddenExports(const std::vector<std::string>& names) : state_(new State) {
  for (const std::string& name : names) {
    ElfW(Sym)* const symbol = SymbolOf(name.c_str());
    if (symbol == nullptr) throw std::runtime_error("no export " + name);
    state_->entries.push_back({symbol, symbol->st_value});
    SetValue(*symbol, 0);
  }
}

HiddenExports::~HiddenExports() {
  for (const auto& [symbol, value] : state_->entries) SetValue(*symbol, value);
  delete state_;
}

bool IsExported(const char* name) { return SymbolOf(name) != nullptr; }

}  // namespace corvel::test_host

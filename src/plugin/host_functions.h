// The functions that the viewer's program exports for its plug-ins, found by name. A function that
// a version of the viewer lacks is null: whoever calls it gets nothing, and no message.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "plugin/host_api.h"

namespace corvel::plugin {

inline constexpr std::size_t kHostNameCount = 299;
// All names of the interface in its order; few of them are called.
extern const std::array<const char*, kHostNameCount> kHostNames;
// The first of them came late and are looked up behind all others.
inline constexpr std::size_t kLateHostNames = 3;

struct HostFunctions {
// NOLINTNEXTLINE(bugprone-macro-parentheses): what is declared, with its type around it
#define CORVEL_HOST_FUNCTION(Result, name, parameters) Result(*name) parameters = nullptr;
#include "plugin/host_functions.inc"
#undef CORVEL_HOST_FUNCTION
};

// What an address is looked up with: the address of an export of the main program, or null.
using HostAddress = void (*)();
using HostLookup = HostAddress (*)(const char* name);

// Looks up every name once, in the order that a viewer may watch, and keeps what is called.
HostFunctions BindHostFunctions(HostLookup lookup);

// The bound functions of this process; all null before the library was attached. To be called on
// the viewer's user-interface thread.
HostFunctions& Host();
// The handle given to on_plugin_load; 0 before.
HostHandle& TheHostHandle();

// Calls a function of the viewer with its handle in front; a missing one gives 0, null or nothing.
template <class Result, class... Parameters, class... Arguments>
Result CallHost(Result (*function)(HostHandle, Parameters...), Arguments... arguments) {
  if (function == nullptr) return Result();
  return function(TheHostHandle(), arguments...);
}

// What the viewer lists. `ask(list, capacity)` gives the number for null and 0, and then fills.
template <class Item, class Ask>
std::vector<Item> ListOf(Ask ask) {
  std::vector<Item> list(ask(nullptr, 0));
  if (list.empty()) return list;
  const std::uint32_t count = ask(list.data(), static_cast<std::uint32_t>(list.size()));
  if (count < list.size()) list.resize(count);
  return list;
}

// A text of the viewer as a copy; null is the empty text.
WideString TextOrEmpty(const char16_t* text);

}  // namespace corvel::plugin

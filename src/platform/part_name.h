// Names of files that are not complete yet: ".NAME.corvel-PROCESS-NUMBER.part" beside NAME.
//
// They begin with a dot and end as no model does, so that neither people nor patterns like "*.ifc"
// take them for one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

enum class PartKind {
  kPart,    // is being written
  kBackup,  // what stood at the target, for the moment in which it is replaced
};

struct PartOwner {
  std::uint32_t process = 0;
  PartKind kind = PartKind::kPart;
};

// What all names for one target begin with. `length` counts a name as the file system does, and no
// name becomes longer than `longest`: a long name of the target is cut at its end.
std::u16string PartStem(std::u16string_view name, std::size_t longest,
                        std::size_t (*length)(std::u16string_view));

// A name that is hardly ever given twice; whoever makes the file tries another one where it is.
std::u16string PartName(std::u16string_view stem, std::uint32_t process, PartKind kind);

// The name under which a complete file stays that could not be put into the place of `name`;
// `part` is the one that it had until now.
std::u16string KeptName(std::u16string_view part);

// Whose file `name` is; nothing when PartName did not make it from `stem`.
std::optional<PartOwner> OwnerOfPart(std::u16string_view name, std::u16string_view stem);

}  // namespace platform

// Records that one thread reads while others read others.
#pragma once

#include <cstdint>
#include <vector>

#include "core/entity.h"
#include "core/entity_cast.h"
#include "core/list.h"
#include "step/factories.h"

namespace corvel {

// Belongs to the thread that reads it until that is done, and then to the one that files. Used
// again and again, so that its vectors are made once.
struct RecordBatch {
  // All that is looked at for each record, in few bytes: they go from one core to another.
  struct Record {
    IFC::IfcEntity* entity = nullptr;
    std::uint32_t number = 0;
    std::uint32_t slot = 0;  // of its class among the factories
    std::uint32_t end = 0;  // of its text in `bytes`, behind the ";"; it begins where the last ends
    std::uint32_t numbersEnd = 0;  // of its own in `numbers`, likewise
  };
  // What is looked at when reading ends at a record.
  struct Stop {
    std::uint32_t numberEnd = 0;  // of `#12` in `bytes`
    std::uint32_t line = 0;       // that its end stands in, from 1 on, as the scanner counts
  };
  // Holds pending references, and what may stand there.
  struct Place {
    const ClassTest* admitted = nullptr;
    IFC::IfcEntity** value = nullptr;  // of an attribute; null: it is a list
    EntityList* list = nullptr;
    bool* present = nullptr;  // of an optional attribute; may be null
    std::uint32_t index = 0;  // of the first reference there that is pending
  };

  // A reference to `numbers[index]` whose object is not known yet. Told from the address of an
  // object by its lowest bit.
  static IFC::IfcEntity* Pending(std::size_t index) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): never followed
    return reinterpret_cast<IFC::IfcEntity*>(index << 1 | 1);
  }
  static bool IsPending(const IFC::IfcEntity* reference) {
    return (reinterpret_cast<std::uintptr_t>(reference) & 1) != 0;
  }
  static std::uint32_t IndexOf(const IFC::IfcEntity* pending) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pending) >> 1);
  }

  void Clear() {
    bytes.clear();
    records.clear();
    stops.clear();
    numbers.clear();
    targets.clear();
    places.clear();
    isWhole = false;
  }

  std::vector<char> bytes;
  std::int64_t troubleAt = 0;          // of RecordCutter, as far as these bytes go
  std::vector<Record> records;         // from the first on, as far as all is plain
  std::vector<Stop> stops;             // of the same
  std::vector<std::uint32_t> numbers;  // that pending references name
  // What is filed under each of the records that are filed; null: nothing (yet).
  std::vector<IFC::IfcEntity*> targets;
  std::vector<Place> places;
  bool isWhole = false;  // `records` are all that `bytes` has
};

}  // namespace corvel

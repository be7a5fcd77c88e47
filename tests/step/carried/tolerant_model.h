// Models that are read with tolerance.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "support/read_model.h"

namespace corvel::test {

inline ReadModel ReadTolerantly(std::string_view records, std::string schema = "IFC4",
                                std::string fileName = "model.ifc") {
  ReadOptions options;
  options.schema = std::move(schema);
  options.tolerant = true;
  options.fileName = std::move(fileName);
  return ReadModel(records, options);
}

}  // namespace corvel::test

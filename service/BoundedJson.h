// JSON from elsewhere, read only when its depth and its number of values are within bounds: a
// parsed document takes many times the memory of its text, and readers and destructors recurse.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string_view>

#include "foundation/text/Result.h"

namespace quillmarch::service {

struct JsonBounds {
  std::size_t depth = 0;   // of arrays and objects
  std::size_t values = 0;  // keys count as well
};

// kTooLarge when the text holds more values, kDamaged when it is nested deeper or is not JSON.
// Nothing is built before the bounds are known to hold.
Result<nlohmann::json> ParseJson(std::string_view text, JsonBounds bounds);

}  // namespace quillmarch::service

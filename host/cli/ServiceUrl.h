// The address of a translation service as a user gives it.
#pragma once

#include <string>
#include <string_view>

#include "foundation/transport/Endpoint.h"

namespace quillmarch::host {

// Reads "http://host[:port]" or "https://host[:port]"; an IPv6 host stands in brackets. Anything
// else, also a path, is false with a sentence in `error`.
bool ParseServiceUrl(std::string_view url, Endpoint& endpoint, std::string& error);

}  // namespace quillmarch::host

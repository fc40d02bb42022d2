// The address of a translation service as a user gives it.
#pragma once

#include <string>
#include <string_view>

#include "foundation/transport/Endpoint.h"

namespace quillmarch::host {

// Reads "http://host[:port]" or "https://host[:port]", with or without a slash at the end; an IPv6
// host is in brackets. False with a sentence in `error` for anything else, a path included.
bool ParseServiceUrl(std::string_view url, Endpoint& endpoint, std::string& error);

}  // namespace quillmarch::host

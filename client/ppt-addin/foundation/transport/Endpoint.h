// Where the API host is.
#pragma once

#include <cstdint>

#include "foundation/text/Wide.h"

namespace quillmarch {

struct Endpoint {
  Wide host;
  std::uint16_t port = 443;
  bool useHttps = true;
};

// The built-in API host: HTTPS, the port of the build or 443. One value for the process.
const Endpoint& DefaultEndpoint();

// For the headless host, before the first run; nothing else may replace it.
void ReplaceDefaultEndpoint(Endpoint endpoint);

// "https://" or "http://", host, ":" and port unless it is the scheme's own, and the path with a
// "/" put before it when it is not empty and does not begin with one.
Wide BuildUrl(const Endpoint& endpoint, WideView path);

}  // namespace quillmarch

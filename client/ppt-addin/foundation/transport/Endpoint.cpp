#include "foundation/transport/Endpoint.h"

#include <utility>

namespace quillmarch {

namespace {

constexpr std::uint16_t kHttpsPort = 443;
constexpr std::uint16_t kHttpPort = 80;
constexpr std::uint32_t kHighestPort = 65535;

// The build names the host as "host[:port]"; an IPv6 address is in brackets there.
Endpoint BuiltInEndpoint() {
  constexpr std::string_view text = QUILLMARCH_API_HOST;
  Endpoint endpoint;
  const std::size_t colon = text.rfind(':');
  const std::size_t bracket = text.rfind(']');
  const bool hasPort =
      colon != std::string_view::npos && (bracket == std::string_view::npos || bracket < colon);
  endpoint.host = ToWide(text.substr(0, hasPort ? colon : text.size()));
  if (hasPort) {
    std::uint32_t port = 0;
    for (const char digit : text.substr(colon + 1)) {
      if (digit < '0' || digit > '9' || port > kHighestPort) return endpoint;
      port = port * 10 + static_cast<std::uint32_t>(digit - '0');
    }
    if (port > 0 && port <= kHighestPort) endpoint.port = static_cast<std::uint16_t>(port);
  }
  return endpoint;
}

Endpoint& ProcessEndpoint() {
  static Endpoint endpoint = BuiltInEndpoint();
  return endpoint;
}

}  // namespace

const Endpoint& DefaultEndpoint() {
  return ProcessEndpoint();
}

void ReplaceDefaultEndpoint(Endpoint endpoint) {
  ProcessEndpoint() = std::move(endpoint);
}

Wide BuildUrl(const Endpoint& endpoint, WideView path) {
  Wide url = endpoint.useHttps ? u"https://" : u"http://";
  url += endpoint.host;
  if (endpoint.port != (endpoint.useHttps ? kHttpsPort : kHttpPort)) {
    url += u':';
    url += DecimalUnsigned(endpoint.port);
  }
  if (!path.empty() && path.front() != u'/') url += u'/';
  url += path;
  return url;
}

}  // namespace quillmarch

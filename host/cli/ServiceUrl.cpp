#include "host/cli/ServiceUrl.h"

#include <algorithm>
#include <charconv>

namespace quillmarch::host {

namespace {

constexpr std::uint16_t kHttpPort = 80;
constexpr std::uint16_t kHttpsPort = 443;

bool TakeScheme(std::string_view& url, std::string_view scheme) {
  if (url.size() < scheme.size()) return false;
  const bool same = std::equal(scheme.begin(), scheme.end(), url.begin(), [](char s, char u) {
    return s == (u >= 'A' && u <= 'Z' ? static_cast<char>(u + ('a' - 'A')) : u);
  });
  if (same) url.remove_prefix(scheme.size());
  return same;
}

bool IsHostName(std::string_view host) {
  return !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_';
  });
}

bool IsBracketedAddress(std::string_view host) {
  if (host.size() < 4 || host.front() != '[' || host.back() != ']') return false;
  host = host.substr(1, host.size() - 2);
  return std::all_of(host.begin(), host.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == ':' ||
           c == '.';
  });
}

}  // namespace

bool ParseServiceUrl(std::string_view url, Endpoint& endpoint, std::string& error) {
  const std::string given(url);
  endpoint.useHttps = TakeScheme(url, "https://");
  if (!endpoint.useHttps && !TakeScheme(url, "http://")) {
    error = "--service takes http://host[:port] or https://host[:port], not \"" + given + "\"";
    return false;
  }
  endpoint.port = endpoint.useHttps ? kHttpsPort : kHttpPort;
  if (url.ends_with('/')) url.remove_suffix(1);

  const std::size_t bracket = url.rfind(']');
  const std::size_t colon = url.find(':', bracket == std::string_view::npos ? 0 : bracket);
  const std::string_view host = url.substr(0, colon);
  if (!IsHostName(host) && !IsBracketedAddress(host)) {
    error = "--service takes a host, optionally followed by :port: \"" + given + "\"";
    return false;
  }
  endpoint.host = ToWide(host);
  if (colon == std::string_view::npos) return true;

  const std::string_view digits = url.substr(colon + 1);
  const char* const end = digits.data() + digits.size();
  const auto [rest, code] = std::from_chars(digits.data(), end, endpoint.port);
  if (code != std::errc() || rest != end || endpoint.port == 0) {
    error = "--service takes a port from 1 to 65535: \"" + given + "\"";
    return false;
  }
  return true;
}

}  // namespace quillmarch::host

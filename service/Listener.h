// The listening socket. Opened here and not by the HTTP library, which would share a port that
// somebody else listens on already and does not tell why it failed.
#pragma once

#include <cstdint>
#include <string>

namespace quillmarch::service {

struct Listener {
  int socket = -1;  // the caller closes it
  std::uint16_t port = 0;
};

// Listens on a numeric address or a host name; port 0 takes any free one. socket stays -1 and
// `error` gets a sentence on failure. Accepted connections send without delay.
Listener OpenListener(const std::string& address, std::uint16_t port, std::string& error);

}  // namespace quillmarch::service

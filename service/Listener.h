// The listening socket. Opened here and not by the HTTP library, which would share a port that
// somebody else listens on already and does not tell why it failed.
#pragma once

#include <cstdint>
#include <string>

#include "foundation/text/Result.h"

namespace quillmarch::service {

struct Listener {
  int socket = -1;  // the caller closes it
  std::uint16_t port = 0;
};

// Listens on a numeric address or a host name; port 0 takes any free one. Accepted connections send
// without delay.
Result<Listener> OpenListener(const std::string& address, std::uint16_t port);

}  // namespace quillmarch::service

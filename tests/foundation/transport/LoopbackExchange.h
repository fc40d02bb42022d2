// One exchange with a port of this machine, by the system's plain sockets: the tests' own road to
// the server, which shares nothing with the transport under test.
#pragma once

#include <cstdint>
#include <string>

namespace quillmarch::addin {

// Sends `request` and gives everything that comes back until the other side closes. Throws
// std::runtime_error when the port cannot be reached.
std::string ExchangeOnLoopback(std::uint16_t port, const std::string& request);

}  // namespace quillmarch::addin

// Messages of the wire over a connection of this machine. Host thread only.
#pragma once

#include <cstdint>

#include "host/remote/ObjectServer.h"

namespace quillmarch::host {

// Listens on 127.0.0.1; a port of its own when `port` is 0. The descriptor, or -1.
int ListenOnLoopback(std::uint16_t& port);

// Answers one program until it closes the connection or sends something that is not a message.
void ServeConnection(int connection, ObjectServer& server);

}  // namespace quillmarch::host

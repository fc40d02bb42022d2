// The service's addresses, limits and logs over the HTTP front.
#pragma once

#include <memory>

#include "service/Service.h"

namespace quillmarch::service {

// Serves on a socket that is listening already, on threads of its own. Ready when it returns.
// Owns the socket and the engine.
Result<std::unique_ptr<Service>> ServeApi(const ServiceOptions& options, int listeningSocket,
                                          std::uint16_t port, std::unique_ptr<Engine> engine);

}  // namespace quillmarch::service

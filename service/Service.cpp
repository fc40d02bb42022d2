#include "service/Service.h"

#include <utility>

#include "service/ApiServer.h"
#include "service/Listener.h"

namespace quillmarch::service {

Result<std::unique_ptr<Service>> Service::Start(const ServiceOptions& options,
                                                std::unique_ptr<Engine> engine) {
  if (!engine) return Error{ErrorCode::kBadArgument, "The service needs an engine."};
  Result<Listener> listener = OpenListener(options.address, options.port);
  if (!listener) return std::move(listener).error();
  return ServeApi(options, listener->socket, listener->port, std::move(engine));
}

}  // namespace quillmarch::service

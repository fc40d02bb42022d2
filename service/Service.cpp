#include "service/Service.h"

#include <utility>

#include "service/HttpServer.h"
#include "service/Listener.h"

namespace quillmarch::service {

std::unique_ptr<Service> Service::Start(const ServiceOptions& options,
                                        std::unique_ptr<Engine> engine, std::string& error) {
  if (!engine) {
    error = "The service needs an engine.";
    return nullptr;
  }
  const Listener listener = OpenListener(options.address, options.port, error);
  if (listener.socket < 0) return nullptr;
  return ServeHttp(options, listener.socket, listener.port, std::move(engine), error);
}

}  // namespace quillmarch::service

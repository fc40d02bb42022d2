#include "host/cli/Backend.h"

#include <sys/random.h>

#include <array>
#include <cstdint>

#include "foundation/identity/ClientIdentity.h"
#include "foundation/transport/Endpoint.h"
#include "foundation/transport/HttpTransport.h"

namespace quillmarch::host {

namespace {

// Keeps every other process of the machine from using the embedded serviceOptions.
std::string RandomToken() {
  std::array<std::uint8_t, 16> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) return {};
  std::string token;
  for (const std::uint8_t byte : bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    token += kDigits[byte >> 4];
    token += kDigits[byte & 15];
  }
  return token;
}

}  // namespace

std::unique_ptr<Backend> Backend::Make(const TranslateOptions& options, std::string& error) {
  auto backend = std::make_unique<Backend>();
  ReplaceClientVersion(ToWide(QUILLMARCH_VERSION));
  if (!options.ownService) {
    ReplaceDefaultEndpoint(options.service);
    if (!options.authorityFile.empty()) TrustAuthorityFile(options.authorityFile);
    backend->accessToken_ = ToWide(options.accessToken);
    return backend;
  }

  const Result<void> served =
      service::EngineServesPair(options.engine, options.sourceLang, options.targetLang);
  if (!served) {
    error = served.error().words;
    return nullptr;
  }
  Result<std::unique_ptr<service::Engine>> engine = service::MakeEngine(options.engine);
  if (!engine) {
    error = engine.error().words;
    return nullptr;
  }
  const std::string token = RandomToken();
  if (token.empty()) {
    error = "the system gives no random numbers";
    return nullptr;
  }
  service::ServiceOptions serviceOptions;
  serviceOptions.tokens = {token};
  serviceOptions.threads = 0;
  Result<std::unique_ptr<service::Service>> started =
      service::Service::Start(serviceOptions, std::move(engine).value());
  if (!started) {
    error = started.error().words;
    return nullptr;
  }
  backend->service_ = std::move(started).value();
  backend->accessToken_ = ToWide(token);
  ReplaceDefaultEndpoint({u"127.0.0.1", backend->service_->port(), false});
  return backend;
}

}  // namespace quillmarch::host

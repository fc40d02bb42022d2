// The self-hosted API service: POST /v1/translate for the add-in, with bearer tokens, credits,
// size limits, a request log and a graceful stop; and POST /v1/analytics/events, for which nobody
// needs a token. Runs by itself (quillmarch-service) and embedded
// in the command.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "service/engines/Engine.h"

namespace quillmarch::service {

struct ServiceOptions {
  std::string address = "127.0.0.1";  // bound to loopback unless told otherwise
  std::uint16_t port = 0;             // 0: any free port
  // One "token" or "token credits" a line (credits counted in UTF-16 units of text translated since
  // the start; without a number they are not limited). Empty: every request is served without a
  // token, unless `tokens` has some.
  std::string tokenFile;
  std::vector<std::string> tokens;  // accepted beside the file's, without a limit
  std::string certificateFile;      // PEM; with a key file the service speaks TLS
  std::string keyFile;
  std::size_t maxBodyBytes = 4u << 20;
  std::size_t maxTexts = 100;
  // Requests answered at the same time; 0: one after the other on the listening thread, for the
  // one client that a command is.
  std::size_t threads = 8;
  // Gets one line for each request, without line end, one call at a time on the service's threads;
  // empty: no request log. A line has time, method, path, status, texts, characters and
  // milliseconds, and never a text or a token.
  std::function<void(const std::string& line)> requestLog;
  // Gets one line for each event that an add-in tells of itself, in the same way: time, name,
  // outcome, versions and properties, and never the installation that sent it.
  std::function<void(const std::string& line)> eventLog;
};

class Service {
 public:
  // Binds and serves on threads of its own; null and a sentence in `error` on failure. The engine
  // is owned. From the first start on the process ignores SIGPIPE.
  static std::unique_ptr<Service> Start(const ServiceOptions& options,
                                        std::unique_ptr<Engine> engine, std::string& error);
  virtual ~Service() = default;  // stops
  virtual std::uint16_t port() const = 0;
  // Takes no new request, ends the open ones within a second, then returns. Idempotent.
  virtual void Stop() = 0;
};

}  // namespace quillmarch::service

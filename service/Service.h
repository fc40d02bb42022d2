// The self-hosted API service: POST /v1/translate for the add-in, with bearer tokens, credits,
// size limits, a request log and a graceful stop; and POST /v1/analytics/events, for which nobody
// needs a token. Runs as a program (quillmarch-service) and embedded in the command.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/text/Result.h"
#include "service/engines/Engine.h"

namespace quillmarch::service {

struct ServiceOptions {
  std::string address = "127.0.0.1";  // bound to loopback unless told otherwise
  std::uint16_t port = 0;             // 0: any free port
  // One "token" or "token credits" a line, either followed by "name=..." (credits counted in UTF-16
  // units of text translated since the start; without a number they are not limited). Empty: every
  // request is served without a token, unless `tokens` has some.
  std::string tokenFile;
  std::vector<std::string> tokens;  // accepted as well as the file's, without a limit
  std::string certificateFile;      // PEM; with a key file the service speaks TLS
  std::string keyFile;
  std::size_t maxBodyBytes = 4u << 20;
  std::size_t maxTexts = 100;
  // Requests answered at the same time; 0: one after the other on the listening thread, for the
  // one client that a command is.
  std::size_t threads = 16;
  // From the connection to the request's last byte; a client that takes longer gets a 408.
  int requestLimitMs = 30'000;
  // How long a stop waits for the requests that are being answered before it breaks them off.
  int stopGraceMs = 0;
  // Whether TakeReport has something to give.
  bool keepReport = false;
  // Gets one line for each request, without line end, one call at a time on the service's threads;
  // empty: no request log. A line has time, method, path, status, the token's name, texts,
  // characters, engine, milliseconds and cause, and never a text or a token.
  std::function<void(const std::string& line)> requestLog;
  // Gets one line for each event that an add-in sends, in the same way: time, name, outcome,
  // versions and properties, and never the installation that sent it.
  std::function<void(const std::string& line)> eventLog;
};

// What the service's clients did not get, for the program that it is embedded in.
struct ServiceReport {
  // A text that came back as it was.
  struct Left {
    LeftCause cause = LeftCause::kNoPair;
    std::string language;  // ISO 639-3, where it was recognised
    std::string text;      // UTF-8
  };
  std::vector<Left> left;  // in the order of the requests
  // The engine's latest failure, with its own sentence.
  std::optional<EngineFailure> failure;
  std::string failureMessage;
};

class Service {
 public:
  // Binds and serves on threads of its own. The engine is owned. From the first start on the
  // process ignores SIGPIPE.
  static Result<std::unique_ptr<Service>> Start(const ServiceOptions& options,
                                                std::unique_ptr<Engine> engine);
  virtual ~Service() = default;  // stops
  virtual std::uint16_t port() const = 0;
  // Takes no new request, lets those that are being answered finish for the grace, ends the others
  // within a second, then returns. May be called several times and by several threads.
  virtual void Stop() = 0;
  // Ends a Stop's grace early.
  virtual void HurryStop() = 0;
  // Reads the token file and the certificate anew, for what comes next; on failure the old ones
  // stay.
  virtual Result<void> Reload() = 0;
  // What was collected since the last call, when the options ask for it. A program that runs one
  // deck after the other takes it after each.
  virtual ServiceReport TakeReport() = 0;
};

}  // namespace quillmarch::service

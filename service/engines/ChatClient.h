// One POST to a model's server, with a time limit and an end that a stop can bring about.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>

namespace quillmarch::service {

struct ChatReply {
  enum class Outcome {
    kAnswered,
    kStopped,
    kTimedOut,
    kTooLarge,
    kUntrusted,     // its certificate
    kUnknownName,   // of the host
    kRefusedPort,   // nobody listens there
    kNoTls,         // https was asked of a port that does not speak TLS
    kNoConnection,  // anything else
  };
  Outcome outcome = Outcome::kNoConnection;
  long status = 0;
  std::string body;
  int retryAfterSeconds = -1;  // -1: the server named no time
  std::string error;           // the library's own words, where there was no answer
};

// Certificates are verified; `caFile` (PEM, may be empty) is trusted in addition to the system's
// authorities. An answer longer than `maxAnswer` bytes is not read to its end. Redirects are not
// followed: they would carry the key to another server.
ChatReply PostChat(const std::string& url, const std::string& key, const std::string& caFile,
                   const std::string& body, std::size_t maxAnswer, std::chrono::milliseconds limit,
                   const std::atomic<bool>& stop);

}  // namespace quillmarch::service

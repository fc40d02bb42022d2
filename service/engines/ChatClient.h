// One POST to a model's server, with a time limit and an end that a stop can bring about.
#pragma once

#include <atomic>
#include <chrono>
#include <string>

namespace quillmarch::service {

struct ChatReply {
  enum class Outcome { kAnswered, kStopped, kTimedOut, kNoConnection };
  Outcome outcome = Outcome::kNoConnection;
  long status = 0;
  std::string body;
  int retryAfterSeconds = -1;  // -1: the server named no time
  std::string error;           // why there was no connection
};

// Certificates are verified; `caFile` (PEM, may be empty) is trusted beside the system's
// authorities. Redirects are not followed: they would carry the key to another server.
ChatReply PostChat(const std::string& url, const std::string& key, const std::string& caFile,
                   const std::string& body, std::chrono::milliseconds limit,
                   const std::atomic<bool>& stop);

}  // namespace quillmarch::service

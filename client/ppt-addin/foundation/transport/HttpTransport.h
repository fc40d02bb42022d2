// The one POST of the system. Blocking; worker threads call it (and the host thread for the one
// repair call at a run's end). Re-entrant: nothing is kept between calls.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/text/Wide.h"
#include "foundation/transport/Endpoint.h"

namespace quillmarch {

// One-byte flags of a run: relaxed and polled; nothing else synchronises them.
using RunFlag = std::atomic<std::uint8_t>;

// The longest answer that is taken: the add-in lives in somebody else's process. Past it the read
// stops and counts as a network failure.
inline constexpr std::size_t kMaxAnswerBytes = std::size_t{64} << 20;

// Posts a JSON body and gives the answer's text. An empty result means failure or an empty body;
// `outError` is then filled in both cases and `outStatus` tells them apart (0 when no answer came).
// A status of 4xx or 5xx is not a failure here. A token with control characters makes no request:
// it could carry header lines of its own. All pointers may be null. Certificates are verified, no
// proxy is used, and a request is sent once.
Wide HttpPostJson(const Endpoint& endpoint, WideView path, std::string_view bodyUtf8,
                  Wide* outError, const Wide* bearerToken, const RunFlag* cancelFlag,
                  const RunFlag* pauseFlag, std::uint32_t* outStatus);

// Trusts the certificates of one more authority, a PEM file; for the headless host, before the
// first call. On Windows the system's store decides and this does nothing.
void TrustAuthorityFile(std::string pathUtf8);

}  // namespace quillmarch

// How long a transfer may take in each of its stages. The client library of Windows has these
// limits built in; where another library takes its place, this record enforces the same ones.
#pragma once

#include <chrono>
#include <cstdint>

namespace quillmarch {

// Resolving the name has no limit.
struct TransferLimits {
  std::chrono::milliseconds connect{60'000};  // the TLS handshake included
  std::chrono::milliseconds send{30'000};     // between two pieces of the request that leave
  // From the request's last byte to the end of the answer's headers.
  std::chrono::milliseconds receiveResponse{90'000};
  std::chrono::milliseconds receive{30'000};  // between two pieces of the answer's body
};

// Those of the transfers that begin from now on; tests shorten them.
TransferLimits& ProcessTransferLimits();

// One per transfer, which reports its events in order, each with its time. One thread.
class TransferTimes {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit TransferTimes(std::uint64_t bodyBytes,
                         const TransferLimits& limits = ProcessTransferLimits())
      : limits_(limits), bodyBytes_(bodyBytes) {}

  void SocketOpened(Time now);  // of several sockets the first counts
  void Connected(Time now);
  void Sent(Time now, std::uint64_t bytesSoFar);  // body bytes that have left
  void HeadersCame(Time now);
  void DataCame(Time now);
  // Whether the stage now under way has outlasted its limit.
  bool Expired(Time now) const;

 private:
  enum class Stage { kResolve, kConnect, kSend, kAwaitHeaders, kReceive };

  const TransferLimits limits_;
  std::uint64_t bodyBytes_;
  std::uint64_t sentBytes_ = 0;
  Stage stage_ = Stage::kResolve;
  Time since_{};
};

}  // namespace quillmarch

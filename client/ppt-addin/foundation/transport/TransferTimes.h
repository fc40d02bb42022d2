// How long a transfer may take in each of its stages. The client library of Windows brings these
// limits along; where another one stands in, this record keeps the same ones.
#pragma once

#include <chrono>
#include <cstdint>

namespace quillmarch {

// Resolving the name has no limit. Connecting, the TLS handshake included:
inline constexpr std::chrono::milliseconds kConnectLimit{60'000};
// Between two pieces of the request that leave:
inline constexpr std::chrono::milliseconds kSendLimit{30'000};
// From the request's last byte to the end of the answer's headers:
inline constexpr std::chrono::milliseconds kReceiveResponseLimit{90'000};
// Between two pieces of the answer's body:
inline constexpr std::chrono::milliseconds kReceiveLimit{30'000};

// One for each transfer, told of its events in order, each with the time of the event. One thread.
class TransferTimes {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit TransferTimes(std::uint64_t bodyBytes) : bodyBytes_(bodyBytes) {}

  void SocketOpened(Time now);  // of several sockets the first counts
  void Connected(Time now);
  void Sent(Time now, std::uint64_t bytesSoFar);  // body bytes that have left
  void HeadersCame(Time now);
  void DataCame(Time now);
  // Whether the stage now under way has outlasted its limit.
  bool Expired(Time now) const;

 private:
  enum class Stage { kResolve, kConnect, kSend, kAwaitHeaders, kReceive };

  std::uint64_t bodyBytes_;
  std::uint64_t sentBytes_ = 0;
  Stage stage_ = Stage::kResolve;
  Time since_{};
};

}  // namespace quillmarch

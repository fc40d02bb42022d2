#include "foundation/transport/TransferTimes.h"

namespace quillmarch {

TransferLimits& ProcessTransferLimits() {
  static TransferLimits limits;
  return limits;
}

void TransferTimes::SocketOpened(Time now) {
  if (stage_ != Stage::kResolve) return;
  stage_ = Stage::kConnect;
  since_ = now;
}

void TransferTimes::Connected(Time now) {
  stage_ = Stage::kSend;
  since_ = now;
}

void TransferTimes::Sent(Time now, std::uint64_t bytesSoFar) {
  if (stage_ != Stage::kSend) return;
  if (bytesSoFar != sentBytes_) {
    sentBytes_ = bytesSoFar;
    since_ = now;
  }
  if (sentBytes_ >= bodyBytes_) {
    stage_ = Stage::kAwaitHeaders;
    since_ = now;
  }
}

void TransferTimes::HeadersCame(Time now) {
  stage_ = Stage::kReceive;
  since_ = now;
}

void TransferTimes::DataCame(Time now) {
  since_ = now;
}

bool TransferTimes::Expired(Time now) const {
  switch (stage_) {
    case Stage::kResolve:
      return false;
    case Stage::kConnect:
      return now - since_ > limits_.connect;
    case Stage::kSend:
      return now - since_ > limits_.send;
    case Stage::kAwaitHeaders:
      return now - since_ > limits_.receiveResponse;
    case Stage::kReceive:
      return now - since_ > limits_.receive;
  }
  return false;
}

}  // namespace quillmarch

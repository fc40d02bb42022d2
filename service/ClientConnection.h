// One accepted connection, plain or TLS, with time limits and an end that a stop can bring about.
#pragma once

#include <sys/types.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "foundation/text/Result.h"

struct ssl_ctx_st;
struct ssl_st;

namespace quillmarch::service {

// A server's TLS settings.
using TlsContext = std::shared_ptr<ssl_ctx_st>;
// Fails when the PEM files can't be used or don't belong together.
Result<TlsContext> LoadTls(const std::string& certificateFile, const std::string& keyFile);

// Used by one thread. Nothing throws; after a failure the connection is only good for Close.
class ClientConnection {
 public:
  // Owns the socket, which does not block. `tls` is null for plain HTTP. From the moment that
  // `stopFd` becomes readable on, every wait for the client's bytes fails at once, and what is
  // being sent has kStopGrace left.
  ClientConnection(int socket, ssl_ctx_st* tls, int stopFd);
  ~ClientConnection();
  ClientConnection(const ClientConnection&) = delete;
  ClientConnection& operator=(const ClientConnection&) = delete;

  // The TLS handshake; true at once on a plain connection.
  bool Handshake();
  // Bytes read, 0 at the client's end, -1 on failure or when a time limit ran out. Sends what
  // was collected first.
  ssize_t Read(char* to, std::size_t size);
  // Collects: head and body of an answer leave in one segment.
  void Write(const char* from, std::size_t size);
  bool Flush();
  // Ends the connection. With `unread` the client may still be sending: its bytes are taken and
  // dropped for a moment, since closing over them would wipe out the answer on its way.
  void Close(bool unread);

  int socket() const { return socket_; }

 private:
  using Clock = std::chrono::steady_clock;
  enum class Direction { kReading, kWriting };

  bool Wait(Direction direction);
  // Looks for the client's first bytes for a moment; always false for later ones.
  bool CameWhileAwake();
  // Waits for what TLS asked for; false when it asked for nothing, so the connection failed.
  bool WaitForTls(int result);
  ssize_t Receive(char* to, std::size_t size);
  ssize_t Send(const char* from, std::size_t size);

  int socket_;
  int stopFd_;
  std::unique_ptr<ssl_st, void (*)(ssl_st*)> tls_;
  Clock::time_point readDeadline_;
  static constexpr std::size_t kInputSize = 16 * 1024;
  std::array<char, kInputSize> input_;  // good from inputUsed_ to inputEnd_
  std::size_t inputUsed_ = 0;
  std::size_t inputEnd_ = 0;
  std::string output_;
  bool failed_ = false;
  bool spoken_ = false;  // the first bytes were waited for
  bool stopping_ = false;
  Clock::time_point stopDeadline_;
};

}  // namespace quillmarch::service

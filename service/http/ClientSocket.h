// One accepted connection, plain or TLS, that never blocks.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "foundation/text/Result.h"

struct ssl_ctx_st;
struct ssl_st;

namespace quillmarch::service {

// A server's TLS settings.
using TlsContext = std::shared_ptr<ssl_ctx_st>;
// Fails when the PEM files can't be used or don't belong together.
Result<TlsContext> LoadTls(const std::string& certificateFile, const std::string& keyFile);

class ClientSocket {
 public:
  enum class Progress {
    kDone,
    kWantsToRead,   // when the socket is readable again
    kWantsToWrite,  // when it is writable again
    kEnd,           // the client will send no more
    kFailed,
  };

  // Owns the socket. `tls` is null for plain HTTP.
  ClientSocket(int socket, ssl_ctx_st* tls);
  ~ClientSocket();
  ClientSocket(const ClientSocket&) = delete;
  ClientSocket& operator=(const ClientSocket&) = delete;

  // The TLS handshake; kDone at once on a plain connection. A client that speaks plain HTTP to a
  // TLS port is noticed: the connection is plain from then on.
  Progress Handshake();
  bool spokePlainToTls() const { return spokePlainToTls_; }
  // Appends what has arrived, a piece at a time.
  Progress Read(std::string& to);
  // `sent` grows by what went out; kDone when that is everything.
  Progress Write(std::string_view bytes, std::size_t& sent);
  // Bytes that the TLS layer holds: no readiness of the socket will announce them.
  bool HasPending() const;
  void FinishSending();

  int socket() const { return socket_; }

 private:
  Progress AfterTls(int result) const;

  int socket_;
  std::unique_ptr<ssl_st, void (*)(ssl_st*)> tls_;
  bool spokePlainToTls_ = false;
  bool failed_ = false;
};

}  // namespace quillmarch::service

#include "service/http/ClientSocket.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace quillmarch::service {

namespace {

constexpr std::size_t kPiece = 16 * 1024;
constexpr std::size_t kMostAtOnce = 1024 * 1024;
constexpr unsigned char kTlsHandshakeRecord = 0x16;

}  // namespace

Result<TlsContext> LoadTls(const std::string& certificateFile, const std::string& keyFile) {
  const TlsContext context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
  if (!context) return Error{ErrorCode::kFailed, "TLS cannot be set up."};
  SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
  // Idle connections give their buffers back.
  SSL_CTX_set_mode(context.get(), SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                      SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_RELEASE_BUFFERS);
  // Every connection serves one request, so there is nothing to resume for its sake.
  SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);
  ERR_clear_error();
  if (SSL_CTX_use_certificate_chain_file(context.get(), certificateFile.c_str()) != 1) {
    return Error{ErrorCode::kDamaged, "Cannot use the certificate file " + certificateFile + "."};
  }
  if (SSL_CTX_use_PrivateKey_file(context.get(), keyFile.c_str(), SSL_FILETYPE_PEM) != 1 ||
      SSL_CTX_check_private_key(context.get()) != 1) {
    return Error{ErrorCode::kDamaged,
                 "Cannot use the key file " + keyFile + " with the certificate."};
  }
  return context;
}

ClientSocket::ClientSocket(int socket, ssl_ctx_st* tls)
    : socket_(socket), tls_(tls != nullptr ? SSL_new(tls) : nullptr, &SSL_free) {
  if (tls_) {
    SSL_set_fd(tls_.get(), socket_);
  } else if (tls != nullptr) {
    failed_ = true;
  }
}

ClientSocket::~ClientSocket() {
  tls_.reset();
  close(socket_);
}

ClientSocket::Progress ClientSocket::AfterTls(int result) const {
  switch (SSL_get_error(tls_.get(), result)) {
    case SSL_ERROR_WANT_READ:
      return Progress::kWantsToRead;
    case SSL_ERROR_WANT_WRITE:
      return Progress::kWantsToWrite;
    case SSL_ERROR_ZERO_RETURN:
      return Progress::kEnd;
    default:
      return Progress::kFailed;
  }
}

ClientSocket::Progress ClientSocket::Handshake() {
  if (failed_) return Progress::kFailed;
  if (!tls_) return Progress::kDone;
  if (SSL_in_before(tls_.get()) != 0) {
    unsigned char first = 0;
    const ssize_t got = recv(socket_, &first, 1, MSG_PEEK);
    if (got == 0) return Progress::kEnd;
    if (got < 0) {
      return errno == EAGAIN || errno == EINTR ? Progress::kWantsToRead : Progress::kFailed;
    }
    if (first != kTlsHandshakeRecord) {
      tls_.reset();
      spokePlainToTls_ = true;
      return Progress::kDone;
    }
  }
  ERR_clear_error();
  const int result = SSL_accept(tls_.get());
  return result == 1 ? Progress::kDone : AfterTls(result);
}

ClientSocket::Progress ClientSocket::Read(std::string& to) {
  char piece[kPiece];
  if (tls_) {
    ERR_clear_error();
    const int got = SSL_read(tls_.get(), piece, static_cast<int>(sizeof piece));
    if (got <= 0) return AfterTls(got);
    to.append(piece, static_cast<std::size_t>(got));
    return Progress::kDone;
  }
  const ssize_t got = recv(socket_, piece, sizeof piece, 0);
  if (got == 0) return Progress::kEnd;
  if (got < 0) {
    return errno == EAGAIN || errno == EINTR ? Progress::kWantsToRead : Progress::kFailed;
  }
  to.append(piece, static_cast<std::size_t>(got));
  return Progress::kDone;
}

ClientSocket::Progress ClientSocket::Write(std::string_view bytes, std::size_t& sent) {
  while (sent < bytes.size()) {
    const std::size_t size = std::min(bytes.size() - sent, kMostAtOnce);
    if (tls_) {
      ERR_clear_error();
      const int written = SSL_write(tls_.get(), bytes.data() + sent, static_cast<int>(size));
      if (written <= 0) return AfterTls(written);
      sent += static_cast<std::size_t>(written);
      continue;
    }
    const ssize_t written = send(socket_, bytes.data() + sent, size, MSG_NOSIGNAL);
    if (written < 0) {
      if (errno == EINTR) continue;
      return errno == EAGAIN ? Progress::kWantsToWrite : Progress::kFailed;
    }
    sent += static_cast<std::size_t>(written);
  }
  return Progress::kDone;
}

bool ClientSocket::HasPending() const {
  return tls_ && SSL_pending(tls_.get()) > 0;
}

void ClientSocket::FinishSending() {
  if (tls_) {
    ERR_clear_error();
    SSL_shutdown(tls_.get());
  }
  shutdown(socket_, SHUT_WR);
}

}  // namespace quillmarch::service

#include "service/ClientConnection.h"

#include <fcntl.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace quillmarch::service {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kRequestLimit{60'000};  // from the accept to the body's last byte
constexpr milliseconds kIdleLimit{5'000};      // without a byte in either direction
constexpr milliseconds kStopGrace{700};        // for an answer on its way when the service stops
constexpr milliseconds kDrainLimit{1'000};

// A client on this machine speaks sooner after its connecting than a thread falls asleep and wakes.
constexpr std::chrono::microseconds kAwakeTime{100};

// Smaller answers go out in one piece; a bigger one is sent as it grows.
constexpr std::size_t kOutputLimit = 1024 * 1024;

}  // namespace

Result<TlsContext> LoadTls(const std::string& certificateFile, const std::string& keyFile) {
  const TlsContext context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
  if (!context) return Error{ErrorCode::kFailed, "TLS cannot be set up."};
  SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
  SSL_CTX_set_mode(context.get(), SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
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

ClientConnection::ClientConnection(int socket, ssl_ctx_st* tls, int stopFd)
    : socket_(socket),
      stopFd_(stopFd),
      tls_(tls != nullptr ? SSL_new(tls) : nullptr, &SSL_free),
      readDeadline_(Clock::now() + kRequestLimit) {
  if (tls_) {
    SSL_set_fd(tls_.get(), socket_);
  } else if (tls != nullptr) {
    failed_ = true;
  }
}

ClientConnection::~ClientConnection() {
  tls_.reset();
  close(socket_);
}

bool ClientConnection::Wait(Direction direction) {
  const short events = direction == Direction::kReading ? POLLIN : POLLOUT;
  Clock::time_point deadline = Clock::now() + kIdleLimit;
  if (direction == Direction::kReading) deadline = std::min(deadline, readDeadline_);
  for (;;) {
    if (stopping_) {
      if (direction == Direction::kReading) return false;
      deadline = std::min(deadline, stopDeadline_);
    }
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) return false;
    pollfd watched[2] = {{socket_, events, 0}, {stopFd_, POLLIN, 0}};
    const int ready = poll(watched, stopping_ ? 1 : 2, static_cast<int>(left));
    if (ready < 0 && errno != EINTR) return false;
    if (ready <= 0) continue;
    if (watched[0].revents != 0) return true;
    stopping_ = true;
    stopDeadline_ = Clock::now() + kStopGrace;
  }
}

bool ClientConnection::CameWhileAwake() {
  if (spoken_) return false;
  spoken_ = true;
  const Clock::time_point sleepsFrom = Clock::now() + kAwakeTime;
  pollfd watched{socket_, POLLIN, 0};
  do {
    if (poll(&watched, 1, 0) > 0) return true;
    sched_yield();
  } while (Clock::now() < sleepsFrom);
  return false;
}

bool ClientConnection::WaitForTls(int result) {
  switch (SSL_get_error(tls_.get(), result)) {
    case SSL_ERROR_WANT_READ:
      return Wait(Direction::kReading);
    case SSL_ERROR_WANT_WRITE:
      return Wait(Direction::kWriting);
    default:
      return false;
  }
}

bool ClientConnection::Handshake() {
  if (!tls_) return !failed_;
  for (;;) {
    ERR_clear_error();
    const int result = SSL_accept(tls_.get());
    if (result == 1) return true;
    if (!WaitForTls(result)) {
      failed_ = true;
      return false;
    }
  }
}

ssize_t ClientConnection::Receive(char* to, std::size_t size) {
  for (;;) {
    if (tls_) {
      ERR_clear_error();
      const int got = SSL_read(tls_.get(), to, static_cast<int>(size));
      if (got > 0) return got;
      if (SSL_get_error(tls_.get(), got) == SSL_ERROR_ZERO_RETURN) return 0;
      if (!WaitForTls(got)) return -1;
      continue;
    }
    const ssize_t got = recv(socket_, to, size, 0);
    if (got >= 0) return got;
    if (errno == EINTR) continue;
    if (errno != EAGAIN || (!CameWhileAwake() && !Wait(Direction::kReading))) return -1;
  }
}

ssize_t ClientConnection::Read(char* to, std::size_t size) {
  if (failed_ || (!output_.empty() && !Flush())) return -1;
  if (inputUsed_ == inputEnd_) {
    const ssize_t got = Receive(input_.data(), input_.size());
    inputUsed_ = 0;
    inputEnd_ = got > 0 ? static_cast<std::size_t>(got) : 0;
    if (got <= 0) {
      failed_ = got < 0;
      return got;
    }
  }
  const std::size_t count = std::min(size, inputEnd_ - inputUsed_);
  std::memcpy(to, input_.data() + inputUsed_, count);
  inputUsed_ += count;
  return static_cast<ssize_t>(count);
}

ssize_t ClientConnection::Send(const char* from, std::size_t size) {
  for (;;) {
    if (tls_) {
      ERR_clear_error();
      const int sent =
          SSL_write(tls_.get(), from, static_cast<int>(std::min<std::size_t>(size, kOutputLimit)));
      if (sent > 0) return sent;
      if (!WaitForTls(sent)) return -1;
      continue;
    }
    const ssize_t sent = send(socket_, from, size, MSG_NOSIGNAL);
    if (sent >= 0) return sent;
    if (errno == EINTR) continue;
    if (errno != EAGAIN || !Wait(Direction::kWriting)) return -1;
  }
}

void ClientConnection::Write(const char* from, std::size_t size) {
  output_.append(from, size);
  if (output_.size() > kOutputLimit) Flush();
}

bool ClientConnection::Flush() {
  std::size_t sent = 0;
  while (!failed_ && sent < output_.size()) {
    const ssize_t count = Send(output_.data() + sent, output_.size() - sent);
    if (count < 0) {
      failed_ = true;
    } else {
      sent += static_cast<std::size_t>(count);
    }
  }
  output_.clear();
  return !failed_;
}

void ClientConnection::Close(bool unread) {
  if (failed_) return;
  if (tls_) {
    ERR_clear_error();
    SSL_shutdown(tls_.get());
  }
  if (!unread) return;
  shutdown(socket_, SHUT_WR);
  readDeadline_ = std::min(readDeadline_, Clock::now() + kDrainLimit);
  char dropped[4096];
  while (Clock::now() < readDeadline_) {
    const ssize_t got = recv(socket_, dropped, sizeof dropped, 0);
    if (got == 0) return;
    if (got < 0 && errno != EINTR && (errno != EAGAIN || !Wait(Direction::kReading))) return;
  }
}

}  // namespace quillmarch::service

#include "service/Listener.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace quillmarch::service {

namespace {

constexpr int kBacklog = 1024;

std::uint16_t BoundPort(int socket) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
  if (address.ss_family == AF_INET6) {
    return ntohs(reinterpret_cast<const sockaddr_in6&>(address).sin6_port);
  }
  return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
}

int Listen(const addrinfo& where) {
  const int fd = socket(where.ai_family, where.ai_socktype | SOCK_CLOEXEC, where.ai_protocol);
  if (fd < 0) return -1;
  const int on = 1;
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  if (bind(fd, where.ai_addr, where.ai_addrlen) == 0 && listen(fd, kBacklog) == 0) return fd;
  const int reason = errno;
  close(fd);
  errno = reason;
  return -1;
}

}  // namespace

Result<Listener> OpenListener(const std::string& address, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  addrinfo* found = nullptr;
  const int failure = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found);
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, &freeaddrinfo);
  const std::string where = address + ":" + std::to_string(port);
  if (failure != 0) {
    return Error{ErrorCode::kBadArgument,
                 "Cannot listen on " + where + ": " + gai_strerror(failure) + "."};
  }
  Listener listener;
  for (const addrinfo* next = found; next != nullptr && listener.socket < 0; next = next->ai_next) {
    listener.socket = Listen(*next);
  }
  if (listener.socket < 0) {
    const ErrorCode code = errno == EADDRINUSE ? ErrorCode::kExists : ErrorCode::kDenied;
    return Error{code, "Cannot listen on " + where + ": " + std::strerror(errno) + "."};
  }
  listener.port = BoundPort(listener.socket);
  return listener;
}

}  // namespace quillmarch::service

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "foundation/transport/LoopbackExchange.h"

namespace quillmarch::addin {

std::string ExchangeOnLoopback(std::uint16_t port, const std::string& request) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (fd < 0 || connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
      send(fd, request.data(), request.size(), MSG_NOSIGNAL) !=
          static_cast<ssize_t>(request.size())) {
    if (fd >= 0) close(fd);
    throw std::runtime_error("the recording server cannot be reached");
  }
  std::string reply;
  char piece[4096];
  for (ssize_t got = 0; (got = recv(fd, piece, sizeof(piece), 0)) > 0;) {
    reply.append(piece, static_cast<std::size_t>(got));
  }
  close(fd);
  return reply;
}

}  // namespace quillmarch::addin

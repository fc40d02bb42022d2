#include <winsock2.h>

#include <stdexcept>

#include "foundation/transport/LoopbackExchange.h"

namespace quillmarch::addin {

std::string ExchangeOnLoopback(std::uint16_t port, const std::string& request) {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  const SOCKET handle = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (handle == INVALID_SOCKET ||
      connect(handle, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
      send(handle, request.data(), static_cast<int>(request.size()), 0) !=
          static_cast<int>(request.size())) {
    throw std::runtime_error("the recording server cannot be reached");
  }
  std::string reply;
  char piece[4096];
  for (int got = 0; (got = recv(handle, piece, sizeof(piece), 0)) > 0;) {
    reply.append(piece, static_cast<std::size_t>(got));
  }
  closesocket(handle);
  return reply;
}

}  // namespace quillmarch::addin

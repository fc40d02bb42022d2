#include "host/remote/Loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace quillmarch::host {

namespace {

bool ReadAll(int connection, char* into, std::size_t size) {
  while (size > 0) {
    const ssize_t got = recv(connection, into, size, 0);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    into += got;
    size -= static_cast<std::size_t>(got);
  }
  return true;
}

bool WriteAll(int connection, const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t put = send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return false;
    sent += static_cast<std::size_t>(put);
  }
  return true;
}

bool ReadMessage(int connection, std::string& body) {
  char length[4];
  if (!ReadAll(connection, length, sizeof length)) return false;
  const std::uint32_t size = WireReader({length, sizeof length}).Word();
  if (size > kLongestMessage) return false;
  body.resize(size);
  return ReadAll(connection, body.data(), size);
}

}  // namespace

int ListenOnLoopback(std::uint16_t& port) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener < 0) return -1;
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const where = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  if (bind(listener, where, size) != 0 || listen(listener, 1) != 0 ||
      getsockname(listener, where, &size) != 0) {
    close(listener);
    return -1;
  }
  port = ntohs(address.sin_port);
  return listener;
}

void ServeConnection(int connection, ObjectServer& server) {
  const int on = 1;
  setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  std::string request;
  while (ReadMessage(connection, request)) {
    const std::string reply = server.Answer(request);
    if (reply.empty()) continue;
    WireWriter length;
    length.Word(static_cast<std::uint32_t>(reply.size()));
    if (!WriteAll(connection, length.bytes() + reply)) return;
  }
}

}  // namespace quillmarch::host

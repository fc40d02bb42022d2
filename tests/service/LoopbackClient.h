// How the tests talk to a service: a plain HTTP client, and bytes on a socket.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillmarch::service {

struct HttpReply {
  bool arrived = false;  // a whole answer came
  long status = 0;
  std::string head;
  std::string body;
};

// Without `caFile` only the system's authorities are trusted.
HttpReply HttpRequest(const std::string& method, const std::string& url,
                      const std::string& body = "", const std::vector<std::string>& headers = {},
                      const std::string& caFile = "");

std::string LocalUrl(std::uint16_t port, const std::string& path = "/v1/translate");

// A connection to 127.0.0.1; closes at the end.
class RawConnection {
 public:
  explicit RawConnection(std::uint16_t port);
  ~RawConnection();
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;
  bool connected() const { return socket_ >= 0; }
  void Send(const std::string& bytes) const;
  // No more will be sent.
  void FinishSending() const;
  // Everything up to the other side's end.
  std::string ReadToEnd() const;
  // Returns once the other side has begun to answer or closed.
  void WaitReadable() const;

 private:
  int socket_ = -1;
};

}  // namespace quillmarch::service

#include "service/LoopbackClient.h"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillmarch::service {

namespace {
std::size_t Collect(char* data, std::size_t size, std::size_t count, void* to) {
  static_cast<std::string*>(to)->append(data, size * count);
  return size * count;
}
}  // namespace

HttpReply HttpRequest(const std::string& method, const std::string& url, const std::string& body,
                      const std::vector<std::string>& headers, const std::string& caFile) {
  HttpReply reply;
  CURL* request = curl_easy_init();
  curl_slist* list = nullptr;
  for (const std::string& header : headers) list = curl_slist_append(list, header.c_str());
  curl_easy_setopt(request, CURLOPT_URL, url.c_str());
  curl_easy_setopt(request, CURLOPT_PROXY, "");
  curl_easy_setopt(request, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(request, CURLOPT_CUSTOMREQUEST, method.c_str());
  if (method == "HEAD") curl_easy_setopt(request, CURLOPT_NOBODY, 1L);
  if (method == "POST") {
    curl_easy_setopt(request, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(request, CURLOPT_POSTFIELDS, body.c_str());
  }
  curl_easy_setopt(request, CURLOPT_HTTPHEADER, list);
  curl_easy_setopt(request, CURLOPT_WRITEFUNCTION, &Collect);
  curl_easy_setopt(request, CURLOPT_WRITEDATA, &reply.body);
  curl_easy_setopt(request, CURLOPT_HEADERFUNCTION, &Collect);
  curl_easy_setopt(request, CURLOPT_HEADERDATA, &reply.head);
  if (!caFile.empty()) curl_easy_setopt(request, CURLOPT_CAINFO, caFile.c_str());
  reply.arrived = curl_easy_perform(request) == CURLE_OK;
  curl_easy_getinfo(request, CURLINFO_RESPONSE_CODE, &reply.status);
  curl_slist_free_all(list);
  curl_easy_cleanup(request);
  return reply;
}

std::string LocalUrl(std::uint16_t port, const std::string& path) {
  return "http://127.0.0.1:" + std::to_string(port) + path;
}

RawConnection::RawConnection(std::uint16_t port) {
  socket_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(socket_);
    socket_ = -1;
  }
}

RawConnection::~RawConnection() {
  if (socket_ >= 0) close(socket_);
}

void RawConnection::Send(const std::string& bytes) const {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count = send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<std::size_t>(count);
  }
}

void RawConnection::FinishSending() const {
  shutdown(socket_, SHUT_WR);
}

std::string RawConnection::ReadToEnd() const {
  std::string out;
  char buffer[4096];
  for (;;) {
    const ssize_t count = recv(socket_, buffer, sizeof buffer, 0);
    if (count <= 0) return out;
    out.append(buffer, static_cast<std::size_t>(count));
  }
}

void RawConnection::WaitReadable() const {
  pollfd watched{socket_, POLLIN, 0};
  poll(&watched, 1, -1);
}

}  // namespace quillmarch::service

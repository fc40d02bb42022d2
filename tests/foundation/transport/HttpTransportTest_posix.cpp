#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>

#include "foundation/transport/HttpTransport.h"
#include "foundation/transport/TransferTimes.h"
#include "translate/RecordingServer.h"

namespace quillmarch::addin {

namespace server = recording_server;

namespace {

Wide Post(const Endpoint& endpoint, const Wide* token) {
  return HttpPostJson(endpoint, u"/v1/translate", "{\"texts\":[]}", nullptr, token, nullptr,
                      nullptr, nullptr);
}

TEST(HttpTransportByLibrary, TheRequestsBytesAreThese) {
  server::Clear();
  const Wide token = u"secret";
  Post(server::Http(), &token);
  EXPECT_EQ(server::Request(0),
            "POST /v1/translate HTTP/1.1\r\n"
            "Host: localhost:" +
                std::to_string(server::Http().port) +
                "\r\n"
                "User-Agent: Quillmarch/1.0\r\n"
                "Content-Type: application/json\r\n"
                "Authorization: Bearer secret\r\n"
                "Connection: Keep-Alive\r\n"
                "Content-Length: 12\r\n"
                "\r\n"
                "{\"texts\":[]}");
}

// A kept connection that has died makes the library send a request again.
TEST(HttpTransportByLibrary, EachRequestHasAConnectionOfItsOwn) {
  server::Clear();
  for (int i = 0; i < 3; ++i) Post(server::Http(), nullptr);
  EXPECT_EQ(server::RequestCount(), 3);
  EXPECT_EQ(server::ConnectionCount(), 3);
}

TEST(HttpTransportByLibrary, AnAuthorityThatCannotBeReadAddsNothing) {
  TrustAuthorityFile("/no/such/file.pem");
  EXPECT_EQ(Post(server::Https(), nullptr), u"");
  TrustAuthorityFile(server::AuthorityFile());
  EXPECT_NE(Post(server::Https(), nullptr), u"");
}

// ---- Limits: those of the library that stands in for another are our own to keep ---------------

// Limits of which one is short, as long as it lives.
class ShortLimit {
 public:
  explicit ShortLimit(std::chrono::milliseconds TransferLimits::*which) {
    ProcessTransferLimits().*which = std::chrono::milliseconds(50);
  }
  ~ShortLimit() { ProcessTransferLimits() = {}; }
  ShortLimit(const ShortLimit&) = delete;
  ShortLimit& operator=(const ShortLimit&) = delete;
};

// A port whose connections are made and never served.
class SilentPort {
 public:
  SilentPort() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(socket_, any, size), 0);
    EXPECT_EQ(listen(socket_, 8), 0);
    EXPECT_EQ(getsockname(socket_, any, &size), 0);
    port_ = ntohs(address.sin_port);
  }
  ~SilentPort() { close(socket_); }
  SilentPort(const SilentPort&) = delete;
  SilentPort& operator=(const SilentPort&) = delete;

  Endpoint At(bool useHttps) const { return {u"127.0.0.1", port_, useHttps}; }

 private:
  int socket_;
  std::uint16_t port_ = 0;
};

void ExpectTimedOut(const Endpoint& endpoint, std::string_view body, std::uint32_t status) {
  const auto begun = std::chrono::steady_clock::now();
  Wide error;
  std::uint32_t got = 77;
  EXPECT_EQ(HttpPostJson(endpoint, u"/x", body, &error, nullptr, nullptr, nullptr, &got), u"");
  EXPECT_EQ(error, u"HTTP request failed");
  EXPECT_EQ(got, status);
  // The other limits are 30 s and more.
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(20));
}

TEST(HttpTransportLimits, AHandshakeThatIsNotAnsweredEndsTheConnecting) {
  const SilentPort port;
  const ShortLimit limit(&TransferLimits::connect);
  ExpectTimedOut(port.At(true), "{}", 0);
}

TEST(HttpTransportLimits, ABodyThatNobodyReadsEndsTheSending) {
  const SilentPort port;
  const ShortLimit limit(&TransferLimits::send);
  ExpectTimedOut(port.At(false), std::string(64'000'000, 'x'), 0);
}

TEST(HttpTransportLimits, HeadersThatDoNotComeEndTheWaitForThem) {
  const SilentPort port;
  const ShortLimit limit(&TransferLimits::receiveResponse);
  ExpectTimedOut(port.At(false), "{}", 0);
}

TEST(HttpTransportLimits, AnAnswerThatStopsEndsTheReading) {
  server::Clear();
  server::Next("chunks 200 " + server::Hex("one") + " " + server::Hex("two"));
  const ShortLimit limit(&TransferLimits::receive);
  ExpectTimedOut(server::Http(), "{}", 200);
  server::Release();
}

}  // namespace

}  // namespace quillmarch::addin

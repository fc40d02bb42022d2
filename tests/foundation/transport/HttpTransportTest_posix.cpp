#include <gtest/gtest.h>

#include "foundation/transport/HttpTransport.h"
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

}  // namespace

}  // namespace quillmarch::addin

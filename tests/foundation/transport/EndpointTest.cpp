#include "foundation/transport/Endpoint.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

TEST(DefaultEndpoint, IsReachedOverTlsOnTheStandardPort) {
  const Endpoint& endpoint = DefaultEndpoint();
  EXPECT_FALSE(endpoint.host.empty());
  EXPECT_TRUE(endpoint.useHttps);
  EXPECT_EQ(endpoint.host.find(u':'), Wide::npos);
}

TEST(DefaultEndpoint, IsOneValueThatAHostReplacesForTheWholeProcess) {
  const Endpoint before = DefaultEndpoint();
  ReplaceDefaultEndpoint({u"api.example", 8080, false});
  EXPECT_EQ(DefaultEndpoint().host, u"api.example");
  EXPECT_EQ(DefaultEndpoint().port, 8080);
  EXPECT_FALSE(DefaultEndpoint().useHttps);
  ReplaceDefaultEndpoint(before);
  EXPECT_EQ(DefaultEndpoint().host, before.host);
}

TEST(BuildUrl, LeavesOutTheSchemesOwnPort) {
  EXPECT_EQ(BuildUrl({u"api.example", 443, true}, u"/v1/translate"),
            u"https://api.example/v1/translate");
  EXPECT_EQ(BuildUrl({u"api.example", 80, false}, u"/v1/translate"),
            u"http://api.example/v1/translate");
}

TEST(BuildUrl, NamesEveryOtherPort) {
  EXPECT_EQ(BuildUrl({u"api.example", 8443, true}, u"/x"), u"https://api.example:8443/x");
  EXPECT_EQ(BuildUrl({u"api.example", 80, true}, u"/x"), u"https://api.example:80/x");
  EXPECT_EQ(BuildUrl({u"api.example", 443, false}, u"/x"), u"http://api.example:443/x");
}

TEST(BuildUrl, PutsASlashBeforeAPathThatHasNone) {
  EXPECT_EQ(BuildUrl({u"api.example", 443, true}, u"panel/a.html"),
            u"https://api.example/panel/a.html");
}

TEST(BuildUrl, LeavesAnEmptyPathEmpty) {
  EXPECT_EQ(BuildUrl({u"api.example", 443, true}, u""), u"https://api.example");
}

}  // namespace

}  // namespace quillmarch::addin

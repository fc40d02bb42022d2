#include "service/http/RequestReader.h"

#include <gtest/gtest.h>

namespace quillmarch::service {

namespace {

RequestHead Head(const std::string& text) {
  const Result<RequestHead> head = ReadHead(text);
  EXPECT_TRUE(head) << text;
  return head ? *head : RequestHead{};
}

void ExpectRefused(const std::string& text, ErrorCode code = ErrorCode::kDamaged) {
  const Result<RequestHead> head = ReadHead(text);
  ASSERT_FALSE(head) << text;
  EXPECT_EQ(head.error().code, code) << text;
}

// A chunked body in pieces of one byte.
BodyReader Chunked(const std::string& bytes, std::size_t most = 100) {
  RequestHead head;
  head.chunked = true;
  BodyReader body(head, most);
  std::string in;
  for (const char c : bytes) {
    in += c;
    body.Take(in);
  }
  return body;
}

}  // namespace

TEST(RequestReader, TheHeadEndsAtItsEmptyLineHoweverItArrives) {
  const std::string head = "GET / HTTP/1.1\r\nA: b\r\n\r\n";
  for (std::size_t i = 0; i < head.size(); ++i) {
    EXPECT_EQ(HeadEnd(std::string_view(head).substr(0, i), i == 0 ? 0 : i - 1), 0u);
  }
  EXPECT_EQ(HeadEnd(head + "body", head.size() - 1), head.size());
}

TEST(RequestReader, WhatTheServiceNeedsOfAHeadIsRead) {
  const RequestHead head = Head(
      "POST /a%20b?c=d HTTP/1.1\r\nhost: x\r\nAUTHORIZATION:  Bearer T \r\nContent-Length: 12\r\n"
      "Content-Type: Application/JSON\r\nExpect: 100-Continue\r\n\r\n");
  EXPECT_EQ(head.method, "POST");
  EXPECT_EQ(head.path, "/a b");
  EXPECT_EQ(head.authorization, "Bearer T");
  EXPECT_EQ(head.contentType, "application/json");
  EXPECT_EQ(head.contentLength, 12u);
  EXPECT_TRUE(head.expectsContinue);
  EXPECT_TRUE(Head("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n").chunked);
}

TEST(RequestReader, WhatIsNotHttpIsRefused) {
  for (const char* text :
       {"\r\n\r\n", "hello there\r\n\r\n", "GET /\r\n\r\n", "GET / HTTP/2\r\n\r\n",
        "G@T / HTTP/1.1\r\n\r\n", "GET / a HTTP/1.1\r\n\r\n", "GET / HTTP/1.1\r\nno colon\r\n\r\n",
        "GET / HTTP/1.1\r\nspace : x\r\n\r\n", "GET / HTTP/1.1\r\nContent-Length: -1\r\n\r\n",
        "GET / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n",
        "GET / HTTP/1.1\r\nContent-Length: 1\r\nTransfer-Encoding: chunked\r\n\r\n"}) {
    ExpectRefused(text);
  }
  ExpectRefused("GET / HTTP/1.1\r\nTransfer-Encoding: gzip, chunked\r\n\r\n",
                ErrorCode::kUnsupported);
  ExpectRefused("GET /" + std::string(kLongestTarget, 'x') + " HTTP/1.1\r\n\r\n",
                ErrorCode::kTooLarge);
}

TEST(RequestReader, ABodyEndsAtItsLengthAndLeavesTheRest) {
  RequestHead head;
  head.contentLength = 4;
  BodyReader body(head, 100);
  std::string in = "ab";
  EXPECT_EQ(body.Take(in), BodyReader::State::kReading);
  in = "cdef";
  EXPECT_EQ(body.Take(in), BodyReader::State::kDone);
  EXPECT_EQ(in, "ef");
  EXPECT_EQ(body.TakeBody(), "abcd");
  EXPECT_EQ(BodyReader(head, 3).state(), BodyReader::State::kTooLarge);
  EXPECT_EQ(BodyReader(RequestHead{}, 3).state(), BodyReader::State::kDone);
}

TEST(RequestReader, ChunksArePutTogether) {
  BodyReader body = Chunked("3;x=y\r\nabc\r\nA\r\n0123456789\r\n0\r\nTrailer: x\r\n\r\n");
  EXPECT_EQ(body.state(), BodyReader::State::kDone);
  EXPECT_EQ(body.TakeBody(), "abc0123456789");
}

TEST(RequestReader, ChunksThatAreMalformedOrTooLargeAreRefused) {
  for (const char* text : {"x\r\n", "3\r\nabcd\r\n", "-1\r\n", "\r\n", "ffffffffffffffffff\r\n"}) {
    EXPECT_EQ(Chunked(text).state(), BodyReader::State::kBad) << text;
  }
  EXPECT_EQ(Chunked(std::string(1'000, '0')).state(), BodyReader::State::kBad);
  EXPECT_EQ(Chunked("3\r\nabc\r\n62\r\n", 100).state(), BodyReader::State::kTooLarge);
  EXPECT_EQ(Chunked("ffffffffffffffff\r\n").state(), BodyReader::State::kTooLarge);
}

}  // namespace quillmarch::service

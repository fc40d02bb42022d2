// Requests to the service, from the first byte on: no crash, and the same request in one piece or
// byte by byte.
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include "service/AnalyticsEvents.h"
#include "service/TranslateRequest.h"
#include "service/engines/PseudoEngine.h"
#include "service/http/RequestReader.h"

namespace quillmarch::service {

namespace {

constexpr std::size_t kMostBody = 4'096;
constexpr std::size_t kLongestForPieces = 4'096;

void Require(bool holds) {
  if (!holds) std::abort();
}

struct Read {
  BodyReader::State state = BodyReader::State::kBad;
  std::string body;
  friend bool operator==(const Read&, const Read&) = default;
};

Read ReadBody(const RequestHead& head, std::string_view bytes, std::size_t piece) {
  BodyReader reader(head, kMostBody);
  std::string in;
  for (std::size_t at = 0; reader.state() == BodyReader::State::kReading && at < bytes.size();
       at += piece) {
    in += bytes.substr(at, piece);
    reader.Take(in);
  }
  return {reader.state(), reader.state() == BodyReader::State::kDone ? reader.TakeBody() : ""};
}

void Handle(const std::string& body) {
  const auto engine = MakePseudoEngine(1);
  TokenTable tokens;
  const std::atomic<bool> stop{false};
  const TranslateAnswer answer = AnswerTranslate(body, {*engine, tokens, nullptr, "", 100, stop});
  Require(!answer.body.empty());
  Require(answer.status == 200 || answer.status == 400 || answer.status == 413);
  const EventsAnswer events = AnswerEvents(body);
  Require(events.status == 200 || events.status == 400);
  for (const std::string& line : events.lines) Require(line.find('\n') == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  Handle(std::string(bytes));
  const std::size_t end = HeadEnd(bytes, 0);
  if (end == 0) return 0;
  const Result<RequestHead> head = ReadHead(bytes.substr(0, end));
  if (!head) return 0;
  Require(!(head->chunked && head->contentLength));
  const Read whole = ReadBody(*head, bytes.substr(end), size);
  Require(whole.body.size() <= kMostBody);
  if (size <= kLongestForPieces && whole.state != BodyReader::State::kTooLarge) {
    Require(ReadBody(*head, bytes.substr(end), 1) == whole);
  }
  if (whole.state == BodyReader::State::kDone) Handle(whole.body);
  return 0;
}

}  // namespace quillmarch::service

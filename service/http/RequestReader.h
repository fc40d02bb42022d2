// HTTP/1.1 requests, read piece by piece as they arrive: a head of bounded size, then a body with a
// length or in chunks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/text/Result.h"

namespace quillmarch::service {

struct RequestHead {
  std::string method;
  std::string path;  // percent-decoded, without the query
  std::string authorization;
  std::string contentType;  // in lower case
  std::optional<std::uint64_t> contentLength;
  bool chunked = false;
  bool expectsContinue = false;

  bool ExpectsBody() const { return chunked || contentLength.value_or(0) > 0; }
};

inline constexpr std::size_t kLongestHead = 16 * 1024;
inline constexpr std::size_t kLongestTarget = 8 * 1024;

// Where the head that begins the bytes ends, after its empty line; 0 when it isn't whole yet.
std::size_t HeadEnd(std::string_view bytes, std::size_t searchedSoFar);

// A whole head. kTooLarge when the address is too long, kUnsupported for a transfer coding other
// than chunked, kDamaged for anything that is not HTTP/1.x or frames its body in two ways.
Result<RequestHead> ReadHead(std::string_view head);

// A body, by the framing of its head.
class BodyReader {
 public:
  enum class State { kReading, kDone, kTooLarge, kBad };
  BodyReader() = default;
  BodyReader(const RequestHead& head, std::size_t most);

  // Takes from the front of `bytes` what belongs to the body.
  State Take(std::string& bytes);
  State state() const { return state_; }
  std::size_t most() const { return most_; }
  std::string TakeBody() { return std::move(body_); }

 private:
  enum class Chunk { kSize, kData, kEnd, kTrailer };
  State TakeChunks(std::string& bytes);
  bool TakeSize(std::string_view line);

  std::string body_;
  State state_ = State::kDone;
  std::size_t most_ = 0;
  bool chunked_ = false;
  std::uint64_t left_ = 0;  // of the body, or of the chunk
  Chunk chunk_ = Chunk::kSize;
  std::size_t trailer_ = 0;
};

}  // namespace quillmarch::service

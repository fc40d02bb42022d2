#include "service/http/RequestReader.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace quillmarch::service {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr std::size_t kLongestChunkLine = 256;

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

std::string InLower(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), Lower);
  return out;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// The characters of a method or of a header's name.
bool IsToken(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '0' && c <= '9') || (Lower(c) >= 'a' && Lower(c) <= 'z') ||
           std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
  });
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = Lower(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string Decoded(std::string_view target) {
  std::string out;
  for (std::size_t i = 0; i < target.size(); ++i) {
    const int high = target[i] == '%' && i + 2 < target.size() ? HexDigit(target[i + 1]) : -1;
    const int low = high >= 0 ? HexDigit(target[i + 2]) : -1;
    if (low < 0) {
      out += target[i];
    } else {
      out += static_cast<char>(high * 16 + low);
      i += 2;
    }
  }
  return out;
}

Error Bad(const char* words) {
  return {ErrorCode::kDamaged, words};
}

Result<RequestHead> ReadRequestLine(std::string_view line) {
  const std::size_t first = line.find(' ');
  const std::size_t last = line.rfind(' ');
  if (first == std::string_view::npos || first == last) return Bad("There is no request line.");
  RequestHead head;
  head.method = line.substr(0, first);
  const std::string_view target = line.substr(first + 1, last - first - 1);
  const std::string_view version = line.substr(last + 1);
  if (!IsToken(head.method) || (version != "HTTP/1.1" && version != "HTTP/1.0") || target.empty() ||
      target.find(' ') != std::string_view::npos) {
    return Bad("The request line is not HTTP/1.1.");
  }
  if (target.size() > kLongestTarget)
    return Error{ErrorCode::kTooLarge, "The address is too long."};
  head.path = Decoded(target.substr(0, target.find('?')));
  return head;
}

// False when two headers contradict each other or the value can't be read.
bool TakeLength(RequestHead& head, std::string_view value) {
  std::uint64_t length = 0;
  const auto read = std::from_chars(value.data(), value.data() + value.size(), length);
  if (value.empty() || read.ec != std::errc() || read.ptr != value.data() + value.size()) {
    return false;
  }
  if (head.contentLength && *head.contentLength != length) return false;
  head.contentLength = length;
  return true;
}

}  // namespace

std::size_t HeadEnd(std::string_view bytes, std::size_t searchedSoFar) {
  const std::size_t from = searchedSoFar < kHeadEnd.size() ? 0 : searchedSoFar - kHeadEnd.size();
  const std::size_t at = bytes.find(kHeadEnd, from);
  return at == std::string_view::npos ? 0 : at + kHeadEnd.size();
}

Result<RequestHead> ReadHead(std::string_view text) {
  std::size_t end = text.find(kLineEnd);
  Result<RequestHead> read = ReadRequestLine(text.substr(0, end));
  if (!read) return read;
  RequestHead& head = *read;
  while (end != std::string_view::npos && end + kLineEnd.size() < text.size()) {
    text.remove_prefix(end + kLineEnd.size());
    end = text.find(kLineEnd);
    const std::string_view line = text.substr(0, end);
    if (line.empty()) break;
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || !IsToken(line.substr(0, colon))) {
      return Bad("A header is malformed.");
    }
    const std::string name = InLower(line.substr(0, colon));
    const std::string_view value = Trim(line.substr(colon + 1));
    if (name == "authorization") {
      head.authorization = value;
    } else if (name == "content-type") {
      head.contentType = InLower(value);
    } else if (name == "content-length") {
      if (!TakeLength(head, value)) return Bad("The header Content-Length is malformed.");
    } else if (name == "transfer-encoding") {
      if (InLower(value) != "chunked" || head.chunked) {
        return Error{ErrorCode::kUnsupported, "Only the transfer coding chunked is understood."};
      }
      head.chunked = true;
    } else if (name == "expect") {
      head.expectsContinue = InLower(value) == "100-continue";
    }
  }
  // Two framings are how one request is smuggled inside another.
  if (head.chunked && head.contentLength) return Bad("The body is framed in two ways.");
  return read;
}

BodyReader::BodyReader(const RequestHead& head, std::size_t most)
    : most_(most), chunked_(head.chunked), left_(head.contentLength.value_or(0)) {
  if (!chunked_ && left_ > most_) {
    state_ = State::kTooLarge;
  } else if (chunked_ || left_ > 0) {
    state_ = State::kReading;
    body_.reserve(static_cast<std::size_t>(left_));
  }
  if (chunked_) left_ = 0;
}

BodyReader::State BodyReader::Take(std::string& bytes) {
  if (state_ != State::kReading) return state_;
  if (chunked_) return state_ = TakeChunks(bytes);
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left_, bytes.size()));
  body_.append(bytes, 0, count);
  bytes.erase(0, count);
  left_ -= count;
  return state_ = left_ == 0 ? State::kDone : State::kReading;
}

bool BodyReader::TakeSize(std::string_view line) {
  const std::string_view digits = Trim(line.substr(0, line.find(';')));
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), left_, 16);
  return !digits.empty() && read.ec == std::errc() && read.ptr == digits.data() + digits.size();
}

BodyReader::State BodyReader::TakeChunks(std::string& bytes) {
  std::size_t at = 0;
  State state = State::kReading;
  while (state == State::kReading) {
    if (chunk_ == Chunk::kData) {
      const auto count =
          static_cast<std::size_t>(std::min<std::uint64_t>(left_, bytes.size() - at));
      body_.append(bytes, at, count);
      at += count;
      left_ -= count;
      if (left_ > 0) break;
      chunk_ = Chunk::kEnd;
      continue;
    }
    const std::size_t end = bytes.find(kLineEnd, at);
    if (end == std::string::npos) {
      if (bytes.size() - at > kLongestChunkLine) state = State::kBad;
      break;
    }
    const std::string_view line = std::string_view(bytes).substr(at, end - at);
    at = end + kLineEnd.size();
    if (chunk_ == Chunk::kEnd) {
      if (!line.empty()) state = State::kBad;
      chunk_ = Chunk::kSize;
    } else if (chunk_ == Chunk::kTrailer) {
      trailer_ += line.size();
      if (line.empty()) state = State::kDone;
      if (trailer_ > kLongestHead) state = State::kBad;
    } else if (line.size() > kLongestChunkLine || !TakeSize(line)) {
      state = State::kBad;
    } else if (left_ > most_ - body_.size()) {
      state = State::kTooLarge;
    } else {
      chunk_ = left_ == 0 ? Chunk::kTrailer : Chunk::kData;
    }
  }
  bytes.erase(0, at);
  return state;
}

}  // namespace quillmarch::service

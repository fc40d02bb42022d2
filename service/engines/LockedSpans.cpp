#include "service/engines/LockedSpans.h"

#include <algorithm>

namespace quillmarch::service {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsAsciiLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// Non-ASCII letters count as such byte by byte.
bool IsWordByte(char c) {
  return IsDigit(c) || IsAsciiLetter(c) || static_cast<unsigned char>(c) >= 0x80;
}

bool StartsWithNoCase(std::string_view text, std::string_view lower) {
  if (text.size() < lower.size()) return false;
  for (std::size_t i = 0; i < lower.size(); ++i) {
    const char c = text[i];
    if ((IsAsciiLetter(c) ? static_cast<char>(c | 0x20) : c) != lower[i]) return false;
  }
  return true;
}

// Length of the placeholder that begins the text, or 0.
std::size_t PlaceholderLength(std::string_view text) {
  if (!StartsWithNoCase(text, "[[qm_")) return 0;
  std::size_t at = 5;
  while (at < text.size() && IsWordByte(text[at])) ++at;
  if (at == text.size() || text[at] != '_') return 0;
  const std::size_t digits = ++at;
  while (at < text.size() && IsDigit(text[at])) ++at;
  if (at == digits || text.substr(at, 2) != "]]") return 0;
  return at + 2;
}

// Length of the web address that begins the text, or 0. Punctuation at its end belongs to the
// sentence around it.
std::size_t WebAddressLength(std::string_view text) {
  std::size_t scheme = 0;
  for (const std::string_view start : {"https://", "http://", "ftp://", "www."}) {
    if (StartsWithNoCase(text, start)) scheme = start.size();
  }
  if (scheme == 0) return 0;
  std::size_t end = scheme;
  while (end < text.size() && text[end] > ' ' && text[end] < '\x7f' &&
         std::string_view("<>\"\\^`{|}[]").find(text[end]) == std::string_view::npos) {
    ++end;
  }
  while (end > scheme &&
         std::string_view(".,;:!?)'*").find(text[end - 1]) != std::string_view::npos) {
    --end;
  }
  return end > scheme ? end : 0;
}

bool IsMailByte(char c) {
  return IsDigit(c) || IsAsciiLetter(c) ||
         std::string_view("._%+-").find(c) != std::string_view::npos;
}

// The mail address around the @ at `at`; empty when there is none.
LockedSpan MailAddress(std::string_view text, std::size_t at, std::size_t from) {
  std::size_t begin = at;
  while (begin > from && IsMailByte(text[begin - 1])) --begin;
  std::size_t end = at + 1;
  std::size_t lastDot = 0;
  while (end < text.size() &&
         (IsDigit(text[end]) || IsAsciiLetter(text[end]) || text[end] == '.' || text[end] == '-')) {
    if (text[end] == '.') lastDot = end;
    ++end;
  }
  while (end > at + 1 && (text[end - 1] == '.' || text[end - 1] == '-')) {
    --end;
    if (lastDot == end) lastDot = text.substr(0, end).rfind('.');
  }
  const bool valid =
      begin < at && lastDot != std::string_view::npos && lastDot > at + 1 && lastDot + 1 < end;
  return valid ? LockedSpan{begin, end, false} : LockedSpan{};
}

}  // namespace

std::vector<LockedSpan> FindLockedSpans(std::string_view text) {
  std::vector<LockedSpan> spans;
  std::size_t free = 0;  // after the last span
  for (std::size_t at = 0; at < text.size();) {
    LockedSpan span;
    const std::string_view rest = text.substr(at);
    if (const std::size_t length = PlaceholderLength(rest); length > 0) {
      span = {at, at + length, true};
    } else if (at == free || !(IsDigit(text[at - 1]) || IsAsciiLetter(text[at - 1]))) {
      const std::size_t address = WebAddressLength(rest);
      if (address > 0) span = {at, at + address, false};
    }
    if (span.end == 0 && text[at] == '@') span = MailAddress(text, at, free);
    if (span.end == 0) {
      ++at;
      continue;
    }
    spans.push_back(span);
    at = free = span.end;
  }
  return spans;
}

std::size_t CountLockedPlaceholders(std::string_view text) {
  const std::vector<LockedSpan> spans = FindLockedSpans(text);
  return static_cast<std::size_t>(
      std::count_if(spans.begin(), spans.end(), [](const LockedSpan& s) { return s.placeholder; }));
}

}  // namespace quillmarch::service

#include "foundation/text/Wide.h"

#include <charconv>
#include <cstring>

#include "foundation/text/Utf8.h"

namespace quillmarch {

namespace {

bool IsHigh(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLow(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendCodePoint(Wide& out, char32_t point) {
  if (point < 0x10000) {
    out.push_back(static_cast<char16_t>(point));
    return;
  }
  point -= 0x10000;
  out.push_back(static_cast<char16_t>(0xD800 + (point >> 10)));
  out.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
}

// Where the plain ASCII that begins at `from` ends. Most texts are nothing else, so eight bytes are
// tested at a time.
template <typename Unit>
std::size_t AsciiEnd(std::basic_string_view<Unit> text, std::size_t from) {
  constexpr std::size_t kStep = sizeof(std::uint64_t) / sizeof(Unit);
  constexpr std::uint64_t kBeyond = sizeof(Unit) == 1 ? 0x8080808080808080u : 0xFF80FF80FF80FF80u;
  std::size_t at = from;
  for (; at + kStep <= text.size(); at += kStep) {
    std::uint64_t units = 0;
    std::memcpy(&units, text.data() + at, sizeof units);
    if ((units & kBeyond) != 0) break;
  }
  while (at < text.size() && text[at] >= 0 && text[at] < 0x80) ++at;
  return at;
}

// Appends ASCII, unit by unit.
template <typename Text, typename Unit>
void AppendAscii(Text& out, std::basic_string_view<Unit> text) {
  const std::size_t at = out.size();
  out.resize(at + text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    out[at + i] = static_cast<typename Text::value_type>(text[i]);
  }
}

template <typename Number>
Wide DecimalOf(Number value) {
  char digits[24];
  const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
  static_cast<void>(error);  // 24 characters hold every 64-bit number
  return Wide(digits, end);
}

}  // namespace

Wide ToWide(std::string_view utf8) {
  Wide out;
  out.reserve(utf8.size());
  std::size_t i = 0;
  while (i < utf8.size()) {
    const std::size_t plain = AsciiEnd(utf8, i);
    if (plain > i) {
      AppendAscii(out, utf8.substr(i, plain - i));
      i = plain;
      continue;
    }
    const Utf8Char next = DecodeUtf8(utf8.substr(i));
    AppendCodePoint(out, next.code);
    i += next.skip;
  }
  return out;
}

std::string ToUtf8(WideView text) {
  std::string out;
  out.reserve(text.size() + text.size() / 2);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t plain = AsciiEnd(text, i);
    if (plain > i) {
      AppendAscii(out, text.substr(i, plain - i));
      i = plain - 1;
      continue;
    }
    char32_t point = text[i];
    if (IsHigh(text[i]) && i + 1 < text.size() && IsLow(text[i + 1])) {
      point = 0x10000 + ((point - 0xD800) << 10) + (text[i + 1] - 0xDC00u);
      ++i;
    } else if (IsHigh(text[i]) || IsLow(text[i])) {
      point = kReplacementCharacter;
    }
    AppendUtf8(out, point);
  }
  return out;
}

Wide Decimal(std::int64_t value) {
  return DecimalOf(value);
}
Wide DecimalUnsigned(std::uint64_t value) {
  return DecimalOf(value);
}

Wide LowerAscii(WideView text) {
  Wide out(text);
  for (char16_t& unit : out) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + (u'a' - u'A'));
  }
  return out;
}

}  // namespace quillmarch

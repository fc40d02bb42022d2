#include "foundation/text/JsonText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <string>
#include <system_error>

#include "foundation/text/CharClass.h"

namespace quillmarch {

namespace {

constexpr std::size_t kNone = WideView::npos;
constexpr std::size_t kEscapeReserve = 8;
constexpr std::size_t kUnicodeDigits = 4;

// -1 for a unit that is not a hex digit.
int HexValue(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  return -1;
}

Wide Quoted(WideView key) {
  Wide quoted(1, u'"');
  quoted += key;
  quoted += u'"';
  return quoted;
}

// As json.find(quoted, at). A start message is searched for a dozen keys that it may lack, each
// time to its end: blocks in which the first two units do not stand side by side are passed over,
// by a loop that compilers turn into few instructions.
std::size_t Find(WideView json, WideView quoted, std::size_t at = 0) {
  constexpr std::size_t kBlock = 64;
  const char16_t first = quoted[0];
  const char16_t second = quoted[1];
  for (; at + kBlock < json.size(); at += kBlock) {
    const char16_t* const block = json.data() + at;
    std::uint16_t stand = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
      const bool both = (block[i] == first) & (block[i + 1] == second);
      stand = static_cast<std::uint16_t>(stand | (both ? 1 : 0));
    }
    if (stand == 0) continue;
    const std::size_t found = json.substr(0, at + kBlock + quoted.size() - 1).find(quoted, at);
    if (found != kNone) return found;
  }
  return json.find(quoted, at);
}

// Just after the first occurrence of the quoted key.
std::size_t BehindKey(WideView json, WideView key) {
  const Wide quoted = Quoted(key);
  const std::size_t at = Find(json, quoted);
  return at == kNone ? kNone : at + quoted.size();
}

std::size_t SkipAny(WideView json, std::size_t at, WideView units) {
  const std::size_t next = json.find_first_not_of(units, at);
  return next == kNone ? json.size() : next;
}

// Reads the value whose opening quote is just before `at`. `at` ends on the closing quote, or at
// the end of a text that never closes it.
Wide ReadStringValue(WideView json, std::size_t& at) {
  Wide value;
  for (; at < json.size(); ++at) {
    std::size_t plain = at;
    while (plain < json.size() && json[plain] != u'"' && json[plain] != u'\\') ++plain;
    value.append(json, at, plain - at);
    at = plain;
    if (at == json.size() || json[at] == u'"') break;
    if (at + 1 == json.size()) {
      value.push_back(json[at]);
      continue;
    }
    ++at;
    const char16_t escaped = json[at];
    if (escaped == u'n') {
      value.push_back(u'\n');
    } else if (escaped == u'r') {
      value.push_back(u'\r');
    } else if (escaped == u't') {
      value.push_back(u'\t');
    } else if (escaped == u'u' && json.size() - at - 1 > kUnicodeDigits) {
      // Strictly more than four units are asked for, so an escape that ends the text stays letters.
      unsigned number = 0;  // without one hex digit the unit is U+0000
      for (std::size_t i = 1; i <= kUnicodeDigits; ++i) {
        const int digit = HexValue(json[at + i]);
        if (digit < 0) break;
        number = number * 16 + static_cast<unsigned>(digit);
      }
      value.push_back(static_cast<char16_t>(number));
      at += kUnicodeDigits;
    } else {
      // Any other escaped unit means itself, b and f too.
      value.push_back(escaped);
    }
  }
  return value;
}

// The string value whose opening quote is the next one at or after `at`, at any distance.
Wide NextString(WideView json, std::size_t at) {
  const std::size_t quote = json.find(u'"', at);
  if (quote == kNone) return {};
  std::size_t position = quote + 1;
  return ReadStringValue(json, position);
}

// Of a number out of range, which is so either by its exponent or by the place of its first digit.
bool IsBelowOne(std::string_view read, std::chars_format format) {
  const bool hex = format == std::chars_format::hex;
  const std::string_view digits = read.substr(0, read.find_first_of(hex ? "pP" : "eE"));
  const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
  const auto first = static_cast<std::int64_t>(digits.find_first_not_of("0."));
  std::int64_t exponent = 0;
  if (digits.size() < read.size()) {
    const std::string_view text = read.substr(digits.size() + 1);
    const bool plus = text.front() == '+';
    const auto result =
        std::from_chars(text.data() + (plus ? 1 : 0), text.data() + text.size(), exponent);
    if (result.ec == std::errc::result_out_of_range) return text.front() == '-';
  }
  constexpr std::int64_t kBitsOfHexDigit = 4;
  return (point - first) * (hex ? kBitsOfHexDigit : 1) + exponent < 0;
}

// As the C library's wcstod in the "C" locale, whatever the process's locale is.
double ReadNumber(WideView text) {
  std::size_t at = 0;
  while (at < text.size() && IsSpace(text[at])) ++at;
  bool negative = false;
  if (at < text.size() && (text[at] == u'+' || text[at] == u'-')) {
    negative = text[at] == u'-';
    ++at;
  }
  std::string digits;
  while (at < text.size() && text[at] > u' ' && text[at] < 0x7F && text[at] != u',' &&
         text[at] != u'}' && text[at] != u']') {
    digits.push_back(static_cast<char>(text[at]));
    ++at;
  }
  if (digits.empty() || digits.front() == '-') return 0.0;
  const char* first = digits.data();
  const char* last = first + digits.size();
  auto format = std::chars_format::general;
  if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X') &&
      (HexValue(static_cast<char16_t>(digits[2])) >= 0 || digits[2] == '.')) {
    first += 2;
    format = std::chars_format::hex;
  }
  double number = 0.0;
  const auto result = std::from_chars(first, last, number, format);
  if (result.ec == std::errc::result_out_of_range) {
    const std::string_view read(first, static_cast<std::size_t>(result.ptr - first));
    number = IsBelowOne(read, format) ? 0.0 : std::numeric_limits<double>::infinity();
  } else if (result.ec != std::errc()) {
    return 0.0;
  }
  return negative ? -number : number;
}

}  // namespace

Wide JsonEscape(WideView text) {
  static constexpr WideView kHex = u"0123456789abcdef";
  const auto plain = [](char16_t unit) { return unit >= 0x20 && unit != u'"' && unit != u'\\'; };
  Wide out;
  out.reserve(text.size() + kEscapeReserve);
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t run = at;
    while (at < text.size() && plain(text[at])) ++at;
    out.append(text, run, at - run);
    if (at == text.size()) break;
    const char16_t unit = text[at];
    switch (unit) {
      case u'\t':
        out += u"\\t";
        break;
      case u'\n':
        out += u"\\n";
        break;
      case u'\r':
        out += u"\\r";
        break;
      case u'"':
      case u'\\':
        out += u'\\';
        out += unit;
        break;
      default:
        out += u"\\u00";
        out += kHex[unit >> 4];
        out += kHex[unit & 0xF];
    }
  }
  return out;
}

Wide JsonGetString(WideView json, WideView key) {
  const Wide quoted = Quoted(key);
  for (std::size_t at = Find(json, quoted); at != kNone; at = Find(json, quoted, at + 1)) {
    const std::size_t behind = SkipAny(json, at + quoted.size(), u" \t");
    // Anything may come between the colon and the next quote: a null or a number gives the next
    // string of the document.
    if (behind < json.size() && json[behind] == u':') return NextString(json, behind + 1);
  }
  return {};
}

Wide JsonFindString(WideView json, WideView key) {
  const std::size_t at = BehindKey(json, key);
  return at == kNone ? Wide() : NextString(json, at);
}

bool JsonGetBool(WideView json, WideView key) {
  std::size_t at = BehindKey(json, key);
  if (at == kNone) return false;
  at = SkipAny(json, at, u" :");
  // Only the first unit of a number is looked at, so 10 is true as well.
  return json.substr(at, 4) == u"true" || json.substr(at, 1) == u"1";
}

bool JsonGetFlag(WideView json, WideView key) {
  std::size_t at = BehindKey(json, key);
  if (at == kNone) return true;
  at = json.find(u':', at);
  if (at == kNone) return true;
  at = SkipAny(json, at + 1, u" \t");
  return json.substr(at, 5) != u"false";
}

double JsonGetNumber(WideView json, WideView key) {
  std::size_t at = BehindKey(json, key);
  if (at == kNone) return 0.0;
  at = SkipAny(json, at, u" :");
  return ReadNumber(json.substr(at));
}

std::vector<Wide> JsonGetStringArray(WideView json, WideView key) {
  std::vector<Wide> values;
  std::size_t at = Find(json, Quoted(key));
  if (at == kNone) return values;
  at = json.find(u'[', at);
  if (at == kNone) return values;
  ++at;
  for (;;) {
    // An empty array is not noticed: the search runs on into the rest of the document.
    const std::size_t quote = json.find(u'"', at);
    if (quote == kNone) return values;
    at = quote + 1;
    values.push_back(ReadStringValue(json, at));
    if (at == json.size()) return values;
    at = json.find_first_of(u"\",]", at + 1);
    if (at == kNone || json[at] == u']') return values;
  }
}

Wide JsonGetObject(WideView json, WideView key) {
  const std::size_t from = Find(json, Quoted(key));
  if (from == kNone) return {};
  const std::size_t open = json.find(u'{', from);
  if (open == kNone) return {};
  std::size_t depth = 0;
  bool inString = false;
  bool escaped = false;
  for (std::size_t at = open; at < json.size(); ++at) {
    const char16_t unit = json[at];
    if (inString) {
      if (escaped) {
        escaped = false;
      } else if (unit == u'\\') {
        escaped = true;
      } else if (unit == u'"') {
        inString = false;
      }
    } else if (unit == u'"') {
      inString = true;
    } else if (unit == u'{') {
      ++depth;
    } else if (unit == u'}') {
      --depth;
      if (depth == 0) return Wide(json.substr(open, at + 1 - open));
    }
  }
  return {};
}

bool JsonHasKey(WideView json, WideView key) {
  return Find(json, Quoted(key)) != kNone;
}

bool ParseHexColor(WideView text, std::int32_t& value) {
  if (text.size() != 7 || text[0] != u'#') return false;
  std::int32_t digits[6];
  for (std::size_t i = 0; i < 6; ++i) {
    digits[i] = HexValue(text[i + 1]);
    if (digits[i] < 0) return false;
  }
  const std::int32_t red = digits[0] * 16 + digits[1];
  const std::int32_t green = digits[2] * 16 + digits[3];
  const std::int32_t blue = digits[4] * 16 + digits[5];
  value = red + green * 256 + blue * 65536;
  return true;
}

}  // namespace quillmarch

#include "host/workbook/XString.h"

#include <cstddef>
#include <cstdint>

#include "foundation/text/Utf8.h"
#include "host/package/xml/XmlChar.h"

namespace quillmarch::host::workbook {
namespace {

constexpr std::size_t kEscapeLength = 7;  // "_x000D_"

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char small = static_cast<char>(c | 0x20);
  return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

// The code unit of the escape that `text` begins with; -1 when it begins with none.
std::int32_t EscapedUnit(std::string_view text) {
  if (text.size() < kEscapeLength || text[0] != '_' || text[1] != 'x' || text[6] != '_') return -1;
  std::int32_t unit = 0;
  for (std::size_t i = 2; i < 6; ++i) {
    const int digit = HexDigit(text[i]);
    if (digit < 0) return -1;
    unit = unit * 16 + digit;
  }
  return unit;
}

bool IsSurrogate(std::int32_t unit, std::int32_t first) {
  return unit >= first && unit < first + 0x400;
}

void AppendEscape(std::string& to, std::uint32_t unit) {
  constexpr char kHex[] = "0123456789ABCDEF";
  to += "_x";
  for (int shift = 12; shift >= 0; shift -= 4) to += kHex[unit >> shift & 0xF];
  to += '_';
}

}  // namespace

std::string DecodeXString(std::string_view text) {
  if (text.find("_x") == std::string_view::npos) return std::string(text);
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const std::int32_t unit = EscapedUnit(text.substr(i));
    if (unit < 0) {
      result += text[i++];
      continue;
    }
    i += kEscapeLength;
    if (IsSurrogate(unit, 0xD800)) {
      const std::int32_t low = EscapedUnit(text.substr(i));
      if (IsSurrogate(low, 0xDC00)) {
        i += kEscapeLength;
        AppendUtf8(result,
                   static_cast<std::uint32_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)));
        continue;
      }
    }
    const bool lone = unit >= 0xD800 && unit <= 0xDFFF;
    AppendUtf8(result, lone ? 0xFFFDu : static_cast<std::uint32_t>(unit));
  }
  return result;
}

std::string EncodeXString(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const Utf8Char decoded = DecodeUtf8(text.substr(i));
    if (decoded.length == 0) {
      ++i;
      continue;
    }
    if (decoded.code == '_' && EscapedUnit(text.substr(i)) >= 0) {
      AppendEscape(result, '_');
    } else if (decoded.code == '\r' || !IsXmlChar(decoded.code)) {
      AppendEscape(result, decoded.code);
    } else {
      result.append(text.substr(i, decoded.length));
    }
    i += decoded.length;
  }
  return result;
}

}  // namespace quillmarch::host::workbook

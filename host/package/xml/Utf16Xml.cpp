#include "host/package/xml/Utf16Xml.h"

#include <cstdint>

#include "host/package/xml/XmlChar.h"

namespace quillmarch::host {

XmlForm DetectXmlForm(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return {XmlEncoding::kUtf16Little, true};
  if (bytes.starts_with("\xFE\xFF")) return {XmlEncoding::kUtf16Big, true};
  if (bytes.starts_with(std::string_view("<\0", 2))) return {XmlEncoding::kUtf16Little, false};
  if (bytes.starts_with(std::string_view("\0<", 2))) return {XmlEncoding::kUtf16Big, false};
  return {XmlEncoding::kUtf8, bytes.starts_with("\xEF\xBB\xBF")};
}

bool Utf16ToUtf8(std::string_view bytes, const XmlForm& form, std::string& utf8) {
  utf8.clear();
  if (bytes.size() % 2 != 0) return false;
  utf8.reserve(bytes.size() / 2 + bytes.size() / 8);
  const std::size_t high = form.encoding == XmlEncoding::kUtf16Big ? 0 : 1;
  const auto unit = [&](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + high]) << 8 |
                                      static_cast<unsigned char>(bytes[i + 1 - high]));
  };
  for (std::size_t i = form.byteOrderMark ? 2 : 0; i < bytes.size(); i += 2) {
    std::uint32_t code = unit(i);
    if (code >= 0xDC00 && code <= 0xDFFF) return false;
    if (code >= 0xD800 && code <= 0xDBFF) {
      i += 2;
      if (i >= bytes.size()) return false;
      const std::uint32_t low = unit(i);
      if (low < 0xDC00 || low > 0xDFFF) return false;
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
    }
    AppendUtf8(utf8, code);
  }
  return true;
}

std::string Utf8ToUtf16(std::string_view utf8, const XmlForm& form) {
  std::string result;
  result.reserve(utf8.size() * 2 + 2);
  const auto put = [&](std::uint32_t unit) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    const bool big = form.encoding == XmlEncoding::kUtf16Big;
    result += big ? high : low;
    result += big ? low : high;
  };
  if (form.byteOrderMark) put(0xFEFF);
  while (!utf8.empty()) {
    Utf8Char decoded = DecodeUtf8(utf8);
    if (decoded.length == 0) decoded = {0xFFFD, 1};
    utf8.remove_prefix(decoded.length);
    if (decoded.code < 0x10000) {
      put(decoded.code);
    } else {
      put(0xD800 + ((decoded.code - 0x10000) >> 10));
      put(0xDC00 + ((decoded.code - 0x10000) & 0x3FF));
    }
  }
  return result;
}

}  // namespace quillmarch::host

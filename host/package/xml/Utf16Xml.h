// Parts in UTF-16, which Open Packaging allows beside UTF-8: read as UTF-8, written back as they
// were.
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::host {

enum class XmlEncoding { kUtf8, kUtf16Little, kUtf16Big };

struct XmlForm {
  XmlEncoding encoding = XmlEncoding::kUtf8;
  bool byteOrderMark = false;
};

// By the byte order mark, or by the first "<" when there is none.
XmlForm DetectXmlForm(std::string_view bytes);

// UTF-16 bytes of that form as UTF-8 without a byte order mark. False for an odd number of bytes
// or a lone surrogate.
bool Utf16ToUtf8(std::string_view bytes, const XmlForm& form, std::string& utf8);

// The reverse. `utf8` is valid UTF-8; a byte that is not becomes U+FFFD.
std::string Utf8ToUtf16(std::string_view utf8, const XmlForm& form);

}  // namespace quillmarch::host

#include "host/package/xml/XmlReference.h"

#include "host/package/xml/XmlChar.h"

namespace quillmarch::host {

namespace {

constexpr std::uint32_t kNoDigit = 99;

std::uint32_t Digit(char c) {
  if (c >= '0' && c <= '9') return static_cast<std::uint32_t>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<std::uint32_t>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<std::uint32_t>(c - 'A' + 10);
  return kNoDigit;
}

}  // namespace

std::uint32_t ResolveReference(std::string_view inside) {
  if (inside == "amp") return '&';
  if (inside == "lt") return '<';
  if (inside == "gt") return '>';
  if (inside == "quot") return '"';
  if (inside == "apos") return '\'';
  if (inside.size() < 2 || inside[0] != '#') return 0;
  const bool hex = inside[1] == 'x';
  const std::uint32_t base = hex ? 16 : 10;
  inside.remove_prefix(hex ? 2 : 1);
  std::uint32_t code = 0;
  for (const char c : inside) {
    const std::uint32_t digit = Digit(c);
    if (digit >= base) return 0;
    code = code * base + digit;
    if (code > 0x10FFFF) return 0;
  }
  return IsXmlChar(code) ? code : 0;
}

}  // namespace quillmarch::host

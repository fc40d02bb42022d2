#include "host/cli/TerminalText.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch::host {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xA960, 0xA97C},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
    {0xFFE0, 0xFFE6},   {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF},
    {0x20000, 0x3FFFD},
};

constexpr Range kCombining[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F},
    {0x06D6, 0x06DC}, {0x0900, 0x0902}, {0x093C, 0x093C}, {0x0941, 0x0948}, {0x094D, 0x094D},
    {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x200B, 0x200F}, {0x202A, 0x202E},
    {0x2060, 0x2064}, {0x20D0, 0x20F0}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF},
};

bool Within(const Range* begin, const Range* end, char32_t point) {
  return std::any_of(begin, end,
                     [point](const Range& r) { return point >= r.first && point <= r.last; });
}

std::size_t PointWidth(char32_t point) {
  if (Within(std::begin(kCombining), std::end(kCombining), point)) return 0;
  return Within(std::begin(kWide), std::end(kWide), point) ? 2 : 1;
}

struct Glyph {
  std::string_view bytes;
  std::size_t width;
};

// Splits valid UTF-8, as PlainLine gives it.
std::vector<Glyph> Glyphs(std::string_view utf8) {
  std::vector<Glyph> glyphs;
  for (std::size_t at = 0; at < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[at]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t point = length == 1 ? lead : lead & (0x7Fu >> length);
    const std::string_view bytes = utf8.substr(at, length);
    for (std::size_t i = 1; i < bytes.size(); ++i) {
      point = (point << 6) | (static_cast<unsigned char>(bytes[i]) & 0x3Fu);
    }
    glyphs.push_back({bytes, PointWidth(point)});
    at += bytes.size();
  }
  return glyphs;
}

constexpr std::string_view kEllipsis = "...";

}  // namespace

std::string PlainLine(std::string_view bytes) {
  Wide text = ToWide(bytes);
  for (char16_t& unit : text) {
    const bool control =
        unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
    if (control) unit = u' ';
  }
  return ToUtf8(text);
}

std::size_t DisplayWidth(std::string_view utf8) {
  std::size_t width = 0;
  for (const Glyph& glyph : Glyphs(utf8)) width += glyph.width;
  return width;
}

std::string Shorten(std::string_view utf8, std::size_t columns) {
  if (DisplayWidth(utf8) <= columns) return std::string(utf8);
  if (columns <= kEllipsis.size()) return std::string(columns, '.');
  std::string kept;
  std::size_t width = kEllipsis.size();
  for (const Glyph& glyph : Glyphs(utf8)) {
    width += glyph.width;
    if (width > columns) break;
    kept += glyph.bytes;
  }
  return kept += kEllipsis;
}

std::string ShortenFront(std::string_view utf8, std::size_t columns) {
  if (DisplayWidth(utf8) <= columns) return std::string(utf8);
  if (columns <= kEllipsis.size()) return std::string(columns, '.');
  const std::vector<Glyph> glyphs = Glyphs(utf8);
  std::size_t width = kEllipsis.size();
  std::size_t from = glyphs.size();
  while (from > 0 && width + glyphs[from - 1].width <= columns) width += glyphs[--from].width;
  std::string kept(kEllipsis);
  for (; from < glyphs.size(); ++from) kept += glyphs[from].bytes;
  return kept;
}

}  // namespace quillmarch::host

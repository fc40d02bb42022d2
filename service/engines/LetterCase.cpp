#include "service/engines/LetterCase.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "service/Utf8.h"

namespace quillmarch::service {

namespace {

constexpr int kCapitalsOfATitle = 2;

bool IsIn(char32_t c, char32_t first, char32_t last) {
  return c >= first && c <= last;
}

// Latin Extended-A pairs a capital with the small letter after it; in these two stretches the
// capitals are the odd ones.
bool IsOddPair(char32_t c) {
  return IsIn(c, 0x139, 0x148) || IsIn(c, 0x179, 0x17E);
}

bool IsPair(char32_t c) {
  return IsIn(c, 0x100, 0x137) || IsIn(c, 0x14A, 0x177) || IsOddPair(c);
}

bool IsSmallOfPair(char32_t c) {
  return IsPair(c) && (c % 2 == 0) == IsOddPair(c);
}

char32_t Capital(char32_t c) {
  if (IsIn(c, U'a', U'z')) return c - 0x20;
  if (IsIn(c, 0xE0, 0xFE) && c != 0xF7) return c - 0x20;
  if (c == 0xFF) return 0x178;
  if (c == 0x131) return U'I';
  if (IsSmallOfPair(c)) return c - 1;
  if (IsIn(c, 0x3B1, 0x3C9) && c != 0x3C2) return c - 0x20;
  if (IsIn(c, 0x430, 0x44F)) return c - 0x20;
  if (IsIn(c, 0x450, 0x45F)) return c - 0x50;
  return c;
}

bool IsCapital(char32_t c) {
  return IsIn(c, U'A', U'Z') || (IsIn(c, 0xC0, 0xDE) && c != 0xD7) || c == 0x178 ||
         (IsPair(c) && !IsSmallOfPair(c)) || IsIn(c, 0x391, 0x3A9) || IsIn(c, 0x400, 0x42F);
}

struct Line {
  std::string_view text;
  std::string_view end;
};

std::vector<Line> Lines(std::string_view text) {
  std::vector<Line> lines;
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t here = at;
    if (!IsLineBreak(NextCharacter(text, at))) continue;
    lines.push_back({text.substr(begin, here - begin), text.substr(here, at - here)});
    begin = at;
  }
  lines.push_back({text.substr(begin), {}});
  return lines;
}

}  // namespace

std::string InCapitals(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) AppendUtf8(out, Capital(NextCharacter(text, at)));
  return out;
}

bool IsInCapitals(std::string_view text) {
  int capitals = 0;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t c = NextCharacter(text, at);
    if (Capital(c) != c) return false;
    capitals += IsCapital(c) ? 1 : 0;
  }
  return capitals >= kCapitalsOfATitle;
}

std::string KeepCapitals(std::string_view source, std::string_view translation) {
  const std::vector<Line> from = Lines(source);
  const std::vector<Line> to = Lines(translation);
  if (from.size() != to.size()) return std::string(translation);
  std::string out;
  for (std::size_t i = 0; i < to.size(); ++i) {
    out += IsInCapitals(from[i].text) ? InCapitals(to[i].text) : std::string(to[i].text);
    out += to[i].end;
  }
  return out;
}

}  // namespace quillmarch::service

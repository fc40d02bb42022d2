#include "host/workbook/StructuredReference.h"

#include <algorithm>
#include <cstddef>

namespace quillmarch::host::workbook {
namespace {

// Signs that an apostrophe stands in front of inside of brackets.
constexpr std::string_view kEscaped = "[]#'@";

char Small(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

bool SameName(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return Small(a) == Small(b); });
}

bool PartOfName(char c) {
  return (c >= '0' && c <= '9') || (Small(c) >= 'a' && Small(c) <= 'z') || c == '_' || c == '.' ||
         c == '\\' || static_cast<unsigned char>(c) >= 0x80;
}

std::string Escaped(std::string_view name) {
  std::string text;
  for (const char c : name) {
    if (kEscaped.find(c) != std::string_view::npos) text += '\'';
    text += c;
  }
  return text;
}

// After the "]" that closes the "[" at `open`.
std::size_t BracketEnd(std::string_view formula, std::size_t open) {
  std::size_t depth = 0;
  for (std::size_t at = open; at < formula.size(); ++at) {
    if (formula[at] == '\'') {
      ++at;
    } else if (formula[at] == '[') {
      ++depth;
    } else if (formula[at] == ']' && --depth == 0) {
      return at + 1;
    }
  }
  return formula.size();
}

// What stands between the brackets of one table's reference.
std::string RenameInside(std::string_view inside, std::string_view from, std::string_view to) {
  if (inside.find('[') == std::string_view::npos) {
    // "Sales[Region]" and "Sales[@Region]".
    const std::string_view sign = inside.substr(0, inside.starts_with('@') ? 1 : 0);
    const bool same = SameName(inside.substr(sign.size()), from);
    return same ? std::string(sign).append(to) : std::string(inside);
  }
  std::string text;
  for (std::size_t at = 0; at < inside.size();) {
    if (inside[at] != '[') {
      text += inside[at++];
      continue;
    }
    const std::size_t end = BracketEnd(inside, at);
    const std::string_view name = inside.substr(at + 1, end - at - (end > at + 1 ? 2 : 1));
    const bool same = SameName(name, from);
    text += same ? "[" + std::string(to) + "]" : std::string(inside.substr(at, end - at));
    at = end;
  }
  return text;
}

}  // namespace

std::string RenameTableColumn(std::string_view formula, std::string_view table,
                              std::string_view from, std::string_view to) {
  if (formula.find('[') == std::string_view::npos) return std::string(formula);
  const std::string old = Escaped(from);
  const std::string fresh = Escaped(to);
  std::string result;
  for (std::size_t at = 0; at < formula.size();) {
    const char c = formula[at];
    if (c == '"' || c == '\'') {
      // A text or a sheet's name.
      const std::size_t close = std::min(formula.find(c, at + 1), formula.size() - 1);
      result += formula.substr(at, close + 1 - at);
      at = close + 1;
      continue;
    }
    if (!PartOfName(c) && c != '[') {
      result += c;
      ++at;
      continue;
    }
    const std::size_t begin = at;
    while (at < formula.size() && PartOfName(formula[at])) ++at;
    const std::string_view name = formula.substr(begin, at - begin);
    result += name;
    if (at >= formula.size() || formula[at] != '[') continue;
    const std::size_t end = BracketEnd(formula, at);
    const std::string_view bracket = formula.substr(at, end - at);
    const bool closed = bracket.size() >= 2 && bracket.back() == ']';
    if (closed && SameName(name, table)) {
      result += "[" + RenameInside(bracket.substr(1, bracket.size() - 2), old, fresh) + "]";
    } else {
      result += bracket;
    }
    at = end;
  }
  return result;
}

}  // namespace quillmarch::host::workbook

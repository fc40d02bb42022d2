#include "foundation/settings/ConfigText.h"

#include <optional>

namespace quillmarch {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool IsFigure(char c) {
  return c >= '0' && c <= '9';
}

struct Found {
  bool present = false;   // the key is there with its colon
  std::size_t value = 0;  // where its value begins
};

Found FindKey(std::string_view text, std::string_view key) {
  std::string quoted = "\"";
  quoted.append(key).append("\"");
  std::size_t at = text.find(quoted);
  if (at == std::string_view::npos) return {};
  at += quoted.size();
  while (at < text.size() && IsBlank(text[at])) ++at;
  if (at >= text.size() || text[at] != ':') return {};
  ++at;
  while (at < text.size() && IsBlank(text[at])) ++at;
  return {true, at};
}

struct Range {
  std::size_t begin;
  std::size_t end;
};

// "-" and all digits; nothing without a digit.
std::optional<Range> IntRange(std::string_view text, std::size_t begin) {
  std::size_t at = begin;
  if (at < text.size() && text[at] == '-') ++at;
  const std::size_t digits = at;
  while (at < text.size() && IsFigure(text[at])) ++at;
  if (at == digits) return std::nullopt;
  return Range{begin, at};
}

// The text between the quotes, escapes included; nothing when they are not closed.
std::optional<Range> StringRange(std::string_view text, std::size_t begin) {
  if (begin >= text.size() || text[begin] != '"') return std::nullopt;
  for (std::size_t at = begin + 1; at < text.size(); ++at) {
    if (text[at] == '"') return Range{begin + 1, at};
    if (text[at] == '\\') ++at;
  }
  return std::nullopt;
}

std::string Spliced(std::string_view text, Range range, std::string_view value) {
  std::string out(text.substr(0, range.begin));
  out.append(value).append(text.substr(range.end));
  return out;
}

// As the last member of the last object of the text.
bool InsertMember(std::string_view text, std::string_view key, std::string_view value,
                  std::string& out) {
  const std::size_t brace = text.rfind('}');
  if (brace == std::string_view::npos) return false;
  const bool hasMembers = text.substr(0, brace).rfind('"') != std::string_view::npos;
  std::string member = hasMembers ? ",\n  \"" : "\n  \"";
  member.append(key).append("\": ").append(value).append("\n");
  out = Spliced(text, {brace, brace}, member);
  return true;
}

}  // namespace

bool ReadIntKey(std::string_view text, std::string_view key, std::int32_t& out) {
  const Found found = FindKey(text, key);
  if (!found.present) return false;
  const auto range = IntRange(text, found.value);
  if (!range) return false;
  const bool negative = text[range->begin] == '-';
  std::uint32_t value = 0;
  for (std::size_t at = range->begin + (negative ? 1 : 0); at < range->end; ++at) {
    value = value * 10 + static_cast<std::uint32_t>(text[at] - '0');
  }
  out = static_cast<std::int32_t>(negative ? 0 - value : value);
  return true;
}

bool PatchIntKey(std::string_view text, std::string_view key, std::int32_t value,
                 std::string& out) {
  const std::string decimal = std::to_string(value);
  const Found found = FindKey(text, key);
  if (!found.present) return InsertMember(text, key, decimal, out);
  const auto range = IntRange(text, found.value);
  if (!range) return false;
  out = Spliced(text, *range, decimal);
  return true;
}

bool ReadStringKey(std::string_view text, std::string_view key, std::string& out) {
  const Found found = FindKey(text, key);
  if (!found.present) return false;
  const auto range = StringRange(text, found.value);
  if (!range) return false;
  out.clear();
  for (std::size_t at = range->begin; at < range->end; ++at) {
    if (text[at] == '\\' && at + 1 < range->end) ++at;
    out.push_back(text[at]);
  }
  return true;
}

bool PatchStringKey(std::string_view text, std::string_view key, std::string_view value,
                    std::string& out) {
  const Found found = FindKey(text, key);
  if (!found.present) {
    std::string quoted = "\"";
    quoted.append(value).append("\"");
    return InsertMember(text, key, quoted, out);
  }
  const auto range = StringRange(text, found.value);
  if (!range) return false;
  out = Spliced(text, *range, value);
  return true;
}

}  // namespace quillmarch

#include "host/package/PartName.h"

#include <vector>

#include "host/package/xml/XmlChar.h"

namespace quillmarch::host {

namespace {

constexpr int kNoDigit = -1;
constexpr std::size_t kPrintedBytes = 120;

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return kNoDigit;
}

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string DecodePercent(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      const int high = HexDigit(text[i + 1]);
      const int low = HexDigit(text[i + 2]);
      if (high != kNoDigit && low != kNoDigit) {
        result += static_cast<char>(high * 16 + low);
        i += 2;
        continue;
      }
    }
    result += text[i];
  }
  return result;
}

bool HasDotDot(std::string_view path) {
  while (true) {
    const std::size_t slash = path.find('/');
    if (path.substr(0, slash) == "..") return true;
    if (slash == std::string_view::npos) return false;
    path.remove_prefix(slash + 1);
  }
}

}  // namespace

std::string PartKey(std::string_view name) {
  std::string key = DecodePercent(name);
  for (char& c : key) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return key;
}

std::string_view EntryNameFault(std::string_view name) {
  const std::string decoded = DecodePercent(name);
  if (decoded.empty()) return "has no name";
  for (const char c : decoded) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      return "has a control character in its name";
    }
  }
  if (decoded.find('\\') != std::string::npos) return "has a backslash in its name";
  if (decoded[0] == '/') return "has an absolute path as its name";
  if (decoded.size() > 1 && decoded[1] == ':' && IsLetter(decoded[0])) {
    return "has an absolute path as its name";
  }
  if (HasDotDot(decoded)) return "has a name that climbs out of the package";
  return {};
}

bool HasUriScheme(std::string_view target) {
  if (target.empty() || !IsLetter(target[0])) return false;
  for (const char c : target) {
    if (c == ':') return true;
    const bool word = IsLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
    if (!word) return false;
  }
  return false;
}

ResolvedTarget ResolveTarget(std::string_view source, std::string_view target) {
  target = target.substr(0, target.find('#'));
  // A target of nothing but a fragment points into its own part.
  if (target.empty()) return {std::string(source), true};
  std::vector<std::string> path;
  bool inside = true;
  const auto walk = [&](std::string_view text, bool decode) {
    while (true) {
      const std::size_t slash = text.find_first_of("/\\");
      const std::string_view raw = text.substr(0, slash);
      std::string segment = decode ? DecodePercent(raw) : std::string(raw);
      // An encoded separator would let a segment mean two things to two readers.
      if (segment.find_first_of(std::string_view("/\\\0", 3)) != std::string::npos) inside = false;
      if (segment == "..") {
        if (path.empty()) {
          inside = false;
        } else {
          path.pop_back();
        }
      } else if (!segment.empty() && segment != ".") {
        path.push_back(std::move(segment));
      }
      if (slash == std::string_view::npos) return;
      text.remove_prefix(slash + 1);
    }
  };
  if (target[0] != '/' && target[0] != '\\') {
    const std::size_t slash = source.rfind('/');
    if (slash != std::string_view::npos) walk(source.substr(0, slash), false);
  }
  walk(target, true);
  ResolvedTarget resolved;
  resolved.inside = inside;
  for (const std::string& segment : path) {
    if (!resolved.name.empty()) resolved.name += '/';
    resolved.name += segment;
  }
  return resolved;
}

std::string RelationshipsPartName(std::string_view name) {
  const std::size_t slash = name.rfind('/');
  const std::size_t file = slash == std::string_view::npos ? 0 : slash + 1;
  std::string result(name.substr(0, file));
  result += "_rels/";
  result += name.substr(file);
  result += ".rels";
  return result;
}

std::string Printable(std::string_view name) {
  std::string result;
  while (!name.empty()) {
    if (result.size() >= kPrintedBytes) return result + "...";
    Utf8Char decoded = DecodeUtf8(name);
    const bool shown = decoded.length > 0 && decoded.code >= 0x20 && decoded.code != 0x7F &&
                       (decoded.code < 0x80 || decoded.code >= 0xA0);
    const std::size_t length = decoded.length > 0 ? decoded.length : 1;
    result += shown ? name.substr(0, length) : "?";
    name.remove_prefix(length);
  }
  return result;
}

}  // namespace quillmarch::host

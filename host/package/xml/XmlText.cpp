#include "host/package/xml/XmlText.h"

#include <cstdint>

#include "host/package/xml/XmlChar.h"
#include "host/package/xml/XmlReference.h"

namespace quillmarch::host {

namespace {

constexpr std::size_t kNone = std::string_view::npos;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string Escape(std::string_view text, bool attribute) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  const auto plain = [](char c) {
    return c >= 0x20 && c < 0x7F && c != '&' && c != '<' && c != '>' && c != '"';
  };
  std::size_t i = 0;
  while (i < text.size()) {
    const std::size_t run = i;
    while (i < text.size() && plain(text[i])) ++i;
    result.append(text.substr(run, i - run));
    if (i == text.size()) break;
    const char c = text[i];
    if (static_cast<unsigned char>(c) >= 0x80) {
      const Utf8Char decoded = DecodeUtf8(text.substr(i));
      if (decoded.length == 0) {
        ++i;
        continue;
      }
      if (IsXmlChar(decoded.code)) result.append(text.substr(i, decoded.length));
      i += decoded.length;
      continue;
    }
    ++i;
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '\r':
        result += "&#13;";
        break;
      case '"':
        result += attribute ? "&quot;" : "\"";
        break;
      case '\t':
        result += attribute ? "&#9;" : "\t";
        break;
      case '\n':
        result += attribute ? "&#10;" : "\n";
        break;
      default:
        if (IsXmlChar(static_cast<unsigned char>(c))) result += c;
    }
  }
  return result;
}

// Behind the ">" of the tag whose inside `at` lies in; npos when it never comes.
std::size_t TagEnd(std::string_view xml, std::size_t at) {
  // By hand: a search for several characters at once costs a call for each that it looks at.
  for (; at < xml.size(); ++at) {
    const char c = xml[at];
    if (c == '>') return at + 1;
    if (c != '"' && c != '\'') continue;
    at = xml.find(c, at + 1);
    if (at == kNone) return kNone;
  }
  return kNone;
}

std::size_t Behind(std::string_view xml, std::string_view closing, std::size_t from) {
  const std::size_t at = xml.find(closing, from);
  return at == kNone ? kNone : at + closing.size();
}

}  // namespace

bool ParseXml(pugi::xml_document& document, std::string_view bytes) {
  return static_cast<bool>(
      document.load_buffer(bytes.data(), bytes.size(), kXmlParseOptions, pugi::encoding_utf8));
}

std::string EscapeText(std::string_view text) {
  return Escape(text, false);
}

std::string EscapeAttribute(std::string_view value) {
  return Escape(value, true);
}

std::string Unescape(std::string_view raw) {
  std::string result;
  result.reserve(raw.size());
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const char c = raw[i];
    if (c == '\r') {
      result += '\n';
      if (i + 1 < raw.size() && raw[i + 1] == '\n') ++i;
      continue;
    }
    if (c == '&') {
      const std::size_t end = raw.find(';', i);
      if (end != kNone) {
        const std::uint32_t code = ResolveReference(raw.substr(i + 1, end - i - 1));
        if (code != 0) {
          AppendUtf8(result, code);
          i = end;
          continue;
        }
      }
    }
    result += c;
  }
  return result;
}

std::optional<std::size_t> OffsetOf(std::string_view bytes, pugi::xml_node element) {
  if (element.type() != pugi::node_element) return std::nullopt;
  const std::ptrdiff_t offset = element.offset_debug();
  const auto at = static_cast<std::size_t>(offset);
  if (offset <= 0 || at >= bytes.size() || bytes[at - 1] != '<') return std::nullopt;
  if (!bytes.substr(at).starts_with(element.name())) return std::nullopt;
  return at;
}

ElementSpan FindElement(std::string_view bytes, pugi::xml_node element) {
  const std::optional<std::size_t> offset = OffsetOf(bytes, element);
  return offset ? FindElement(bytes, *offset) : ElementSpan{};
}

AttributeSpan FindAttribute(std::string_view bytes, pugi::xml_node element,
                            std::string_view attribute) {
  const std::optional<std::size_t> offset = OffsetOf(bytes, element);
  return offset ? FindAttribute(bytes, *offset, attribute) : AttributeSpan{};
}

ElementSpan FindStartTag(std::string_view xml, std::size_t nameOffset) {
  ElementSpan span;
  if (nameOffset == 0 || nameOffset >= xml.size() || xml[nameOffset - 1] != '<') return span;
  if (xml[nameOffset] == '/' || xml[nameOffset] == '!' || xml[nameOffset] == '?') return span;
  const std::size_t end = TagEnd(xml, nameOffset);
  if (end == kNone) return span;
  span.begin = nameOffset - 1;
  span.contentBegin = end;
  span.selfClosed = xml[end - 2] == '/';
  if (span.selfClosed) span.contentEnd = span.end = end;
  span.found = true;
  return span;
}

ElementSpan FindElement(std::string_view xml, std::size_t nameOffset) {
  ElementSpan span = FindStartTag(xml, nameOffset);
  if (!span.found || span.selfClosed) return span;
  std::size_t depth = 1;
  std::size_t at = span.contentBegin;
  while (true) {
    at = xml.find('<', at);
    if (at == kNone || at + 1 >= xml.size()) break;
    const std::string_view rest = xml.substr(at);
    if (rest[1] == '/') {
      const std::size_t close = xml.find('>', at);
      if (close == kNone) break;
      const std::size_t end = close + 1;
      if (--depth == 0) {
        span.contentEnd = at;
        span.end = end;
        return span;
      }
      at = end;
    } else if (rest[1] == '?') {
      at = Behind(xml, "?>", at);
    } else if (rest.starts_with("<!--")) {
      at = Behind(xml, "-->", at + 4);
    } else if (rest.starts_with("<![CDATA[")) {
      at = Behind(xml, "]]>", at);
    } else {
      const std::size_t end = TagEnd(xml, at);
      if (end != kNone && xml[end - 2] != '/') ++depth;
      at = end;
    }
    if (at == kNone) break;
  }
  return ElementSpan{};
}

AttributeSpan FindAttribute(std::string_view xml, std::size_t nameOffset,
                            std::string_view attribute) {
  const ElementSpan tag = FindStartTag(xml, nameOffset);
  AttributeSpan span;
  if (!tag.found) return span;
  const std::size_t last = tag.contentBegin - 1;
  std::size_t at = nameOffset;
  while (at < last && !IsBlank(xml[at]) && xml[at] != '/') ++at;
  while (at < last) {
    while (at < last && IsBlank(xml[at])) ++at;
    const std::size_t equals = xml.find('=', at);
    if (equals == kNone || equals >= last) break;
    std::size_t nameEnd = equals;
    while (nameEnd > at && IsBlank(xml[nameEnd - 1])) --nameEnd;
    const std::size_t open = xml.find_first_of("\"'", equals);
    if (open == kNone || open >= last) break;
    const std::size_t close = xml.find(xml[open], open + 1);
    if (close == kNone || close >= last) break;
    if (xml.substr(at, nameEnd - at) == attribute) {
      span = {at, open + 1, close, xml[open], true};
      return span;
    }
    at = close + 1;
  }
  return span;
}

}  // namespace quillmarch::host

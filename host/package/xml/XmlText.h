// XML as text: what is needed to read a part through pugixml and to splice edits into the part's
// own bytes. The bytes handed in are well-formed (ReadXmlPart has checked them).
#pragma once

#include <cstddef>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace quillmarch::host {

// How a part is parsed for reading: whitespace-only texts are kept ("<a:t> </a:t>" holds a space),
// entities and line ends are resolved as XML says. The tree is never saved, only read, and OffsetOf
// tells where its elements lie in the bytes that were parsed, a byte order mark included.
inline constexpr unsigned kXmlParseOptions = pugi::parse_default | pugi::parse_ws_pcdata;

// Parses bytes that ReadXmlPart gave. False only when memory runs out.
bool ParseXml(pugi::xml_document& document, std::string_view bytes);

// `text` as the content of an element: & < > escaped, a carriage return as a reference, so that
// no reader turns it into a line feed. What XML 1.0 cannot hold is dropped: C0 controls other than
// tab, LF and CR, U+FFFE and U+FFFF, and bytes that are not UTF-8.
std::string EscapeText(std::string_view text);

// `value` for an attribute in double quotes: as EscapeText, and the quote, tab and LF as
// references.
std::string EscapeAttribute(std::string_view value);

// Resolves the five known entities and character references; line ends (CR LF, CR) become LF.
// Anything else stays as it is.
std::string Unescape(std::string_view raw);

// Where an element's name begins in `bytes`, from which ParseXml made the element's document and
// which have not changed since. Nothing for any other node, and nothing when the name does not
// stand in the bytes there, as after an edit: then no splice may be made from the two.
std::optional<std::size_t> OffsetOf(std::string_view bytes, pugi::xml_node element);

// Where an element lies in the bytes of its part; half-open ranges.
struct ElementSpan {
  std::size_t begin = 0;         // its "<"
  std::size_t contentBegin = 0;  // behind the start tag's ">"
  std::size_t contentEnd = 0;    // the end tag's "<"
  std::size_t end = 0;           // behind the end tag
  bool selfClosed = false;       // "<a/>": the content is empty and lies at `end`
  bool found = false;            // false when no element starts there or it never ends
};

// The element whose name starts at `nameOffset`. Quotes, comments, CDATA sections and processing
// instructions are seen for what they are.
ElementSpan FindElement(std::string_view xml, std::size_t nameOffset);
// The same for an element that OffsetOf finds; otherwise not found.
ElementSpan FindElement(std::string_view bytes, pugi::xml_node element);

// As FindElement, the start tag only: begin, contentBegin and selfClosed are set, the others are
// set for a self-closed element. Cheaper when the content is of no interest.
ElementSpan FindStartTag(std::string_view xml, std::size_t nameOffset);

// An attribute in a start tag, half-open offsets into the part.
struct AttributeSpan {
  std::size_t nameBegin = 0;
  std::size_t valueBegin = 0;  // behind the opening quote
  std::size_t valueEnd = 0;    // the closing quote
  char quote = '"';
  bool found = false;
};

// The attribute of that very name (prefix included) in the start tag of the element whose name
// starts at `nameOffset`.
AttributeSpan FindAttribute(std::string_view xml, std::size_t nameOffset,
                            std::string_view attribute);
// The same for an element that OffsetOf finds; otherwise not found.
AttributeSpan FindAttribute(std::string_view bytes, pugi::xml_node element,
                            std::string_view attribute);

}  // namespace quillmarch::host

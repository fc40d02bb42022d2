// Whether bytes are well-formed XML with namespaces. The tree parser lets much pass that other
// readers of the deck refuse; this check is what stands in front of it.
#pragma once

#include <cstddef>
#include <string>

namespace quillmarch::host {

enum class XmlFault {
  kNone,
  kEmpty,             // no root element
  kNotUtf8,           // bytes that are not UTF-8
  kIllegalCharacter,  // a character that XML 1.0 does not know
  kDoctype,           // a document type declaration
  kEncoding,          // an encoding other than UTF-8 or UTF-16 is declared
  kDeclaration,       // a broken or misplaced XML declaration
  kMarkup,            // a broken tag, comment, section or instruction
  kAttribute,         // a broken attribute
  kDuplicate,         // one attribute twice
  kPrefix,            // an unbound or misused namespace prefix
  kEntity,            // an unknown entity or broken reference
  kEndTag,            // an end tag that does not match
  kUnclosed,          // the part ends inside of an element or of markup
  kOutside,           // text or a second root outside of the root
  kTooDeep,
  kTooManyNodes,
  kTooManyNamespaces,
};

struct XmlVerdict {
  XmlFault fault = XmlFault::kNone;
  std::size_t offset = 0;  // in the bytes, where it was seen
};

struct XmlLimits {
  std::size_t maxNodes = 1000000;  // elements, attributes and texts
  std::size_t maxDepth = 1000;
  std::size_t maxNamespaces = 500;  // declarations in force at one place
};

// UTF-8, with or without a byte order mark. `declaredUtf16`: the bytes were converted from UTF-16,
// so that is what an encoding declaration has to say.
XmlVerdict CheckXml(const std::string& bytes, const XmlLimits& limits = {},
                    bool declaredUtf16 = false);

// The fault as the end of a sentence, such as "an end tag does not match at byte 120".
std::string DescribeXmlFault(const XmlVerdict& verdict);

}  // namespace quillmarch::host

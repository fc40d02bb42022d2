#include "package/xml/XmlJudge.h"

#include <expat.h>

namespace quillmarch::host {

bool ExpatAccepts(const std::string& bytes) {
  // The separator may not occur in a namespace name; XML has no form feed.
  XML_Parser parser = XML_ParserCreateNS(nullptr, '\f');
  const bool accepted =
      XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) == XML_STATUS_OK;
  XML_ParserFree(parser);
  return accepted;
}

bool IsOurOwnRule(XmlFault fault) {
  return fault == XmlFault::kDoctype || fault == XmlFault::kEncoding ||
         fault == XmlFault::kDeclaration || fault == XmlFault::kTooDeep ||
         fault == XmlFault::kTooManyNodes || fault == XmlFault::kTooManyNamespaces;
}

}  // namespace quillmarch::host

#include "host/deck/chart/ChartEdit.h"

#include <cstddef>
#include <utility>

#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

ElementSpan SpanOf(std::string_view bytes, pugi::xml_node element) {
  return FindElement(bytes, static_cast<std::size_t>(element.offset_debug()));
}

// Of an element that closes itself: the "/>" gives way to content and an end tag.
Edit Opened(std::string_view bytes, pugi::xml_node element, const ElementSpan& span,
            const std::string& xml) {
  std::size_t from = span.end - 2;
  while (from > span.begin && bytes[from - 1] == ' ') --from;
  return {from, span.end - from, ">" + xml + "</" + element.name() + ">"};
}

}  // namespace

std::string_view RawElement(std::string_view bytes, pugi::xml_node element) {
  if (!element) return {};
  const ElementSpan span = SpanOf(bytes, element);
  return bytes.substr(span.begin, span.end - span.begin);
}

std::string_view RawContent(std::string_view bytes, pugi::xml_node element) {
  if (!element) return {};
  const ElementSpan span = SpanOf(bytes, element);
  return bytes.substr(span.contentBegin, span.contentEnd - span.contentBegin);
}

Edit ReplaceElement(std::string_view bytes, pugi::xml_node element, std::string xml) {
  const ElementSpan span = SpanOf(bytes, element);
  return {span.begin, span.end - span.begin, std::move(xml)};
}

Edit ReplaceContent(std::string_view bytes, pugi::xml_node element, std::string xml) {
  const ElementSpan span = SpanOf(bytes, element);
  if (span.selfClosed) return Opened(bytes, element, span, xml);
  return {span.contentBegin, span.contentEnd - span.contentBegin, std::move(xml)};
}

Edit InsertElement(std::string_view bytes, pugi::xml_node parent, pugi::xml_node after,
                   std::string xml) {
  if (after) return {SpanOf(bytes, after).end, 0, std::move(xml)};
  const ElementSpan span = SpanOf(bytes, parent);
  if (span.selfClosed) return Opened(bytes, parent, span, xml);
  return {span.contentBegin, 0, std::move(xml)};
}

}  // namespace quillmarch::host::deck

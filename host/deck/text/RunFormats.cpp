#include "host/deck/text/RunFormats.h"

#include <utility>

#include "host/deck/text/RunPropertiesEdit.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {

RunFormats::RunFormats(const XmlNames& names, std::string_view bytes)
    : names_(names), bytes_(bytes), none_(std::make_shared<const RunFormat>()) {}

RunFormatRef RunFormats::Read(std::string raw, pugi::xml_node element) const {
  auto format = std::make_shared<RunFormat>();
  format->raw = std::move(raw);
  format->props = ParseCharProps(names_, element);
  format->extras = ParseTextExtras(names_, element);
  return format;
}

RunFormatRef RunFormats::OfElement(pugi::xml_node element) {
  if (!element) return none_;
  const ElementSpan span = FindElement(bytes_, element);
  const std::string_view raw =
      span.found ? bytes_.substr(span.begin, span.end - span.begin) : std::string_view();
  // The same words may mean something else in another place.
  if (raw.empty() || names_.Ambiguous()) return Read(std::string(raw), element);
  const auto found = known_.find(raw);
  if (found != known_.end()) return found->second;
  return known_.emplace(raw, Read(std::string(raw), element)).first->second;
}

RunFormatRef RunFormats::OfText(std::string raw) {
  if (raw.empty()) return none_;
  const auto found = known_.find(raw);
  if (found != known_.end()) return found->second;
  pugi::xml_document document;
  if (!ParseXml(document, raw)) document.reset();
  std::string key = raw;
  return known_.emplace(std::move(key), Read(std::move(raw), document.first_child())).first->second;
}

RunFormatRef RunFormats::ForNewText(const RunFormatRef& format) {
  if (format->raw.empty()) return format;
  RunFormatRef& made = forNewText_[format];
  if (made) return made;
  std::string raw = deck::ForNewText(format->raw);
  if (raw == format->raw) return made = format;
  auto other = std::make_shared<RunFormat>(*format);
  other->raw = std::move(raw);
  return made = std::move(other);
}

}  // namespace quillmarch::host::deck

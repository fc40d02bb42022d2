#include "host/package/ContentTypes.h"

#include "host/package/PartName.h"
#include "host/package/xml/Namespaces.h"
#include "host/package/xml/XmlReader.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host {

bool ContentTypes::Parse(std::string_view xml) {
  pugi::xml_document document;
  if (!ParseXml(document, xml)) return false;
  const pugi::xml_node root = document.document_element();
  if (LocalName(root.name()) != "Types" || NamespaceOf(root) != XmlNamespace::kContentTypes) {
    return false;
  }
  overrides_.clear();
  defaults_.clear();
  for (const pugi::xml_node entry : root.children()) {
    const std::string_view kind = LocalName(entry.name());
    const char* const type = entry.attribute("ContentType").value();
    if (kind == "Default") {
      defaults_.emplace(PartKey(entry.attribute("Extension").value()), type);
    } else if (kind == "Override") {
      std::string_view name = entry.attribute("PartName").value();
      if (name.starts_with('/')) name.remove_prefix(1);
      overrides_.emplace(PartKey(name), type);
    }
  }
  return true;
}

std::vector<Edit> ContentTypes::Adding(std::string_view xml, std::string_view name,
                                       std::string_view type) const {
  if (Of(name) == type) return {};
  pugi::xml_document document;
  if (!ParseXml(document, xml)) return {};
  const pugi::xml_node root = document.document_element();
  const ElementSpan list = FindElement(xml, root);
  if (!list.found) return {};
  const std::string_view qualified = root.name();
  const std::string_view prefix =
      qualified.substr(0, qualified.size() - LocalName(qualified).size());
  std::string entry = "<" + std::string(prefix) + "Override PartName=\"/" + EscapeAttribute(name) +
                      "\" ContentType=\"" + EscapeAttribute(type) + "\"/>";
  if (!list.selfClosed) return {{list.contentEnd, 0, std::move(entry)}};
  return {{list.end - 2, 2, ">" + entry + "</" + std::string(qualified) + ">"}};
}

std::vector<Edit> ContentTypes::Removing(std::string_view xml, std::string_view name) const {
  std::vector<Edit> edits;
  pugi::xml_document document;
  if (!overrides_.contains(PartKey(name)) || !ParseXml(document, xml)) return edits;
  for (const pugi::xml_node entry : document.document_element().children()) {
    if (LocalName(entry.name()) != "Override") continue;
    std::string_view part = entry.attribute("PartName").value();
    if (part.starts_with('/')) part.remove_prefix(1);
    const ElementSpan span = FindElement(xml, entry);
    if (PartKey(part) == PartKey(name) && span.found) {
      edits.push_back({span.begin, span.end - span.begin, {}});
    }
  }
  return edits;
}

std::string ContentTypes::Of(std::string_view name) const {
  const std::string key = PartKey(name);
  const auto own = overrides_.find(key);
  if (own != overrides_.end()) return own->second;
  const std::size_t dot = key.find_last_of("./");
  if (dot == std::string::npos || key[dot] != '.') return {};
  const auto general = defaults_.find(key.substr(dot + 1));
  return general == defaults_.end() ? std::string() : general->second;
}

std::string WithContentType(std::string_view xml, std::string_view part, std::string_view type) {
  std::string changed(xml);
  XmlReader reader(xml);
  std::string_view prefix;
  for (auto event = reader.Next(); event != XmlReader::Event::kDone; event = reader.Next()) {
    if (event == XmlReader::Event::kEnd && reader.depth() == 1) break;
    if (event != XmlReader::Event::kStart) continue;
    if (reader.depth() == 1) prefix = PrefixOf(reader.name());
    if (reader.local() != "Override") continue;
    std::string name = reader.Attribute("PartName");
    if (name.starts_with('/')) name.erase(0, 1);
    const std::string_view old = reader.RawAttribute("ContentType");
    if (PartKey(name) != PartKey(part) || old.data() == nullptr) continue;
    return changed.replace(static_cast<std::size_t>(old.data() - xml.data()), old.size(), type);
  }
  // Its type came by the ending until now.
  const std::string element = std::string(prefix) + (prefix.empty() ? "" : ":") + "Override";
  return changed.insert(reader.begin(), "<" + element + " PartName=\"/" + std::string(part) +
                                            "\" ContentType=\"" + std::string(type) + "\"/>");
}

}  // namespace quillmarch::host

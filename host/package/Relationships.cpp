#include "host/package/Relationships.h"

#include <unordered_set>
#include <utility>

#include "host/package/PartName.h"
#include "host/package/xml/Namespaces.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host {

std::string ParseRelationships(std::string_view source, std::string_view xml,
                               std::vector<Relationship>& relationships) {
  relationships.clear();
  pugi::xml_document document;
  if (!ParseXml(document, xml)) return "there is not enough memory to read it";
  const pugi::xml_node root = document.document_element();
  if (LocalName(root.name()) != "Relationships" ||
      NamespaceOf(root) != XmlNamespace::kPackageRelationships) {
    return "it is not a relationships part";
  }
  std::unordered_set<std::string> ids;
  for (const pugi::xml_node entry : root.children()) {
    if (LocalName(entry.name()) != "Relationship") continue;
    Relationship relationship;
    relationship.id = entry.attribute("Id").value();
    relationship.type = entry.attribute("Type").value();
    const std::string_view target = entry.attribute("Target").value();
    const std::string_view mode = entry.attribute("TargetMode").value();
    if (relationship.id.empty() || relationship.type.empty()) {
      return "a relationship has no id or no type";
    }
    if (!ids.insert(relationship.id).second) {
      return "it has two relationships of the id " + relationship.id;
    }
    // A full URI is never the name of a part, even where the mode was forgotten.
    relationship.external = mode == "External" || HasUriScheme(target);
    if (relationship.external) {
      relationship.target = target;
    } else {
      ResolvedTarget resolved = ResolveTarget(source, target);
      if (!resolved.inside) {
        return "the relationship " + relationship.id + " climbs out of the package";
      }
      relationship.target = std::move(resolved.name);
    }
    relationships.push_back(std::move(relationship));
  }
  return {};
}

}  // namespace quillmarch::host

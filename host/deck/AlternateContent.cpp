#include "host/deck/AlternateContent.h"

namespace quillmarch::host::deck {
namespace {

// PowerPoint knows the extensions that its own maker published for drawings and slides, and the
// old vector markup.
bool Understood(std::string_view uri) {
  return uri.starts_with("http://schemas.microsoft.com/office/drawing/") ||
         uri.starts_with("http://schemas.microsoft.com/office/powerpoint/") ||
         uri == "urn:schemas-microsoft-com:vml" || NamespaceOf(uri) != XmlNamespace::kOther;
}

bool AllUnderstood(const XmlNames& names, pugi::xml_node choice) {
  std::string_view required = choice.attribute("Requires").value();
  bool any = false;
  while (true) {
    const std::size_t begin = required.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos) return any;
    required.remove_prefix(begin);
    const std::string_view prefix = required.substr(0, required.find_first_of(" \t\r\n"));
    if (!Understood(names.UriOfPrefix(choice, prefix))) return false;
    any = true;
    required.remove_prefix(prefix.size());
  }
}

}  // namespace

pugi::xml_node ChosenBranch(const XmlNames& names, pugi::xml_node alternateContent) {
  pugi::xml_node fallback;
  for (const pugi::xml_node child : alternateContent.children()) {
    if (child.type() != pugi::node_element) continue;
    if (names.Is(child, XmlNamespace::kMarkupCompatibility, "Choice") &&
        AllUnderstood(names, child)) {
      return child;
    }
    if (!fallback && names.Is(child, XmlNamespace::kMarkupCompatibility, "Fallback")) {
      fallback = child;
    }
  }
  return fallback;
}

}  // namespace quillmarch::host::deck

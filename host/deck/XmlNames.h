// Element names of one parsed part by namespace, whatever prefixes the file chose.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "host/package/xml/Namespaces.h"

namespace quillmarch::host::deck {

// Numbers from a file: anything but a plain decimal within range gives `otherwise`.
std::int64_t WholeAttribute(pugi::xml_node node, const char* name, std::int64_t otherwise);
// A share in thousandths of a per cent ("92500"), or as strict files write it ("92.5%").
std::int64_t PercentAttribute(pugi::xml_node node, const char* name, std::int64_t otherwise);
// 1 or 0; -1 when the attribute is absent or not a truth value.
int FlagAttribute(pugi::xml_node node, const char* name);
// The text of an element: all its character data, comments and the like left out.
std::string ElementText(pugi::xml_node node);

class XmlNames {
 public:
  // `bytes` is the part that was parsed.
  explicit XmlNames(std::string_view bytes);

  bool Is(pugi::xml_node node, XmlNamespace space, const char* local) const;
  XmlNamespace SpaceOf(pugi::xml_node node) const;
  // The first child element of that name; null when there is none.
  pugi::xml_node Child(pugi::xml_node parent, XmlNamespace space, const char* local) const;
  // The value of r:id, r:embed and the like; empty when absent.
  std::string_view RelationshipAttribute(pugi::xml_node node, const char* local) const;
  // Whether one prefix stands for two namespaces in different places.
  bool Ambiguous() const { return ambiguous_; }
  // The URI that a prefix stands for at this node; empty when it is not bound.
  std::string UriOfPrefix(pugi::xml_node node, std::string_view prefix) const;

 private:
  struct Binding {
    std::string prefix;
    std::string qualifier;  // the prefix with its colon
    std::string uri;
    XmlNamespace space;
  };
  // Whether the name has the binding's prefix, ignoring other bindings of that prefix.
  static bool Bears(const Binding& binding, const char* qualified);
  XmlNamespace SpaceOfPrefix(pugi::xml_node node, std::string_view prefix) const;

  std::vector<Binding> bindings_;
  // One prefix stands for two namespaces in different places: each name is then resolved at its
  // own place.
  bool ambiguous_ = false;
};

// The local name: what follows the prefix.
const char* LocalName(const char* qualified);
// The prefix with its colon ("a:"), or an empty text.
std::string_view PrefixWithColon(const char* qualified);

}  // namespace quillmarch::host::deck

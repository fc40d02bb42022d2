#include "host/deck/XmlNames.h"

#include <charconv>
#include <cstring>

#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr std::string_view kDeclaration = "xmlns";

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace

const char* LocalName(const char* qualified) {
  const char* const colon = std::strchr(qualified, ':');
  return colon == nullptr ? qualified : colon + 1;
}

std::string_view PrefixWithColon(const char* qualified) {
  return {qualified, static_cast<std::size_t>(LocalName(qualified) - qualified)};
}

std::int64_t WholeAttribute(pugi::xml_node node, const char* name, std::int64_t otherwise) {
  const std::string_view text = Trim(node.attribute(name).value());
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  return whole && !text.empty() ? value : otherwise;
}

std::int64_t PercentAttribute(pugi::xml_node node, const char* name, std::int64_t otherwise) {
  const std::string_view text = Trim(node.attribute(name).value());
  if (text.empty() || text.back() != '%') return WholeAttribute(node, name, otherwise);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size() - 1, value);
  const bool read = error == std::errc() && end == text.data() + text.size() - 1;
  if (!read || !(value > -1e6 && value < 1e6)) return otherwise;
  return static_cast<std::int64_t>(value * 1000 + (value < 0 ? -0.5 : 0.5));
}

int FlagAttribute(pugi::xml_node node, const char* name) {
  const std::string_view text = node.attribute(name).value();
  if (text == "1" || text == "true" || text == "on") return 1;
  if (text == "0" || text == "false" || text == "off") return 0;
  return -1;
}

std::string ElementText(pugi::xml_node node) {
  std::string text;
  for (const pugi::xml_node child : node.children()) {
    if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
      text += child.value();
    }
  }
  return text;
}

// The declarations are found as text, which is far cheaper than visiting every attribute. What
// merely looks like one can at worst make the names ambiguous, and then each is resolved by itself.
XmlNames::XmlNames(std::string_view bytes) {
  std::size_t at = 0;
  while ((at = bytes.find(kDeclaration, at)) != std::string_view::npos) {
    at += kDeclaration.size();
    std::size_t end = at;
    while (end < bytes.size() && bytes[end] != '=' && bytes[end] != '<' && bytes[end] != '>') ++end;
    if (end >= bytes.size() || bytes[end] != '=') continue;
    std::string_view prefix = Trim(bytes.substr(at, end - at));
    if (!prefix.empty()) {
      if (prefix.front() != ':') continue;
      prefix.remove_prefix(1);
    }
    std::size_t open = end + 1;
    while (open < bytes.size() && IsBlank(bytes[open])) ++open;
    if (open >= bytes.size() || (bytes[open] != '"' && bytes[open] != '\'')) continue;
    const std::size_t close = bytes.find(bytes[open], open + 1);
    if (close == std::string_view::npos) break;
    std::string uri = Unescape(bytes.substr(open + 1, close - open - 1));
    at = close;

    bool known = false;
    for (const Binding& binding : bindings_) {
      if (binding.prefix != prefix) continue;
      known = true;
      if (binding.uri != uri) ambiguous_ = true;
    }
    if (known) continue;
    const XmlNamespace space = NamespaceOf(uri);
    Binding binding{std::string(prefix), {}, std::move(uri), space};
    if (!prefix.empty()) binding.qualifier.assign(prefix).append(":");
    bindings_.push_back(std::move(binding));
  }
}

std::string XmlNames::UriOfPrefix(pugi::xml_node node, std::string_view prefix) const {
  if (!ambiguous_) {
    for (const Binding& binding : bindings_) {
      if (binding.prefix == prefix) return binding.uri;
    }
    return {};
  }
  std::string attribute(kDeclaration);
  if (!prefix.empty()) attribute.append(":").append(prefix);
  for (; node; node = node.parent()) {
    if (const pugi::xml_attribute found = node.attribute(attribute.c_str())) return found.value();
  }
  return {};
}

XmlNamespace XmlNames::SpaceOfPrefix(pugi::xml_node node, std::string_view prefix) const {
  if (ambiguous_) return NamespaceOf(UriOfPrefix(node, prefix));
  for (const Binding& binding : bindings_) {
    if (binding.prefix == prefix) return binding.space;
  }
  return XmlNamespace::kOther;
}

bool XmlNames::Bears(const Binding& binding, const char* qualified) {
  const std::string& qualifier = binding.qualifier;
  if (qualifier.empty()) return std::strchr(qualified, ':') == nullptr;
  return std::strncmp(qualified, qualifier.c_str(), qualifier.size()) == 0;
}

XmlNamespace XmlNames::SpaceOf(pugi::xml_node node) const {
  const char* const name = node.name();
  if (!ambiguous_) {
    for (const Binding& binding : bindings_) {
      if (Bears(binding, name)) return binding.space;
    }
    return XmlNamespace::kOther;
  }
  std::string_view prefix = PrefixWithColon(name);
  if (!prefix.empty()) prefix.remove_suffix(1);
  return SpaceOfPrefix(node, prefix);
}

bool XmlNames::Is(pugi::xml_node node, XmlNamespace space, const char* local) const {
  const char* const name = node.name();
  if (ambiguous_ || space == XmlNamespace::kOther) {
    return std::strcmp(LocalName(name), local) == 0 && SpaceOf(node) == space;
  }
  // The whole name is compared at once: most look-ups find nothing.
  for (const Binding& binding : bindings_) {
    if (binding.space != space) continue;
    const std::size_t size = binding.qualifier.size();
    if (std::strncmp(name, binding.qualifier.c_str(), size) == 0 &&
        std::strcmp(name + size, local) == 0) {
      return true;
    }
  }
  return false;
}

pugi::xml_node XmlNames::Child(pugi::xml_node parent, XmlNamespace space, const char* local) const {
  for (pugi::xml_node child = parent.first_child(); child; child = child.next_sibling()) {
    if (Is(child, space, local) && child.type() == pugi::node_element) return child;
  }
  return {};
}

std::string_view XmlNames::RelationshipAttribute(pugi::xml_node node, const char* local) const {
  for (const pugi::xml_attribute attribute : node.attributes()) {
    std::string_view prefix = PrefixWithColon(attribute.name());
    if (prefix.empty() || std::strcmp(LocalName(attribute.name()), local) != 0) continue;
    prefix.remove_suffix(1);
    if (SpaceOfPrefix(node, prefix) == XmlNamespace::kRelationships) return attribute.value();
  }
  return {};
}

}  // namespace quillmarch::host::deck

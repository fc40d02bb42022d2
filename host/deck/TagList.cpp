#include "host/deck/TagList.h"

#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kP = XmlNamespace::kPresentation;

std::string TagReference(const XmlNames& names, pugi::xml_node holder) {
  const pugi::xml_node list = names.Child(holder, kP, "custDataLst");
  return std::string(names.RelationshipAttribute(names.Child(list, kP, "tags"), "id"));
}

// The tags part that an owner refers to; empty when there is none.
std::string TagPart(Deck& deck, const TagOwner& owner) {
  std::string reference;
  std::string part;
  if (owner.kind == TagOwner::Kind::kPresentation) {
    part = deck.PresentationPart();
    const Result<std::string> bytes = deck.package().ReadXmlPart(part);
    pugi::xml_document document;
    if (!bytes.ok() || !ParseXml(document, bytes.value())) return {};
    reference = TagReference(XmlNames(bytes.value()), document.document_element());
  } else {
    SlidePart* const page = deck.Page(owner.page);
    if (page == nullptr) return {};
    part = deck.PartOf(owner.page);
    const XmlNames& names = page->names();
    if (owner.kind == TagOwner::Kind::kSlide) {
      reference = TagReference(names, names.Child(page->root(), kP, "cSld"));
    } else if (owner.shape < page->shapes().Count()) {
      const pugi::xml_node shape = page->shapes().At(owner.shape).node;
      for (const pugi::xml_node child : shape.children()) {
        if (child.type() != pugi::node_element) continue;
        reference = TagReference(names, names.Child(child, kP, "nvPr"));
        break;
      }
    }
  }
  if (reference.empty()) return {};
  const Result<std::vector<Relationship>> links = deck.package().Relationships(part);
  if (!links) return {};
  for (const Relationship& link : *links) {
    if (link.id == reference && !link.external && deck.package().HasPart(link.target)) {
      return link.target;
    }
  }
  return {};
}

Wide UpperAscii(WideView text) {
  Wide upper(text);
  for (char16_t& unit : upper) {
    if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
  }
  return upper;
}

}  // namespace

std::vector<Tag> ReadTags(Deck& deck, const TagOwner& owner) {
  std::vector<Tag> tags;
  const std::string part = TagPart(deck, owner);
  if (part.empty()) return tags;
  const Result<std::string> bytes = deck.package().ReadXmlPart(part);
  pugi::xml_document document;
  if (!bytes.ok() || !ParseXml(document, bytes.value())) return tags;
  const XmlNames names(bytes.value());
  for (const pugi::xml_node tag : document.document_element().children()) {
    if (tag.type() != pugi::node_element || !names.Is(tag, kP, "tag")) continue;
    tags.push_back({ToWide(tag.attribute("name").value()), ToWide(tag.attribute("val").value())});
  }
  return tags;
}

bool PutTag(Deck& deck, const TagOwner& owner, WideView name, WideView value) {
  const std::string part = TagPart(deck, owner);
  if (part.empty()) return false;
  const Result<std::string> bytes = deck.package().ReadXmlPart(part);
  pugi::xml_document document;
  if (!bytes.ok() || !ParseXml(document, bytes.value())) return false;
  const XmlNames names(bytes.value());
  const pugi::xml_node root = document.document_element();
  const std::string newValue = EscapeAttribute(ToUtf8(value));
  for (const pugi::xml_node tag : root.children()) {
    if (tag.type() != pugi::node_element || !names.Is(tag, kP, "tag")) continue;
    if (UpperAscii(ToWide(tag.attribute("name").value())) != UpperAscii(name)) continue;
    const AttributeSpan old = FindAttribute(bytes.value(), tag, "val");
    if (!old.found) return false;
    deck.package().PutPart(
        part, ApplyEdits(bytes.value(), {{old.nameBegin, old.valueEnd + 1 - old.nameBegin,
                                          "val=\"" + newValue + "\""}}));
    return true;
  }
  const std::string prefix(PrefixWithColon(root.name()));
  const std::string tag = "<" + prefix + "tag name=\"" + EscapeAttribute(ToUtf8(UpperAscii(name))) +
                          "\" val=\"" + newValue + "\"/>";
  const ElementSpan list = FindElement(bytes.value(), root);
  if (!list.found) return false;
  Edit edit{list.contentEnd, 0, tag};
  if (list.selfClosed) {
    edit = {list.end - 2, 2, ">" + tag + "</" + std::string(root.name()) + ">"};
  }
  deck.package().PutPart(part, ApplyEdits(bytes.value(), {edit}));
  return true;
}

}  // namespace quillmarch::host::deck

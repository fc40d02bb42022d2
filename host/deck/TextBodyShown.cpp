// A text body as the layout takes it.
#include "host/deck/TextBody.h"
#include "host/package/XmlText.h"

namespace deck {

TextExtras TextBody::ExtrasOf(const OwnFormat& format) const {
  pugi::xml_document document;
  if (format.raw.empty() || !ParseXml(document, format.raw)) return {};
  return ParseTextExtras(names_, document.first_child());
}

void TextBody::VisitParagraphs(const std::function<void(const ShownParagraph&)>& visit) const {
  // Pieces that one text was put into share their format.
  const OwnFormat* last = nullptr;
  TextExtras lastExtras;
  const auto extras = [&](const std::shared_ptr<const OwnFormat>& own, pugi::xml_node node) {
    if (!own) return ParseTextExtras(names_, node);
    if (own.get() != last) {
      last = own.get();
      lastExtras = ExtrasOf(*own);
    }
    return lastExtras;
  };
  for (const Para& para : paragraphs_) {
    ShownParagraph shown;
    shown.properties = names_.Child(para.node, XmlNamespace::kDrawing, "pPr");
    shown.level = para.level;
    shown.pieces.reserve(para.pieces.size());
    for (const TextPiece& piece : para.pieces) {
      if (piece.text.empty()) continue;
      ShownPiece& added = shown.pieces.emplace_back();
      added.text = piece.text;
      added.props = OwnProps(piece);
      InheritLevel(para, added.props);
      added.extras = extras(piece.own, FormatNode(piece));
    }
    shown.mark.props = EndProps(para);
    InheritLevel(para, shown.mark.props);
    shown.mark.extras = extras(para.ownEnd, EndNode(para));
    visit(shown);
  }
}

}  // namespace deck

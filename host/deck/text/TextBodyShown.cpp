// A text body as the layout takes it.
#include "host/deck/text/TextBody.h"

namespace quillmarch::host::deck {

void TextBody::VisitParagraphs(const std::function<void(const ShownParagraph&)>& visit) const {
  for (const Para& para : paragraphs_) {
    ShownParagraph shown;
    shown.properties = names_.Child(para.node, XmlNamespace::kDrawing, "pPr");
    shown.level = para.level;
    shown.pieces.reserve(para.pieces.size());
    const auto piece = [&](WideView text, const RunFormatRef& format) {
      return ShownPiece{text, &ShownProps(para, format), &format->extras};
    };
    for (const TextPiece& stands : para.pieces) {
      if (!stands.text.empty()) shown.pieces.push_back(piece(stands.text, FormatOf(stands)));
    }
    shown.mark = piece({}, EndFormat(para));
    visit(shown);
  }
}

}  // namespace quillmarch::host::deck

// An edited text body as edits on its part's bytes.
#include <optional>

#include "host/deck/text/RunPropertiesEdit.h"
#include "host/deck/text/TextBody.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;

}  // namespace

std::string TextBody::PieceXml(const TextPiece& piece) const {
  if (piece.Untouched() || piece.kind == TextPiece::Kind::kOpaque) return RawElement(piece.node);
  if (!piece.textChanged) {
    // Only the properties differ: everything else in the element stays as it was.
    const std::string raw = RawElement(piece.node);
    const ElementSpan element = FindElement(raw, 1);
    if (!element.found) return raw;
    if (element.selfClosed) {
      const std::string name = piece.node.name();
      return "<" + name + ">" + piece.own->raw + "</" + name + ">";
    }
    const pugi::xml_node old = FormatNode(piece);
    if (!old) {
      return raw.substr(0, element.contentBegin) + piece.own->raw +
             raw.substr(element.contentBegin);
    }
    const std::optional<std::size_t> outerName = OffsetOf(bytes_, piece.node);
    const std::optional<std::size_t> innerName = OffsetOf(bytes_, old);
    if (!outerName || !innerName) return raw;
    const ElementSpan inner = FindElement(raw, 1 + *innerName - *outerName);
    if (!inner.found) return raw;
    return raw.substr(0, inner.begin) + piece.own->raw + raw.substr(inner.end);
  }
  const std::string& format =
      piece.own ? piece.own->raw : formats_.ForNewText(FormatOf(piece))->raw;
  if (piece.kind == TextPiece::Kind::kBreak) {
    if (format.empty()) return "<" + prefix_ + "br/>";
    return "<" + prefix_ + "br>" + format + "</" + prefix_ + "br>";
  }
  return "<" + prefix_ + "r>" + format + "<" + prefix_ + "t>" + EscapeText(ToUtf8(piece.text)) +
         "</" + prefix_ + "t></" + prefix_ + "r>";
}

std::string TextBody::ParagraphXml(const Para& para) const {
  std::string xml = "<" + prefix_ + "p>" + RawElement(names_.Child(para.node, kA, "pPr"));
  for (const TextPiece& piece : para.pieces) xml += PieceXml(piece);
  if (para.ownEnd)
    xml += RenamedElement(para.ownEnd->raw, prefix_ + "endParaRPr");
  else
    xml += RawElement(EndNode(para));
  return xml + "</" + prefix_ + "p>";
}

void TextBody::AppendParagraphEdits(const Para& para, std::vector<Edit>& edits) const {
  const ElementSpan element = FindElement(bytes_, para.node);
  if (!element.found) return;
  if (element.selfClosed) {
    edits.push_back({element.begin, element.end - element.begin, ParagraphXml(para)});
    return;
  }
  std::vector<ElementSpan> old;
  std::size_t from = element.contentBegin;
  for (const pugi::xml_node child : para.node.children()) {
    if (child.type() != pugi::node_element) continue;
    if (names_.Is(child, kA, "endParaRPr")) continue;
    const ElementSpan span = FindElement(bytes_, child);
    if (!span.found) return;
    if (names_.Is(child, kA, "pPr"))
      from = span.end;
    else
      old.push_back(span);
  }
  // Pieces still in their places, from either end, are not part of the edit.
  const std::size_t count = para.pieces.size();
  const auto stands = [&](std::size_t piece, std::size_t place) {
    const TextPiece& candidate = para.pieces[piece];
    return candidate.Untouched() && candidate.paragraph == para.source &&
           candidate.place == static_cast<std::int32_t>(place);
  };
  std::size_t head = 0;
  while (head < count && head < old.size() && stands(head, head)) ++head;
  std::size_t tail = 0;
  while (tail < count - head && tail < old.size() - head &&
         stands(count - 1 - tail, old.size() - 1 - tail)) {
    ++tail;
  }
  if (count != head + tail || old.size() != head + tail) {
    const std::size_t oldEnd = old.size() - tail;
    std::size_t to = from;
    if (head < oldEnd) {
      from = old[head].begin;
      to = old[oldEnd - 1].end;
    } else if (!old.empty()) {
      from = to = head > 0 ? old[head - 1].end : old.front().begin;
    }
    std::string text;
    for (std::size_t i = head; i < count - tail; ++i) text += PieceXml(para.pieces[i]);
    edits.push_back({from, to - from, std::move(text)});
  }
  if (para.ownEnd) {
    const ElementSpan end = FindElement(bytes_, EndNode(para));
    const std::size_t place = end.found ? end.begin : element.contentEnd;
    edits.push_back({place, end.found ? end.end - end.begin : 0,
                     RenamedElement(para.ownEnd->raw, prefix_ + "endParaRPr")});
  }
}

void TextBody::AppendEdits(std::vector<Edit>& edits) const {
  if (!edited_) return;
  std::vector<bool> kept(sourceCount_, false);
  std::size_t after = 0;  // where a new paragraph goes: after the last one that was kept
  for (const Para& para : paragraphs_) {
    if (para.source < 0) {
      edits.push_back({after, 0, ParagraphXml(para)});
      continue;
    }
    kept[static_cast<std::size_t>(para.source)] = true;
    if (para.edited) AppendParagraphEdits(para, edits);
    const auto next = static_cast<std::size_t>(&para - paragraphs_.data()) + 1;
    if (next < paragraphs_.size() && paragraphs_[next].source < 0) {
      after = FindElement(bytes_, para.node).end;
    }
  }
  std::size_t index = 0;
  for (const pugi::xml_node child : node_.children()) {
    if (child.type() != pugi::node_element || !names_.Is(child, kA, "p")) continue;
    if (index < kept.size() && !kept[index]) {
      const ElementSpan span = FindElement(bytes_, child);
      if (span.found) edits.push_back({span.begin, span.end - span.begin, {}});
    }
    ++index;
  }
}

}  // namespace quillmarch::host::deck

#include "host/deck/text/TextBody.h"

#include <algorithm>

#include "host/deck/AlternateContent.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr char16_t kParagraphMark = u'\r';
constexpr char16_t kLineBreak = u'\v';

// A line end inside a run's text is white space to the file format; as CR it would be taken for a
// paragraph's mark.
Wide RunText(const XmlNames& names, pugi::xml_node run) {
  Wide text;
  // A run has one a:t. Some writers give it several, which read as one text.
  for (pugi::xml_node node = names.Child(run, kA, "t"); node; node = node.next_sibling()) {
    if (!names.Is(node, kA, "t")) continue;
    const pugi::xml_node only = node.first_child();
    text += only && !only.next_sibling() ? ToWide(only.value()) : ToWide(ElementText(node));
  }
  for (char16_t& unit : text) {
    if (unit == u'\r' || unit == u'\n' || unit == u'\v') unit = u' ';
  }
  return text;
}

// Whether the run or field holds nothing but its properties and its text, so that rewriting
// both loses nothing.
bool HoldsOnlyText(const XmlNames& names, pugi::xml_node run) {
  for (const pugi::xml_node child : run.children()) {
    if (child.type() != pugi::node_element) continue;
    if (names.SpaceOf(child) != kA) return false;
    const std::string_view local = LocalName(child.name());
    if (local == "t") {
      for (const pugi::xml_node inner : child.children()) {
        if (inner.type() == pugi::node_element) return false;
      }
    } else if (local != "rPr" && local != "pPr") {
      return false;
    }
  }
  return true;
}

}  // namespace

TextBody::TextBody(const XmlNames& names, std::string_view bytes, RunFormats& formats,
                   pugi::xml_node node)
    : names_(names), bytes_(bytes), formats_(formats), node_(node) {
  for (const pugi::xml_node child : node.children()) {
    if (child.type() != pugi::node_element || names.SpaceOf(child) != kA) continue;
    if (prefix_.empty()) prefix_ = PrefixWithColon(child.name());
    if (std::string_view(LocalName(child.name())) != "p") continue;
    Para& para = paragraphs_.emplace_back();
    para.source = static_cast<std::int32_t>(paragraphs_.size() - 1);
    ReadParagraph(child, para);
    length_ += para.length + (paragraphs_.size() > 1 ? 1 : 0);
  }
  sourceCount_ = paragraphs_.size();
  MeasureParagraphs();
}

void TextBody::ReadParagraph(pugi::xml_node node, Para& para) const {
  para.node = node;
  std::int32_t place = 0;
  for (const pugi::xml_node child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    TextPiece piece;
    piece.kind = TextPiece::Kind::kOpaque;
    piece.node = child;
    if (names_.SpaceOf(child) == kA) {
      const std::string_view local = LocalName(child.name());
      if (local == "endParaRPr") continue;
      if (local == "pPr") {
        const std::int64_t level = WholeAttribute(child, "lvl", 0);
        const bool known = level >= 0 && level < static_cast<std::int64_t>(kLevels);
        para.level = known ? static_cast<std::size_t>(level) : 0;
        continue;
      }
      if (local == "r" || local == "fld") {
        if (HoldsOnlyText(names_, child)) {
          piece.kind = local == "r" ? TextPiece::Kind::kRun : TextPiece::Kind::kField;
        }
        piece.text = RunText(names_, child);
      } else if (local == "br") {
        piece.kind = TextPiece::Kind::kBreak;
        piece.text = kLineBreak;
      }
    } else if (names_.Is(child, XmlNamespace::kMarkupCompatibility, "AlternateContent")) {
      for (const pugi::xml_node inner : ChosenBranch(names_, child).children()) {
        if (names_.Is(inner, kA, "r") || names_.Is(inner, kA, "fld")) {
          piece.text += RunText(names_, inner);
        } else if (names_.Is(inner, kA, "br")) {
          piece.text += kLineBreak;
        }
      }
    }
    piece.paragraph = para.source;
    piece.place = place++;
    para.length += piece.text.size();
    para.pieces.push_back(std::move(piece));
  }
}

void TextBody::MeasureParagraphs() {
  std::vector<std::size_t> lengths;
  lengths.reserve(paragraphs_.size());
  for (const Para& para : paragraphs_) lengths.push_back(para.length + 1);
  starts_.Assign(lengths);
}

TextSpan TextBody::Paragraph(std::size_t index) const {
  const bool marked = index + 1 < paragraphs_.size();
  return {starts_.Before(index), paragraphs_[index].length + (marked ? 1 : 0)};
}

std::size_t TextBody::ParagraphAt(std::size_t position) const {
  return paragraphs_.empty() ? 0 : starts_.At(position);
}

Wide TextBody::Text(TextSpan span) {
  Wide text;
  if (paragraphs_.empty() || span.start > length_) return text;
  std::size_t left = std::min(span.length, length_ - span.start);
  text.reserve(left);
  std::size_t index = ParagraphAt(span.start);
  std::size_t skip = span.start - Paragraph(index).start;
  for (; left > 0 && index < paragraphs_.size(); ++index) {
    for (const TextPiece& piece : paragraphs_[index].pieces) {
      if (left == 0) break;
      if (skip >= piece.text.size()) {
        skip -= piece.text.size();
        continue;
      }
      const std::size_t count = std::min(left, piece.text.size() - skip);
      text.append(piece.text, skip, count);
      skip = 0;
      left -= count;
    }
    if (left > 0 && index + 1 < paragraphs_.size()) {
      if (skip == 0) {
        text += kParagraphMark;
        --left;
      } else {
        --skip;
      }
    }
  }
  return text;
}

pugi::xml_node TextBody::FormatNode(const TextPiece& piece) const {
  if (piece.kind == TextPiece::Kind::kOpaque) return {};
  return names_.Child(piece.node, kA, "rPr");
}

pugi::xml_node TextBody::EndNode(const Para& para) const {
  return names_.Child(para.node, kA, "endParaRPr");
}

const RunFormatRef& TextBody::FormatOf(const TextPiece& piece) const {
  if (piece.own) return piece.own;
  if (!piece.read) piece.read = formats_.OfElement(FormatNode(piece));
  return piece.read;
}

const RunFormatRef& TextBody::EndFormat(const Para& para) const {
  if (para.ownEnd) return para.ownEnd;
  if (!para.readEnd) para.readEnd = formats_.OfElement(EndNode(para));
  return para.readEnd;
}

void TextBody::ReadFormats() const {
  for (const Para& para : paragraphs_) {
    for (const TextPiece& piece : para.pieces) {
      if (piece.kind != TextPiece::Kind::kOpaque) FormatOf(piece);
    }
    EndFormat(para);
  }
}

const CharProps& TextBody::ShownProps(const Para& para, const RunFormatRef& format) const {
  if (style_ == nullptr) return format->props;
  for (const ShownFormat& shown : shown_) {
    if (shown.format == format && shown.level == para.level) return shown.props;
  }
  ShownFormat& made = shown_.emplace_back(ShownFormat{format, para.level, format->props});
  Inherit(made.props, style_->levels[para.level]);
  return made.props;
}

void TextBody::VisitProps(TextSpan span, const std::function<bool(const CharProps&)>& visit) {
  if (paragraphs_.empty()) return;
  const std::size_t start = std::min(span.start, length_);
  const std::size_t end = start + std::min(span.length, length_ - start);
  bool visited = false;
  for (std::size_t index = ParagraphAt(start); index < paragraphs_.size(); ++index) {
    const Para& para = paragraphs_[index];
    std::size_t at = Paragraph(index).start;
    if (visited && at >= end) return;
    const TextPiece* before = nullptr;
    for (const TextPiece& piece : para.pieces) {
      const std::size_t behind = at + piece.text.size();
      if (piece.kind != TextPiece::Kind::kOpaque && !piece.text.empty()) {
        if (behind > start && at < end) {
          visited = true;
          if (!visit(ShownProps(para, FormatOf(piece)))) return;
        }
        if (before == nullptr || behind <= start) before = &piece;
      }
      at = behind;
    }
    if (visited || (at < end && index + 1 < paragraphs_.size() && at + 1 < end)) continue;
    visit(ShownProps(para, before != nullptr ? FormatOf(*before) : EndFormat(para)));
    return;
  }
}

std::vector<TextSpan> TextBody::Runs(TextSpan span) {
  std::vector<TextSpan> runs;
  if (paragraphs_.empty() || span.start > length_) return runs;
  const std::size_t end = span.start + std::min(span.length, length_ - span.start);
  for (std::size_t index = ParagraphAt(span.start);
       index < paragraphs_.size() && Paragraph(index).start < end; ++index) {
    const Para& para = paragraphs_[index];
    std::size_t at = Paragraph(index).start;
    const RunFormat* last = nullptr;
    for (const TextPiece& piece : para.pieces) {
      const std::size_t from = std::max(at, span.start);
      const std::size_t to = std::min(at + piece.text.size(), end);
      at += piece.text.size();
      if (from >= to) continue;
      const RunFormat* const format = FormatOf(piece).get();
      if (last != nullptr && (format == last || format->props == last->props)) {
        runs.back().length += to - from;
      } else {
        runs.push_back({from, to - from});
      }
      last = format;
    }
    // The mark belongs to the paragraph's last run, or is a run by itself.
    if (index + 1 < paragraphs_.size() && at >= span.start && at < end) {
      if (last != nullptr)
        ++runs.back().length;
      else
        runs.push_back({at, 1});
    }
  }
  return runs;
}

}  // namespace quillmarch::host::deck

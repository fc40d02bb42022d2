// Edits on a text body: replacing text, changing run properties.
#include <algorithm>
#include <utility>

#include "host/deck/text/RunPropertiesEdit.h"
#include "host/deck/text/TextBody.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {
namespace {

constexpr char16_t kParagraphMark = u'\r';
constexpr char16_t kLineBreak = u'\v';

bool IsHigh(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLow(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// The text as a file can hold it, so that what was put reads the same after saving: one mark for
// each paragraph end, no control characters but tab, VT and the mark, whole surrogate pairs.
Wide CleanText(WideView text) {
  const auto plain = [](char16_t unit) {
    return unit >= 0x20 && (unit < 0xD800 || (unit > 0xDFFF && unit < 0xFFFE));
  };
  // Most texts are clean.
  std::size_t i = 0;
  while (i < text.size() && plain(text[i])) ++i;
  Wide clean(text.substr(0, i));
  clean.reserve(text.size());
  for (; i < text.size(); ++i) {
    const char16_t unit = text[i];
    const char16_t next = i + 1 < text.size() ? text[i + 1] : u'\0';
    if (unit == u'\r' && next == u'\n') continue;
    if (unit == u'\r' || unit == u'\n') {
      clean += kParagraphMark;
    } else if (IsHigh(unit) && IsLow(next)) {
      clean += unit;
      clean += next;
      ++i;
    } else if (IsHigh(unit) || IsLow(unit)) {
      clean += u'\uFFFD';
    } else if (unit >= 0x20 ? unit < 0xFFFE : unit == u'\t' || unit == kLineBreak) {
      clean += unit;
    }
  }
  return clean;
}

std::vector<WideView> SplitParagraphs(WideView text) {
  std::vector<WideView> parts;
  while (true) {
    const std::size_t at = text.find(kParagraphMark);
    parts.push_back(text.substr(0, at));
    if (at == WideView::npos) return parts;
    text.remove_prefix(at + 1);
  }
}

void AppendPieces(WideView text, const RunFormatRef& format, std::vector<TextPiece>& pieces) {
  while (!text.empty()) {
    TextPiece piece;
    piece.own = format;
    if (text.front() == kLineBreak) {
      piece.kind = TextPiece::Kind::kBreak;
      piece.text = kLineBreak;
    } else {
      piece.text = text.substr(0, text.find(kLineBreak));
    }
    piece.textChanged = true;
    text.remove_prefix(piece.text.size());
    pieces.push_back(std::move(piece));
  }
}

}  // namespace

std::string TextBody::RawElement(pugi::xml_node node) const {
  if (!node) return {};
  const ElementSpan span = FindElement(bytes_, node);
  return span.found ? std::string(bytes_.substr(span.begin, span.end - span.begin)) : std::string();
}

bool TextBody::HoldsOpaque(const Para& para, std::size_t from, std::size_t to) {
  std::size_t at = 0;
  for (const TextPiece& piece : para.pieces) {
    const std::size_t end = at + piece.text.size();
    if (piece.kind == TextPiece::Kind::kOpaque) {
      // One that takes no unit is held when it lies inside, or at the paragraph's own border
      // where the range reaches it.
      const bool behindStart = at > from || (at == 0 && from == 0);
      const bool beforeEnd = at < to || (at == para.length && to == para.length);
      if (at == end ? behindStart && beforeEnd : at < to && end > from) return true;
    }
    at = end;
  }
  return false;
}

void TextBody::SplitAt(Para& para, std::size_t position) {
  std::size_t at = 0;
  for (std::size_t i = 0; i < para.pieces.size(); ++i) {
    TextPiece& piece = para.pieces[i];
    const std::size_t end = at + piece.text.size();
    if (position > at && position < end && piece.kind != TextPiece::Kind::kOpaque) {
      // Part of a field is no longer a field.
      piece.kind = TextPiece::Kind::kRun;
      piece.textChanged = true;
      TextPiece tail = piece;
      tail.text.erase(0, position - at);
      piece.text.resize(position - at);
      para.pieces.insert(para.pieces.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(tail));
      return;
    }
    at = end;
  }
}

RunFormatRef TextBody::FormatForText(const Para& para, std::size_t from, std::size_t to) const {
  const TextPiece* chosen = nullptr;
  const TextPiece* lineBreak = nullptr;
  const TextPiece* before = nullptr;
  std::size_t at = 0;
  for (const TextPiece& piece : para.pieces) {
    const std::size_t end = at + piece.text.size();
    if (piece.kind != TextPiece::Kind::kOpaque) {
      const bool inside = end > from && at < to;
      if (inside && piece.kind == TextPiece::Kind::kBreak) {
        if (lineBreak == nullptr) lineBreak = &piece;
      } else if (inside) {
        chosen = &piece;
        break;
      }
      if (before == nullptr || end <= from) before = &piece;
    }
    at = end;
  }
  if (chosen == nullptr) chosen = lineBreak != nullptr ? lineBreak : before;
  if (chosen != nullptr) return formats_.ForNewText(FormatOf(*chosen));
  if (para.ownEnd) return para.ownEnd;
  auto format = std::make_shared<RunFormat>(*EndFormat(para));
  format->raw = ForNewText(RenamedElement(format->raw, prefix_ + "rPr"));
  return format;
}

void TextBody::Touch(std::size_t paragraph) {
  Para& para = paragraphs_[paragraph];
  para.edited = true;
  para.length = 0;
  for (const TextPiece& piece : para.pieces) para.length += piece.text.size();
  starts_.Set(paragraph, para.length + 1);
  edited_ = true;
  ++revision_;
}

// Half a pair is not a character: written into a run of its own it would be lost.
TextSpan TextBody::WholePairs(TextSpan span) {
  std::size_t start = std::min(span.start, length_);
  std::size_t end = start + std::min(span.length, length_ - start);
  const auto cutsPair = [this](std::size_t position) {
    if (position == 0 || position >= length_) return false;
    const Wide around = Text({position - 1, 2});
    return IsHigh(around[0]) && IsLow(around[1]);
  };
  if (cutsPair(start)) --start;
  if (end > start && cutsPair(end)) ++end;
  return {start, end - start};
}

bool TextBody::PutText(TextSpan& place, WideView text) {
  Wide clean = CleanText(text);
  const TextSpan span = WholePairs(place);
  const TextSpan put{span.start, clean.size()};
  if (paragraphs_.empty()) return clean.empty();
  if (Text(span) == clean) {
    place = put;
    return true;
  }

  const std::size_t end = span.start + span.length;
  const std::size_t first = ParagraphAt(span.start);
  std::size_t last = ParagraphAt(end);
  const std::size_t from = span.start - Paragraph(first).start;
  std::size_t to = end - Paragraph(last).start;
  const std::size_t newLength = length_ - span.length + clean.size();
  if (last > first && to == 0 && !clean.empty() && clean.back() == kParagraphMark) {
    // The range ends with a paragraph's mark and so does the text: the paragraph after it is not
    // affected.
    clean.pop_back();
    --last;
    to = paragraphs_[last].length;
  }
  RunFormatRef format;
  for (std::size_t i = first; i <= last; ++i) {
    const Para& para = paragraphs_[i];
    const std::size_t partFrom = i == first ? from : 0;
    const std::size_t partTo = i == last ? to : para.length;
    if (HoldsOpaque(para, partFrom, partTo)) return false;
    if (!format && partFrom < partTo) format = FormatForText(para, partFrom, partTo);
  }
  if (!format) format = FormatForText(paragraphs_[first], from, from);

  // The pieces of the last paragraph are split first: the first paragraph may be the same one.
  SplitAt(paragraphs_[last], to);
  SplitAt(paragraphs_[first], from);
  std::vector<TextPiece> head, tail;
  std::size_t at = 0;
  for (TextPiece& piece : paragraphs_[last].pieces) {
    const std::size_t pieceEnd = at + piece.text.size();
    const bool inHead = first == last && pieceEnd <= from;
    if (!inHead && at >= to) tail.push_back(piece);
    at = pieceEnd;
  }
  at = 0;
  for (TextPiece& piece : paragraphs_[first].pieces) {
    at += piece.text.size();
    if (at > from) break;
    head.push_back(std::move(piece));
  }

  const std::vector<WideView> parts = SplitParagraphs(clean);
  Para& start = paragraphs_[first];
  start.pieces = std::move(head);
  AppendPieces(parts[0], format, start.pieces);
  std::vector<Para> added;
  for (std::size_t i = 1; i < parts.size(); ++i) {
    Para para;
    // Text that remains after the range keeps its own paragraph.
    const bool keepsLast = i + 1 == parts.size() && last > first && !tail.empty();
    if (keepsLast) {
      para = std::move(paragraphs_[last]);
    } else {
      para.node = start.node;
      para.level = start.level;
    }
    para.pieces.clear();
    AppendPieces(parts[i], format, para.pieces);
    added.push_back(std::move(para));
  }
  Para& finish = added.empty() ? start : added.back();
  for (TextPiece& piece : tail) finish.pieces.push_back(std::move(piece));
  const auto setEnd = [&](Para& para) {
    if (para.pieces.empty() && !para.ownEnd && !EndNode(para) && !format->raw.empty()) {
      para.ownEnd = format;
    }
  };
  setEnd(start);
  for (Para& para : added) setEnd(para);

  const std::size_t addedCount = added.size();
  if (last != first || addedCount != 0) {
    const auto base = paragraphs_.begin() + static_cast<std::ptrdiff_t>(first) + 1;
    paragraphs_.erase(base, base + static_cast<std::ptrdiff_t>(last - first));
    paragraphs_.insert(paragraphs_.begin() + static_cast<std::ptrdiff_t>(first) + 1,
                       std::make_move_iterator(added.begin()),
                       std::make_move_iterator(added.end()));
    MeasureParagraphs();
  }
  for (std::size_t i = first + addedCount + 1; i-- > first;) Touch(i);
  length_ = newLength;
  place = put;
  return true;
}

void TextBody::EditProps(TextSpan range, const PropertiesEdit& edit) {
  if (paragraphs_.empty() || range.start >= length_) return;
  const TextSpan span = WholePairs(range);
  const std::size_t end = span.start + span.length;
  for (std::size_t index = ParagraphAt(span.start);
       index < paragraphs_.size() && Paragraph(index).start < end; ++index) {
    Para& para = paragraphs_[index];
    const std::size_t base = Paragraph(index).start;
    const std::size_t from = span.start > base ? span.start - base : 0;
    const std::size_t to = std::min(end - base, para.length);
    std::vector<TextPiece> before = para.pieces;
    bool changed = false;
    SplitAt(para, to);
    SplitAt(para, from);
    std::size_t at = 0;
    for (TextPiece& piece : para.pieces) {
      const std::size_t pieceEnd = at + piece.text.size();
      if (piece.kind != TextPiece::Kind::kOpaque && pieceEnd > from && at < to) {
        const std::string& raw = FormatOf(piece)->raw;
        std::string edited = edit(raw, prefix_);
        if (edited != raw) {
          piece.own = formats_.OfText(std::move(edited));
          piece.formatChanged = true;
          changed = true;
        }
      }
      at = pieceEnd;
    }
    // A mark by itself makes its line's height. Beside text it shows nothing, and stays.
    const bool alone = para.length == 0 && !HoldsOpaque(para, 0, 0);
    if (alone && index + 1 < paragraphs_.size()) {
      const std::string raw = para.ownEnd
                                  ? para.ownEnd->raw
                                  : RenamedElement(RawElement(EndNode(para)), prefix_ + "rPr");
      std::string edited = edit(raw, prefix_);
      if (edited != raw) {
        para.ownEnd = formats_.OfText(std::move(edited));
        changed = true;
      }
    }
    if (changed)
      Touch(index);
    else
      para.pieces = std::move(before);
  }
}

}  // namespace quillmarch::host::deck

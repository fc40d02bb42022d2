// Ranges of text. A range is an address and a span of UTF-16 units; a put through
// it makes the span the new text's.
#include <algorithm>

#include "foundation/automation/HostMembers.h"
#include "host/model/Objects.h"

namespace quillmarch::host::model {
namespace {

constexpr std::int32_t kLeftOut = -1;

// What Start and Length pick out of `count` units: the first one (0-based) and how many. Both left
// out: all; a start alone: one unit; a start behind the end: the last unit.
struct Pick {
  std::size_t first = 0;
  std::size_t count = 0;
};

bool PickUnits(Args args, std::size_t count, Pick& pick) {
  std::int32_t start = 0;
  std::int32_t length = 0;
  if (!args.Whole(0, kLeftOut, start) || !args.Whole(1, kLeftOut, length)) return false;
  if (start == kLeftOut && length == kLeftOut) {
    pick = {0, count};
    return true;
  }
  if (count == 0) {
    pick = {};
    return true;
  }
  const bool whole = start == kLeftOut;
  pick.first = whole || start < 1 ? 0 : std::min(static_cast<std::size_t>(start) - 1, count - 1);
  const std::size_t wanted = length < 0 ? 1 : static_cast<std::size_t>(length);
  pick.count = std::min(wanted, count - pick.first);
  return true;
}

deck::TextSpan Intersect(deck::TextSpan a, deck::TextSpan b) {
  const std::size_t start = std::max(a.start, b.start);
  const std::size_t end = std::min(a.start + a.length, b.start + b.length);
  return {start, end > start ? end - start : 0};
}

}  // namespace

deck::TextBody* TextRangeObject::Body() const {
  return deck().Text(address_);
}

ResultCode TextRangeObject::Count(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(count_));
  return kOk;
}
ResultCode TextRangeObject::Start(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(span_.start) + 1);
  return kOk;
}
ResultCode TextRangeObject::Length(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(span_.length));
  return kOk;
}

ResultCode TextRangeObject::Text(Args, Variant& out) {
  deck::TextBody* const body = Body();
  out = Variant::Text(body == nullptr ? Wide() : body->Text(span_));
  return kOk;
}

ResultCode TextRangeObject::PutText(const Variant& value) {
  if (value.type() != VariantType::kText) return kTypeMismatch;
  deck::TextBody* const body = Body();
  if (body == nullptr || deck().PartOf(address_.page).empty()) return kHostException;
  return body->PutText(span_, value.text()) ? kOk : kHostException;
}

ResultCode TextRangeObject::Paragraphs(Args args, Variant& out) {
  deck::TextBody* const body = Body();
  std::size_t first = 0;
  std::size_t count = 0;
  if (body != nullptr && body->Length() > 0 && (span_.length > 0 || reachesEnd_)) {
    first = body->ParagraphAt(span_.start);
    const std::size_t end = span_.start + span_.length;
    const std::size_t last =
        reachesEnd_ || span_.length == 0 ? body->ParagraphAt(end) : body->ParagraphAt(end - 1);
    count = last - first + 1;
  }
  Pick pick;
  if (!PickUnits(args, count, pick)) return kTypeMismatch;
  deck::TextSpan span{span_.start, 0};
  bool reachesEnd = false;
  if (pick.count > 0) {
    const deck::TextSpan from = body->Paragraph(first + pick.first);
    const deck::TextSpan to = body->Paragraph(first + pick.first + pick.count - 1);
    span = Intersect(span_, {from.start, to.start + to.length - from.start});
    reachesEnd = first + pick.first + pick.count == body->ParagraphCount();
  }
  return Give<TextRangeObject>(out, session(), open(), address_, span, pick.count, reachesEnd);
}

ResultCode TextRangeObject::Characters(Args args, Variant& out) {
  Pick pick;
  if (!PickUnits(args, span_.length, pick)) return kTypeMismatch;
  return Give<TextRangeObject>(out, session(), open(), address_,
                               deck::TextSpan{span_.start + pick.first, pick.count}, pick.count,
                               false);
}

ResultCode TextRangeObject::Runs(Args args, Variant& out) {
  deck::TextBody* const body = Body();
  const std::vector<deck::TextSpan> runs =
      body == nullptr ? std::vector<deck::TextSpan>() : body->Runs(span_);
  Pick pick;
  if (!PickUnits(args, runs.size(), pick)) return kTypeMismatch;
  deck::TextSpan span{span_.start, 0};
  if (pick.count > 0) {
    const deck::TextSpan& last = runs[pick.first + pick.count - 1];
    span.start = runs[pick.first].start;
    span.length = last.start + last.length - span.start;
  }
  return Give<TextRangeObject>(out, session(), open(), address_, span, pick.count, false);
}

ResultCode TextRangeObject::Font(Args, Variant& out) {
  return Give<FontObject>(out, session(), open(), address_, span_);
}

ResultCode TextRangeObject::Bound(double deck::ShapeBox::*side, Variant& out) const {
  deck::ShapeBox box;
  if (!session()->measure.Bounds(deck(), address_, span_, reachesEnd_, box)) return kHostException;
  out = Variant::R4(static_cast<float>(box.*side));
  return kOk;
}

ResultCode TextRangeObject::BoundLeft(Args, Variant& out) {
  return Bound(&deck::ShapeBox::left, out);
}
ResultCode TextRangeObject::BoundTop(Args, Variant& out) {
  return Bound(&deck::ShapeBox::top, out);
}
ResultCode TextRangeObject::BoundWidth(Args, Variant& out) {
  return Bound(&deck::ShapeBox::width, out);
}
ResultCode TextRangeObject::BoundHeight(Args, Variant& out) {
  return Bound(&deck::ShapeBox::height, out);
}

ResultCode TextRangeObject::Parent(Args, Variant& out) {
  return Give<TextFrameObject>(out, session(), open(), address_);
}

const MemberTable& TextRangeObject::Table() const {
  using Self = TextRangeObject;
  static const MemberTable table(
      {ppt::kTextRange}, {{u"Text", 0, Getter<&Self::Text>::Call, Putter<&Self::PutText>::Call},
                          {u"Count", 11, Getter<&Self::Count>::Call},
                          {u"Parent", 2002, Getter<&Self::Parent>::Call},
                          {u"Start", 2004, Getter<&Self::Start>::Call},
                          {u"Length", 2005, Getter<&Self::Length>::Call},
                          {u"BoundLeft", 2006, Getter<&Self::BoundLeft>::Call},
                          {u"BoundTop", 2007, Getter<&Self::BoundTop>::Call},
                          {u"BoundWidth", 2008, Getter<&Self::BoundWidth>::Call},
                          {u"BoundHeight", 2009, Getter<&Self::BoundHeight>::Call},
                          {u"Paragraphs", 2010, Getter<&Self::Paragraphs>::Call},
                          {u"Characters", 2013, Getter<&Self::Characters>::Call},
                          {u"Runs", 2015, Getter<&Self::Runs>::Call},
                          {u"Font", 2022, Getter<&Self::Font>::Call}});
  return table;
}

}  // namespace quillmarch::host::model

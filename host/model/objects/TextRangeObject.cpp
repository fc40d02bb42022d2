#include "host/model/objects/TextRangeObject.h"

#include <algorithm>

#include "foundation/automation/HostMembers.h"
#include "host/model/objects/FontObject.h"
#include "host/model/objects/FrameObjects.h"

namespace quillmarch::host::model {
namespace {

constexpr std::int32_t kLeftOut = -1;

// What Start and Length pick out of `count` units: the first one (0-based) and how many. Both left
// out: all; only a start: one unit; a start past the end: the last unit.
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

ResultCode TextRangeObject::PutText(const Variant& value) {
  if (value.type() != VariantType::kText) return kTypeMismatch;
  deck::TextBody* const body = Body();
  if (body == nullptr || deck().PartOf(address_.page).empty()) return kHostException;
  return body->PutText(span_, value.text()) ? kOk : kHostException;
}

Answer TextRangeObject::Paragraphs(Args args) const {
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
  return Make<TextRangeObject>(session(), open(), address_, span, pick.count, reachesEnd);
}

Answer TextRangeObject::Characters(Args args) const {
  Pick pick;
  if (!PickUnits(args, span_.length, pick)) return kTypeMismatch;
  return Make<TextRangeObject>(session(), open(), address_,
                               deck::TextSpan{span_.start + pick.first, pick.count}, pick.count,
                               false);
}

Answer TextRangeObject::Runs(Args args) const {
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
  return Make<TextRangeObject>(session(), open(), address_, span, pick.count, false);
}

Answer TextRangeObject::Bound(double deck::ShapeBox::*side) const {
  deck::ShapeBox box;
  if (!session()->measure.Bounds(deck(), address_, span_, reachesEnd_, box)) return kHostException;
  return SingleOf(box.*side);
}

const MemberTable& TextRangeObject::Table() const {
  using Self = TextRangeObject;
  using Box = deck::ShapeBox;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kTextRange},
      {{u"Text", 0,
        [](Self& self) {
          deck::TextBody* const body = self.Body();
          return body == nullptr ? Wide() : body->Text(self.span_);
        },
        [](Self& self, const Variant& value) { return self.PutText(value); }},
       {u"Count", 11, [](Self& self) { return CountOf(self.count_); }},
       {u"Parent", 2002,
        [](Self& self) {
          return Make<TextFrameObject>(self.session(), self.open(), self.address_);
        }},
       {u"Start", 2004, [](Self& self) { return CountOf(self.span_.start + 1); }},
       {u"Length", 2005, [](Self& self) { return CountOf(self.span_.length); }},
       {u"BoundLeft", 2006, [](Self& self) { return self.Bound(&Box::left); }},
       {u"BoundTop", 2007, [](Self& self) { return self.Bound(&Box::top); }},
       {u"BoundWidth", 2008, [](Self& self) { return self.Bound(&Box::width); }},
       {u"BoundHeight", 2009, [](Self& self) { return self.Bound(&Box::height); }},
       {u"Paragraphs", 2010, [](Self& self, Args args) { return self.Paragraphs(args); }},
       {u"Characters", 2013, [](Self& self, Args args) { return self.Characters(args); }},
       {u"Runs", 2015, [](Self& self, Args args) { return self.Runs(args); }},
       {u"Font", 2022, [](Self& self) {
          return Make<FontObject>(self.session(), self.open(), self.address_, self.span_);
        }}});
  return table;
}

}  // namespace quillmarch::host::model

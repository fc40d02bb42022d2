#include "run/write/ApplyText.h"

#include <algorithm>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/automation/HostShapes.h"
#include "foundation/text/CharClass.h"
#include "run/write/FontStyle.h"

namespace quillmarch::addin {

namespace {

bool IsBreak(char16_t unit) {
  return unit == u'\r' || unit == u'\n' || unit == u'\v' || unit == u'\f';
}

bool IsBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t';
}

ResultCode WriteKeepingLook(AutomationObject* range, const Wide& text, const Wide& targetFont) {
  FontSnapshot look;
  TakeFontSnapshot(range, look);
  const ResultCode put = SetRangeText(range, text);
  if (Failed(put)) return put;
  RestoreFontSnapshot(range, look);
  ApplyTargetFontName(range, targetFont);
  return put;
}

WideView Trimmed(WideView text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

// kOk when the place may be written.
ResultCode LookAtPlace(Wide shown, TextChange& change) {
  if (change.from == nullptr || SameText(shown, *change.from)) return kOk;
  if (SameText(shown, change.to)) return kAlreadyThere;
  change.shown = std::move(shown);
  return kOtherTextThere;
}

// The same for places whose text is not read anyway.
ResultCode ReadAndLook(AutomationObject* range, bool wholeFrame, TextChange& change) {
  if (change.from == nullptr) return kOk;
  Wide shown;
  if (!Get(range, ppt::textRange::kText, shown)) return kFail;
  return LookAtPlace(wholeFrame ? WithoutBreaks(shown) : std::move(shown), change);
}

// The part of a paragraph that a text goes over: without the paragraph mark, where the host counts
// the mark into the range. kOk with the part.
ResultCode WrittenPart(AutomationObject* paragraph, TextChange& change, ObjectRef& part) {
  std::int32_t length = 0;
  Wide text;
  // A paragraph whose mark cannot be told is left alone: writing over the mark would join it with
  // the next one.
  if (!Get(paragraph, ppt::textRange::kLength, length) ||
      !Get(paragraph, ppt::textRange::kText, text)) {
    return kFail;
  }
  const bool holdsMark = !text.empty() && text.back() == u'\r' && length >= 2 &&
                         static_cast<std::size_t>(length) == text.size();
  const std::int32_t writeLength = holdsMark ? length - 1 : length;
  const ResultCode look = LookAtPlace(std::move(text), change);
  if (look != kOk) return look;
  if (writeLength <= 0) return kFail;
  if (writeLength == length) {
    part = ObjectRef(paragraph);
    return kOk;
  }
  return GetAt(paragraph, ppt::textRange::kCharacters, 1, writeLength, part) ? kOk : kFail;
}

}  // namespace

Wide FlattenTranslation(WideView text) {
  // Most texts have no break.
  const std::size_t first =
      static_cast<std::size_t>(std::find_if(text.begin(), text.end(), IsBreak) - text.begin());
  Wide flat(text.substr(0, first));
  flat.reserve(text.size());
  bool pending = false;
  for (const char16_t unit : text.substr(first)) {
    if (IsBreak(unit)) {
      pending = !flat.empty();
      continue;
    }
    if (pending && !IsBlank(unit)) flat += u' ';
    pending = false;
    flat += unit;
  }
  while (!flat.empty() && IsBlank(flat.back())) flat.pop_back();
  return flat;
}

ResultCode SetRangeText(AutomationObject* range, const Wide& text) {
  if (range == nullptr || text.empty()) return kFail;
  ResultCode code = kFail;
  if (Put(range, ppt::textRange::kText, text, &code)) return code;
  return AutoPutText(range, text);
}

bool SameText(WideView a, WideView b) {
  return Trimmed(a) == Trimmed(b);
}

Wide WithoutBreaks(WideView text) {
  Wide joined(text);
  std::erase_if(joined, [](char16_t unit) { return unit == u'\r' || unit == u'\n'; });
  return joined;
}

ResultCode ApplyParagraph(AutomationObject* shape, const UnitLocator& locator, TextChange& change,
                          const Wide& targetFont) {
  ObjectRef range;
  if (!FrameRange(shape, range)) return kFail;
  const Wide flat = FlattenTranslation(change.to);
  if (flat.empty()) return kFail;
  if (locator.wholeFrame) {
    const ResultCode look = ReadAndLook(range.get(), true, change);
    if (look != kOk) return look;
    // Without a snapshot: the look of several paragraphs has no one value to put back.
    const ResultCode put = SetRangeText(range.get(), flat);
    if (Succeeded(put)) ApplyTargetFontName(range.get(), targetFont);
    return put;
  }
  ObjectRef paragraph;
  ObjectRef part;
  if (!GetAt(range.get(), ppt::textRange::kParagraphs, locator.paragraphIndex, 1, paragraph)) {
    return kFail;
  }
  const ResultCode look = WrittenPart(paragraph.get(), change, part);
  return look == kOk ? WriteKeepingLook(part.get(), flat, targetFont) : look;
}

ResultCode ApplyCharacterRange(AutomationObject* shape, const UnitLocator& locator,
                               TextChange& change, const Wide& targetFont) {
  if (locator.charStart <= 0 || locator.charLength <= 0) return kFail;
  ObjectRef range;
  ObjectRef characters;
  if (!FrameRange(shape, range)) return kFail;
  const bool leaveMark = locator.endsWithCr && locator.charLength > 1;
  const std::int32_t length = leaveMark ? locator.charLength - 1 : locator.charLength;
  if (!GetAt(range.get(), ppt::textRange::kCharacters, locator.charStart, length, characters)) {
    return kFail;
  }
  const Wide flat = FlattenTranslation(change.to);
  if (flat.empty()) return kFail;
  const ResultCode look = ReadAndLook(characters.get(), false, change);
  return look == kOk ? WriteKeepingLook(characters.get(), flat, targetFont) : look;
}

}  // namespace quillmarch::addin

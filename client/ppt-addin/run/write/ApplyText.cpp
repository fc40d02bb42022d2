#include "run/write/ApplyText.h"

#include <algorithm>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/automation/HostShapes.h"
#include "run/write/FontStyle.h"

namespace quillmarch::addin {

namespace {

bool IsBreak(char16_t unit) {
  return unit == u'\r' || unit == u'\n' || unit == u'\v' || unit == u'\f';
}

bool IsBlank(char16_t unit) {
  return unit == u' ' || unit == u'\t';
}

bool WriteKeepingLook(AutomationObject* range, const Wide& text, const Wide& targetFont) {
  FontSnapshot look;
  TakeFontSnapshot(range, look);
  if (!SetRangeText(range, text)) return false;
  RestoreFontSnapshot(range, look);
  ApplyTargetFontName(range, targetFont);
  return true;
}

// The part of a paragraph that a text goes over: without the paragraph mark, where the host counts
// the mark into the range.
bool WrittenPart(AutomationObject* paragraph, ObjectRef& part) {
  std::int32_t length = 0;
  Wide text;
  // A paragraph whose mark cannot be told is left alone: writing over the mark would join it with
  // the next one.
  if (!Get(paragraph, ppt::textRange::kLength, length) ||
      !Get(paragraph, ppt::textRange::kText, text)) {
    return false;
  }
  const bool holdsMark = !text.empty() && text.back() == u'\r' && length >= 2 &&
                         static_cast<std::size_t>(length) == text.size();
  const std::int32_t writeLength = holdsMark ? length - 1 : length;
  if (writeLength <= 0) return false;
  if (writeLength == length) {
    part = ObjectRef(paragraph);
    return true;
  }
  return GetAt(paragraph, ppt::textRange::kCharacters, 1, writeLength, part);
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

bool SetRangeText(AutomationObject* range, const Wide& text) {
  if (range == nullptr || text.empty()) return false;
  return Put(range, ppt::textRange::kText, text) || Succeeded(AutoPutText(range, text));
}

bool ApplyParagraph(AutomationObject* shape, const UnitLocator& locator, const Wide& text,
                    const Wide& targetFont) {
  ObjectRef range;
  if (!FrameRange(shape, range)) return false;
  const Wide flat = FlattenTranslation(text);
  if (flat.empty()) return false;
  if (locator.wholeFrame) {
    // Without a snapshot: the look of several paragraphs has no one value to put back.
    if (!SetRangeText(range.get(), flat)) return false;
    ApplyTargetFontName(range.get(), targetFont);
    return true;
  }
  ObjectRef paragraph;
  ObjectRef part;
  return GetAt(range.get(), ppt::textRange::kParagraphs, locator.paragraphIndex, 1, paragraph) &&
         WrittenPart(paragraph.get(), part) && WriteKeepingLook(part.get(), flat, targetFont);
}

bool ApplyCharacterRange(AutomationObject* shape, const UnitLocator& locator, const Wide& text,
                         const Wide& targetFont) {
  if (locator.charStart <= 0 || locator.charLength <= 0) return false;
  ObjectRef range;
  ObjectRef characters;
  if (!FrameRange(shape, range)) return false;
  const bool leaveMark = locator.endsWithCr && locator.charLength > 1;
  const std::int32_t length = leaveMark ? locator.charLength - 1 : locator.charLength;
  if (!GetAt(range.get(), ppt::textRange::kCharacters, locator.charStart, length, characters)) {
    return false;
  }
  const Wide flat = FlattenTranslation(text);
  return !flat.empty() && WriteKeepingLook(characters.get(), flat, targetFont);
}

}  // namespace quillmarch::addin

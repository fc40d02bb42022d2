#include "run/collect/FrameCollapse.h"

#include <algorithm>
#include <cstddef>

#include "foundation/text/CharClass.h"
#include "run/document/ShouldSkip.h"

namespace quillmarch::addin {

namespace {

constexpr std::size_t kMinParagraphs = 2;
constexpr std::size_t kMaxFrameChars = 30;  // UTF-16 units of all paragraphs together
constexpr WideView kPunctuation = u"，。！？；：、,.!?;:";

bool MayStandInPhrase(char16_t unit) {
  return IsCjkUnit(unit) || IsDigit(unit) || IsSpace(unit);
}

}  // namespace

FrameVerdict JudgeFrame(const std::vector<Wide>& paragraphs, const UnitLocator& locatorTemplate) {
  if (locatorTemplate.kind != UnitKind::kShape || locatorTemplate.onNotes != 0 ||
      locatorTemplate.row != 0 || locatorTemplate.column != 0) {
    return FrameVerdict::kSeparate;
  }
  if (paragraphs.size() < kMinParagraphs) return FrameVerdict::kSeparate;

  std::size_t total = 0;
  for (const Wide& paragraph : paragraphs) {
    total += paragraph.size();
    if (total > kMaxFrameChars) return FrameVerdict::kSeparate;
    if (!std::all_of(paragraph.begin(), paragraph.end(), MayStandInPhrase)) {
      return FrameVerdict::kSeparate;
    }
    if (paragraph.find_first_of(kPunctuation) != Wide::npos) return FrameVerdict::kSeparate;
  }
  if (total == 0) return FrameVerdict::kSeparate;

  const bool nothingToSend = std::any_of(paragraphs.begin(), paragraphs.end(),
                                         [](const Wide& p) { return p.empty() || ShouldSkip(p); });
  return nothingToSend ? FrameVerdict::kMarked : FrameVerdict::kCollapsed;
}

}  // namespace quillmarch::addin

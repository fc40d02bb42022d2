#include "run/document/BilingualSlides.h"

#include <array>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin {

namespace {
constexpr const char16_t* kCopyTag = u"Quillmarch.BilingualCopyOf";
}

bool IsBilingualCopy(AutomationObject* slide) {
  ObjectRef tags;
  if (!Get(slide, ppt::slide::kTags, tags)) return false;
  const std::array<Variant, 1> name = {Variant::Text(kCopyTag)};
  Variant value;
  return Succeeded(CallMember(tags.get(), ppt::tags::kItem, name, value)) &&
         !VariantToText(value).empty();
}

Status CreateBilingualCopies(RunCopies&) {
  // Refused rather than left out: without a copy the translation would go over the source.
  return {kFail, u"暂不支持创建双语译文页"};
}

bool LocateCopySlide(const RunCopies& copies, AutomationObject*, std::int32_t slideNumber,
                     std::int32_t& outIndex) {
  if (copies.bilingual) return false;
  outIndex = slideNumber;
  return true;
}

std::int32_t RemoveBilingualCopies(RunCopies& copies) {
  return static_cast<std::int32_t>(copies.copyPairs.size());
}

}  // namespace quillmarch::addin

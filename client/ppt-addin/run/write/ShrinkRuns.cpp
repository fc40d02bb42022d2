#include "run/write/ShrinkRuns.h"

#include <algorithm>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin {

namespace {

constexpr std::int32_t kAll = -1;

}  // namespace

bool ShrinkRuns(AutomationObject* textRange, float scale, float minSize, bool& shrunk) {
  ObjectRef runs;
  if (!GetAt(textRange, ppt::textRange::kRuns, kAll, kAll, runs)) return false;
  std::int32_t count = 0;
  Get(runs.get(), ppt::textRange::kCount, count);
  for (std::int32_t i = 1; i <= count; ++i) {
    ObjectRef run;
    ObjectRef font;
    float size = 0.0F;
    if (!GetAt(textRange, ppt::textRange::kRuns, i, 1, run) ||
        !Get(run.get(), ppt::textRange::kFont, font) || !Get(font.get(), ppt::font::kSize, size) ||
        !(size > minSize)) {
      continue;
    }
    const float smaller = std::max(size * scale, minSize);
    if (!(smaller < size)) continue;
    Put(font.get(), ppt::font::kSize, smaller);
    // Also where the put failed: a pass that could change nothing still counts as one.
    shrunk = true;
  }
  return true;
}

}  // namespace quillmarch::addin

// A text that a designer broke by hand over several paragraphs means nothing paragraph by
// paragraph; such a frame goes out as one unit. Pure; any thread.
#pragma once

#include <vector>

#include "foundation/text/Wide.h"
#include "run/document/TextUnit.h"

namespace quillmarch::addin {

enum class FrameVerdict {
  kSeparate,   // paragraph by paragraph
  kMarked,     // looks like a broken phrase, yet one paragraph has nothing to send: paragraph by
               // paragraph, and looked at again at the run's end
  kCollapsed,  // one unit for the whole frame
};

// `paragraphs` without their trailing CR and LF.
FrameVerdict JudgeFrame(const std::vector<Wide>& paragraphs, const UnitLocator& locatorTemplate);

}  // namespace quillmarch::addin

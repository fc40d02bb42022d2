// What a host does to a frame after its text changed: shrink the text or grow the shape.
#pragma once

#include <cstdint>

#include "host/layout/LayoutEngine.h"

namespace quillmarch::host::layout {

struct TextFit {
  double fontScale = 1.0;
  double lineSpacingReduction = 0.0;
  friend bool operator==(const TextFit&, const TextFit&) = default;
};

// PowerPoint shrinks a title once, other text in a dozen steps.
enum class FitSteps : std::uint8_t { kBody, kTitle };

// The first of PowerPoint's steps at which the text is no higher than the frame's text area; the
// last one when none is. The frame's own autofit is not looked at. At most as many layouts as there
// are steps.
TextFit FitTextToShape(LayoutEngine& layout, const LayoutFrame& frame, FitSteps steps);

struct FrameSize {
  double width = 0.0;
  double height = 0.0;
};

// The size of a shape that fits its text: with wrap on its height follows the text (for vertical
// text its width), with wrap off both do.
FrameSize FitShapeToText(const LayoutFrame& frame, const LayoutResult& text);

}  // namespace quillmarch::host::layout

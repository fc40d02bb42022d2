#include "host/layout/FitText.h"

#include <span>

namespace quillmarch::host::layout {
namespace {

// As PowerPoint stores them in files.
constexpr TextFit kBodySteps[] = {
    {1.0, 0.0},   {1.0, 0.1},  {0.925, 0.1}, {0.925, 0.2}, {0.85, 0.2},  {0.775, 0.2}, {0.7, 0.2},
    {0.625, 0.2}, {0.55, 0.2}, {0.475, 0.2}, {0.4, 0.2},   {0.325, 0.2}, {0.25, 0.2}};
constexpr TextFit kTitleSteps[] = {{1.0, 0.0}, {0.9, 0.0}};
constexpr double kRounding = 0.05;

bool Turned(const LayoutFrame& frame) {
  return frame.direction != Direction::kHorizontal;
}

}  // namespace

TextFit FitTextToShape(LayoutEngine& layout, const LayoutFrame& frame, FitSteps steps) {
  double room = Turned(frame) ? frame.width - frame.insetLeft - frame.insetRight
                              : frame.height - frame.insetTop - frame.insetBottom;
  std::span<const TextFit> all =
      steps == FitSteps::kTitle ? std::span<const TextFit>(kTitleSteps) : kBodySteps;
  LayoutFrame tried = frame;
  tried.autofit = Autofit::kTextToShape;
  for (const TextFit& fit : all) {
    tried.fontScale = fit.fontScale;
    tried.lineSpacingReduction = fit.lineSpacingReduction;
    if (layout.LayOut(tried).height <= room + kRounding) return fit;
  }
  return all.back();
}

FrameSize FitShapeToText(const LayoutFrame& frame, const LayoutResult& text) {
  FrameSize size{frame.width, frame.height};
  double sides = frame.insetLeft + frame.insetRight;
  double ends = frame.insetTop + frame.insetBottom;
  if (Turned(frame)) {
    size.width = text.height + sides;
    if (!frame.wrap) size.height = text.neededWidth + ends;
  } else {
    size.height = text.height + ends;
    if (!frame.wrap) size.width = text.neededWidth + sides;
  }
  return size;
}

}  // namespace quillmarch::host::layout

#include "host/layout/TabPlan.h"

#include <algorithm>
#include <cmath>

namespace quillmarch::host::layout {
namespace {

// A stop this near is where the text already is.
constexpr double kNearestStop = 0.01;
constexpr double kStandardTab = 72.0;

}  // namespace

TabPlan::TabPlan(const LayoutParagraph& paragraph, double defaultTab)
    : paragraph_(paragraph), defaultTab_(defaultTab > 1.0 ? defaultTab : kStandardTab) {}

TabStop TabPlan::Next(double position) const {
  TabStop next;
  next.position = (std::floor((position + kNearestStop) / defaultTab_) + 1.0) * defaultTab_;
  for (const TabStop& stop : paragraph_.tabs) {
    if (stop.position > position + kNearestStop) {
      next = stop;
      break;
    }
  }
  // The place where hanging lines begin is a stop too.
  double hanging = paragraph_.marginStart;
  if (paragraph_.indent < 0.0 && hanging > position + kNearestStop && hanging < next.position) {
    next = {hanging, TabAlignment::kLeft};
  }
  return next;
}

void LineCursor::Tab() {
  double end = End();
  base_ = end;
  stop_ = tabs_.Next(end);
  tabbed_ = true;
  width_ = 0.0;
  beforePoint_ = 0.0;
  pointSeen_ = false;
}

void LineCursor::Add(double advance, bool isPoint) {
  if (isPoint) pointSeen_ = true;
  width_ += advance;
  if (!pointSeen_) beforePoint_ = width_;
}

double LineCursor::Begin() const {
  if (!tabbed_) return base_;
  double back = 0.0;
  switch (stop_.alignment) {
    case TabAlignment::kLeft:
      break;
    case TabAlignment::kCenter:
      back = width_ / 2.0;
      break;
    case TabAlignment::kRight:
      back = width_;
      break;
    case TabAlignment::kDecimal:
      back = beforePoint_;
      break;
  }
  return std::max(base_, stop_.position - back);
}

}  // namespace quillmarch::host::layout

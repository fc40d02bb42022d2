#include "run/write/FitScale.h"

#include <algorithm>

namespace quillmarch::addin {

namespace {

constexpr float kSlack = 0.97F;         // a little more than the sums ask for
constexpr float kEdgeTolerance = 1.0F;  // points beyond the slide's edge
constexpr float kLeastRoom = 8.0F;      // points

bool SlideEdgesCount(const FitRoom& room) {
  return room.slideW > 1.0F;
}

}  // namespace

bool OverWidth(const TextMeasure& measure, const FitRoom& room) {
  if (!measure.validWidth) return false;
  if (measure.width > room.contentW + room.tolW) return true;
  if (!SlideEdgesCount(room)) return false;
  return measure.left < -kEdgeTolerance ||
         measure.left + measure.width > room.slideW + kEdgeTolerance;
}

bool FitsHeight(const TextMeasure& measure, const FitRoom& room) {
  return measure.validHeight && !(measure.height > room.shapeH + room.tolH);
}

float ComputeShrinkScale(const TextMeasure& measure, const FitRoom& room) {
  float byHeight = kGreatestScale;
  if (measure.validHeight && measure.height > room.shapeH + room.tolH) {
    byHeight = std::min(room.shapeH / measure.height * kSlack, kGreatestScale);
  }
  if (!measure.validWidth) return byHeight;
  float byWidth = byHeight;
  if (measure.width > room.contentW + room.tolW) {
    byWidth = std::min(room.contentW / measure.width * kSlack, byHeight);
  }
  if (!SlideEdgesCount(room)) return byWidth;
  const float overLeft = measure.left < 0.0F ? -measure.left : 0.0F;
  const float overRight = std::max(measure.left + measure.width - room.slideW, 0.0F);
  if (overLeft + overRight > kEdgeTolerance && measure.width > 0.0F) {
    const float left = std::max(measure.width - overLeft - overRight, kLeastRoom);
    return std::min(left / measure.width * kSlack, byWidth);
  }
  return byWidth;
}

float HeldScale(const TextMeasure& measure, const FitRoom& room) {
  return std::clamp(ComputeShrinkScale(measure, room), kLeastScale, kGreatestScale);
}

}  // namespace quillmarch::addin

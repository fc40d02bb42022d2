// How far a text has to shrink: the sums of the text fit over measured texts. 32-bit floats
// throughout, lengths in points.
#pragma once

namespace quillmarch::addin {

// A height or width counts only when the host gave it and it is above 0.
struct TextMeasure {
  float height = 0.0F;
  float width = 0.0F;
  float left = 0.0F;  // from the slide's left edge
  bool validHeight = false;
  bool validWidth = false;
};

struct FitRoom {
  float shapeW = 0.0F;
  float shapeH = 0.0F;
  float contentW = 0.0F;  // the shape's width without the margins
  float tolW = 0.0F;
  float tolH = 0.0F;
  float slideW = 0.0F;  // 1 and below: the slide's edges are not looked at
};

inline constexpr float kLeastScale = 0.1F;
inline constexpr float kGreatestScale = 0.95F;

// Whether the text stands out sideways, of its room or of the slide.
bool OverWidth(const TextMeasure& measure, const FitRoom& room);
// Whether the height is valid and within the shape's.
bool FitsHeight(const TextMeasure& measure, const FitRoom& room);

float ComputeShrinkScale(const TextMeasure& measure, const FitRoom& room);
// ComputeShrinkScale, held to the range from kLeastScale to kGreatestScale.
float HeldScale(const TextMeasure& measure, const FitRoom& room);

}  // namespace quillmarch::addin

// Brings a shape back to its place and its text into its box after the text was replaced. Host
// thread only, with the gate held; nothing in it fails the run.
#pragma once

#include "foundation/automation/AutomationObject.h"

namespace quillmarch::addin {

// Points.
struct ShapeRect {
  float left = 0.0F;
  float top = 0.0F;
  float width = 0.0F;
  float height = 0.0F;
  bool valid = false;
};

// All four reads are made, then judged: valid only when all worked and the size is above 0.
ShapeRect ReadShapeRect(AutomationObject* shape);

// `rect` is the shape's place before the write and may be null; `slideWidth` in points, 0 when
// unknown.
void FitShape(AutomationObject* shape, const ShapeRect* rect, float slideWidth);

}  // namespace quillmarch::addin

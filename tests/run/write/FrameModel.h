// A shape with one text frame for the tests of the fit: what the host answers of it, computed by
// rules that a test can follow in its head, and what was put, in order.
//
// Every unit is half its size wide and a line is 1.2 times its greatest size high. With the wrap on
// a line holds as many units as go into the width without margins.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "support/ScriptedObject.h"

namespace quillmarch::addin::test {

struct FrameRun {
  std::int32_t units = 0;
  float size = 18.0F;  // points
  bool refuses = false;
};

class FrameModel {
 public:
  std::vector<FrameRun> runs;
  float left = 100.0F;
  float top = 50.0F;
  float width = 200.0F;
  float height = 100.0F;
  float marginLeft = 0.0F;
  float marginRight = 0.0F;
  std::int32_t autoSize = 0;
  std::int32_t autoSize2 = 0;
  std::int32_t wrap = -1;
  bool hasFrame2 = true;
  bool oneAutoSizeState = true;  // both frames show one state, as text-to-fit -2 and 2
  bool givesBounds = true;
  bool givesRuns = true;
  std::set<std::string> unreadable;  // members whose reads fail: "MarginLeft", "AutoSize2"
  // Replaces the rule above: height, width and left for the state as it is.
  std::function<void(const FrameModel&, float& height, float& width, float& left)> bounds;

  // Puts, and the reads of BoundHeight: "AutoSize=0", "measure", "WordWrap=-1", "size=9.5".
  std::vector<std::string> log;

  int Measures() const;
  std::vector<std::string> Puts() const;
  ObjectRef Shape();

  float BoundHeight() const;
  float BoundWidth() const;
  float BoundLeft() const;

 private:
  ObjectRef Frame();
  ObjectRef Frame2();
  ObjectRef Range();
  ObjectRef Run(std::size_t index);
  std::int32_t Units() const;
  float GreatestSize() const;
};

}  // namespace quillmarch::addin::test

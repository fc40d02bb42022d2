// The panel's style settings. Only the font's name ever reaches a shape; the size switches the fit
// off, colour and weight are carried along.
#pragma once

#include <cstdint>

#include "foundation/Wide.h"

struct TargetStyle {
  Wide font;
  double size = 0.0;        // points, 0.0 = not set
  std::int32_t color = -1;  // red + green * 256 + blue * 65536, -1 = not set
  std::int32_t bold = -1;   // 0, 1, -1 = not set
};

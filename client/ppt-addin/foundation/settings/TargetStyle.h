// The panel's style settings. Only the font's name ever reaches a shape; the size switches the fit
// off, colour and weight are carried along.
#pragma once

#include <cstdint>

#include "foundation/text/Wide.h"

namespace quillmarch {

struct TargetStyle {
  Wide font;
  double size = 0.0;        // points, 0.0 = not set
  std::int32_t color = -1;  // red + green * 256 + blue * 65536, -1 = not set
  std::int32_t bold = -1;   // 0, 1, -1 = not set
};

// Takes what the message says of the style; a key that it does not hold leaves its field.
void ReadTargetStyle(WideView json, TargetStyle& style);

}  // namespace quillmarch

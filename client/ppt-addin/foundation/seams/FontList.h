// The fonts that the desktop has.
#pragma once

#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch {

class FontList {
 public:
  virtual ~FontList() = default;

  // Family names as the platform lists them: in its order, with its repetitions. Empty when they
  // cannot be had. Host thread only.
  virtual std::vector<Wide> FamilyNames() = 0;
};

}  // namespace quillmarch

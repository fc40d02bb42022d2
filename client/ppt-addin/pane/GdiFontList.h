// The fonts of the screen. Windows only.
#pragma once

#include "foundation/FontList.h"

class GdiFontList final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override;
};

// The fonts of this machine as Fontconfig lists them.
#pragma once

#include "foundation/FontList.h"

class DesktopFonts final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override;
};

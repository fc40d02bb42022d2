// The fonts of this machine as Fontconfig lists them.
#pragma once

#include "foundation/seams/FontList.h"

namespace quillmarch::host {

class DesktopFonts final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override;
};

}  // namespace quillmarch::host

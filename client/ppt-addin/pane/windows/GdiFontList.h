// The fonts of the screen. Windows only.
#pragma once

#include "foundation/seams/FontList.h"

namespace quillmarch::addin {

class GdiFontList final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override;
};

}  // namespace quillmarch::addin

#include "pane/HandOver.h"

namespace quillmarch::addin {

HandOver& HandOverBlock() {
  static HandOver block;
  return block;
}

}  // namespace quillmarch::addin

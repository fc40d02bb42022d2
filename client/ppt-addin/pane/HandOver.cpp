#include "pane/HandOver.h"

HandOver& HandOverBlock() {
  static HandOver block;
  return block;
}

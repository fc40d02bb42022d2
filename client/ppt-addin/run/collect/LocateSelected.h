// From a selected shape to its place: the object itself tells neither slide nor path. Host thread
// only.
#pragma once

#include <cstdint>

#include "run/document/FindShape.h"

namespace quillmarch::addin {

// Searches slide after slide, each slide before its notes page. `activeSlide` (1-based; 0 when
// unknown) goes first, as a selection lies there nearly always and shapes of two slides can have
// one Id. False, and `match` untouched, when the shape is on no slide.
bool LocateSelected(AutomationObject* slides, AutomationObject* shape, std::int32_t activeSlide,
                    ShapeMatch& match);

}  // namespace quillmarch::addin

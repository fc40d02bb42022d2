// A layout frame from one line of JSON, as frames.py writes it.
#pragma once

#include <nlohmann/json.hpp>

#include "host/layout/LayoutFrame.h"

namespace quillmarch::host {

layout::LayoutFrame FrameOf(const nlohmann::json& record);

}  // namespace quillmarch::host

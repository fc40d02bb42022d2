// What a Host owns; only for its own sources.
#pragma once

#include <memory>

#include "host/model/Session.h"

namespace quillmarch::host {

struct Host::State {
  model::SessionRef session = std::make_shared<model::Session>();
};

}  // namespace quillmarch::host

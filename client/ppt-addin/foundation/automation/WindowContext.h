// The two words that name a document window. Either may be zero, which means unknown.
#pragma once

#include <cstdint>

namespace quillmarch {

struct WindowContext {
  std::int32_t hwnd = 0;  // value of the window's HWND property
  std::uintptr_t id = 0;  // identity of the window object
};

}  // namespace quillmarch

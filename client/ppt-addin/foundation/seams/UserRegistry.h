// The user's registry (HKEY_CURRENT_USER) as registration changes it. Keys are written from the
// root, separated by "\". Each call gives a Win32 code, 0 for success. The value without a name is
// the key's default.
#pragma once

#include <cstdint>

#include "foundation/text/Wide.h"

namespace quillmarch {

class UserRegistry {
 public:
  using Code = std::uint32_t;
  static constexpr Code kDone = 0;
  static constexpr Code kNotFound = 2;
  static constexpr Code kAccessDenied = 5;

  virtual ~UserRegistry() = default;

  // Makes the key, and those above it, where they are missing.
  virtual Code CreateKey(WideView key) = 0;
  // Each needs the key.
  virtual Code PutText(WideView key, WideView name, WideView text) = 0;
  virtual Code PutNumber(WideView key, WideView name, std::uint32_t number) = 0;
  virtual Code DeleteValue(WideView key, WideView name) = 0;
  // Refuses while another key is below it.
  virtual Code DeleteKey(WideView key) = 0;
  // With all that is below it.
  virtual Code DeleteTree(WideView key) = 0;
  virtual bool Exists(WideView key) = 0;
  // No value and no key below it; false for a key that is not there.
  virtual bool IsEmpty(WideView key) = 0;
};

// The user's own. On Windows only: nobody registers anything elsewhere.
UserRegistry& SystemUserRegistry();

}  // namespace quillmarch

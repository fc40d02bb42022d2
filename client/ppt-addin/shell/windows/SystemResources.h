// The resources of a module as Windows finds them. Windows only.
#pragma once

#include <windows.h>

#include "shell/ModuleResources.h"

namespace quillmarch::addin {

class SystemResources final : public ModuleResources {
 public:
  explicit SystemResources(HINSTANCE module) : module_(module) {}
  bool Load(const char16_t* type, std::uint16_t id, std::string& bytes) override;

 private:
  HINSTANCE module_;
};

}  // namespace quillmarch::addin
